// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A port that counts the requests sent through it; every attempt at a read or write sends one.

#ifndef HOST_PORT_COUNTING_PORT_H
#define HOST_PORT_COUNTING_PORT_H

#include "host/port/forwarding_port.h"

namespace host {

class CountingPort : public ForwardingPort
{
public:
    using ForwardingPort::ForwardingPort;

    int send(const unsigned char *data, int length) override;

    // Polls, which belong to the request before them, do not count.
    int requestCount() const { return requests; }

private:
    int requests = 0;
};

} // namespace host

#endif
