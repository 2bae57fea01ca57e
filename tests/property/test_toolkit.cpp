// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The toolkit against plain loops: a bit array is a row of booleans, a number is what its digits say, a CRC
// is the remainder of a division.

#include "lots.h"

#include "test_class.h"
#include "tools/address_text.h"
#include "tools/bits.h"
#include "tools/byte_order.h"
#include "tools/bytes.h"
#include "tools/checksum.h"
#include "tools/diagnostics.h"
#include "tools/pack.h"
#include "tools/sizes.h"
#include "tools/tx_package.h"

#include <QtTest>

#include <algorithm>
#include <climits>
#include <numeric>
#include <vector>

class TestToolkit : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { lots::useSeedOfRun(); }
    void bitsOfValues();
    void bitsOfArrays();
    void copiedBits();
    void expandedBits();
    void clearedBits();
    void shiftedBits();
    void rotatedAndReversedBytes();
    void valuesOfBytes();
    void elementsForTheWire();
    void elementsFromTheWire();
    void sizesOfBitsAndBytes();
    void fittedArrays();
    void hexadecimalTexts();
    void packedFormats();
    void brokenFormats();
    void sums();
    void crcsAreRemainders();
    void sickIsASumOfShiftedWords();
    void packages();
    void packagesWithAnySizes();
    void dumps();
};

namespace {

typedef std::vector<bool> Bits;

const unsigned char *constData(const QByteArray &array)
{
    return reinterpret_cast<const unsigned char *>(array.constData());
}

int byteAt(const QByteArray &array, int i)
{
    return i < int(array.size()) ? static_cast<unsigned char>(array.at(i)) : 0;
}

// Bit by bit, the lowest of the first byte in front.
Bits bitsOf(const QByteArray &array)
{
    Bits bits;
    for (int i = 0; i < int(array.size()); ++i) {
        for (int weight = 1; weight < 0x100; weight *= 2)
            bits.push_back(byteAt(array, i) / weight % 2 == 1);
    }
    return bits;
}

bool bitOf(const Bits &bits, int i)
{
    return i >= 0 && i < int(bits.size()) && bits[size_t(i)];
}

// Whole bytes for a row that has to hold that many bits.
void grow(Bits &bits, int atLeast)
{
    const auto whole = size_t((atLeast + 7) / 8 * 8);
    if (bits.size() < whole)
        bits.resize(whole);
}

QByteArray wholeElements(QByteArray array, int width)
{
    while (array.size() % width != 0)
        array.append('\0');
    return array;
}

// Each byte at the mirrored place of its element; an incomplete element stays.
QByteArray mirrored(const QByteArray &array, int width)
{
    QByteArray turned = array;
    const int whole = int(array.size()) / width * width;
    for (int i = 0; i < whole; ++i)
        turned[i] = array.at(i / width * width + width - 1 - i % width);
    return turned;
}

// The long division of a message, start added to its front, by a polynomial of that width. All numbers are
// written most significant bit first, whatever the order on the line.
class Division
{
public:
    Division(int bits, uint64_t divisor, bool lowestBitFirst)
        : width(bits), polynomial(divisor), reflects(lowestBitFirst)
    {
    }

    // In the form in which the steps keep the CRC.
    uint64_t remainder(const QByteArray &message, uint64_t start) const
    {
        Bits dividend = inOrderOfTheLine(message);
        dividend.insert(dividend.end(), size_t(width), false);
        add(dividend, 0, turned(start));
        for (size_t i = 0; i < dividend.size() - size_t(width); ++i) {
            if (dividend[i])
                add(dividend, i + 1, polynomial);
        }
        uint64_t rest = 0;
        for (size_t i = dividend.size() - size_t(width); i < dividend.size(); ++i)
            rest = rest * 2 + (dividend[i] ? 1 : 0);
        return turned(rest);
    }

private:
    Bits inOrderOfTheLine(const QByteArray &message) const
    {
        Bits bits = bitsOf(message);
        for (auto byte = bits.begin(); !reflects && byte != bits.end(); byte += 8)
            std::reverse(byte, byte + 8);
        return bits;
    }

