// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// From an item to the driver's requests, and from their results back to the item's bytes.

#include "host/driver/read_plan.h"

#include "hex.h"
#include "host/items/memory_range.h"
#include "test_class.h"
#include "tests/host/support/command_text.h"
#include "tests/host/support/failure_of.h"

#include <QtTest>

using namespace host;

namespace {

QString planText(const QString &itemText)
{
    QStringList texts;
    for (const PlannedRequest &request : planRead(parseItem(itemText)).requests)
        texts << commandText(request.command);
    return texts.join(", ");
}

// The item's bytes when the driver hands back these, one array per request.
QString resultOf(const QString &itemText, QList<QByteArray> driverResults)
{
    const Item item = parseItem(itemText);
    QByteArray places;
    for (const PlannedRequest &request : planRead(item).requests)
        places += placeBytes(request, driverResults.takeFirst());
    return hex(valueBytes(item, places));
}

} // namespace

class TestReadPlan : public QObject
{
    Q_OBJECT

private slots:
    void itemsBecomeRequests_data();
    void itemsBecomeRequests();
    void resultsComeOutInTheControllersOrder_data();
    void resultsComeOutInTheControllersOrder();
    void resultsOfSeveralRequestsAreJoined();
    void aResultOfAnotherLengthIsABrokenAnswer();
    void aBlockIsWhatOneAnswerCarries_data();
    void aBlockIsWhatOneAnswerCarries();
};

void TestReadPlan::itemsBecomeRequests_data()
{
    QTest::addColumn<QString>("item");
    QTest::addColumn<QString>("requests");
    const auto row = [](const char *item, const char *requests) {
        QTest::newRow(item) << QString(item) << QString(requests);
    };
    row("VB100*4", "bytes VB100*4");
    row("VB100:u16*2", "words VB100*2");
    row("VW100:f32", "dwords VW100*1");
    row("VD100:u16*2", "words VD100*2");
    row("VD100:hex", "dwords VD100*1");
    row("AIW4:hex*3", "words AIW4*3");

    // Lengths that are no whole number of the address's elements are asked for in bytes.
    row("VW100:u8*3", "bytes VB100*3");
    row("VD100:u16*3", "words VB100*3");
    row("SMW28:str*5", "bytes SMB28*5");

    // One frame carries 222 bytes: 111 words, 55 double words.
    row("VB0*222", "bytes VB0*222");
    row("VB0*223", "bytes VB0*222, bytes VB222*1");
    row("VW0*112", "words VW0*111, words VW222*1");
    row("VD0*111", "dwords VD0*55, dwords VD220*55, dwords VD440*1");
    row("VD0:u8*224", "bytes VB0*222, bytes VB222*2");
    row("VB10:u32*56", "dwords VB10*55, dwords VB230*1");

    // Records of 5, 3 and 5 bytes.
    row("T0*45", "words T0*44, words T44*1");
    row("C10*75", "words C10*74, words C84*1");
    row("HC0*45", "dwords HC0*44, dwords HC44*1");
    row("T0:bool*45", "bits T0*44, bits T44*1");

    row("V10.3", "bits V10.3*1");
    row("V10.3*5", "bits V10.3*5");
    row("V10.0*16", "bits V10.0*16");
    row("V10.7*10", "bytes VB10*3");
    row("V10.6*3", "bytes VB10*2");
    row("SM0.4*8", "bytes SMB0*2");
    row("V0.0*1776", "bits V0.0*1776");
    row("V0.0*1777", "bytes VB0*222, bytes VB222*1");
}

void TestReadPlan::itemsBecomeRequests()
{
    QFETCH(QString, item);
    QTEST(planText(item), "requests");
}

void TestReadPlan::resultsComeOutInTheControllersOrder_data()
{
    QTest::addColumn<QString>("item");
    QTest::addColumn<QString>("driverResult");
    QTest::addColumn<QString>("bytesOfItem");
    const auto row = [](const char *item, const char *driverResult, const char *bytesOfItem) {
        QTest::newRow(item) << QString(item) << QString(driverResult) << QString(bytesOfItem);
    };
    row("VB100*4", "11223344", "11223344");
    row("VB100:u16*2", "11223344", "11223344");
    row("VW100*2", "22114433", "11223344");
    row("VW100:u32", "22114433", "11223344");
    row("VD100", "44332211", "11223344");
    row("VD100:u8*4", "44332211", "11223344");
    row("VW100:u8*3", "112233", "112233");
    row("AIW0", "2211", "1122");
    row("T37*2", "2c010100", "012c0001");
    row("C5:hex", "0500", "0005");
    row("HC0", "a0860100", "000186a0");
    row("C5:bool*2", "0100", "0100");
    row("V10.0*4", "01000101", "01000101");
    row("V10.6*4", "8001", "00010100");
    row("V10.7*10", "80ff00", "01010101010101010100");
}

void TestReadPlan::resultsComeOutInTheControllersOrder()
{
    QFETCH(QString, item);
    QFETCH(QString, driverResult);
    QTEST(resultOf(item, {bytes(qPrintable(driverResult))}), "bytesOfItem");
}

void TestReadPlan::resultsOfSeveralRequestsAreJoined()
{
    const QByteArray first(220, 'a');
    const QString joined = resultOf("VD0*56", {first, bytes("44 33 22 11")});
    QCOMPARE(joined.size(), 448);
    QCOMPARE(joined.right(12), QString("616111223344"));
}

void TestReadPlan::aResultOfAnotherLengthIsABrokenAnswer()
{
    QCOMPARE(failureOf([] { resultOf("T37*2", {bytes("2c 01")}); }).left(28),
             QString("5: 2 bytes came instead of 4"));
    QCOMPARE(failureOf([] { resultOf("VB0", {QByteArray()}); }).left(28),
             QString("5: 0 bytes came instead of 1"));
}

void TestReadPlan::aBlockIsWhatOneAnswerCarries_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("blocks");
    const auto row = [](const char *text, const char *blocks) {
        QTest::newRow(text) << QString(text) << QString(blocks);
    };
    row("VB10..VB231", "VB10..VB231");
    row("VB10..VB500", "VB10..VB231 VB232..VB453 VB454..VB500");
    row("VW0..VW222", "VW0..VW220 VW222..VW222");
    row("VD0..VD220", "VD0..VD216 VD220..VD220");
    row("T0..T99", "T0..T43 T44..T87 T88..T99");
    row("C0..C74", "C0..C73 C74..C74");
}

void TestReadPlan::aBlockIsWhatOneAnswerCarries()
{
    QFETCH(QString, text);
    QStringList blocks;
    for (const Item &block : readBlocks(parseRange(text)))
        blocks << rangeText(block);
    QTEST(blocks.join(' '), "blocks");
}

TEST_CLASS(TestReadPlan)
#include "test_read_plan.moc"
