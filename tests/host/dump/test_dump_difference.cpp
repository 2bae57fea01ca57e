// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What is told of two dumps that are not the same.

#include "host/dump/dump_difference.h"

#include "hex.h"
#include "host/dump/difference_text.h"
#include "host/items/memory_range.h"
#include "host/items/tag_file.h"
#include "test_class.h"

#include <QtTest>

#include <vector>

using namespace host;

namespace {

Dump dumpOf(const QString &range, const char *data)
{
    return {parseRange(range), 2, bytes(data), false};
}

std::vector<Tag> tagsOf(const QByteArray &lines)
{
    Outcome outcome;
    std::vector<Tag> tags;
    if (!lines.isEmpty())
        tags = parseTagFile("tags.csv", "name,address,scale,unit\n" + lines, outcome);
    return tags;
}

// The lines for people, the end of each a "/".
QString linesOf(const DumpDifferences &found)
{
    const DifferenceLines lines(found.differences);
    QStringList texts;
    for (const Difference &difference : found.differences)
        texts << lines.text(difference);
    return texts.join('\n').replace('\n', '/');
}

QString linesOf(const QString &range, const char *before, const char *after,
                const ComparisonRules &rules = {})
{
    return linesOf(compareDumps(dumpOf(range, before), dumpOf(range, after), rules));
}

QStringList rangesOf(const std::vector<Item> &ranges)
{
    QStringList texts;
    for (const Item &range : ranges)
        texts << rangeText(range);
    return texts;
}

} // namespace

class TestDumpDifference : public QObject
{
    Q_OBJECT

private slots:
    void equalDumpsAreTheSame();
    void whatDiffersIsToldByItsAddress_data();
    void whatDiffersIsToldByItsAddress();
    void whatATagCoversIsToldAsItsValues_data();
    void whatATagCoversIsToldAsItsValues();
    void whatIsIgnoredMayDiffer_data();
    void whatIsIgnoredMayDiffer();
    void dumpsAreComparedWhereBothHaveTheSameMemory_data();
    void dumpsAreComparedWhereBothHaveTheSameMemory();
    void valuesOfWhichAPartIsMissingAreToldByTheirBytes();
    void bytesAreCounted();
    void tagsThatLieElsewhereAreNamed();
    void aDifferenceEndsWithItsLastByte();
    void aRecordHasTheNumberOfItsFirstValue();
    void aRangeIsLeftWithoutWhatIsTakenOutOfIt_data();
    void aRangeIsLeftWithoutWhatIsTakenOutOfIt();
};

void TestDumpDifference::equalDumpsAreTheSame()
{
    const Dump dump = dumpOf("VB0..VB2", "010203");
    const DumpDifferences found = compareDumps(dump, dump, {});
    QVERIFY(found.isSame());
    QCOMPARE(found.comparedSize, 3);
    QVERIFY(found.differences.empty());
}

void TestDumpDifference::whatDiffersIsToldByItsAddress_data()
{
    QTest::addColumn<QString>("range");
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");
    QTest::addColumn<bool>("asDigits");
    QTest::addColumn<QString>("lines");
    const auto row = [](const char *name, const char *range, const char *before, const char *after,
                        const char *lines, bool asDigits = false) {
        QTest::newRow(name) << QString(range) << QByteArray(before) << QByteArray(after) << asDigits
                            << QString(lines);
    };
    row("a byte", "VB8..VB10", "010203", "010903", "VB9 2 -> 9");
    row("as digits", "VB8..VB10", "010203", "010903", "VB9 0x02 -> 0x09", true);
    row("neighbours", "VB8..VB11", "01020304", "010a0b04", "VB9 old  2  3/    new 10 11");
    row("not neighbours", "VB9..VB11", "010203", "040205", "VB9  1 -> 4/VB11 3 -> 5");
    row("the ends", "MB0..MB1", "0000", "0001", "MB1 0 -> 1");
    row("eight to a line", "VB95..VB104", "00000000000000000000", "0102030405060708090a",
        "VB95  old 0  0 0 0 0 0 0 0/      new 1  2 3 4 5 6 7 8/VB103 old 0  0/      new 9 10");
    row("words", "VW0..VW4", "000100020003", "0001ffff0003", "VW2 2 -> 65535");
    row("double words", "VD0..VD4", "0000000100000002", "0000000100010002", "VD4 2 -> 65538");
    row("timers", "T37..T39", "000100020003", "000100020004", "T39 3 -> 4");
    row("analogue inputs have a sign", "AIW0..AIW2", "0001ffff", "0001fffe", "AIW2 -1 -> -2");
    row("high-speed counters", "HC0..HC1", "0000000000000001", "0000000000000002", "HC1 1 -> 2");
}

