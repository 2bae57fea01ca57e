// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Bytes, byte order, sizes and check sums of the toolkit: what is turned round twice is as before, and what
// is fitted begins as it did.
//
//    input := type(1) count(4) bytes

#include "fuzzing.h"

#include "communicator_command.h"
#include "tools/byte_order.h"
#include "tools/bytes.h"
#include "tools/checksum.h"
#include "tools/diagnostics.h"
#include "tools/sizes.h"

#include <climits>

#include <unistd.h>

using fuzz::at;
using fuzz::require;

namespace {

const uint8_t *unsignedBytes(const QByteArray &bytes)
{
    return reinterpret_cast<const uint8_t *>(bytes.constData());
}

void useValues(const QByteArray &bytes)
{
    const unsigned value = QByteArrayToInt(bytes);
    require(intToByteArray(int(value)).startsWith(bytes.left(4)), "4 bytes are a number and back");
    require(QByteArrayToWord(bytes) == (value & 0xffff), "2 bytes are the low ones of 4");
    require(wordToByteArray(QByteArrayToWord(bytes)) == shortToByteArray(QByteArrayToShort(bytes)),
            "a sign changes no byte");
    require(reverseArray(reverseArray(bytes)) == bytes, "what is turned round twice is as before");
}

void turn(const QByteArray &bytes)
{
    const int size = int(bytes.size());
    const fuzz::ExactBytes exact(bytes);
    const QByteArray words = fromBigEndianUShortArray(exact.data(), size / 2);
    const QByteArray longWords = fromBigEndianULongArray(exact.data(), size / 4);
    require(toBigEndianUShortArray(words) == bytes.left(size / 2 * 2),
            "words come from the wire and go back");
    require(toBigEndianULongArray(longWords) == bytes.left(size / 4 * 4), "double words likewise");
    require(toBigEndianUShortArray(bytes).size() == (size + 1) / 2 * 2, "the last word is completed");
    require(toBigEndianULongArray(bytes).size() == (size + 3) / 4 * 4, "the last double word is completed");

    QByteArray inPlace = bytes;
    toLittleEndianUShortArray(inPlace);
    require(inPlace.left(size / 2 * 2) == words && inPlace.mid(size / 2 * 2) == bytes.mid(size / 2 * 2),
            "words are turned in place");
    inPlace = bytes;
    toLittleEndianULongArray(inPlace);
    require(inPlace.left(size / 4 * 4) == longWords, "double words are turned in place");

    QByteArray appended = bytes;
    appendBigEndianUShort(appended, QByteArrayToWord(bytes));
    require(isBigEndian() && appended.startsWith(bytes) &&
                appended.mid(size) == reverseArray(wordToByteArray(QByteArrayToWord(bytes))),
            "a word is appended high byte first");
}

void rotate(QByteArray bytes)
{
    const QByteArray before = bytes;
    const int n = int(bytes.size()) / 3;
    const int m = int(bytes.size()) - n;
    RotateArray(reinterpret_cast<unsigned char *>(bytes.data()), n, m);
    require(bytes == before.mid(n) + before.left(n), "the first elements end up behind the others");
}

int lengthOf(int type, qint64 count)
{
    switch (type) {
    case kBits:
    case kBitBlock:
        return int((count + 7) / 8);
    case kBytes:
    case kBlock:
        return int(count);
    case kWords:
    case kDoubleWords:
    case kQuadWords:
        return int(std::min<qint64>(count * (2 << (type - kWords)), INT_MAX));
    default:
        return 0;
    }
}

void fit(const QByteArray &bytes, int type, int count)
{
    CommunicatorCommand command;
    command.dataType = type;
    command.count = count;
    require(GetSafeDataLen(command) == lengthOf(type, std::max(count, 0)),
            "a length is that of the command's data");
    command.count = count % 5000;
    const QByteArray fitted = ToSafeData(command, bytes);
    require(fitted.size() == GetSafeDataLen(command) && fitted.startsWith(bytes.left(int(fitted.size()))),
            "data are fitted to the command");

    QByteArray bits = bytes;
    FitBitArray(bits, command.count);
    require(bits.size() == (std::max(command.count, 0) + 7) / 8, "bits are fitted to whole bytes");

    const int size = int(bytes.size());
    require(To16bitsData(bytes).size() == (size + 1) / 2 * 2, "data are filled to words");
    require(To32bitsData(bytes).size() == (size + 3) / 4 * 4, "data are filled to double words");
    require(To64bitsData(bytes).size() == (size % 8 == 0 ? size : size + std::max(4 - size % 8, 0)),
            "data are filled to 4 bytes past quad words");
}

void countUnits(unsigned start, unsigned count)
{
    const quint64 bits = quint64(start) + count;
    require(NumOfBitsToNumOfBytes(start, count) == unsigned((bits + 7) / 8), "bits are in so many bytes");
    require(NumOfBitsToNumOfWords(start, count) == unsigned((bits + 15) / 16), "bits are in so many words");
    require(NumOfBitsToNumOfDWords(start, count) == unsigned((bits + 31) / 32),
            "bits are in so many double words");
    require(NumOfBytesToNumOfWords(count) == unsigned((quint64(count) + 1) / 2),
            "bytes are in so many words");
    require(NumOfBytesToNumOfDWords(count) == unsigned((quint64(count) + 3) / 4),
            "bytes are in so many double words");
    require(NumOfBytesToNumOfQuadWords(count) == unsigned((quint64(count) + 7) / 8),
            "bytes are in so many quad words");
}

void sum(const QByteArray &bytes)
{
    const int size = int(bytes.size());
    const uint8_t *data = unsignedBytes(bytes);
    require(UInt8CheckSum(data, size) == fuzz::sumOf(bytes, 0, size), "the sum is that of the bytes");
    require(uint8_t(UShortCheckSum(data, size)) == UInt8CheckSum(data, size), "16 bits of it hold 8");
    require(UInt8CheckSum(nullptr, size) == 0 && CRC16Calculate(data, -1) == 0, "nothing has the sum 0");
    const QByteArray twice = bytes + bytes;
    require(XorUInt8CheckSum(unsignedBytes(twice), 2 * size) == 0, "bytes that come twice cancel out");

    const unsigned short crc = CRC16Calculate(data, size);
    const QByteArray closed = bytes + wordToByteArray(crc);
    require(CRC16Calculate(unsignedBytes(closed), size + 2) == 0, "a CRC closes its bytes");
}

// The CRC of bytes with their own CRC behind them is 0.
template <typename Crc>
void close(const QByteArray &bytes, Crc (*update)(Crc, unsigned char), bool isReflected)
{
    Crc crc = 0;
    for (const char byte : bytes)
        crc = update(crc, uint8_t(byte));
    const Crc end = crc;
    for (size_t i = 0; i < sizeof end; ++i)
        crc = update(crc, uint8_t(end >> (8 * (isReflected ? i : sizeof end - 1 - i))));
    require(crc == 0, "a CRC closes its bytes");
}

// Sick's CRC has the byte before in it, and is linear.
void closeSick(const QByteArray &bytes)
{
    unsigned short crc = 0;
    uint8_t before = 0;
    for (const char next : bytes) {
        const uint8_t byte = uint8_t(next);
        const unsigned short alone = update_crc_sick(crc, 0, 0);
        require(update_crc_sick(crc, byte, before) == (alone ^ (before << 8 | byte)),
                "each byte counts by itself");
        crc = update_crc_sick(crc, byte, before);
        before = byte;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    fuzz::Input input(data, size);
    const int type = input.within(0, 9) - 1;
    const unsigned number = input.longWord();
    const QByteArray bytes = input.rest();
    useValues(bytes);
    turn(bytes);
    rotate(bytes);
    fit(bytes, type, int(number));
    countUnits(number, number ^ 0x55555555u);
    sum(bytes);
    close(bytes, update_crc_ccitt, false);
    close(bytes, update_crc_16, true);
    close(bytes, update_crc_kermit, true);
    close(bytes, update_crc_dnp, true);
    close(bytes, update_crc_32, true);
    closeSick(bytes);
    require(dumpByteArray(bytes).count("0X") >= bytes.size() && EmptyPackageSizeList().isEmpty(),
            "every byte is in the text");
    require(ProcessIsRunning(getpid()), "this process runs");
    require(!ProcessIsRunning(1LL << 40 | number), "a number beyond those of processes is none");
    return 0;
}
