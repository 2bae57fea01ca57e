// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/port/echo_port.h"

#include <QString>

#include <algorithm>
#include <utility>

namespace host {

namespace {

Failure noEcho()
{
    return Failure(ExitCode::BrokenAnswer, Cause::NoEcho, "the adapter did not echo what was sent",
                   "leave out --echo: this adapter does not hear itself, or it is not connected");
}

Failure otherEcho(const QByteArray &sent, const QByteArray &heard)
{
    return Failure(ExitCode::BrokenAnswer, Cause::NoEcho,
                   QString("the echo is not what was sent: %1 and not %2")
                       .arg(QString::fromLatin1(heard.toHex(' ')), QString::fromLatin1(sent.toHex(' '))),
                   "two stations sent at once, or the line is disturbed: look for another master, and at "
                   "termination and biasing; an adapter without echo needs no --echo");
}

} // namespace

int EchoPort::receive(unsigned char *buffer, int maxLength)
{
    return failure ? -1 : ForwardingPort::receive(buffer, maxLength);
}

int EchoPort::send(const unsigned char *data, int length)
{
    if (failure)
        return -1;
    const int sentLength = ForwardingPort::send(data, length);
    if (sentLength != length)
        return sentLength;
    const QByteArray sent(reinterpret_cast<const char *>(data), length);
    QByteArray heard(length, '\0');
    const int heardLength = ForwardingPort::receive(reinterpret_cast<unsigned char *>(heard.data()), length);
    heard.truncate(std::max(0, heardLength));
    if (heard != sent)
        failure = heard.isEmpty() ? noEcho() : otherEcho(sent, heard);
    return failure ? -1 : length;
}

int EchoPort::retry()
{
    return failure ? 0 : ForwardingPort::retry();
}

std::optional<Failure> EchoPort::takeFailure()
{
    return std::exchange(failure, std::nullopt);
}

Failure echoFailure()
{
    return Failure(ExitCode::BrokenAnswer, Cause::Echo, "the adapter hears what it sends",
                   "use --echo, or switch the adapter's receiver off while it sends");
}

} // namespace host
