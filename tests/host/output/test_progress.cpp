// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What is told of long work: how far it is, how fast, how long yet.

#include "host/output/progress.h"

#include "test_class.h"

#include <QtTest>

using namespace host;

class TestProgress : public QObject
{
    Q_OBJECT

private slots:
    void rateAndTimeLeftAreToldOnceTheyAreKnown_data();
    void rateAndTimeLeftAreToldOnceTheyAreKnown();
    void whatAnEarlierRunHasDoneIsNoRate();
    void theEndIsSummedUp();
};

void TestProgress::rateAndTimeLeftAreToldOnceTheyAreKnown_data()
{
    QTest::addColumn<int>("done");
    QTest::addColumn<int>("milliseconds");
    QTest::addColumn<QString>("text");
    QTest::newRow("at the beginning") << 0 << 0 << "VB0..VB999: 0 of 1000 bytes, 0 %";
    QTest::newRow("too early for a rate") << 222 << 999 << "VB0..VB999: 222 of 1000 bytes, 22 %";
    QTest::newRow("under way") << 200 << 2000 << "VB0..VB999: 200 of 1000 bytes, 20 %, 100 bytes/s, 8 s left";
    QTest::newRow("slow") << 10 << 4000 << "VB0..VB999: 10 of 1000 bytes, 1 %, 2.5 bytes/s, 6 min 36 s left";
    QTest::newRow("nothing done for long") << 0 << 60000 << "VB0..VB999: 0 of 1000 bytes, 0 %";
    QTest::newRow("all") << 1000 << 2000 << "VB0..VB999: 1000 of 1000 bytes, 100 %, 500 bytes/s, 0 s left";
}

void TestProgress::rateAndTimeLeftAreToldOnceTheyAreKnown()
{
    QFETCH(int, done);
    QFETCH(int, milliseconds);
    QTEST(progressText({"VB0..VB999", "bytes", 1000, done, 0}, milliseconds), "text");
}

void TestProgress::whatAnEarlierRunHasDoneIsNoRate()
{
    QCOMPARE(progressText({"VB0..VB999", "bytes", 1000, 900, 800}, 10000),
             QString("VB0..VB999: 900 of 1000 bytes, 90 %, 10 bytes/s, 10 s left"));
}

void TestProgress::theEndIsSummedUp()
{
    QCOMPARE(summaryText({"VB0..VB999", "bytes", 1000, 1000, 800}, 1600),
             QString("VB0..VB999: 200 bytes in 1.6 s, 125 bytes/s"));
    QCOMPARE(summaryText({"VB0..VB999", "bytes", 1000, 1000, 0}, 100000),
             QString("VB0..VB999: 1000 bytes in 100.0 s, 10 bytes/s"));
    QCOMPARE(summaryText({"T0..T2", "bytes", 6, 6, 0}, 0), QString("T0..T2: 6 bytes in 0.0 s, 6000 bytes/s"));
}

TEST_CLASS(TestProgress)
#include "test_progress.moc"
