// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/driver/write_plan.h"

#include "host/base/filled.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <algorithm>

namespace host {

namespace {

constexpr int kFrameBits = 12;

QString bitAddress(const Address &address, int offset)
{
    const int bit = address.bit + offset;
    return filled("%1%2.%3", address.prefix, address.number + bit / 8, bit % 8);
}

QList<WriteRequest> planBits(const Item &item, const QByteArray &data)
{
    QList<WriteRequest> requests;
    for (int done = 0; done < item.count; done += kFrameBits) {
        const int count = std::min(kFrameBits, item.count - done);
        requests << WriteRequest{makeCommand(kBits, bitAddress(item.address, done), count),
                                 data.mid(done, count)};
    }
    return requests;
}

} // namespace

QList<WriteRequest> planWrite(const Item &item, const QByteArray &data)
{
    if (item.address.kind == AddressKind::Raw)
        return {{rawCommand(item), byteSwapped(data, rawReversedWidth(item))}};
    if (item.address.kind == AddressKind::Bit)
        return planBits(item, data);
    const RequestForm form = requestForm(item, kWrittenFrameData);
    QList<WriteRequest> requests;
    int done = 0;
    for (const CommunicatorCommand &command :
         splitCommands(form, item.address.number, item.size() / form.unitSize)) {
        const int size = command.count * form.unitSize;
        requests << WriteRequest{command, byteSwapped(data.mid(done, size), form.reversedWidth)};
        done += size;
    }
    return requests;
}

} // namespace host