    void add(Bits &dividend, size_t place, uint64_t number) const
    {
        for (int i = 0; i < width; ++i) {
            const bool bit = (number >> (width - 1 - i) & 1) != 0;
            dividend[place + size_t(i)] = dividend[place + size_t(i)] != bit;
        }
    }

    uint64_t turned(uint64_t value) const
    {
        uint64_t mirror = 0;
        for (int i = 0; reflects && i < width; ++i)
            mirror = mirror * 2 + (value >> i & 1);
        return reflects ? mirror : value;
    }

    int width;
    uint64_t polynomial;
    bool reflects;
};

template <typename Crc> uint64_t chained(Crc (*step)(Crc, unsigned char), Crc crc, const QByteArray &message)
{
    for (int i = 0; i < int(message.size()); ++i)
        crc = step(crc, static_cast<unsigned char>(byteAt(message, i)));
    return crc;
}

// x times the polynomial, modulo x^16 + x^15 + x^2 + 1.
uint32_t timesX(uint32_t polynomial)
{
    return polynomial & 0x8000 ? (polynomial * 2 ^ 0x18005) : polynomial * 2;
}

// A byte of a message and the one before it as a 16-bit number; 0 stands before the first.
uint32_t pairAt(const QByteArray &message, int i)
{
    return uint32_t((i > 0 ? byteAt(message, i - 1) * 0x100 : 0) + byteAt(message, i));
}

QByteArray twoDigits(int value)
{
    return QByteArray::number(value + 0x100, 16).mid(1).toUpper();
}

// The bytes from start on that the frame has, one by one.
QByteArray partOf(const QByteArray &frame, long long start, long long size)
{
    QByteArray part;
    for (int i = 0; i < int(frame.size()); ++i) {
        if (i >= start && i < start + size)
            part.append(frame.at(i));
    }
    return part;
}

} // namespace

void TestToolkit::bitsOfValues()
{
    QVERIFY(rc::check("a bit is set, cleared and seen where its power of two is", [] {
        const auto value = *lots::doubleWord();
        const auto n = static_cast<unsigned short>(*rc::gen::inRange(0, 70));
        const uint64_t power = n < 64 ? uint64_t(1) << n : 0;
        const auto byte = static_cast<unsigned char>(value);
        const auto word = static_cast<unsigned short>(value);
        RC_ASSERT(setBit(byte, n) == static_cast<unsigned char>(byte | power));
        RC_ASSERT(setBit(word, n) == static_cast<unsigned short>(word | power));
        RC_ASSERT(setBit(value, n) == static_cast<unsigned int>(value | power));
        RC_ASSERT(clearBit(byte, n) == static_cast<unsigned char>(byte & ~power));
        RC_ASSERT(clearBit(word, n) == static_cast<unsigned short>(word & ~power));
        RC_ASSERT(clearBit(value, n) == static_cast<unsigned int>(value & ~power));
        RC_ASSERT(getBit(byte, n) == ((byte & power) != 0));
        RC_ASSERT(getBit(word, n) == ((word & power) != 0));
        RC_ASSERT(getBit(value, n) == ((value & power) != 0));
    }));
}

void TestToolkit::bitsOfArrays()
{
    QVERIFY(rc::check("a bit of an array is one of a row of booleans", [] {
        QByteArray array = *lots::bytes(20);
        const int i = *rc::gen::inRange(-20, 220);
        const bool on = *rc::gen::arbitrary<bool>();
        Bits row = bitsOf(array);
        RC_ASSERT(getBit(array, i) == bitOf(row, i));
        RC_ASSERT(getBitData(array) == bitOf(row, 0));
        setBit(array, i, on);
        if (i >= 0) {
            grow(row, i + 1);
            row[size_t(i)] = on;
        }
        RC_ASSERT(bitsOf(array) == row);
    }));
}

