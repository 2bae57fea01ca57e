// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A port behind an adapter that hears what it sends itself, as RS-485 adapters do whose receiver is never
// switched off.

#ifndef HOST_PORT_ECHO_PORT_H
#define HOST_PORT_ECHO_PORT_H

#include "host/base/failure.h"
#include "host/port/forwarding_port.h"

#include <QByteArray>

#include <optional>

namespace host {

// Takes the echo of every frame out of what is received and compares it. When it is not what was sent, the
// request under way is given up: it brings nothing more and is not repeated.
class EchoPort : public ForwardingPort
{
public:
    using ForwardingPort::ForwardingPort;

    int receive(unsigned char *buffer, int maxLength) override;
    int send(const unsigned char *data, int length) override;
    int retry() override;

    // Returns what was wrong with the echo of the last request, if anything was, and forgets it.
    std::optional<Failure> takeFailure();

private:
    std::optional<Failure> failure;
};

// The failure that every request ends with behind an adapter that hears itself, where nobody takes the echo
// out.
Failure echoFailure();

} // namespace host

#endif