void TestDumpDifference::whatDiffersIsToldByItsAddress()
{
    QFETCH(QString, range);
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, after);
    QFETCH(bool, asDigits);
    ComparisonRules rules;
    rules.asDigits = asDigits;
    QTEST(linesOf(range, before.constData(), after.constData(), rules), "lines");
}

void TestDumpDifference::whatATagCoversIsToldAsItsValues_data()
{
    QTest::addColumn<QByteArray>("tags");
    QTest::addColumn<QString>("range");
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");
    QTest::addColumn<QString>("lines");
    const auto row = [](const char *name, const char *tags, const char *range, const char *before,
                        const char *after, const char *lines) {
        QTest::newRow(name) << QByteArray(tags) << QString(range) << QByteArray(before) << QByteArray(after)
                            << QString::fromUtf8(lines);
    };
    row("scale and unit", "Boiler,VW0:i16,0.1,°C", "VB0..VB1", "00d7", "ffff", "Boiler 21.5 -> -0.1 °C");
    row("the rest by its address", "Boiler,VW1", "VB0..VB3", "00000000", "01020304",
        "VB0    0 -> 1/Boiler 0 -> 515/VB3    0 -> 4");
    row("a tag that is the same", "Boiler,VW1", "VB0..VB3", "00000000", "00000001", "VB3 0 -> 1");
    row("a bit, and the others of its byte", "Pump,V0.1", "VB0..VB0", "00", "c7",
        "V0.0 0 -> 1/Pump 0 -> 1/V0.2 0 -> 1/V0.6 old 0 0/     new 1 1");
    row("a byte of a double word", "Level,VB2", "VD0..VD0", "00000000", "01020304",
        "VB0   old 0 0/      new 1 2/Level 0 -> 3/VB3   0 -> 4");
    row("those of several that differ", "Row,VW0:i16*4,,mm", "VB0..VB7", "0001000200030004",
        "0001000500060004", "Row[1] old 2 3 mm/       new 5 6 mm");
    row("two stretches of one", "Row,VB0*3", "VB0..VB2", "000000", "010002", "Row[0] 0 -> 1/Row[2] 0 -> 2");
    row("some of several that are in the dump", "Row,VB0*3", "VB1..VB2", "0000", "0005", "Row[2] 0 -> 5");
    row("not wholly in the dump", "Wide,VD0", "VB2..VB5", "00000000", "01000000", "VB2 0 -> 1");
    row("a text", "Name,VB0:str*3", "VB0..VB3", "61626300", "61786300", "Name \"abc\" -> \"axc\"");
    row("two of the same memory", "Word,VW0/Low,VB1", "VB0..VB1", "0001", "0002", "Word 1 -> 2/Low  1 -> 2");
    row("of other areas", "Other,MB0/Timer,T0", "VB0..VB0", "00", "01", "VB0 0 -> 1");
    row("a timer", "Time,T38:i16,0.1,s", "T37..T38", "00010064", "00010065", "Time 10 -> 10.1 s");
    row("a status bit is in no dump", "Done,T37:bool", "T37..T37", "0001", "0002", "T37 1 -> 2");
    row("no BCD", "Date,VW0:bcd", "VB0..VB1", "1234", "12ff", "Date 0x1234 -> 0x12ff");
    row("no number", "Real,VD0:f32", "VB0..VB3", "7fc00000", "7fc00001", "Real 0x7fc00000 -> 0x7fc00001");
    row("no number of words", "Real,VW0:f32*2", "VB0..VB7", "000000007fc00000", "000000007fc00001",
        "Real[2] old 0x7fc0 0x0000/        new 0x7fc0 0x0001");
    row("no string, among words", "Name,VW0:string*2", "VB0..VB3", "09616200", "09616300",
        "Name[0] old 0x09 0x61 0x62/        new 0x09 0x61 0x63");
}

void TestDumpDifference::whatATagCoversIsToldAsItsValues()
{
    QFETCH(QByteArray, tags);
    QFETCH(QString, range);
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, after);
    ComparisonRules rules;
    rules.tags = tagsOf(tags.replace('/', '\n'));
    QVERIFY(!rules.tags.empty());
    QTEST(linesOf(range, before.constData(), after.constData(), rules), "lines");
}

