// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What is read back against what was written.

#include "host/items/read_back.h"

#include "hex.h"
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
};

void TestReadBack::sameBytesAreTheSame_data()
{
    QTest::addColumn<QString>("data");
    QTest::newRow("VB0=17,34") << "1122";
    QTest::newRow("VD0:f32=nan") << "7fc00000";
    QTest::newRow("VB0:str=ab") << "6162";
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
    QTest::newRow("VB0=17") << "12"
                            << "reads 18 and not 17";
    QTest::newRow("VB0=1,2,3") << "010503"
                               << "value 2 of 3 is 5 and not 2";
    QTest::newRow("VW0=1,2,3") << "000100020004"
                               << "value 3 of 3 is 4 and not 3";
    QTest::newRow("VW0:i16=-1") << "fffe"
                                << "reads -2 and not -1";
    QTest::newRow("VD0:f32=1") << "3f800001"
                               << "reads 1.0000001 and not 1";
    QTest::newRow("VD0:f32=0") << "80000000"
                               << "reads -0 and not 0";
    QTest::newRow("VB0:str=ab") << "6163"
                                << "reads \"ac\" and not \"ab\"";
    QTest::newRow("VW0:hex=1122") << "1123"
                                  << "reads 1123 and not 1122";
    QTest::newRow("VW0:bcd=12") << "001f"
                                << "reads 001f and not 0012";
    QTest::newRow("V0.0=1,0") << "0101"
                              << "value 2 of 2 is 1 and not 0";
    QTest::newRow("T37=300") << "012d"
                             << "reads 301 and not 300";
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

QTEST_APPLESS_MAIN(TestReadBack)
#include "test_read_back.moc"