void TestToolkit::copiedBits()
{
    QVERIFY(rc::check("copied bits stand where they were sent, all others stay", [] {
        QByteArray dest = *lots::bytes(12);
        QByteArray src = *lots::bytes(12);
        const int destStart = *rc::gen::inRange(-20, 120);
        const int count = *rc::gen::inRange(-3, 120);
        const Bits from = bitsOf(src);
        Bits row = bitsOf(dest);
        for (int k = std::max(0, -destStart); k < count; ++k) {
            grow(row, destStart + k + 1);
            row[size_t(destStart + k)] = bitOf(from, k);
        }
        CopyBits(dest, src, destStart, count);
        RC_ASSERT(bitsOf(dest) == row);
        RC_ASSERT(bitsOf(src) == from);
    }));
}

void TestToolkit::expandedBits()
{
    QVERIFY(rc::check("an expanded bit is a byte of 1 or 0", [] {
        const QByteArray array = *lots::bytes(12);
        const auto start = static_cast<unsigned short>(*rc::gen::inRange(0, 120));
        const int count = *rc::gen::inRange(-3, 60);
        const Bits row = bitsOf(array);
        const QByteArray expanded = ExpandBitsToBytes(array, start, count);
        RC_ASSERT(int(expanded.size()) == std::max(count, 0));
        for (int k = 0; k < count; ++k)
            RC_ASSERT(byteAt(expanded, k) == (bitOf(row, start + k) ? 1 : 0));
    }));
}

void TestToolkit::clearedBits()
{
    QVERIFY(rc::check("bits are cleared in the byte that is only partly wanted", [] {
        QByteArray array = *lots::bytes(12);
        const int nbits = *rc::gen::inRange(-20, 120);
        Bits row = bitsOf(array);
        for (int i = nbits; nbits > 0 && i % 8 != 0 && i < int(row.size()); ++i)
            row[size_t(i)] = false;
        clearUnnecessaryBits(array, nbits);
        RC_ASSERT(bitsOf(array) == row);
    }));
}

void TestToolkit::shiftedBits()
{
    QVERIFY(rc::check("bits move down within the bytes that stay, whole bytes go to the end", [] {
        QByteArray array = *lots::bytes(12);
        const int n = *rc::gen::inRange(-10, 120);
        const int moved = n / 8 * 8;
        const Bits before = bitsOf(array);
        const int size = int(before.size());
        Bits row = before;
        for (int i = 0; n > 0 && moved < size && i < size; ++i) {
            const bool stays = i < size - moved;
            row[size_t(i)] = bitOf(before, stays ? i + n : i - (size - moved));
        }
        RightShiftNBits(array, n);
        RC_ASSERT(bitsOf(array) == row);
    }));
}

void TestToolkit::rotatedAndReversedBytes()
{
    QVERIFY(rc::check("rotating is cutting and joining, reversing is reading backwards", [] {
        const QByteArray array = *lots::bytes(30);
        const int size = int(array.size());
        const int n = *rc::gen::inRange(0, size + 1);
        QByteArray rotated = array;
        RotateArray<unsigned char>(reinterpret_cast<unsigned char *>(rotated.data()), n, size - n);
        RC_ASSERT(rotated == array.mid(n) + array.left(n));
        QByteArray reversed;
        for (int i = size - 1; i >= 0; --i)
            reversed.append(array.at(i));
        RC_ASSERT(reverseArray(array) == reversed);
    }));
}

