// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The pack language beside stores written by hand: a request header of ten bytes, an answer header of
// twelve.

#include "tools/pack.h"

#include <QtEndian>

#include <benchmark/benchmark.h>

namespace {

void packByLanguage(benchmark::State &state)
{
    unsigned char buffer[10];
    int fields[] = {0x32, 1, 0, 0x1234, 14, 0};
    for (auto _ : state) {
        benchmark::DoNotOptimize(fields); // as if they came from elsewhere
        DataPack(buffer, "CCnnnn", fields[0], fields[1], fields[2], fields[3], fields[4], fields[5]);
        benchmark::DoNotOptimize(buffer);
        benchmark::ClobberMemory();
    }
}

void packByHand(benchmark::State &state)
{
    unsigned char buffer[10];
    int fields[] = {0x32, 1, 0, 0x1234, 14, 0};
    for (auto _ : state) {
        benchmark::DoNotOptimize(fields);
        buffer[0] = static_cast<unsigned char>(fields[0]);
        buffer[1] = static_cast<unsigned char>(fields[1]);
        qToBigEndian(static_cast<quint16>(fields[2]), buffer + 2);
        qToBigEndian(static_cast<quint16>(fields[3]), buffer + 4);
        qToBigEndian(static_cast<quint16>(fields[4]), buffer + 6);
        qToBigEndian(static_cast<quint16>(fields[5]), buffer + 8);
        benchmark::DoNotOptimize(buffer);
        benchmark::ClobberMemory();
    }
}

struct Header
{
    unsigned char protocol, messageType, errorClass, errorCode;
    unsigned short reserved, reference, parameterLength, dataLength;
};

const unsigned char kAnswerHeader[] = {0x32, 3, 0, 0, 0x12, 0x34, 0, 2, 0, 8, 0, 0};

void unpackByLanguage(benchmark::State &state)
{
    Header header;
    for (auto _ : state) {
        DataUnpack(kAnswerHeader, "CCnnnnCC", &header.protocol, &header.messageType, &header.reserved,
                   &header.reference, &header.parameterLength, &header.dataLength, &header.errorClass,
                   &header.errorCode);
        benchmark::DoNotOptimize(header);
    }
}

void unpackByHand(benchmark::State &state)
{
    Header header;
    const unsigned char *bytes = kAnswerHeader;
    for (auto _ : state) {
        benchmark::DoNotOptimize(bytes);
        header.protocol = bytes[0];
        header.messageType = bytes[1];
        header.reserved = qFromBigEndian<quint16>(bytes + 2);
        header.reference = qFromBigEndian<quint16>(bytes + 4);
        header.parameterLength = qFromBigEndian<quint16>(bytes + 6);
        header.dataLength = qFromBigEndian<quint16>(bytes + 8);
        header.errorClass = bytes[10];
        header.errorCode = bytes[11];
        benchmark::DoNotOptimize(header);
    }
}

} // namespace

BENCHMARK(packByLanguage)->Name("pack a request header/driver");
BENCHMARK(packByHand)->Name("pack a request header/floor");
BENCHMARK(unpackByLanguage)->Name("unpack an answer header/driver");
BENCHMARK(unpackByHand)->Name("unpack an answer header/floor");

BENCHMARK_MAIN();
