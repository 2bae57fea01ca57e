// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/dump/dump_file.h"

#include "host/base/failure.h"
#include "host/base/files.h"
#include "host/base/filled.h"
#include "host/base/line_reader.h"
#include "host/base/options.h"
#include "host/items/memory_range.h"

#include <QList>
#include <QString>

#include <optional>

namespace host {

namespace {

const QByteArray kMagic = "s7ppi-dump";
const QByteArray kVersion = "1";
const QByteArray kSimulatedMark = "# simulated";
const char kLineHint[] = "a line is an address and its elements in hexadecimal digits, as VB0 00 1f";

bool isHex(const QByteArray &digits)
{
    for (const char digit : digits)
        if (!QByteArray("0123456789abcdefABCDEF").contains(digit))
            return false;
    return true;
}

QList<QByteArray> wordsOf(const QByteArray &line)
{
    const QByteArray simplified = line.simplified();
    return simplified.isEmpty() || simplified.startsWith('#') ? QList<QByteArray>() : simplified.split(' ');
}

// Reads a dump line by line: the kind of file, the area, the station, and from then on data.
class DumpParser
{
public:
    explicit DumpParser(const QString &name_) : name(name_) {}

    void takeAll(const QByteArray &text);

    // Returns what was read; fails when that is not even all that stands before the data.
    Dump dump() const;

    Failure wrong(const QString &text, const QString &hint) const;

private:
    void take(const QByteArray &line);
    void takeMagic(const QList<QByteArray> &words);
    void takeArea(const QList<QByteArray> &words);
    void takeStation(const QList<QByteArray> &words);
    void takeData(const QList<QByteArray> &words);
    void takeElement(const QByteArray &digits);
    const QByteArray &fieldOf(const QList<QByteArray> &words, const char *field) const;

