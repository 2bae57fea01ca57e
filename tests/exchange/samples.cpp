// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "samples.h"

#include "hex.h"
#include "outcome.h"

namespace {

const char kMemory[] = "04 01 ff 04 00 20 11 22 33 44";
const char kOneByte[] = "04 01 ff 04 00 08 a5";
const char kTwoTimers[] = "04 01 ff 09 00 0a 02 00 00 12 34 00 00 00 56 78";
const char kTwoCounters[] = "04 01 ff 09 00 06 10 12 34 00 56 78";
const char kOneFastCounter[] = "04 01 ff 09 00 05 00 01 02 03 04";
const char kEightBits[] = "0100010000010001";

const char kOneItem[] = "05 01 ff";
const char kThreeItems[] = "05 03 ff ff ff";

const char kInvalid[] = "invalid response";
const char kInvalid1[] = "invalid response1"; // reads of double words from memory, and writes

// clang-format off
const Sample kSamples[] = {
    {kRead,  kBytes,       "VB100", 4, "",         kMemory,         "11223344", kInvalid,  false},
    {kRead,  kBlock,       "VB100", 4, "",         kMemory,         "11223344", kInvalid,  false},
    {kRead,  kWords,       "VW100", 2, "",         kMemory,         "22114433", kInvalid,  false},
    {kRead,  kDoubleWords, "VD100", 1, "",         kMemory,         "44332211", kInvalid1, false},
    {kRead,  kBits,        "V10.0", 8, "",         kOneByte,        kEightBits, kInvalid,  false},
    {kRead,  kBitBlock,    "V10.0", 8, "",         kOneByte,        kEightBits, kInvalid,  false},
    {kRead,  kBytes,       "T37",   4, "",         kTwoTimers,      "34127856", kInvalid,  false},
    {kRead,  kWords,       "T37",   2, "",         kTwoTimers,      "34127856", kInvalid,  false},
    {kRead,  kDoubleWords, "T37",   1, "",         kTwoTimers,      "34127856", kInvalid,  false},
    {kRead,  kBits,        "T37",   2, "",         kTwoTimers,      "0100",     kInvalid,  false},
    {kRead,  kBytes,       "C5",    4, "",         kTwoCounters,    "34127856", kInvalid,  false},
    {kRead,  kWords,       "C5",    2, "",         kTwoCounters,    "34127856", kInvalid,  false},
    {kRead,  kDoubleWords, "C5",    1, "",         kTwoCounters,    "34127856", kInvalid,  false},
    {kRead,  kBits,        "C5",    2, "",         kTwoCounters,    "0100",     kInvalid,  true},
    {kRead,  kBytes,       "HC0",   4, "",         kOneFastCounter, "04030201", kInvalid,  false},
    {kRead,  kWords,       "HC0",   2, "",         kOneFastCounter, "04030201", kInvalid,  false},
    {kRead,  kDoubleWords, "HC0",   1, "",         kOneFastCounter, "04030201", kInvalid,  false},
    {kRead,  kBits,        "HC0",   8, "",         kOneByte,        kEightBits, kInvalid,  false},

    {kWrite, kBytes,       "VB100", 4, "11223344", kOneItem,        kTaken,     kInvalid1, false},
    {kWrite, kBytes,       "VW100", 4, "11223344", kOneItem,        kTaken,     kInvalid1, false},
    {kWrite, kBytes,       "VD100", 4, "11223344", kOneItem,        kTaken,     kInvalid1, false},
    {kWrite, kBlock,       "VB100", 4, "11223344", kOneItem,        kTaken,     kInvalid1, false},
    {kWrite, kWords,       "VW100", 2, "34127856", kOneItem,        kTaken,     kInvalid1, false},
    {kWrite, kDoubleWords, "VD100", 1, "44332211", kOneItem,        kTaken,     kInvalid1, false},
    {kWrite, kBits,        "V10.3", 1, "01",       kOneItem,        kTaken,     kInvalid1, false},
    {kWrite, kBits,        "V10.6", 3, "010001",   kThreeItems,     kTaken,     kInvalid1, false},
    {kWrite, kBitBlock,    "Q0.0",  1, "01",       kOneItem,        kTaken,     kInvalid1, false},
    {kWrite, kBytes,       "T37",   2, "2c01",     kOneItem,        kTaken,     kInvalid1, false},
    {kWrite, kWords,       "T37",   1, "2c01",     kOneItem,        kTaken,     kInvalid1, false},
    {kWrite, kDoubleWords, "T37",   1, "2c01e803", kOneItem,        kTaken,     kInvalid1, false},
    {kWrite, kBytes,       "C5",    2, "0500",     kOneItem,        kTaken,     kInvalid1, false},
    {kWrite, kWords,       "C5",    1, "0500",     kOneItem,        kTaken,     kInvalid1, false},
    {kWrite, kDoubleWords, "C5",    1, "05000600", kOneItem,        kTaken,     kInvalid1, false},
    {kWrite, kBits,        "HC0",   1, "01",       kOneItem,        kTaken,     kInvalid1, false},
    {kWrite, kBits,        "AIW0",  1, "01",       kOneItem,        kTaken,     kInvalid1, false},
};
// clang-format on

} // namespace

QByteArray Sample::name() const
{
    return QByteArray(operation == kRead ? "read " : "write ") + typeName(dataType) + " of " + address;
}

CommunicatorCommand Sample::command() const
{
    return ::command(dataType, address, count);
}

QByteArray Sample::data() const
{
    return bytes(given);
}

bool Sample::isBitWrite() const
{
    return operation == kWrite && (dataType == kBits || dataType == kBitBlock);
}

QList<Sample> samples()
{
    QList<Sample> list;
    for (const Sample &sample : kSamples)
        list += sample;
    return list;
}

Sample sample(const QString &name)
{
    for (const Sample &sample : kSamples) {
        if (name == QLatin1String(sample.name()))
            return sample;
    }
    qFatal("no sample has the name %s", name.toLatin1().constData());
    return kSamples[0];
}
