// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "simulator_port.h"

#include <algorithm>
#include <cstddef>

int SimulatorPort::receive(unsigned char *buffer, int maxLength)
{
    const auto count = std::min<std::ptrdiff_t>(maxLength, std::ptrdiff_t(arrived.size()));
    std::copy_n(arrived.begin(), count, buffer);
    arrived.erase(arrived.begin(), arrived.begin() + count);
    return int(count);
}

int SimulatorPort::send(const unsigned char *data, int length)
{
    sim::append(arrived, station.receive(data, size_t(length)));
    return length;
}

bool SimulatorPort::setOption(int, const QVariant &)
{
    arrived.clear();
    return true;
}
