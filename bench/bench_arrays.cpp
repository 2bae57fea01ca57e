// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The toolkit's conversions of whole arrays, as long as a frame can carry them. Beside byte order stands Qt's
// own byte swap into a new array, beside bits a plain loop over them.

#include "tools/bits.h"
#include "tools/byte_order.h"

#include <QByteArray>
#include <QtEndian>

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <iostream>
#include <string>

namespace {

constexpr int kBytes = 200;

QByteArray someBytes()
{
    QByteArray bytes;
    for (int i = 0; i < kBytes; ++i)
        bytes.append(static_cast<char>(i * 37));
    return bytes;
}

template <int kWidth> QByteArray byQt(const QByteArray &from)
{
    QByteArray to(from.size(), Qt::Uninitialized);
    qbswap<kWidth>(from.constData(), from.size() / kWidth, to.data());
    return to;
}

QByteArray bitByBit(const QByteArray &bits)
{
    QByteArray bytes(bits.size() * 8, Qt::Uninitialized);
    char *byte = bytes.data();
    for (int k = 0; k < bytes.size(); ++k)
        byte[k] = static_cast<char>(bits.at(k / 8) >> (k % 8) & 1);
    return bytes;
}

template <typename Convert> void time(benchmark::State &state, const QByteArray &bytes, Convert convert)
{
    for (auto _ : state) {
        const QByteArray *from = &bytes;
        benchmark::DoNotOptimize(from); // as if it came from elsewhere
        const QByteArray to = convert(*from);
        benchmark::DoNotOptimize(to.constData());
        benchmark::ClobberMemory();
    }
}

// Two ways to the same new array.
template <typename Toolkit, typename Other>
void compare(const std::string &name, const QByteArray &bytes, Toolkit toolkit, Other other)
{
    if (toolkit(bytes) != other(bytes)) {
        std::cerr << name << ": the results differ\n";
        std::exit(1);
    }
    benchmark::RegisterBenchmark((name + "/driver").c_str(),
                                 [=, &bytes](benchmark::State &state) { time(state, bytes, toolkit); });
    benchmark::RegisterBenchmark((name + "/floor").c_str(),
                                 [=, &bytes](benchmark::State &state) { time(state, bytes, other); });
}

const unsigned char *wire(const QByteArray &bytes)
{
    return reinterpret_cast<const unsigned char *>(bytes.constData());
}

} // namespace

int main(int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    const QByteArray bytes = someBytes();
    compare(
        "100 words from the wire", bytes,
        [](const QByteArray &from) { return fromBigEndianUShortArray(wire(from), kBytes / 2); }, byQt<2>);
    compare(
        "50 double words from the wire", bytes,
        [](const QByteArray &from) { return fromBigEndianULongArray(wire(from), kBytes / 4); }, byQt<4>);
    compare("100 words for the wire", bytes, toBigEndianUShortArray, byQt<2>);
    compare("50 double words for the wire", bytes, toBigEndianULongArray, byQt<4>);
    compare(
        "1600 bits to bytes", bytes,
        [](const QByteArray &bits) { return ExpandBitsToBytes(bits, 0, kBytes * 8); }, bitByBit);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
