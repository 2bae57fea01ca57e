// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What is read back against what was written.

#include "host/items/read_back.h"

#include "hex.h"
#include "test_class.h"
#include "tests/host/support/failure_of.h"

#include <QtTest>

using namespace host;

class TestReadBack : public QObject
{
    Q_OBJECT

private slots:
    void sameBytesAreTheSame_data();
    void sameBytesAreTheSame();
    void theFirstDifferenceIsNamed_data();
    void theFirstDifferenceIsNamed();
    void allDifferencesAreCounted_data();
    void allDifferencesAreCounted();
};

void TestReadBack::sameBytesAreTheSame_data()
{
    QTest::addColumn<QString>("data");
    QTest::newRow("VB0=17,34") << "1122";
    QTest::newRow("VD0:f32=nan") << "7fc00000";
    QTest::newRow("VB0:str=ab") << "6162";
    QTest::newRow("VB0:string*9=\"\"") << "00";
    QTest::newRow("V0.0=1,0") << "0100";
}

void TestReadBack::sameBytesAreTheSame()
{
    QFETCH(QString, data);
    QCOMPARE(
        failureOf([&] { checkReadBack(parseAssignment(QTest::currentDataTag()), bytes(qPrintable(data))); }),
        QString());
}

void TestReadBack::theFirstDifferenceIsNamed_data()
{
    QTest::addColumn<QString>("data");
    QTest::addColumn<QString>("text");
    const auto row = [](const char *name, const char *data, const char *text) {
        QTest::newRow(name) << data << text;
    };
    row("VB0=17", "12", "reads 18 and not 17");
    row("VB0=1,2,3", "010503", "value 2 of 3 is 5 and not 2");
    row("VW0=1,2,3", "000100020004", "value 3 of 3 is 4 and not 3");
    row("VW0:i16=-1", "fffe", "reads -2 and not -1");
    row("VD0:f32=1", "3f800001", "reads 1.0000001 and not 1");
    row("VD0:f32=0", "80000000", "reads -0 and not 0");
    row("VB0:str=ab", "6163", "reads \"ac\" and not \"ab\"");
    row("VW0:hex=1122", "1123", "reads 0x1123 and not 0x1122");
    row("VW0:bcd=12", "001f", "reads 0x001f and not 0x0012");
    row("VD0:u64=1,9007199254740993", "00000000000000010020000000000000",
        "value 2 of 2 is 9007199254740992 and not 9007199254740993");
    row("VD0:f32:swap=1", "00003f81", "reads 1.0078125 and not 1");
    row("VB0:string*9=ab", "026163", "reads \"ac\" and not \"ab\"");
    row("VB0:string*9=ab", "016162", "reads \"a\" and not \"ab\"");
    row("VB0:string*9=abc", "09616263", "reads 0x09616263 and not \"abc\"");
    row("VB0:string*9=abc", "04616263", "reads 0x04616263 and not \"abc\"");
    row("V0.0=1,0", "0101", "value 2 of 2 is 1 and not 0");
    row("T37=300", "012d", "reads 301 and not 300");
}

void TestReadBack::theFirstDifferenceIsNamed()
{
    QFETCH(QString, data);
    QFETCH(QString, text);
    QCOMPARE(
        failureOf([&] { checkReadBack(parseAssignment(QTest::currentDataTag()), bytes(qPrintable(data))); }),
        "8: " + text +
            " / the controller's program may have written there in between, or the place takes no "
            "writes");
}

void TestReadBack::allDifferencesAreCounted_data()
{
    QTest::addColumn<QString>("written");
    QTest::addColumn<QString>("read");
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("index");
    QTest::addColumn<QString>("first");
    const auto row = [](const char *item, const char *written, const char *read, int count, int index,
                        const char *first) {
        QTest::addRow("%s %s", item, read)
            << QString(written) << QString(read) << count << index << QString(first);
    };
    row("VB0:hex*3", "010203", "010203", 0, 0, "");
    row("VB0:hex*3", "01021f", "010200", 1, 2, "0x00 and not 0x1f");
    row("VB0:hex*3", "010203", "110213", 2, 0, "0x11 and not 0x01");
    row("VW0:hex*2", "00010002", "00010102", 1, 1, "0x0102 and not 0x0002");
    row("VB0:str*3", "616263", "787863", 1, 0, "\"xxc\" and not \"abc\"");
    row("VD0:f32*2", "3f8000007fc00000", "3f8000007fc00001", 1, 1, "nan and not nan");
}

void TestReadBack::allDifferencesAreCounted()
{
    QFETCH(QString, written);
    QFETCH(QString, read);
    const Item item = parseItem(QString(QTest::currentDataTag()).section(' ', 0, 0));
    const ValueDifferences found = compareValues(item, bytes(qPrintable(written)), bytes(qPrintable(read)));
    QTEST(found.count, "count");
    QTEST(found.index, "index");
    QTEST(found.first, "first");
}

TEST_CLASS(TestReadBack)
#include "test_read_back.moc"
