// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "answer.h"

#include "hex.h"

namespace {

const int kUncountedBytes = 6; // of the frame by its length byte

}

Answer::Answer(const QString &item, int reference)
{
    const QByteArray parameters = bytes(item.toLatin1().constData());
    frame = bytes("68 00 00 68 00 02 08 32 03 00 00 00 00 00 02 00 00 00 00") + parameters + bytes("00 16");
    const int length = int(frame.size()) - kUncountedBytes;
    withByte(kLength, length).withByte(kLengthAgain, length);
    withWord(kReference, reference);
    withWord(kDataLength, int(parameters.size()) - 2);
    sealed();
}

Answer &Answer::withByte(int offset, int value)
{
    frame[offset] = char(value);
    return *this;
}

Answer &Answer::withWord(int offset, int value)
{
    return withByte(offset, value >> 8).withByte(offset + 1, value);
}

Answer &Answer::withCheckSum(int value)
{
    return withByte(int(frame.size()) - 2, value);
}

Answer &Answer::withEnd(int value)
{
    return withByte(int(frame.size()) - 1, value);
}

Answer &Answer::from(int station)
{
    return withByte(kSource, station).sealed();
}

Answer &Answer::shortBy(int count)
{
    frame.chop(count);
    return *this;
}

Answer &Answer::sealed()
{
    int sum = 0;
    for (int i = kDestination; i < int(frame.size()) - 2; ++i)
        sum += frame.at(i);
    return withCheckSum(sum);
}