void TestToolkit::valuesOfBytes()
{
    QVERIFY(rc::check("a value is its bytes, the lowest first, and back", [] {
        const QByteArray array = *lots::bytes(6);
        const int word = byteAt(array, 0) + byteAt(array, 1) * 0x100;
        const uint32_t value =
            uint32_t(word) + uint32_t(byteAt(array, 2)) * 0x10000u + uint32_t(byteAt(array, 3)) * 0x1000000u;
        RC_ASSERT(QByteArrayToInt(array) == value);
        RC_ASSERT(int(QByteArrayToWord(array)) == word);
        RC_ASSERT(int(QByteArrayToShort(array)) == (word < 0x8000 ? word : word - 0x10000));
        const QByteArray filled = (array + QByteArray(4, '\0')).left(4);
        RC_ASSERT(intToByteArray(int(value)) == filled);
        RC_ASSERT(wordToByteArray(static_cast<unsigned short>(word)) == filled.left(2));
        RC_ASSERT(shortToByteArray(static_cast<short>(word)) == filled.left(2));
        QByteArray appended = array;
        appendBigEndianUShort(appended, static_cast<unsigned short>(word));
        RC_ASSERT(appended == array + mirrored(filled.left(2), 2));
    }));
}

void TestToolkit::elementsForTheWire()
{
    QVERIFY(rc::check("each element is mirrored, an incomplete one filled, or left when in place", [] {
        const QByteArray array = *lots::bytes(30);
        RC_ASSERT(toBigEndianUShortArray(array) == mirrored(wholeElements(array, 2), 2));
        RC_ASSERT(toBigEndianULongArray(array) == mirrored(wholeElements(array, 4), 4));
        QByteArray words = array;
        toLittleEndianUShortArray(words);
        RC_ASSERT(words == mirrored(array, 2));
        QByteArray doubleWords = array;
        toLittleEndianULongArray(doubleWords);
        RC_ASSERT(doubleWords == mirrored(array, 4));
    }));
}

void TestToolkit::elementsFromTheWire()
{
    QVERIFY(rc::check("as many elements as are asked for, each mirrored", [] {
        const QByteArray array = *lots::bytes(40);
        const int offset = *rc::gen::inRange(0, int(array.size()) + 1);
        const int left = int(array.size()) - offset;
        const int words = *rc::gen::inRange(-1, left / 2 + 1);
        const int doubleWords = *rc::gen::inRange(-1, left / 4 + 1);
        RC_ASSERT(fromBigEndianUShortArray(constData(array) + offset, words) ==
                  mirrored(array.mid(offset, std::max(words, 0) * 2), 2));
        RC_ASSERT(fromBigEndianULongArray(constData(array) + offset, doubleWords) ==
                  mirrored(array.mid(offset, std::max(doubleWords, 0) * 4), 4));
    }));
}

void TestToolkit::sizesOfBitsAndBytes()
{
    QVERIFY(rc::check("no unit less than needed, and none more", [] {
        const auto start = *lots::doubleWord();
        const auto count = *lots::doubleWord();
        const uint64_t end = uint64_t(start) + count;
        const auto justHolds = [](uint64_t units, uint64_t width, uint64_t amount) {
            return units * width >= amount && units * width < amount + width;
        };
        RC_ASSERT(justHolds(NumOfBitsToNumOfBytes(start, count), 8, end));
        RC_ASSERT(justHolds(NumOfBitsToNumOfWords(start, count), 16, end));
        RC_ASSERT(justHolds(NumOfBitsToNumOfDWords(start, count), 32, end));
        RC_ASSERT(justHolds(NumOfBytesToNumOfWords(count), 2, count));
        RC_ASSERT(justHolds(NumOfBytesToNumOfDWords(count), 4, count));
        RC_ASSERT(justHolds(NumOfBytesToNumOfQuadWords(count), 8, count));
    }));
}

