// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "simulator/protocol/layer7.h"

#include "simulator/protocol/cursor.h"

namespace sim {

namespace {

constexpr uint8_t kProtocolId = 0x32;
constexpr uint8_t kTypeJob = 0x01;
constexpr uint8_t kTypeAcknowledge = 0x02;
constexpr uint8_t kTypeAnswer = 0x03;

// Every item begins with these three bytes: it specifies a variable, ten more bytes follow, and they name it
// by area and address.
constexpr uint8_t kVariableSpecification = 0x12;
constexpr uint8_t kAddressLength = 0x0A;
constexpr uint8_t kAnyPointer = 0x10;

struct JobHeader
{
    uint8_t protocol = 0;
    uint8_t type = 0;
    uint16_t reserved = 0;
    uint16_t reference = 0;
    uint16_t parameterLength = 0;
    uint16_t dataLength = 0;
};

JobHeader takeHeader(Cursor &cursor)
{
    JobHeader header;
    header.protocol = cursor.take8();
    header.type = cursor.take8();
    header.reserved = cursor.take16();
    header.reference = cursor.take16();
    header.parameterLength = cursor.take16();
    header.dataLength = cursor.take16();
    return header;
}

// Returns false when the bytes do not hold an item.
bool takeItem(Cursor &cursor, Item &item)
{
    const bool known = cursor.take8() == kVariableSpecification && cursor.take8() == kAddressLength &&
                       cursor.take8() == kAnyPointer;
    item.transport = cursor.take8();
    item.count = cursor.take16();
    item.db = cursor.take16();
    item.area = cursor.take8();
    item.address = cursor.take24();
    return known && cursor.ok();
}

// The bytes of data whose length field is given. Unknown kinds count as bits: the item is refused in the end,
// and the ones behind it still have to be found.
size_t dataSize(uint8_t transport, uint16_t length)
{
    return transport == kDataRecords ? length : (length + 7u) / 8;
}

// Returns false when the bytes do not hold the data of one item. Behind the last data there is no fill byte.
bool takeData(Cursor &cursor, bool last, Data &data)
{
    const bool reservedIsZero = cursor.take8() == 0;
    data.transport = cursor.take8();
    data.length = cursor.take16();
    data.bytes = cursor.takeBytes(dataSize(data.transport, data.length));
    if (!last && data.bytes.size() % 2 != 0)
        cursor.take8();
    return reservedIsZero && cursor.ok();
}

bool takeItems(Cursor &cursor, size_t count, Job &job)
{
    job.items.resize(count);
    for (Item &item : job.items) {
        if (!takeItem(cursor, item))
            return false;
    }
    return true;
}

bool takeAllData(Cursor &cursor, Job &job)
{
    job.data.resize(job.items.size());
    for (Data &data : job.data) {
        if (!takeData(cursor, &data == &job.data.back(), data))
            return false;
    }
    return true;
}

std::optional<JobError> takeParametersAndData(Cursor &cursor, const JobHeader &header, Job &job)
{
    if (header.parameterLength == 0)
        return kInconsistentPdu;
    const size_t parameters = cursor.position();
    const uint8_t function = cursor.take8();
    if (function != uint8_t(Function::Read) && function != uint8_t(Function::Write))
        return kServiceNotImplemented;
    job.function = Function(function);
    const uint8_t count = cursor.take8();
    if (count == 0 || !takeItems(cursor, count, job) ||
        cursor.position() - parameters != header.parameterLength)
        return kInconsistentPdu;
    if (job.function == Function::Write && !takeAllData(cursor, job))
        return kInconsistentPdu;
    if (cursor.left() != 0)
        return kInconsistentPdu;
    return std::nullopt;
}

// The header and the parameters of an answer, which are alike for reads and writes.
Bytes answerHead(uint16_t reference, Function function, size_t items, size_t dataLength)
{
    Bytes pdu = {kProtocolId, kTypeAnswer, 0, 0};
    append16(pdu, reference);
    append16(pdu, 2);
    append16(pdu, static_cast<unsigned>(dataLength));
    append(pdu, {0, 0, uint8_t(function), static_cast<uint8_t>(items)});
    return pdu;
}

Bytes encodeItems(const std::vector<ReadResult> &results)
{
    Bytes bytes;
    for (const ReadResult &result : results) {
        bytes.push_back(result.code);
        bytes.push_back(result.data.transport);
        append16(bytes, result.data.length);
        append(bytes, result.data.bytes);
        if (&result != &results.back() && result.data.bytes.size() % 2 != 0)
            bytes.push_back(0);
    }
    return bytes;
}

} // namespace

Job decodeJob(const Bytes &pdu)
{
    Job job;
    Cursor cursor(pdu);
    const JobHeader header = takeHeader(cursor);
    job.reference = header.reference;
    if (header.protocol != kProtocolId || header.type != kTypeJob)
        job.error = kServiceNotImplemented;
    else if (!cursor.ok() || header.reserved != 0 ||
             cursor.left() != size_t(header.parameterLength) + header.dataLength)
        job.error = kInconsistentPdu;
    else
        job.error = takeParametersAndData(cursor, header, job);
    return job;
}

Bytes encodeReadAnswer(uint16_t reference, const std::vector<ReadResult> &results)
{
    const Bytes items = encodeItems(results);
    Bytes pdu = answerHead(reference, Function::Read, results.size(), items.size());
    append(pdu, items);
    return pdu;
}

Bytes encodeWriteAnswer(uint16_t reference, const Bytes &codes)
{
    Bytes pdu = answerHead(reference, Function::Write, codes.size(), codes.size());
    append(pdu, codes);
    return pdu;
}

Bytes encodeRefusal(uint16_t reference, const JobError &error)
{
    Bytes pdu = {kProtocolId, kTypeAcknowledge, 0, 0};
    append16(pdu, reference);
    append(pdu, {0, 0, 0, 0, error.errorClass, error.errorCode});
    return pdu;
}

} // namespace sim