    QString name;
    int lineNumber = 0;
    bool hasMagic = false;
    bool isSimulated = false;
    std::optional<Item> range;
    std::optional<int> station;
    QByteArray data;
};

Failure DumpParser::wrong(const QString &text, const QString &hint) const
{
    return Failure(ExitCode::Usage, filled("%1:%2: %3", name, lineNumber, text), hint);
}

void DumpParser::takeAll(const QByteArray &text)
{
    LineReader lines(name, text);
    while (lines.next())
        take(lines.line());
    if (text.isEmpty())
        take(text);
}

void DumpParser::take(const QByteArray &line)
{
    ++lineNumber;
    isSimulated = isSimulated || line.trimmed() == kSimulatedMark;
    const QList<QByteArray> words = wordsOf(lineNumber == 1 ? withoutByteOrderMark(line) : line);
    if (words.isEmpty())
        return;
    if (!hasMagic)
        takeMagic(words);
    else if (!range)
        takeArea(words);
    else if (!station)
        takeStation(words);
    else
        takeData(words);
}

void DumpParser::takeMagic(const QList<QByteArray> &words)
{
    if (words.first().startsWith(kMagic) && (words.size() != 2 || words.first() != kMagic))
        throw wrong("the version does not stand here",
                    QString("the first line is \"%1 %2\" alone")
                        .arg(QString::fromLatin1(kMagic), QString::fromLatin1(kVersion)));
    if (words.first() != kMagic)
        throw wrong("this is no dump", "s7ppi dump writes such files; plain bytes need --format raw");
    if (words.last() != kVersion)
        throw wrong("this is a dump of version " + QString::fromUtf8(words.last()),
                    "this program knows version " + QString::fromLatin1(kVersion) + ": use a newer one");
    hasMagic = true;
}

const QByteArray &DumpParser::fieldOf(const QList<QByteArray> &words, const char *field) const
{
    if (words.size() != 2 || words.first() != field)
        throw wrong(QString("the %1 does not stand here").arg(field),
                    "a dump begins with its version, \"area FIRST..LAST\" and \"station NUMBER\"");
    return words.last();
}

void DumpParser::takeArea(const QList<QByteArray> &words)
{
    const QString text = utf8Text(fieldOf(words, "area"));
    try {
        range = parseRange(text);
    } catch (const Failure &failure) {
        throw wrong(failure.text(), failure.hint());
    }
}

void DumpParser::takeStation(const QList<QByteArray> &words)
{
    bool isNumber = false;
    const int number = fieldOf(words, "station").toInt(&isNumber);
    if (!isNumber || number < kFirstStation || number > kLastStation)
        throw wrong('"' + QString::fromUtf8(words.last()) + "\" is no station",
                    QString("stations have numbers up to %1").arg(kLastStation));
    station = number;
}

void DumpParser::takeData(const QList<QByteArray> &words)
{
    const int index = int(data.size()) / range->valueSize();
    if (index == range->count)
        throw wrong("there is more than the area has: it ends at " + elementText(*range, range->count - 1),
                    "correct the area, or leave out the line");
    const QString expected = elementText(*range, index);
    if (words.first() != expected.toLatin1())
        throw wrong(QString("here stands %1 and not %2").arg(QString::fromUtf8(words.first()), expected),
                    "lines must continue each other without a gap");
    if (words.size() == 1)
        throw wrong("there are no bytes behind " + expected, kLineHint);
    for (int i = 1; i < int(words.size()); ++i)
        takeElement(words.at(i));
}

void DumpParser::takeElement(const QByteArray &digits)
{
    const int width = range->valueSize();
    if (int(digits.size()) != 2 * width || !isHex(digits))
        throw wrong(
            filled("\"%1\" is no element of %2 hexadecimal digits", QString::fromUtf8(digits), 2 * width),
            kLineHint);
    if (int(data.size()) == range->size())
        throw wrong("there is more than the area has: it ends at " + elementText(*range, range->count - 1),
                    "correct the area, or leave out the rest of the line");
    data += QByteArray::fromHex(digits);
}

Dump DumpParser::dump() const
{
    if (!station)
        throw wrong("the file ends before its first line of data",
                    "a dump begins with its version, \"area FIRST..LAST\" and \"station NUMBER\"");
    return {*range, *station, data, isSimulated};
}

} // namespace

QByteArray dumpHead(const Item &range, int station)
{
    return kMagic + ' ' + kVersion + "\narea " + rangeText(range).toLatin1() + "\nstation " +
           QByteArray::number(station) + '\n';
}

QByteArray dumpLines(const Item &range, int offset, const QByteArray &data)
{
    const int width = range.valueSize();
    const int addressWidth = int(elementText(range, range.count - 1).size());
    QByteArray lines;
    for (int i = 0; i < int(data.size()); i += width) {
        if (i % kDumpLineSize == 0)
            lines += (i ? "\n" : "") +
                     elementText(range, (offset + i) / width).leftJustified(addressWidth).toLatin1();
        lines += ' ' + data.mid(i, width).toHex();
    }
    return data.isEmpty() ? lines : lines + '\n';
}

QByteArray dumpText(const Dump &dump)
{
    const QByteArray mark = dump.isSimulated ? kSimulatedMark + '\n' : QByteArray();
    return dumpHead(dump.range, dump.station) + mark + dumpLines(dump.range, 0, dump.data);
}

Dump parseDump(const QByteArray &text, const QString &name)
{
    DumpParser parser(name);
    parser.takeAll(text);
    Dump dump = parser.dump();
    if (int(dump.data.size()) < dump.range.size())
        throw parser.wrong(
            filled("the dump ends before %1: %2 of %3 bytes are there",
                   elementText(dump.range, dump.range.count - 1), dump.data.size(), dump.range.size()),
            "it was cut, or its dump was stopped: the same dump command goes on where a .part ends");
    return dump;
}

Dump readDump(const QString &name)
{
    return parseDump(readFile(name, "name a file that s7ppi dump has made", kLargestDump), name);
}

Dump parsePartialDump(const QByteArray &text, const QString &name, int &wholeSize)
{
    wholeSize = int(text.lastIndexOf('\n')) + 1;
    DumpParser parser(name);
    parser.takeAll(text.left(wholeSize));
    return parser.dump();
}

} // namespace host