void TestToolkit::fittedArrays()
{
    QVERIFY(rc::check("arrays are cut, or filled with zeros", [] {
        const QByteArray array = *lots::bytes(40);
        const QByteArray filled = array + QByteArray(96, '\0');
        RC_ASSERT(To16bitsData(array) == wholeElements(array, 2));
        RC_ASSERT(To32bitsData(array) == wholeElements(array, 4));
        RC_ASSERT(To64bitsData(array) == (array.size() % 8 < 4 ? wholeElements(array, 4) : array));

        const int nbits = *rc::gen::inRange(-9, 64);
        QByteArray bits = array;
        FitBitArray(bits, nbits);
        RC_ASSERT(bits == filled.left(nbits > 0 ? (nbits + 7) / 8 : 0));

        CommunicatorCommand command;
        command.dataType = *rc::gen::inRange(-1, 9);
        command.count = *rc::gen::inRange(-3, 12);
        const int n = std::max(command.count, 0);
        const int lengths[] = {(n + 7) / 8, n, n * 2, n * 4, n * 8, n, (n + 7) / 8};
        const int length =
            command.dataType >= kBits && command.dataType <= kBitBlock ? lengths[command.dataType] : 0;
        RC_ASSERT(GetSafeDataLen(command) == length);
        RC_ASSERT(ToSafeData(command, array) == filled.left(length));
    }));
}

void TestToolkit::hexadecimalTexts()
{
    QVERIFY(rc::check("what was written is read back, as far as the length goes", [] {
        const QByteArray text = QByteArray::number(*lots::doubleWord(), 16);
        const int length = *rc::gen::inRange(0, int(text.size()) + 3);
        const unsigned int value = text.left(length).toUInt(nullptr, 16);
        RC_ASSERT(HexToUInt(text.constData(), length) == value);
        RC_ASSERT(HexToUInt(text.toUpper().constData(), length) == value);
        RC_ASSERT(HexToUInt(("0x" + text).constData(), length + 2) == value);
    }));
}

void TestToolkit::packedFormats()
{
    QVERIFY(rc::check("what was packed is unpacked, single and counted, in both byte orders", [] {
        const int value = int(*lots::doubleWord());
        const int word = *lots::word();
        const QByteArray words = wholeElements(*lots::bytes(40) + '\1', 4);
        const QByteArray two = QByteArray::number(int(words.size()) / 2);
        const QByteArray four = QByteArray::number(int(words.size()) / 4);
        const QByteArray form = "CnvNxV" + two + 'n' + two + 'v' + four + 'N' + four + "VC";
        const char *format = form.constData();
        const char *data = words.constData();
        const QByteArray low = wordToByteArray(static_cast<unsigned short>(word));
        const QByteArray expected = intToByteArray(value).left(1) + mirrored(low, 2) + low +
                                    mirrored(intToByteArray(value), 4) + '\0' + intToByteArray(value) +
                                    mirrored(words, 2) + words + mirrored(words, 4) + words + low.left(1);
        const int size = int(expected.size());
        RC_ASSERT(ByteArrayPack(format, value, word, word, value, value, data, data, data, data, word) ==
                  expected);
        QByteArray buffer(size, '\x55');
        RC_ASSERT(DataPack(reinterpret_cast<unsigned char *>(buffer.data()), format, value, word, word, value,
                           value, data, data, data, data, word) == size);
        RC_ASSERT(buffer == expected);

        unsigned char bytes[2] = {0, 0};
        quint16 shorts[2] = {0, 0};
        quint32 ints[2] = {0, 0};
        std::vector<QByteArray> arrays(4, QByteArray(words.size(), '\x55'));
        RC_ASSERT(DataUnpack(constData(expected), format, &bytes[0], &shorts[0], &shorts[1], &ints[0],
                             &ints[1], arrays[0].data(), arrays[1].data(), arrays[2].data(), arrays[3].data(),
                             &bytes[1]) == size);
        RC_ASSERT(int(bytes[0]) == (value & 0xFF));
        RC_ASSERT(int(bytes[1]) == (word & 0xFF));
        RC_ASSERT(int(shorts[0]) == word);
        RC_ASSERT(int(shorts[1]) == word);
        RC_ASSERT(int(ints[0]) == value);
        RC_ASSERT(int(ints[1]) == value);
        for (const QByteArray &array : arrays)
            RC_ASSERT(array == words);
    }));
}