void TestDumpDifference::whatIsIgnoredMayDiffer_data()
{
    QTest::addColumn<QByteArray>("tags");
    QTest::addColumn<QString>("lines");
    QTest::newRow("VB0..VB3") << QByteArray() << QString();
    QTest::newRow("VB1") << QByteArray() << "VB0 0 -> 1/VB2 old 0 0/    new 3 4";
    QTest::newRow("V0.0") << QByteArray() << "VB1 old 0 0 0/    new 2 3 4";
    QTest::newRow("MB0") << QByteArray() << "VB0 old 0 0 0 0/    new 1 2 3 4";
    QTest::newRow("VB2..VB9") << QByteArray() << "VB0 old 0 0/    new 1 2";
    QTest::newRow("VW0..VW0") << QByteArray("Word,VW0") << "VB2 old 0 0/    new 3 4";
    QTest::newRow("VB1..VB3") << QByteArray("Word,VW0") << "Word 0 -> 258";
}

void TestDumpDifference::whatIsIgnoredMayDiffer()
{
    QFETCH(QByteArray, tags);
    ComparisonRules rules;
    rules.tags = tagsOf(tags);
    const QString ignored = QTest::currentDataTag();
    rules.ignored.push_back(ignored.contains("..") ? parseRange(ignored) : parseItem(ignored));
    QTEST(linesOf("VB0..VB3", "00000000", "01020304", rules), "lines");
}

void TestDumpDifference::dumpsAreComparedWhereBothHaveTheSameMemory_data()
{
    QTest::addColumn<QString>("beforeRange");
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QString>("afterRange");
    QTest::addColumn<QByteArray>("after");
    QTest::addColumn<QString>("lines");
    QTest::addColumn<QStringList>("onlyBefore");
    QTest::addColumn<QStringList>("onlyAfter");
    const auto row = [](const char *name, const char *beforeRange, const char *before, const char *afterRange,
                        const char *after, const char *lines, const QStringList &onlyBefore,
                        const QStringList &onlyAfter) {
        QTest::newRow(name) << QString(beforeRange) << QByteArray(before) << QString(afterRange)
                            << QByteArray(after) << QString(lines) << onlyBefore << onlyAfter;
    };
    row("one is longer", "VB0..VB1", "0102", "VB0..VB3", "01020304", "", {}, {"VB2..VB3"});
    row("they overlap", "VB0..VB2", "010203", "VB2..VB3", "0504", "VB2 3 -> 5", {"VB0..VB1"}, {"VB3..VB3"});
    row("one inside the other", "VB0..VB3", "01020304", "VB1..VB1", "07", "VB1 2 -> 7",
        {"VB0..VB0", "VB2..VB3"}, {});
    row("words and bytes", "VW0..VW2", "00010002", "VB1..VB4", "09000205", "VB1 1 -> 9", {"VB0..VB0"},
        {"VB4..VB4"});
    row("words beside words", "VW0..VW2", "00010002", "VW1..VW1", "0900", "VB1 1 -> 9",
        {"VB0..VB0", "VB3..VB3"}, {});
    row("the same words", "VW0..VW2", "00010002", "VW2..VW4", "00030004", "VW2 2 -> 3", {"VW0..VW0"},
        {"VW4..VW4"});
    row("one behind the other", "VB0..VB1", "0102", "VB2..VB3", "0304", "", {"VB0..VB1"}, {"VB2..VB3"});
    row("far behind the beginning", "VB0..VB19", "0000000000000000000000000000000001020304", "VB16..VB19",
        "01020305", "VB19 4 -> 5", {"VB0..VB15"}, {});
    row("far before the beginning", "VB16..VB19", "01020304", "VB0..VB19",
        "0000000000000000000000000000000001020305", "VB19 4 -> 5", {}, {"VB0..VB15"});
    row("two areas", "VB0..VB1", "0102", "MB0..MB1", "0102", "", {"VB0..VB1"}, {"MB0..MB1"});
    row("timers", "T0..T1", "00010002", "T1..T2", "00030004", "T1 2 -> 3", {"T0..T0"}, {"T2..T2"});
}

void TestDumpDifference::dumpsAreComparedWhereBothHaveTheSameMemory()
{
    QFETCH(QString, beforeRange);
    QFETCH(QByteArray, before);
    QFETCH(QString, afterRange);
    QFETCH(QByteArray, after);
    const DumpDifferences found =
        compareDumps(dumpOf(beforeRange, before.constData()), dumpOf(afterRange, after.constData()), {});
    QTEST(linesOf(found), "lines");
    QTEST(rangesOf(found.onlyBefore), "onlyBefore");
    QTEST(rangesOf(found.onlyAfter), "onlyAfter");
    QVERIFY(!found.isSame());
}

void TestDumpDifference::valuesOfWhichAPartIsMissingAreToldByTheirBytes()
{
    ComparisonRules rules;
    rules.tags = tagsOf("Word,VW0\nHalf,VW2\nMissing,VB4\n");
    rules.unread = {parseRange("VB3..VB5")};
    const DumpDifferences found =
        compareDumps(dumpOf("VB0..VB5", "000000000000"), dumpOf("VB0..VB5", "010203040506"), rules);
    QCOMPARE(linesOf(found), QString("Word 0 -> 258/VB2  0 -> 3"));
    QCOMPARE(found.comparedSize, 3);
    QCOMPARE(found.differentSize, 3);
    QVERIFY(found.outsideTags.empty());
}

