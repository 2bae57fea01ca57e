// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "sample_writes.h"

#include "commands.h"
#include "hex.h"

namespace {

const char kTaken[] = "05 01 ff";
const char kThreeTaken[] = "05 03 ff ff ff";

// clang-format off
const SampleWrite kSampleWrites[] = {
    {"bytes of VB100",        kByte,       "VB100", 4, "11223344", kTaken},
    {"bytes of VW100",        kByte,       "VW100", 4, "11223344", kTaken},
    {"bytes of VD100",        kByte,       "VD100", 4, "11223344", kTaken},
    {"block of VB100",        kBlock,      "VB100", 4, "11223344", kTaken},
    {"bytes of T37",          kByte,       "T37",   2, "2c01",     kTaken},
    {"bytes of C5",           kByte,       "C5",    2, "0500",     kTaken},
    {"words of VW100",        kWord,       "VW100", 2, "34127856", kTaken},
    {"words of T37",          kWord,       "T37",   1, "2c01",     kTaken},
    {"words of C5",           kWord,       "C5",    1, "0500",     kTaken},
    {"double word of VD100",  kDoubleWord, "VD100", 1, "44332211", kTaken},
    {"double word of T37",    kDoubleWord, "T37",   1, "2c01e803", kTaken},
    {"double word of C5",     kDoubleWord, "C5",    1, "05000600", kTaken},
    {"bit of V10.3",          kBit,        "V10.3", 1, "01",       kTaken},
    {"bits of V10.6",         kBit,        "V10.6", 3, "010001",   kThreeTaken},
    {"bit block of Q0.0",     kBitBlock,   "Q0.0",  1, "01",       kTaken},
    {"bit of HC0",            kBit,        "HC0",   1, "01",       kTaken},
    {"bit of AIW0",           kBit,        "AIW0",  1, "01",       kTaken},
};
// clang-format on

} // namespace

CommunicatorCommand SampleWrite::command() const
{
    return ::command(dataType, address, count);
}

QByteArray SampleWrite::data() const
{
    return bytes(given);
}

bool SampleWrite::isOfBits() const
{
    return dataType == kBit || dataType == kBitBlock;
}

QList<SampleWrite> sampleWrites()
{
    QList<SampleWrite> writes;
    for (const SampleWrite &write : kSampleWrites)
        writes += write;
    return writes;
}

SampleWrite sampleWrite(const QString &name)
{
    for (const SampleWrite &write : kSampleWrites) {
        if (name == QLatin1String(write.name))
            return write;
    }
    qFatal("no sample write has the name %s", name.toLatin1().constData());
    return kSampleWrites[0];
}
