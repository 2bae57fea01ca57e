// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/diagnosis/elf_file.h"

#include "host/base/filled.h"

#include <QHash>

#include <algorithm>

namespace host {

namespace {

constexpr int kSharedObject = 3;
constexpr quint64 kDynamicSymbols = 11;
constexpr int kIdentitySize = 16;

// Where in a file of 32 or 64 bits the fields lie that are looked at, in bytes.
struct Places
{
    int wordSize;
    int sectionTable, sectionSize, sectionCount; // in the header of the file
    int offset, size, link;                      // in that of a section
    int symbolSize, symbolSection;               // in a symbol
};

constexpr Places k32Bits = {4, 0x20, 0x2e, 0x30, 0x10, 0x14, 0x18, 16, 14};
constexpr Places k64Bits = {8, 0x28, 0x3a, 0x3c, 0x18, 0x20, 0x28, 24, 6};

constexpr int kTypePlace = 16;
constexpr int kMachinePlace = 18;
constexpr int kSectionTypePlace = 4;
constexpr int kLongestName = 512;

class Image
{
public:
    Image(const QByteArray &bytes_, bool isLittleEndian_) : bytes(bytes_), isLittleEndian(isLittleEndian_) {}

    // Returns the number at a place, or 0 for one behind the end of the file.
    quint64 number(quint64 place, int size) const
    {
        const auto end = quint64(bytes.size());
        if (place > end || end - place < quint64(size))
            return 0;
        quint64 value = 0;
        for (int i = 0; i < size; ++i)
            value = value << 8 | uchar(bytes.at(int(place) + (isLittleEndian ? size - 1 - i : i)));
        return value;
    }

    // Returns the text at a place. It is empty behind the end of the file, and for a text longer than any
    // name.
    QString name(quint64 place) const
    {
        if (place >= size())
            return QString();
        const QByteArray start = bytes.mid(int(place), kLongestName);
        const auto end = int(start.indexOf('\0'));
        return end < 0 ? QString() : QString::fromLatin1(start.left(end));
    }

    quint64 size() const { return quint64(bytes.size()); }

private:
    const QByteArray &bytes;
    bool isLittleEndian;
};

struct Section
{
    quint64 type, offset, size, link;
};

Section section(const Image &image, const Places &layout, quint64 index)
{
    const quint64 start = image.number(quint64(layout.sectionTable), layout.wordSize) +
                          index * image.number(quint64(layout.sectionSize), 2);
    return {image.number(start + kSectionTypePlace, 4),
            image.number(start + quint64(layout.offset), layout.wordSize),
            image.number(start + quint64(layout.size), layout.wordSize),
            image.number(start + quint64(layout.link), 4)};
}

QStringList symbols(const Image &image, const Places &layout, const Section &table, const Section &names)
{
    QStringList found;
    const quint64 end = std::min(table.offset + table.size, image.size());
    const auto step = quint64(layout.symbolSize);
    for (quint64 place = table.offset; place < end && end - place >= step; place += step) {
        const bool isDefined = image.number(place + quint64(layout.symbolSection), 2) != 0;
        const QString name = image.name(names.offset + image.number(place, 4));
        if (isDefined && !name.isEmpty())
            found << name;
    }
    return found;
}

Failure noLibrary(const QString &reason)
{
    return Failure(ExitCode::PluginUnusable, reason, "name the library of a plug-in, as libs7_200_ppi.so");
}

QStringList exportsOf(const Image &image, const Places &layout)
{
    const quint64 count = image.number(quint64(layout.sectionCount), 2);
    for (quint64 i = 0; i < count; ++i) {
        const Section table = section(image, layout, i);
        if (table.type == kDynamicSymbols)
            return symbols(image, layout, table, section(image, layout, table.link));
    }
    return {};
}

} // namespace

ElfFile parseElf(const QByteArray &bytes)
{
    ElfFile file;
    if (bytes.size() <= kIdentitySize || !bytes.startsWith("\x7f"
                                                           "ELF")) {
        file.failure =
            noLibrary(bytes.isEmpty() ? "the file is empty"
                                      : "it begins with " + QString::fromLatin1(bytes.left(4).toHex(' ')));
        return file;
    }
    const bool isLong = bytes.at(4) == 2;
    file.bits = isLong ? 64 : 32;
    file.isLittleEndian = bytes.at(5) != 2;
    const Image image(bytes, file.isLittleEndian);
    file.machine = int(image.number(kMachinePlace, 2));
    if (image.number(kTypePlace, 2) != kSharedObject)
        file.failure = noLibrary("it is an ELF file, but no shared library");
    else
        file.exports = exportsOf(image, isLong ? k64Bits : k32Bits);
    return file;
}

QString machineText(const ElfFile &file)
{
    static const QHash<int, QString> names = {{3, "x86"},     {8, "MIPS"},      {20, "PowerPC"}, {40, "ARM"},
                                              {62, "x86-64"}, {183, "AArch64"}, {243, "RISC-V"}};
    return filled("%1, %2 bits, %3 endian",
                  names.value(file.machine, QString("machine %1").arg(file.machine)), file.bits,
                  file.isLittleEndian ? "little" : "big");
}

QStringList verificationLines(const QByteArray &bytes)
{
    const QByteArray pattern = "pattern=QT_PLUGIN_VERIFICATION_DATA\n";
    constexpr int kLongest = 512;
    const auto start = int(bytes.indexOf(pattern));
    if (start < 0)
        return {};
    const QByteArray text = bytes.mid(start + pattern.size(), kLongest);
    const auto end = int(text.indexOf('\0'));
    return QString::fromLatin1(end < 0 ? text : text.left(end)).split('\n', Qt::SkipEmptyParts);
}

} // namespace host