void TestDumpDifference::bytesAreCounted()
{
    ComparisonRules rules;
    rules.ignored = {parseItem("VB1"), parseItem("V2.0"), parseItem("VB9")};
    const DumpDifferences found =
        compareDumps(dumpOf("VB0..VB3", "01020304"), dumpOf("VB0..VB3", "ff030204"), rules);
    QCOMPARE(found.comparedSize, 3);
    QCOMPARE(found.differentSize, 1);
    QCOMPARE(compareDumps(dumpOf("VB0..VB3", "01020304"), dumpOf("VB0..VB3", "81020384"), {}).differentSize,
             2);
    rules.ignored = {parseItem("V1.0*7")};
    QCOMPARE(compareDumps(dumpOf("VB0..VB3", "01020304"), dumpOf("VB0..VB3", "01ff0304"), rules).comparedSize,
             4);
}

void TestDumpDifference::tagsThatLieElsewhereAreNamed()
{
    const Dump dump = dumpOf("VB0..VB3", "01020304");
    ComparisonRules rules;
    rules.tags = tagsOf("Here,VW2\nCut,VW3\nAfar,VW4\nOther,MB0\n");
    rules.ignored = {parseItem("VW2")};
    QStringList names;
    for (const Tag &tag : compareDumps(dump, dump, rules).outsideTags)
        names << tag.name;
    QCOMPARE(names, QStringList({"Cut", "Afar", "Other"}));
}

void TestDumpDifference::aDifferenceEndsWithItsLastByte()
{
    ComparisonRules rules;
    rules.tags = tagsOf("Pump,V11.1\n");
    const DumpDifferences found =
        compareDumps(dumpOf("VB10..VB13", "00000000"), dumpOf("VB10..VB13", "01020304"), rules);
    QList<int> ends;
    for (const Difference &difference : found.differences)
        ends << difference.end;
    QCOMPARE(ends, QList<int>({1, 2, 4}));
}

void TestDumpDifference::aRecordHasTheNumberOfItsFirstValue()
{
    ComparisonRules rules;
    rules.tags = tagsOf("Row,VW0:i16*3,0.5,mm\n");
    const DumpDifferences found =
        compareDumps(dumpOf("VB0..VB7", "0001000200030000"), dumpOf("VB0..VB7", "0001000200040001"), rules);
    QCOMPARE(int(found.differences.size()), 2);
    QCOMPARE(QString::fromStdString(differenceRecord(found.differences[0]).dump()),
             QString(R"({"name":"Row","address":"VW0","type":"i16","unit":"mm","index":2,)"
                     R"("old":[1.5],"new":[2.0]})"));
    QCOMPARE(QString::fromStdString(differenceRecord(found.differences[1]).dump()),
             QString(R"({"address":"VB7","type":"u8","old":[0],"new":[1]})"));
    QCOMPARE(QString::fromStdString(rangeRecord(parseRange("T3..9")).dump()),
             QString(R"({"address":"T3","last":"T9"})"));
}

void TestDumpDifference::aRangeIsLeftWithoutWhatIsTakenOutOfIt_data()
{
    QTest::addColumn<QString>("taken");
    QTest::addColumn<QStringList>("parts");
    QTest::newRow("nothing") << "MB0" << QStringList{"VW10..VW16"};
    QTest::newRow("a word") << "VW12" << QStringList{"VW10..VW10", "VW14..VW16"};
    QTest::newRow("half a word") << "VB12" << QStringList{"VW10..VW16"};
    QTest::newRow("the first") << "VB0*12" << QStringList{"VW12..VW16"};
    QTest::newRow("the last") << "VB14*99" << QStringList{"VW10..VW12"};
    QTest::newRow("all") << "VD10*2" << QStringList();
}

void TestDumpDifference::aRangeIsLeftWithoutWhatIsTakenOutOfIt()
{
    QFETCH(QString, taken);
    const Item range = parseRange("VW10..VW16");
    const std::vector<Item> parts = partsWithout(range, {parseItem(taken)});
    QTEST(rangesOf(parts), "parts");
    QCOMPARE(isIn(range, parseItem(taken)), totalSize(parts) < 8 || taken == "VB12");
    for (const Item &part : parts)
        QCOMPARE(offsetIn(range, part), part.address.number - 10);
}

TEST_CLASS(TestDumpDifference)
#include "test_dump_difference.moc"
