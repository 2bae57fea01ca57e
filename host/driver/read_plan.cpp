// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/driver/read_plan.h"

#include "host/base/failure.h"
#include "host/base/filled.h"
#include "host/driver/connection.h"
#include "host/items/memory_range.h"

#include <QString>

namespace host {

namespace {

// What one answer frame has room for behind its headers, in bytes.
constexpr int kFrameData = 222;

QList<ReadRequest> requestsOf(const RequestForm &form, int number, int count)
{
    QList<ReadRequest> requests;
    for (const CommunicatorCommand &command : splitCommands(form, number, count))
        requests << ReadRequest{command, command.count * form.unitSize, form.reversedWidth};
    return requests;
}

int bytesFor(int bits)
{
    return (bits + 7) / 8;
}

// The driver asks for the bytes that hold the bits but takes only as many as the count alone needs:
// bits that straddle one byte more are refused. Those, and more than one frame carries, are picked out
// of whole bytes here.
bool driverReadsBits(const Item &item)
{
    const int bytes = bytesFor(item.address.bit + item.count);
    return bytes == bytesFor(item.count) && bytes <= kFrameData;
}

ReadPlan planBits(const Item &item)
{
    const Address &address = item.address;
    if (driverReadsBits(item))
        return {{{makeCommand(kBits, address.text(), item.count), item.count, 1}}, -1};
    const int bytes = bytesFor(address.bit + item.count);
    return {requestsOf(bytesForm(areaOf(address.prefix), kFrameData), address.number, bytes), address.bit};
}

QByteArray pickBits(const QByteArray &bytes, int firstBit, int count)
{
    QByteArray bits;
    for (int i = firstBit; i < firstBit + count; ++i)
        bits += char((bytes.at(i / 8) >> (i % 8)) & 1);
    return bits;
}

QByteArray run(const ReadRequest &request, const ReadFunction &read)
{
    const QByteArray data = read(request.command);
    if (int(data.size()) != request.size)
        throw Failure(ExitCode::BrokenAnswer,
                      filled("%1 bytes came instead of %2", data.size(), request.size),
                      "the controller answered fewer objects than were asked for; try a smaller count");
    return byteSwapped(data, request.reversedWidth);
}

} // namespace

ReadPlan planRead(const Item &item)
{
    const Address &address = item.address;
    if (address.kind == AddressKind::Bit)
        return planBits(item);
    const RequestForm form = requestForm(item, kFrameData);
    return {requestsOf(form, address.number, item.count), -1};
}

QByteArray readItem(const Item &item, const ReadFunction &read)
{
    const ReadPlan plan = planRead(item);
    QByteArray data;
    for (const ReadRequest &request : plan.requests)
        data += run(request, read);
    return plan.firstBit < 0 ? data : pickBits(data, plan.firstBit, item.count);
}

QByteArray readItem(Connection &connection, const Item &item)
{
    return readItem(item, [&](const CommunicatorCommand &command) { return connection.read(command); });
}

QList<Item> readBlocks(const Item &range)
{
    QList<Item> blocks;
    int index = 0;
    for (const ReadRequest &request : planRead(range).requests) {
        const int count = request.size / range.valueSize();
        blocks << partOf(range, index, count);
        index += count;
    }
    return blocks;
}

} // namespace host
