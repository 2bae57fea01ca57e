// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "sample_reads.h"

#include "commands.h"

namespace {

const char kMemory[] = "04 01 ff 04 00 20 11 22 33 44";
const char kOneByte[] = "04 01 ff 04 00 08 a5";
const char kTwoTimers[] = "04 01 ff 09 00 0a 02 00 00 12 34 00 00 00 56 78";
const char kTwoCounters[] = "04 01 ff 09 00 06 10 12 34 00 56 78";
const char kOneFastCounter[] = "04 01 ff 09 00 05 00 01 02 03 04";

const char kInvalid[] = "invalid response";
const char kInvalidMemory[] = "invalid response1"; // double words only

// clang-format off
const SampleRead kSampleReads[] = {
    {"bytes of VB100",      kByte,       "VB100",  4, kMemory,         "11223344",         kInvalid, false},
    {"block of VB100",      kBlock,      "VB100",  4, kMemory,         "11223344",         kInvalid, false},
    {"bytes of T37",        kByte,       "T37",    4, kTwoTimers,      "34127856",         kInvalid, false},
    {"bytes of C5",         kByte,       "C5",     4, kTwoCounters,    "34127856",         kInvalid, false},
    {"bytes of HC0",        kByte,       "HC0",    4, kOneFastCounter, "04030201",         kInvalid, false},
    {"words of VW100",      kWord,       "VW100",  2, kMemory,         "22114433",         kInvalid, false},
    {"words of T37",        kWord,       "T37",    2, kTwoTimers,      "34127856",         kInvalid, false},
    {"words of C5",         kWord,       "C5",     2, kTwoCounters,    "34127856",         kInvalid, false},
    {"words of HC0",        kWord,       "HC0",    2, kOneFastCounter, "04030201",         kInvalid, false},
    {"double word of VD100", kDoubleWord, "VD100", 1, kMemory,        "44332211",         kInvalidMemory, false},
    {"double word of T37",  kDoubleWord, "T37",    1, kTwoTimers,      "34127856",         kInvalid, false},
    {"double word of C5",   kDoubleWord, "C5",     1, kTwoCounters,    "34127856",         kInvalid, false},
    {"double word of HC0",  kDoubleWord, "HC0",    1, kOneFastCounter, "04030201",         kInvalid, false},
    {"bits of V10.0",       kBit,        "V10.0",  8, kOneByte,        "0100010000010001", kInvalid, false},
    {"bit block of V10.0",  kBitBlock,   "V10.0",  8, kOneByte,        "0100010000010001", kInvalid, false},
    {"bits of HC0",         kBit,        "HC0",    8, kOneByte,        "0100010000010001", kInvalid, false},
    {"bits of T37",         kBit,        "T37",    2, kTwoTimers,      "0100",             kInvalid, false},
    {"bits of C5",          kBit,        "C5",     2, kTwoCounters,    "0100",             kInvalid, true},
};
// clang-format on

} // namespace

CommunicatorCommand SampleRead::command() const
{
    return ::command(dataType, address, count);
}

QList<SampleRead> sampleReads()
{
    QList<SampleRead> reads;
    for (const SampleRead &read : kSampleReads)
        reads += read;
    return reads;
}

SampleRead sampleRead(const QString &name)
{
    for (const SampleRead &read : kSampleReads) {
        if (name == QLatin1String(read.name))
            return read;
    }
    qFatal("no sample read has the name %s", name.toLatin1().constData());
    return kSampleReads[0];
}
