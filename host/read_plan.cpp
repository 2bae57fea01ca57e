// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "read_plan.h"

#include "failure.h"

#include <algorithm>

namespace host {

namespace {

// What one answer frame has room for behind its headers, in bytes.
constexpr int kFrameData = 222;

// Bytes that the controller sends for one object: a status byte and the value.
constexpr int kLongRecord = 5;
constexpr int kShortRecord = 3;

enum DataType { kBits = 0, kBytes = 1, kWords = 2, kDoubleWords = 3 };

// What one request can ask for and how its result looks.
struct Form
{
    QString prefix;
    DataType dataType;
    int unitSize;     // bytes of the result for one unit of the command's count
    int largestCount; // units in one request
    int addressStep;  // how far one unit moves the address
    int reversedWidth;
};

DataType dataTypeOf(int valueSize)
{
    return valueSize == 4 ? kDoubleWords : valueSize == 2 ? kWords : kBytes;
}

int recordSize(const Address &address)
{
    return address.kind == AddressKind::Counter ? kShortRecord : kLongRecord;
}

Form objectForm(const Item &item)
{
    const DataType dataType = item.type == ValueType::Bool ? kBits : dataTypeOf(item.valueSize());
    const int reversedWidth = dataType == kBits ? 1 : item.valueSize();
    return {item.address.prefix, dataType, item.valueSize(), kFrameData / recordSize(item.address), 1,
            reversedWidth};
}

// Data that is no whole number of the address's elements would be cut in the middle of a reversed
// element. It is asked for in bytes instead, which every area has that allows such lengths.
Form memoryForm(const Item &item)
{
    const Address &address = item.address;
    const int valueSize = item.valueSize();
    const bool isWhole = item.size() % address.elementWidth == 0;
    const int width = isWhole ? address.elementWidth : 1;
    const QString prefix = isWhole ? address.prefix : address.prefix.chopped(1) + 'B';
    const int largest = kFrameData - kFrameData % std::max(width, valueSize);
    return {prefix, dataTypeOf(valueSize), valueSize, largest / valueSize, valueSize, width};
}

ReadRequest makeRequest(const Form &form, int number, int count)
{
    ReadRequest request = {CommunicatorCommand(), count * form.unitSize, form.reversedWidth};
    request.command.dataType = form.dataType;
    request.command.count = count;
    request.command.address = form.prefix + QString::number(number);
    return request;
}

QList<ReadRequest> split(const Form &form, int number, int count)
{
    QList<ReadRequest> requests;
    for (int done = 0; done < count; done += form.largestCount)
        requests << makeRequest(form, number + done * form.addressStep,
                                std::min(form.largestCount, count - done));
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
    if (driverReadsBits(item)) {
        ReadRequest request = {CommunicatorCommand(), item.count, 1};
        request.command.dataType = kBits;
        request.command.count = item.count;
        request.command.address = address.text();
        return {{request}, -1};
    }
    const Form form = {address.prefix + 'B', kBytes, 1, kFrameData, 1, 1};
    return {split(form, address.number, bytesFor(address.bit + item.count)), address.bit};
}

QByteArray turnedRound(QByteArray data, int width)
{
    for (auto group = data.begin(); group != data.end(); group += width)
        std::reverse(group, group + width);
    return data;
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
                      QString("%1 bytes came instead of %2").arg(data.size()).arg(request.size),
                      "the controller answered fewer objects than were asked for; try a smaller count");
    return turnedRound(data, request.reversedWidth);
}

} // namespace

ReadPlan planRead(const Item &item)
{
    const Address &address = item.address;
    if (address.kind == AddressKind::Bit)
        return planBits(item);
    const Form form = address.isObject() ? objectForm(item) : memoryForm(item);
    return {split(form, address.number, item.size() / form.unitSize), -1};
}

QByteArray readItem(const Item &item, const ReadFunction &read)
{
    const ReadPlan plan = planRead(item);
    QByteArray data;
    for (const ReadRequest &request : plan.requests)
        data += run(request, read);
    return plan.firstBit < 0 ? data : pickBits(data, plan.firstBit, item.count);
}

} // namespace host