void TestToolkit::brokenFormats()
{
    QVERIFY(rc::check("an error has its own result in each of the three", [] {
        const auto good = *rc::gen::container<std::string>(rc::gen::element('x', 'X'));
        const auto letter = *rc::gen::suchThat(rc::gen::inRange(1, 256), [](int code) {
            return std::string("0123456789CcnSsvNIiLlVxX").find(char(code)) == std::string::npos;
        });
        const bool isCounted = *rc::gen::arbitrary<bool>();
        const std::string format = good + (isCounted ? "7" : "") + char(letter);
        QByteArray buffer(int(good.size()), '\x55');
        unsigned char *place = reinterpret_cast<unsigned char *>(buffer.data());
        RC_ASSERT(DataPack(place, format.c_str()) == (isCounted ? -1 : 0));
        for (size_t i = 0; i < good.size(); ++i)
            RC_ASSERT(buffer.at(int(i)) == (good[i] == 'x' ? '\0' : '\x55'));
        RC_ASSERT(ByteArrayPack(format.c_str()).isEmpty());
        RC_ASSERT(DataUnpack(place, format.c_str()) == -1);
    }));
}

void TestToolkit::sums()
{
    QVERIFY(rc::check("the sum of unsigned bytes, and the bits that stand in an odd number of them", [] {
        const QByteArray array = *lots::bytes(600);
        const int size = int(array.size());
        int sum = 0;
        std::vector<int> ones(8, 0);
        for (int i = 0; i < size; ++i) {
            sum += byteAt(array, i);
            for (int bit = 0; bit < 8; ++bit)
                ones[size_t(bit)] += byteAt(array, i) >> bit & 1;
        }
        int odd = 0;
        for (int bit = 0; bit < 8; ++bit)
            odd += ones[size_t(bit)] % 2 << bit;
        RC_ASSERT(int(UInt8CheckSum(constData(array), size)) == sum % 0x100);
        RC_ASSERT(int(UShortCheckSum(constData(array), size)) == sum % 0x10000);
        RC_ASSERT(int(XorUInt8CheckSum(constData(array), size)) == odd);
    }));
}

void TestToolkit::crcsAreRemainders()
{
    QVERIFY(rc::check("chained steps leave what the long division leaves", [] {
        const QByteArray message = *rc::gen::suchThat(lots::bytes(30), [](const QByteArray &b) {
            return b.size() >= 4; // the start value is added to the front
        });
        const auto start = static_cast<unsigned short>(*lots::word());
        const unsigned int wide = *lots::doubleWord();
        const Division arc(16, 0x8005, true);
        RC_ASSERT(chained(update_crc_ccitt, start, message) ==
                  Division(16, 0x1021, false).remainder(message, start));
        RC_ASSERT(chained(update_crc_16, start, message) == arc.remainder(message, start));
        RC_ASSERT(chained(update_crc_kermit, start, message) ==
                  Division(16, 0x1021, true).remainder(message, start));
        RC_ASSERT(chained(update_crc_dnp, start, message) ==
                  Division(16, 0x3D65, true).remainder(message, start));
        RC_ASSERT(chained(update_crc_32, wide, message) ==
                  Division(32, 0x04C11DB7, true).remainder(message, wide));
        RC_ASSERT(CRC16Calculate(constData(message), int(message.size())) == arc.remainder(message, 0));
    }));
}

