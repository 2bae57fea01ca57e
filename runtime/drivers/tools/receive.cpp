// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "receive.h"

#include "abstract_device_interface.h"
#include "array_size.h"

#include <algorithm>

namespace {

// Adds what the port gives of so many bytes that are wanted. False when that is nothing.
bool receiveMore(AbstractDeviceInterface *dev, Reception &reception, int wanted)
{
    QByteArray &bytes = reception.bytes;
    const int before = int(bytes.size());
    if (!resizeWithZeros(bytes, qint64(before) + wanted)) {
        reception.end = kReceptionLong;
        return false;
    }
    const int claimed = dev->receive(reinterpret_cast<unsigned char *>(bytes.data()) + before, wanted);
    const int came = std::min(std::max(claimed, 0), wanted);
    bytes.resize(before + came);
    reception.end = came > 0 ? kReceptionWhole : kReceptionShort;
    return came > 0;
}

// How many bytes must still come before the terminator can be the end of the bytes: 0 when it is.
int missingOf(const QByteArray &terminator, const QByteArray &bytes)
{
    int begun = int(std::min(terminator.size(), bytes.size()));
    while (!bytes.endsWith(terminator.left(begun)))
        --begun;
    return int(terminator.size()) - begun;
}

} // namespace

Reception::Reception() : end(kReceptionWhole) {}

bool Reception::isWhole() const
{
    return end == kReceptionWhole;
}

Reception receiveExactly(AbstractDeviceInterface *dev, int count)
{
    Reception reception;
    while (int(reception.bytes.size()) < count &&
           receiveMore(dev, reception, count - int(reception.bytes.size()))) {
    }
    return reception;
}

Reception receiveUntil(AbstractDeviceInterface *dev, const QByteArray &terminator, int limit)
{
    Reception reception;
    while (const int missing = missingOf(terminator, reception.bytes)) {
        const int room = limit - int(reception.bytes.size());
        if (room < 1) {
            reception.end = kReceptionLong;
            return reception;
        }
        if (!receiveMore(dev, reception, std::min(missing, room)))
            return reception;
    }
    return reception;
}

Reception receiveLine(AbstractDeviceInterface *dev, int limit)
{
    Reception reception = receiveUntil(dev, QByteArray(1, '\n'), limit);
    if (reception.isWhole()) {
        reception.bytes.chop(1);
        if (reception.bytes.endsWith('\r'))
            reception.bytes.chop(1);
    }
    return reception;
}
