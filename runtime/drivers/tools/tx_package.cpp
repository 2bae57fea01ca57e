// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "tx_package.h"

#include "array_size.h"
#include "checksum.h"
#include "diagnostics.h"

#include <QtEndian>

#include <algorithm>
#include <functional>

namespace {

const int kMostLookups = 256;

int toInt(qint64 number)
{
    return static_cast<int>(std::min<qint64>(std::max<qint64>(number, INT_MIN), INT_MAX));
}

qint64 sumOf(const QList<int> &sizes, int count)
{
    qint64 sum = 0;
    for (int i = 0; i < count; ++i)
        sum += sizes.at(i);
    return sum;
}

bool liesIn(const QByteArray &array, const char *byte)
{
    const std::less<const char *> isBefore;
    return !isBefore(byte, array.constData()) && isBefore(byte, array.constData() + array.size());
}

} // namespace

TxPackage::TxPackage() : frame(new QByteArray), appendedBytes(0) {}

TxPackage::~TxPackage()
{
    delete frame;
}

bool TxPackage::appendSection(const QByteArray &section)
{
    return append(section.constData(), static_cast<int>(section.size()));
}

bool TxPackage::appendByte(unsigned char value)
{
    const char section = static_cast<char>(value);
    return append(&section, 1);
}

bool TxPackage::appendWord(unsigned short value)
{
    return appendLittleEndian<quint16>(value);
}

bool TxPackage::appendDWord(unsigned int value)
{
    return appendLittleEndian<quint32>(value);
}

bool TxPackage::appendString(const QString &text)
{
    try {
        return appendSection(text.toLatin1());
    } catch (const std::bad_alloc &) {
        return false;
    }
}

bool TxPackage::appendByte2Ascii(unsigned char value)
{
    return appendHexadecimal(value);
}

bool TxPackage::appendLRCByte()
{
    return appendByte(UInt8CheckSum(unsignedBytes(), totalSize()));
}

bool TxPackage::appendLRCAscii()
{
    return appendHexadecimal(UInt8CheckSum(unsignedBytes(), totalSize()));
}

bool TxPackage::appendFCSAscii(int)
{
    return appendHexadecimal(calculateFCS(this, 0));
}

unsigned char TxPackage::calculateFCS(TxPackage *package, int n)
{
    return package ? XorUInt8CheckSum(package->unsignedBytes(), package->totalSize() - std::max(n, 0)) : '\0';
}

int TxPackage::numberOfSections() const
{
    return static_cast<int>(sectionSizes.size());
}

int TxPackage::totalSize() const
{
    return static_cast<int>(frame->size());
}

bool TxPackage::validSectionNumber(int i) const
{
    return i >= 0 && i < numberOfSections();
}

int TxPackage::sectionStartIndex(int i) const
{
    return validSectionNumber(i) ? toInt(sumOf(sectionSizes, i)) : -1;
}

int TxPackage::sectionSize(int i) const
{
    return sizeThrough(i, kMostLookups);
}

QByteArray TxPackage::dataAt(int i) const
{
    return bytesOf(i, sectionSize(i));
}

int TxPackage::arrayToInt(const QByteArray &bytes)
{
    return bytes.isEmpty() ? 0 : static_cast<unsigned char>(bytes.at(0));
}

void TxPackage::setSectionSize(const QList<int> &sizes)
{
    if (resizeWithZeros(*frame, sumOf(sizes, static_cast<int>(sizes.size()))))
        sectionSizes = sizes;
}

bool TxPackage::setData(const QByteArray &bytes)
{
    *frame = bytes;
    return true;
}

bool TxPackage::setData(char *bytes, int length)
{
    try {
        *frame = bytes && length > 0 ? QByteArray(bytes, length) : QByteArray();
    } catch (const std::bad_alloc &) {
        return false;
    }
    return true;
}

char *TxPackage::data()
{
    return frame->data();
}

QByteArray TxPackage::byteArrayData() const
{
    return *frame;
}

QString TxPackage::toString() const
{
    return dumpByteArray(*frame);
}

void TxPackage::clearAll()
{
    frame->clear();
    sectionSizes.clear();
    appendedBytes = 0;
}

bool TxPackage::append(const char *section, int size)
{
    if (size > INT_MAX - totalSize())
        return false;
    const int sectionsBefore = numberOfSections();
    // A section may be a raw view of the frame, whose bytes would move while it grows.
    const QByteArray viewed = liesIn(*frame, section) ? *frame : QByteArray();
    try {
        sectionSizes.append(size);
        frame->append(section, size);
    } catch (const std::bad_alloc &) {
        sectionSizes = sectionSizes.mid(0, sectionsBefore);
        return false;
    }
    appendedBytes += static_cast<unsigned int>(size);
    return true;
}

template <typename Value> bool TxPackage::appendLittleEndian(Value value)
{
    unsigned char section[sizeof value];
    qToLittleEndian(value, section);
    return append(reinterpret_cast<const char *>(section), static_cast<int>(sizeof section));
}

bool TxPackage::appendHexadecimal(unsigned char value)
{
    const char digits[] = "0123456789ABCDEF";
    const char section[] = {digits[value >> 4], digits[value & 0xF]};
    return append(section, static_cast<int>(sizeof section));
}

// The size of section i when no more than that many sections may be asked for another one's size.
int TxPackage::sizeThrough(int i, int lookups) const
{
    const int stored = sectionSizes.value(i); // 0 outside the list
    if (stored >= 0)
        return stored;
    if (lookups == 0 || stored == INT_MIN)
        return 0;
    const int lengthField = -stored;
    return arrayToInt(bytesOf(lengthField, sizeThrough(lengthField, lookups - 1)));
}

QByteArray TxPackage::bytesOf(int i, int size) const
{
    if (!validSectionNumber(i))
        return QByteArray();
    const qint64 start = sumOf(sectionSizes, i);
    const qint64 begin = std::max<qint64>(start, 0);
    const qint64 end = std::min<qint64>(start + size, totalSize());
    return begin < end ? frame->mid(static_cast<int>(begin), static_cast<int>(end - begin)) : QByteArray();
}

const unsigned char *TxPackage::unsignedBytes() const
{
    return reinterpret_cast<const unsigned char *>(frame->constData());
}
