// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The package builder: sections appended in any order against the bytes that they must give; then any list of
// sizes, bytes and places, of which no section may reach beyond the frame.
//
//    input := { operation(1) operand }

#include "fuzzing.h"

#include "tools/checksum.h"
#include "tools/diagnostics.h"
#include "tools/tx_package.h"

#include <QList>

using fuzz::at;
using fuzz::require;

namespace {

QByteArray hexadecimal(int value)
{
    return QByteArray::number(value, 16).toUpper().rightJustified(2, '0');
}

int exclusiveOr(const QByteArray &bytes, int size)
{
    int sum = 0;
    for (int i = 0; i < size; ++i)
        sum ^= at(bytes, i);
    return sum;
}

// Appends one section, and returns its bytes.
QByteArray append(TxPackage &package, const QByteArray &before, int operation, fuzz::Input &input)
{
    const int sum = fuzz::sumOf(before, 0, int(before.size()));
    const QByteArray bytes = input.bytes(4);
    QByteArray filled = bytes;
    while (filled.size() < 4)
        filled += '\0';
    const unsigned value =
        unsigned(at(filled, 0) | at(filled, 1) << 8 | at(filled, 2) << 16) | unsigned(at(filled, 3)) << 24;
    switch (operation) {
    case 0:
        package.appendSection(bytes);
        return bytes;
    case 1:
        package.appendByte(uint8_t(value));
        return filled.left(1);
    case 2:
        package.appendWord(uint16_t(value));
        return filled.left(2);
    case 3:
        package.appendDWord(value);
        return filled;
    case 4:
        package.appendString(QString::fromLatin1(bytes.constData(), int(bytes.size())));
        return QString::fromLatin1(bytes.constData(), int(bytes.size())).toLatin1();
    case 5:
        package.appendByte2Ascii(uint8_t(value));
        return hexadecimal(at(filled, 0));
    case 6:
        package.appendLRCByte();
        return QByteArray(1, char(sum));
    case 7:
        package.appendLRCAscii();
        return hexadecimal(sum);
    case 8:
        package.appendFCSAscii(int(value));
        return hexadecimal(exclusiveOr(before, int(before.size())));
    default:
        // A raw view of the frame itself.
        package.appendSection(QByteArray::fromRawData(package.data(), package.totalSize()));
        return before;
    }
}

// Every section of an appended package is what was appended.
void checkSections(const TxPackage &package, const QList<QByteArray> &sections)
{
    require(package.numberOfSections() == sections.size(), "there are as many sections as were appended");
    int place = 0;
    for (int i = 0; i < int(sections.size()); ++i) {
        require(package.sectionStartIndex(i) == place && package.sectionSize(i) == sections.at(i).size() &&
                    package.dataAt(i) == sections.at(i),
                "a section is what was appended");
        place += int(sections.at(i).size());
    }
    require(package.sectionStartIndex(int(sections.size())) == -1 && package.sectionSize(-1) == 0 &&
                package.dataAt(int(sections.size())).isEmpty(),
            "other sections are empty");
}

// Sizes as they come of a stranger's list: some negative, which say where the size stands.
void resize(TxPackage &package, fuzz::Input &input)
{
    QList<int> sizes;
    for (int i = input.within(0, 8); i > 0; --i)
        sizes += input.flag()   ? input.within(-12, 64)
                 : input.flag() ? -2147483647 - 1
                                : int(input.longWord());
    qint64 sum = 0;
    for (const int size : sizes)
        sum += size;
    if (sum > 1 << 20)
        return; // would only take memory
    package.setSectionSize(sizes);
    require(package.totalSize() == (sum > 0 ? int(sum) : 0) && package.numberOfSections() == sizes.size(),
            "the frame is as long as its sections");
    if (input.flag())
        package.setData(input.counted());
    QByteArray own = input.counted();
    if (input.flag())
        package.setData(own.isEmpty() ? nullptr : own.data(), int(own.size()));
    for (int i = -1; i <= package.numberOfSections(); ++i)
        require(package.dataAt(i).size() <=
                    std::min(package.totalSize(), std::max(package.sectionSize(i), 0)),
                "no section reaches beyond the frame");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    fuzz::Input input(data, size);
    TxPackage package;
    QList<QByteArray> sections;
    QByteArray frame;
    while (!input.isAtEnd() && frame.size() < 4096) {
        const int operation = input.within(0, 11);
        if (operation == 11)
            break;
        if (operation == 10) {
            package.clearAll();
            sections.clear();
            frame.clear();
            continue;
        }
        sections += append(package, frame, operation, input);
        frame += sections.last();
        require(package.byteArrayData() == frame, "the frame is what was appended");
    }
    checkSections(package, sections);
    const int left = input.within(-2, 40);
    require(TxPackage::calculateFCS(&package, left) ==
                exclusiveOr(frame, std::max(int(frame.size()) - std::max(left, 0), 0)),
            "the FCS leaves the last bytes out");
    require(TxPackage::calculateFCS(nullptr, left) == 0, "no package has no FCS");
    require(TxPackage::arrayToInt(frame) == (frame.isEmpty() ? 0 : at(frame, 0)),
            "the first byte is a number");
    require(package.toString() == dumpByteArray(frame), "the text is that of the bytes");
    resize(package, input);
    return 0;
}
