// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What the fuzzers share: their input, taken from its front on, so that an input can be written by hand; the
// properties that they assert; and frames whose lengths and check sums are mended, without which no mutation
// would get behind layer 2.

#ifndef FUZZ_FUZZING_H
#define FUZZ_FUZZING_H

#include <QByteArray>
#include <QMessageLogContext>
#include <QString>
#include <QtGlobal>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

namespace fuzz {

// Ends the run with a finding when a property does not hold.
inline void require(bool holds, const char *property)
{
    if (holds)
        return;
    fprintf(stderr, "does not hold: %s\n", property);
    abort();
}

// What is taken behind the end is zero or empty.
class Input
{
public:
    Input(const uint8_t *data, size_t size) : next(data), left(size) {}

    bool isAtEnd() const { return left == 0; }

    uint8_t byte()
    {
        if (left == 0)
            return 0;
        --left;
        return *next++;
    }

    // From the first to the last of them; 256 at most.
    int within(int first, int last) { return first + byte() % (last - first + 1); }

    bool flag() { return byte() & 1; }

    // Two and four bytes, most significant first.
    uint16_t word()
    {
        const int high = byte();
        return uint16_t(high << 8 | byte());
    }
    uint32_t longWord()
    {
        const uint32_t high = word();
        return high << 16 | word();
    }

    template <typename T, size_t kCount> const T &oneOf(const T (&choices)[kCount])
    {
        return choices[byte() % kCount];
    }

    QByteArray bytes(size_t most)
    {
        const size_t size = std::min(most, left);
        const QByteArray taken(reinterpret_cast<const char *>(next), int(size));
        next += size;
        left -= size;
        return taken;
    }

    // As many as the next byte says.
    QByteArray counted() { return bytes(byte()); }

    QByteArray rest() { return bytes(left); }

private:
    const uint8_t *next;
    size_t left;
};

inline QByteArray arrayOf(const uint8_t *data, size_t size)
{
    return QByteArray(reinterpret_cast<const char *>(data), int(size));
}

// Bytes with nothing behind them: AddressSanitizer reports the first one that is read beyond their end.
class ExactBytes
{
public:
    explicit ExactBytes(const QByteArray &bytes) : memory(new uint8_t[size_t(bytes.size())])
    {
        std::copy(bytes.begin(), bytes.end(), memory.get());
    }

    const uint8_t *data() const { return memory.get(); }

private:
    std::unique_ptr<uint8_t[]> memory;
};

inline int at(const QByteArray &bytes, int place)
{
    return uint8_t(bytes.at(place));
}

inline int wordAt(const QByteArray &bytes, int place)
{
    return at(bytes, place) << 8 | at(bytes, place + 1);
}

// The sum of the bytes from one place up to another, modulo 256.
inline int sumOf(const QByteArray &bytes, int from, int to)
{
    int sum = 0;
    for (int i = from; i < to; ++i)
        sum += at(bytes, i);
    return sum & 0xff;
}

// Debug messages and warnings go nowhere: each costs more time than an input.
inline void ignoreMessage(QtMsgType /*type*/, const QMessageLogContext & /*context*/,
                          const QString & /*text*/)
{
}

inline void silenceMessages()
{
    qInstallMessageHandler(ignoreMessage);
}

// Mends every frame that stands in the bytes and lies in them whole: its second length byte, its check sum
// and its end. A length that leads beyond the end of the bytes becomes the one that ends there.
inline void mendFrames(uint8_t *data, size_t size)
{
    for (size_t i = 0; i < size;) {
        size_t frame = 1;
        if (data[i] == 0x10 && i + 6 <= size) {
            frame = 6;
            data[i + 4] = uint8_t(data[i + 1] + data[i + 2] + data[i + 3]);
            data[i + 5] = 0x16;
        } else if (data[i] == 0x68 && i + 9 <= size) {
            const size_t most = std::min<size_t>(size - i - 6, 255);
            data[i + 1] = uint8_t(std::max<size_t>(std::min<size_t>(data[i + 1], most), 3));
            data[i + 2] = data[i + 1];
            data[i + 3] = 0x68;
            frame = size_t(data[i + 1]) + 6;
            uint8_t sum = 0;
            for (size_t counted = i + 4; counted < i + frame - 2; ++counted)
                sum = uint8_t(sum + data[counted]);
            data[i + frame - 2] = sum;
            data[i + frame - 1] = 0x16;
        }
        i += frame;
    }
}

} // namespace fuzz

#endif
