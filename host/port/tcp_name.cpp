// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/port/tcp_name.h"

#include "host/base/failure.h"
#include "host/base/options.h"

#include <QHostAddress>
#include <QRegularExpression>

namespace host {

namespace {

bool isIpv6(const QString &text)
{
    return QHostAddress(text).protocol() == QAbstractSocket::IPv6Protocol;
}

Failure wrongName(const QString &text, const QString &reason)
{
    return Failure(ExitCode::Usage, text + ": " + reason,
                   "write tcp:HOST:PORT with the serial server's name or address and the number of its TCP "
                   "port, as tcp:192.168.0.5:4001 or tcp:[fd00::5]:4001");
}

} // namespace

TcpName parseTcpName(const QString &text)
{
    static const QRegularExpression form("^(?:\\[([^\\]]*)\\]|([^\\s\\[\\]/:]+)):([0-9]{1,5})$");
    const QString place = text.mid(int(sizeof kTcpPrefix) - 1);
    const QRegularExpressionMatch match = form.match(place);
    if (isIpv6(place.section(':', 0, -2)))
        throw wrongName(text, "an IPv6 address needs brackets");
    if (!match.hasMatch())
        throw wrongName(text, "that names no TCP port of a host");
    const bool isBracketed = match.capturedStart(1) >= 0;
    if (isBracketed && !isIpv6(match.captured(1)))
        throw wrongName(text, match.captured(1) + " is no IPv6 address");
    const int port = match.captured(3).toInt();
    if (port < 1 || port > 65535)
        throw wrongName(text, "TCP ports have the numbers 1 to 65535");
    return {isBracketed ? match.captured(1) : match.captured(2), quint16(port)};
}

} // namespace host
