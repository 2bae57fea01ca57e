// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Where a broker is, as users name it.
//
//   address := "mqtt://" HOST [ ":" PORT ]      port 1883 unless it is named
//            | "mqtts://" HOST [ ":" PORT ]     over TLS; port 8883 unless it is named
//   HOST       a name, an IPv4 address, or an IPv6 address in brackets

#ifndef HOST_BROKER_BROKER_ADDRESS_H
#define HOST_BROKER_BROKER_ADDRESS_H

#include <QString>

namespace host {

struct BrokerAddress
{
    // "mqtts://broker.example:8883"
    QString text() const;

    QString host; // without brackets
    int port;
    bool isSecure;
};

// Fails on what is no address, and on one with a user or password: whoever lists processes would see them.
BrokerAddress parseBrokerAddress(const QString &text);

} // namespace host

#endif
