// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/broker/broker_address.h"

#include "host/base/failure.h"
#include "host/base/filled.h"

#include <QRegularExpression>

namespace host {

namespace {

constexpr int kPlainPort = 1883;
constexpr int kSecurePort = 8883;
constexpr int kLargestPort = 65535;

const char kAddressHint[] = "write mqtt://HOST or mqtts://HOST, with :PORT if it is not the usual one";

Failure wrong(const QString &text, const QString &hint)
{
    return Failure(ExitCode::Usage, text, hint);
}

} // namespace

QString BrokerAddress::text() const
{
    const QString place = host.contains(':') ? '[' + host + ']' : host;
    return filled("%1://%2:%3", isSecure ? "mqtts" : "mqtt", place, port);
}

BrokerAddress parseBrokerAddress(const QString &text)
{
    if (text.contains('@'))
        throw wrong(
            "the broker's address has a user or a password in it, which every user of this machine can see",
            "leave it out, and set S7PPI_MQTT_USER and S7PPI_MQTT_PASSWORD or name a file with "
            "--credentials");
    static const QRegularExpression pattern(
        R"(^(mqtts?)://(?:\[([0-9A-Fa-f:.]+(?:%[A-Za-z0-9._-]+)?)\]|([A-Za-z0-9._-]+))(?::([0-9]{1,5}))?/?$)");
    const QRegularExpressionMatch match = pattern.match(text);
    if (!match.hasMatch())
        throw wrong('"' + text + "\" is not the address of a broker", kAddressHint);
    const bool isSecure = match.captured(1) == "mqtts";
    const QString host = match.captured(2) + match.captured(3);
    if (match.captured(4).isEmpty())
        return {host, isSecure ? kSecurePort : kPlainPort, isSecure};
    const int port = match.captured(4).toInt();
    if (port < 1 || port > kLargestPort)
        throw wrong(filled("the broker's port is %1", match.captured(4)),
                    filled("ports are numbers from 1 to %1", kLargestPort));
    return {host, port, isSecure};
}

} // namespace host
