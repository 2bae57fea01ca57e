// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Requests of every kind, from any address, count and data: a frame whose lengths, reference, item and check
// sum are right wherever the frame has room for them.
//
//    input := { kind(1) prefix(1) station(1) reference(2) address(4) count(2) size(1) data }

#include "fuzzing.h"

#include "simatic_s7_200_ppi/ppi_address.h"
#include "simatic_s7_200_ppi/ppi_request.h"

#include <new>

using fuzz::at;
using fuzz::require;
using fuzz::wordAt;

namespace {

const char *const kPrefixes[] = {"VB", "VW",  "VD",  "V", "IB", "QW", "MD", "SMB",
                                 "SW", "AIW", "AQW", "T", "C",  "HC", "X",  ""};

struct Asked
{
    QByteArray prefix;
    uint8_t station;
    unsigned address;
    uint16_t count;
    QByteArray data;
};

QByteArray build(int kind, unsigned short &reference, const Asked &asked)
{
    switch (kind) {
    case 0:
        return S7_200_PPIPackReadBytesReq(reference, asked.station, 0, asked.prefix, asked.address,
                                          asked.count);
    case 1:
        return S7_200_PPIPackReadMemoryReq(reference, asked.station, 0, asked.prefix, asked.address,
                                           asked.count * 4u);
    case 2:
        return S7_200_PPIPackReadObjectsReq(reference, asked.station, 0, asked.prefix, asked.address,
                                            asked.count);
    case 3:
        return S7_200_PPIPackWriteMemoryReq(reference, asked.station, 0, asked.prefix, asked.address,
                                            asked.data);
    case 4:
        return S7_200_PPIPackWriteTimersReq(reference, asked.station, 0, asked.address, asked.data);
    case 5:
        return S7_200_PPIPackWriteCountersReq(reference, asked.station, 0, asked.address, asked.data);
    default:
        return S7_200_PPIPackWriteBitsReq(reference, asked.station, 0, asked.prefix, asked.address,
                                          asked.count, asked.data);
    }
}

void checkFrame(const QByteArray &frame, uint8_t station, int reference, bool isWrite)
{
    const int size = int(frame.size());
    const int pduSize = size - 9;
    require(size >= 21 && at(frame, 0) == 0x68 && at(frame, 3) == 0x68 && at(frame, 1) == at(frame, 2) &&
                at(frame, 4) == station && at(frame, 5) == 0 && at(frame, 6) == 0x6c &&
                at(frame, size - 1) == 0x16,
            "a request is a frame for its station");
    require(at(frame, 1) == ((pduSize + 3) & 0xff), "the length counts stations, function code and PDU");
    require(at(frame, size - 2) == fuzz::sumOf(frame, 4, 4 + at(frame, 1)), "the check sum is right");
    const int parameters = wordAt(frame, 13);
    const int data = wordAt(frame, 15);
    require(at(frame, 7) == 0x32 && at(frame, 8) == 1 && wordAt(frame, 9) == 0 &&
                wordAt(frame, 11) == reference,
            "the header is a job's, with the next reference");
    require(10 + parameters + data == pduSize, "the header's lengths are those of what follows");
    require(at(frame, 17) == (isWrite ? 5 : 4), "the function is to read or to write");
    require(parameters == 2 + 12 * at(frame, 18), "there are as many items as the block says");
}

void checkItem(const QByteArray &frame, const QByteArray &prefix, unsigned address)
{
    const unsigned wire = S7_200_PPIWireAddress(prefix, address) & 0xffffff;
    const unsigned found = unsigned(at(frame, 28)) << 16 | unsigned(wordAt(frame, 29));
    require(at(frame, 19) == 0x12 && at(frame, 20) == 0x0a && at(frame, 21) == 0x10,
            "an item names a variable");
    require(wordAt(frame, 25) == (prefix.startsWith('V') ? 1 : 0), "only variable memory has a data block");
    require(found == wire, "the address is in bits, or the number of an object");
}

void fitData(const Asked &asked, int type)
{
    CommunicatorCommand command;
    command.dataType = type;
    command.count = asked.count % 300 - 2;
    const QByteArray fitted = DriverS7_200_PPIGetSafeData(command, asked.data);
    const int width = isWordCommand(command) ? 2 : isDoubleWordCommand(command) ? 4 : 0;
    require(fitted.size() == (width > 0 ? std::max(command.count, 0) * width : int(asked.data.size())),
            "data of words and double words are as many as the command counts");
    require(fitted.startsWith(asked.data.left(int(fitted.size()))), "fitted data begin as they did");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size)
{
    fuzz::Input input(bytes, size);
    while (!input.isAtEnd()) {
        const int kind = input.within(0, 6);
        Asked asked;
        asked.prefix = input.oneOf(kPrefixes);
        asked.station = input.byte();
        unsigned short reference = input.word();
        const int next = (reference + 1) & 0xffff;
        asked.address = input.longWord();
        asked.count = input.word();
        asked.data = input.counted();
        const QByteArray frame = build(kind, reference, asked);
        require(reference == next, "the reference is advanced by one");
        checkFrame(frame, asked.station, next, kind >= 3);
        if (kind != 4 && kind != 5 && kind != 6)
            checkItem(frame, asked.prefix, asked.address);
        fitData(asked, asked.station % 9);
    }
    return 0;
}