void TestToolkit::sickIsASumOfShiftedWords()
{
    QVERIFY(rc::check("each pair of bytes counts times x for every byte behind it", [] {
        const QByteArray message = *lots::bytes(40);
        const int size = int(message.size());
        const auto start = static_cast<unsigned short>(*lots::word());
        unsigned short crc = start;
        for (int i = 0; i < size; ++i)
            crc = update_crc_sick(crc, static_cast<unsigned char>(byteAt(message, i)),
                                  static_cast<unsigned char>(pairAt(message, i) / 0x100));
        uint32_t sum = 0;
        for (int i = -1; i < size; ++i) {
            uint32_t product = i < 0 ? start : pairAt(message, i);
            for (int behind = i + 1; behind < size; ++behind)
                product = timesX(product);
            sum ^= product;
        }
        RC_ASSERT(uint32_t(crc) == sum);
    }));
}

void TestToolkit::packages()
{
    QVERIFY(rc::check("sections come back as they were appended", [] {
        const auto sections = *rc::gen::container<std::vector<QByteArray>>(lots::bytes(12));
        TxPackage package;
        QByteArray frame;
        for (const QByteArray &section : sections) {
            RC_ASSERT(package.appendSection(section));
            frame += section;
        }
        const int count = int(sections.size());
        RC_ASSERT(package.byteArrayData() == frame);
        RC_ASSERT(package.totalSize() == int(frame.size()));
        RC_ASSERT(package.numberOfSections() == count);
        int start = 0;
        for (int i = 0; i < count; ++i) {
            RC_ASSERT(package.sectionStartIndex(i) == start);
            RC_ASSERT(package.sectionSize(i) == int(sections[size_t(i)].size()));
            RC_ASSERT(package.dataAt(i) == sections[size_t(i)]);
            start += int(sections[size_t(i)].size());
        }
        int sum = 0;
        for (int i = 0; i < int(frame.size()); ++i)
            sum += byteAt(frame, i);
        RC_ASSERT(package.appendLRCAscii());
        RC_ASSERT(package.dataAt(count) == twoDigits(sum % 0x100));
    }));
}

void TestToolkit::packagesWithAnySizes()
{
    QVERIFY(rc::check("whatever the list says, a section is a part of the frame", [] {
        const auto entry = rc::gen::weightedOneOf<int>(
            {{8, rc::gen::inRange(-8, 12)}, {1, rc::gen::element(INT_MIN, -INT_MAX, INT_MAX)}});
        const auto entries = *rc::gen::container<std::vector<int>>(entry);
        // Frames that take more memory than a panel has are the business of other tests.
        RC_PRE(std::accumulate(entries.begin(), entries.end(), 0LL) < 0x10000);
        QList<int> sizes;
        for (const int size : entries)
            sizes.append(size);
        const QByteArray frame = *lots::bytes(30);
        TxPackage package;
        package.setSectionSize(sizes);
        RC_ASSERT(package.setData(frame));
        RC_ASSERT(package.numberOfSections() == int(entries.size()));
        long long start = 0;
        for (int i = 0; i < int(entries.size()); ++i) {
            const int stored = entries[size_t(i)];
            const int size = package.sectionSize(i);
            RC_ASSERT(size >= 0);
            RC_ASSERT(stored < 0 || size == stored);
            RC_ASSERT(stored >= 0 || size < 0x100);
            RC_ASSERT(start < INT_MIN || start > INT_MAX || package.sectionStartIndex(i) == start);
            RC_ASSERT(package.dataAt(i) == partOf(frame, start, size));
            start += stored;
        }
    }));
}

void TestToolkit::dumps()
{
    QVERIFY(rc::check("a package is dumped like its bytes", [] {
        const QByteArray array = *lots::bytes(20);
        QString text = "(";
        for (int i = 0; i < int(array.size()); ++i)
            text += QString::asprintf("0X%x ", unsigned(byteAt(array, i)));
        text += ") : " + QString::fromLatin1(array.constData());
        RC_ASSERT(dumpByteArray(array) == text);
        TxPackage package;
        RC_ASSERT(package.setData(array));
        RC_ASSERT(package.toString() == text);
    }));
}

TEST_CLASS(TestToolkit)

#include "test_toolkit.moc"
