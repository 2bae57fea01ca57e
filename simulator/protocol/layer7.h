// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Jobs that a master sends and the answers to them, as bytes.
//
//    job          := 32 01 0000 reference(2) parameterLength(2) dataLength(2) parameters data
//    parameters   := function itemCount item...              function: 04 read, 05 write
//    item         := 12 0A 10 transport count(2) db(2) area address(3)
//    write data   := entry...                                none in a read job
//    entry        := 00 dataTransport length(2) data fill    fill: 00 behind odd data, not behind the last
//
//    answer       := 32 03 0000 reference(2) 0002 dataLength(2) 00 00 function itemCount data
//    read data    := code dataTransport length(2) data fill  per item; a refused item is code 00 0000
//    write data   := code                                    per item
//    refusal      := 32 02 0000 reference(2) 0000 0000 errorClass errorCode
//
//    length       of the data: in bits (dataTransport 03 and 04) or in bytes (09)
//    address      byte * 8 + bit, or the number of a timer, counter or high-speed counter

#ifndef SIMULATOR_PROTOCOL_LAYER7_H
#define SIMULATOR_PROTOCOL_LAYER7_H

#include "simulator/protocol/bytes.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace sim {

// What a job asks for.
enum class Function : uint8_t { Read = 0x04, Write = 0x05 };

// The kinds of elements that an item may ask for.
constexpr uint8_t kTransportBit = 0x01;
constexpr uint8_t kTransportByte = 0x02;
constexpr uint8_t kTransportWord = 0x04;
constexpr uint8_t kTransportDWord = 0x06;
constexpr uint8_t kTransportCounter = 0x1E;
constexpr uint8_t kTransportTimer = 0x1F;
constexpr uint8_t kTransportHighSpeedCounter = 0x20;

// The kinds of data in an answer or a write job. They say how its length counts.
constexpr uint8_t kDataBit = 0x03;     // one byte per bit, length in bits
constexpr uint8_t kDataBytes = 0x04;   // length in bits
constexpr uint8_t kDataRecords = 0x09; // length in bytes

// The return codes of an item.
constexpr uint8_t kHardwareFault = 0x01;
constexpr uint8_t kIllegalAccess = 0x03;
constexpr uint8_t kInvalidAddress = 0x05;
constexpr uint8_t kUnsupportedType = 0x06;
constexpr uint8_t kNoSuchObjectOrLength = 0x0A;
constexpr uint8_t kSuccess = 0xFF;

// One item of a job: so many elements of a kind, from an address of an area on.
struct Item
{
    uint8_t transport = 0;
    uint16_t count = 0;
    uint16_t db = 0;
    uint8_t area = 0;
    uint32_t address = 0;
};

// The data of one item, without the fill byte.
struct Data
{
    uint8_t transport = 0;
    uint16_t length = 0;
    Bytes bytes;
};

// Why a job is refused as a whole; the two bytes go into the head of the refusal.
struct JobError
{
    uint8_t errorClass = 0;
    uint8_t errorCode = 0;
};

// The PDU is no job, or neither a read nor a write.
constexpr JobError kServiceNotImplemented = {0x81, 0x04};

// Its lengths and counts contradict each other, or a field has a value that it cannot have.
constexpr JobError kInconsistentPdu = {0x85, 0x00};

struct Job
{
    uint16_t reference = 0; // the master's number of the job, as far as the PDU holds one, even in a bad job
    std::optional<JobError> error; // when there is one, nothing below it means anything
    Function function = Function::Read;
    std::vector<Item> items;
    std::vector<Data> data; // one per item of a write job
};

// Reads a PDU that came from a master. Whatever stands in it, the outcome is a job, good or with an error.
Job decodeJob(const Bytes &pdu);

// What became of one item of a read job: its data, or the code that refuses it.
struct ReadResult
{
    uint8_t code = kSuccess;
    Data data;
};

// The size of a read answer with that many items, their data not counted.
constexpr size_t readAnswerSize(size_t items)
{
    return 14 + 4 * items;
}

// The PDUs of the answers: one result, or return code, per item; the error of a job that is refused as a
// whole.
Bytes encodeReadAnswer(uint16_t reference, const std::vector<ReadResult> &results);
Bytes encodeWriteAnswer(uint16_t reference, const Bytes &codes);
Bytes encodeRefusal(uint16_t reference, const JobError &error);

} // namespace sim

#endif
