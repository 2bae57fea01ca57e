// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/port/host_lookup.h"

#include "host/base/failure.h"
#include "host/base/interruption.h"

#include <algorithm>
#include <chrono>
#include <future>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <netdb.h>
#include <sys/socket.h>

namespace host {

namespace {

struct Found
{
    int error = 0; // of getaddrinfo()
    std::vector<sockaddr_storage> addresses;
};

Found lookUp(const std::string &name)
{
    addrinfo hints = {};
    hints.ai_socktype = SOCK_STREAM;
    addrinfo *list = nullptr;
    Found found;
    found.error = getaddrinfo(name.c_str(), nullptr, &hints, &list);
    for (const addrinfo *one = list; one != nullptr; one = one->ai_next) {
        sockaddr_storage address = {};
        std::copy_n(reinterpret_cast<const char *>(one->ai_addr), one->ai_addrlen,
                    reinterpret_cast<char *>(&address));
        found.addresses.push_back(address);
    }
    if (list != nullptr)
        freeaddrinfo(list);
    return found;
}

// A name server that is silent keeps a thread for half a minute, and nothing ends that. It is left alone
// then, with nothing but what it owns itself.
std::future<Found> beginLookUp(const std::string &name)
{
    const auto promise = std::make_shared<std::promise<Found>>();
    std::thread([promise, name] { promise->set_value(lookUp(name)); }).detach();
    return promise->get_future();
}

Failure unknownHost(const QString &host, const QString &reason)
{
    return Failure(ExitCode::PortUnusable, host + " cannot be looked up: " + reason,
                   "check the name and the network, or give the serial server's address");
}

} // namespace

QList<QHostAddress> addressesOf(const QString &host, const QDeadlineTimer &deadline)
{
    const QHostAddress address(host);
    if (!address.isNull())
        return {address};
    std::future<Found> result = beginLookUp(host.toStdString());
    while (result.wait_for(std::chrono::milliseconds(kInterruptionSlice)) != std::future_status::ready) {
        if (interruptingSignal() != 0)
            throw Interrupted();
        if (deadline.hasExpired())
            throw unknownHost(host, "no name server answers");
    }
    const Found found = result.get();
    if (found.error != 0)
        throw unknownHost(host, gai_strerror(found.error));
    QList<QHostAddress> addresses;
    for (const sockaddr_storage &one : found.addresses)
        addresses << QHostAddress(reinterpret_cast<const sockaddr *>(&one));
    return addresses;
}

} // namespace host
