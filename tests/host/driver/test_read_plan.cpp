// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// From an item to the driver's requests, and from their results back to the item's bytes.

#include "host/driver/read_plan.h"

#include "hex.h"
#include "host/items/raw_item.h"
#include "host/items/memory_range.h"
#include "test_class.h"
#include "tests/host/support/command_text.h"
#include "tests/host/support/failure_of.h"

#include <QtTest>

#include <optional>
#include <vector>

using namespace host;

namespace {

RequestCost costAt(int baud, qint64 answerTime = kUsualAnswerTime)
{
    return requestCost({baud, kEvenParity, 8, 1}, answerTime);
}

std::vector<Item> itemsOf(const QString &texts)
{
    std::vector<Item> items;
    for (const QString &text : texts.split(' '))
        items.push_back(parseItem(text));
    return items;
}

// The requests for items at 9600 baud.
QString requestsFor(const QString &texts, const PlanLimits &limits = {}, const PlanHints &hints = {})
{
    QStringList requests;
    for (const PlannedRequest &request : planReads(itemsOf(texts), costAt(9600), limits, hints).requests)
        requests << request.text();
    return requests.join(", ");
}

// The pool of the bytes of the variable memory.
const PlanPool kVariables = {std::nullopt, "V", false};

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
    void aRawAddressIsOneRequestAsItIs_data();
    void aRawAddressIsOneRequestAsItIs();
    void rawAddressesStandBesideEachOtherUnmerged();
    void rawResultsOfAnotherLengthAreRefused();
    void aBlockIsWhatOneAnswerCarries_data();
    void aBlockIsWhatOneAnswerCarries();
    void aRequestCostsItsCharactersThePausesAndTheAnswer_data();
    void aRequestCostsItsCharactersThePausesAndTheAnswer();
    void neighboursComeTogether_data();
    void neighboursComeTogether();
    void itemsThatComeTogetherAreReadInBytes_data();
    void itemsThatComeTogetherAreReadInBytes();
    void aGapIsReadAsLongAsThatIsQuicker_data();
    void aGapIsReadAsLongAsThatIsQuicker();
    void aGapThatTakesAsLongAsARequestIsRead();
    void aPlanTakesTheTimeOfItsRequests();
    void withoutMergingEveryItemIsARequest();
    void aBlockBoundsTheBytesOfARequest_data();
    void aBlockBoundsTheBytesOfARequest();
    void anItemThatWasRefusedComesAlone();
    void aClosedPlaceIsNotReachedOver();
    void aPoolOfShortRequestsTakesNoItemApart();
    void itemsThatShareAPlace_data();
    void itemsThatShareAPlace();
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

void TestReadPlan::aRequestCostsItsCharactersThePausesAndTheAnswer_data()
{
    QTest::addColumn<int>("baud");
    QTest::addColumn<int>("parity");
    QTest::addColumn<int>("stopBits");
    QTest::addColumn<qint64>("character");
    QTest::addColumn<qint64>("request");
    const auto row = [](const char *name, int baud, int parity, int stopBits, qint64 character,
                        qint64 request) {
        QTest::newRow(name) << baud << parity << stopBits << character << request;
    };
    row("11 bits at 9600 baud", 9600, kEvenParity, 1, 1145833, 110770811);
    row("11 bits at 19200 baud", 19200, kEvenParity, 1, 572916, 72385372);
    row("11 bits at 187500 baud", 187500, kEvenParity, 1, 58666, 37930622);
    row("10 bits without parity", 9600, kNoParity, 1, 1041666, 103791622);
    row("12 bits with two stop bits", 9600, kOddParity, 2, 1250000, 117750000);
}

void TestReadPlan::aRequestCostsItsCharactersThePausesAndTheAnswer()
{
    QFETCH(int, baud);
    QFETCH(int, parity);
    QFETCH(int, stopBits);
    const RequestCost cost = requestCost({baud, ParityCode(parity), 8, stopBits}, 10'000'000);
    QTEST(cost.character, "character");
    QTEST(cost.request, "request");
    QCOMPARE(cost.of(3), cost.request + 3 * cost.character);
}

void TestReadPlan::neighboursComeTogether_data()
{
    QTest::addColumn<QString>("items");
    QTest::addColumn<QString>("requests");
    const auto row = [](const char *items, const char *requests) {
        QTest::newRow(items) << QString(items) << QString(requests);
    };
    QStringList words;
    for (int i = 0; i < 50; ++i)
        words << "VW" + QString::number(2 * i);
    QTest::newRow("50 words") << words.join(' ') << QString("VB0*100");

    row("VB0", "VB0");
    row("V10.3", "VB10");
    row("V10.3*5 V11.0", "VB10*2");
    row("VB0 VW2 VD8", "VB0*12");
    row("VB0*4 VW2 VD1", "VB0*5");
    row("VB7 VB7 VB7", "VB7");
    row("VB0*20 VW3 V9.1", "VB0*20");
    row("T37 T39 T37:bool T36:bool", "T37*3, T36*2");
    row("C5 C7", "C5*3");
    row("HC2 HC0", "HC0*3");
    row("AIW4 AIW0", "AIW0*3");
    row("AQW0 AIW0", "AQW0, AIW0");
    row("VB0 MB1 IB0 QB1 SMB0 SB1", "VB0, MB1, IB0, QB1, SMB0, SB1");
    row("VB0@3 VB1 VB1@3 VB2 T37*2@3", "VB0*2@3, VB1*2, T37*2@3");
    row("VB1000 VB0 VB1001 VB1", "VB1000*2, VB0*2");

    // What one frame carries.
    row("VB0*111 VB111*111", "VB0*222");
    row("VB0*111 VB111*112", "VB0*111, VB111*112");
    row("T0*22 T22*22", "T0*44");
    row("T0*22 T22*23", "T0*22, T22*23");
    row("C0*37 C37*37", "C0*74");
    row("C0*37 C37*38", "C0*37, C37*38");
    row("AIW0*56 AIW112*55", "AIW0*111");
    row("AIW0*56 AIW112*56", "AIW0*56, AIW112*56");

    // Of two ways that take the same time the one with the longer first request is taken.
    row("VB0*74 VB74*74 VB148*74 VB222*74", "VB0*222, VB222*74");
    // The rest of a long item takes its neighbours along.
    row("VB0*300 VW300", "VB0*222, VB222*80");
}

void TestReadPlan::neighboursComeTogether()
{
    QFETCH(QString, items);
    QTEST(requestsFor(items), "requests");
}

void TestReadPlan::itemsThatComeTogetherAreReadInBytes_data()
{
    QTest::addColumn<QString>("items");
    QTest::addColumn<QString>("command");
    const auto row = [](const char *items, const char *command) {
        QTest::newRow(items) << QString(items) << QString(command);
    };
    row("VW0 VW2", "bytes VB0*4");
    row("VD0 V4.1", "bytes VB0*5");
    row("V0.0 V0.1", "bytes VB0*1");
    row("T37 T38:hex", "words T37*2");
    row("T37:bool T39:bool", "bits T37*3");
    row("C5 C6", "words C5*2");
    row("HC0 HC1", "dwords HC0*2");
    row("AIW0 AIW2:u16", "words AIW0*2");
}

void TestReadPlan::itemsThatComeTogetherAreReadInBytes()
{
    QFETCH(QString, items);
    const ReadPlan plan = planReads(itemsOf(items), costAt(9600));
    QCOMPARE(int(plan.requests.size()), 1);
    QTEST(commandText(plan.requests.front().command), "command");
}

void TestReadPlan::aGapIsReadAsLongAsThatIsQuicker_data()
{
    QTest::addColumn<int>("baud");
    QTest::addColumn<int>("answerTime"); // milliseconds
    QTest::addColumn<QString>("near");
    QTest::addColumn<QString>("far");
    const auto row = [](const char *name, int baud, int answerTime, const char *near, const char *far) {
        QTest::newRow(name) << baud << answerTime << QString(near) << QString(far);
    };
    // A request more costs 67 characters, 24 ms and the answer time.
    row("96 characters at 9600 baud", 9600, 10, "VB0 VB97", "VB0 VB98");
    row("87 when the answer is there at once", 9600, 0, "VB0 VB88", "VB0 VB89");
    row("126 at 19200 baud", 19200, 10, "VB0 VB127", "VB0 VB128");
    row("whole frames at 187500 baud", 187500, 10, "VB0 VB221", "VB0 VB222");
    row("19 timers of 5 characters", 9600, 10, "T0 T20", "T0 T21");
    row("32 counters of 3 characters", 9600, 10, "C0 C33", "C0 C34");
    row("48 analogue words", 9600, 10, "AIW0 AIW98", "AIW0 AIW100");
}

void TestReadPlan::aGapThatTakesAsLongAsARequestIsRead()
{
    const RequestCost cost = {1, 50};
    QCOMPARE(int(planReads(itemsOf("VB0 VB51"), cost).requests.size()), 1);
    QCOMPARE(int(planReads(itemsOf("VB0 VB52"), cost).requests.size()), 2);
}

void TestReadPlan::aGapIsReadAsLongAsThatIsQuicker()
{
    QFETCH(int, baud);
    QFETCH(int, answerTime);
    QFETCH(QString, near);
    QFETCH(QString, far);
    const RequestCost cost = costAt(baud, qint64(answerTime) * 1'000'000);
    QCOMPARE(int(planReads(itemsOf(near), cost).requests.size()), 1);
    QCOMPARE(int(planReads(itemsOf(far), cost).requests.size()), 2);
}

void TestReadPlan::aPlanTakesTheTimeOfItsRequests()
{
    const RequestCost cost = costAt(9600);
    QCOMPARE(planReads(itemsOf("VB0*60 VB60*40"), cost).time(cost), qint64(225354111));
    QCOMPARE(planReads(itemsOf("VB0 T0*2"), cost).time(cost), qint64(2 * 110770811 + 11 * 1145833));
    QCOMPARE(planReads({}, cost).time(cost), qint64(0));
}

void TestReadPlan::withoutMergingEveryItemIsARequest()
{
    QCOMPARE(requestsFor("VB0 VB1 VB0 VB0*223", {false, kFrameData}),
             QString("VB0, VB1, VB0, VB0*222, VB222"));
}

void TestReadPlan::aBlockBoundsTheBytesOfARequest_data()
{
    QTest::addColumn<int>("block");
    QTest::addColumn<QString>("items");
    QTest::addColumn<QString>("requests");
    const auto row = [](int block, const char *items, const char *requests) {
        QTest::newRow(qPrintable(QString("%1: %2").arg(block).arg(items)))
            << block << QString(items) << QString(requests);
    };
    row(32, "VB0*40", "VB0*32, VB32*8");
    row(32, "VW0*8 VW16*8 VW32", "VB0*32, VB32*2");
    row(33, "VW0*17", "VB0*32, VB32*2");
    row(32, "T0*16 T16", "T0*16, T16");
    row(32, "T0:bool*30 T30:bool*3", "T0*30, T30*3");
    row(1, "VD0 VB4", "VB0*4, VB4");
    row(1, "HC0*2", "HC0, HC1");
}

void TestReadPlan::aBlockBoundsTheBytesOfARequest()
{
    QFETCH(int, block);
    QFETCH(QString, items);
    QTEST(requestsFor(items, {true, block}), "requests");
}

void TestReadPlan::anItemThatWasRefusedComesAlone()
{
    PlanHints hints;
    hints.separateItems = {1};
    QCOMPARE(requestsFor("VB0 VB1 VB2", {}, hints), QString("VB0*3, VB1"));
}

void TestReadPlan::aClosedPlaceIsNotReachedOver()
{
    PlanHints hints;
    hints.closedPlaces[kVariables] = {{2, 4}};
    QCOMPARE(requestsFor("VB0*2 VB4 VB5", {}, hints), QString("VB0*2, VB4*2"));
    QCOMPARE(requestsFor("VB0*3 VB3", {}, hints), QString("VB0*3, VB3"));
    QCOMPARE(requestsFor("VB0 VB1 VB2 VB5 VB3", {}, hints), QString("VB0*3, VB3*3"));
    QCOMPARE(requestsFor("VB0*6 VB1", {}, hints), QString("VB0*6"));
    QCOMPARE(requestsFor("VB0*2@3 VB4@3 MB0 MB4", {}, hints), QString("VB0*5@3, MB0*5"));
    hints.closedPlaces[kVariables] = {{1, 20}, {5, 8}};
    QCOMPARE(requestsFor("VB0*5 VB5*3 VB19", {}, hints), QString("VB0*5, VB5*3, VB19"));
}

void TestReadPlan::aPoolOfShortRequestsTakesNoItemApart()
{
    PlanHints hints;
    hints.longestRequests[kVariables] = 4;
    QCOMPARE(requestsFor("VB0*6 VB6*2 VB8*2 VB10 MB0*3 MB3*3", {}, hints),
             QString("VB0*6, VB6*4, VB10, MB0*6"));
}

void TestReadPlan::itemsThatShareAPlace_data()
{
    QTest::addColumn<QString>("one");
    QTest::addColumn<QString>("other");
    QTest::addColumn<bool>("isShared");
    const auto row = [](const char *one, const char *other, bool isShared) {
        QTest::newRow(qPrintable(QString("%1 and %2").arg(one, other)))
            << QString(one) << QString(other) << isShared;
    };
    row("VB0", "VB0", true);
    row("VB0*2", "VW1", true);
    row("VB0*2", "VW2", false);
    row("V1.7*2", "VB2", true);
    row("V1.0*8", "VB2", false);
    row("VB0", "MB0", false);
    row("T1", "T1:bool", true);
    row("T1*2", "T3", false);
    row("T1", "C1", false);
    row("VB0@3", "VB0", true);
    row("VB10*10", "VB0*11", true);
    row("VB10*10", "VB0*10", false);
    row("VB10*10", "VB0*30", true);
}

void TestReadPlan::itemsThatShareAPlace()
{
    QFETCH(QString, one);
    QFETCH(QString, other);
    QFETCH(bool, isShared);
    TakenPlaces taken;
    QVERIFY(taken.take(parseItem(one)));
    QCOMPARE(taken.take(parseItem(other)), !isShared);
    TakenPlaces turned;
    QVERIFY(turned.take(parseItem(other)));
    QCOMPARE(turned.take(parseItem(one)), !isShared);
}

void TestReadPlan::aRawAddressIsOneRequestAsItIs_data()
{
    QTest::addColumn<QString>("item");
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("driverResult");
    QTest::addColumn<QString>("bytesOfItem");
    const auto row = [](const char *item, const char *command, const char *driverResult,
                        const char *bytesOfItem) {
        QTest::newRow(item) << item << command << driverResult << bytesOfItem;
    };
    row("N1:i32", "dwords N1*1", "d2040000", "000004d2");
    row("V9:f32*2", "dwords V9*2", "0000803f00000040", "3f80000040000000");
    row("40001:u16*2", "words 40001*2", "01020304", "02010403");
    row("x y:str*3", "bytes x y*3", "616263", "616263");
    row("x y:string*3", "bytes x y*4", "02616263", "02616263");
    row("N1:u64*2", "bytes N1*16", "000102030405060708090a0b0c0d0e0f", "000102030405060708090a0b0c0d0e0f");
    row("N1:u32:swap", "dwords N1*1", "33441122", "22114433");
    row("VB100:hex*300", "bytes VB100*300", QByteArray(600, 'a').constData(),
        QByteArray(600, 'a').constData());
    row("b:bool", "bits b*1", "01", "01");
    row("b:bool*10", "bits b*10", "0581", "01000100000000000100"); // eight to a byte
    row("b:bool*2", "bits b*2", "0001", "0001");                   // one to a byte
}

void TestReadPlan::aRawAddressIsOneRequestAsItIs()
{
    QFETCH(QString, item);
    QFETCH(QString, driverResult);
    const Item raw = parseItem(item, Notation::Raw);
    const ReadPlan plan = planRead(raw);
    QCOMPARE(int(plan.requests.size()), 1);
    QTEST(commandText(plan.requests.front().command), "command");
    QCOMPARE(plan.requests.front().text(), raw.address.text());
    QTEST(hex(placeBytes(plan.requests.front(), bytes(qPrintable(driverResult)))), "bytesOfItem");
}

void TestReadPlan::rawAddressesStandBesideEachOtherUnmerged()
{
    std::vector<Item> items;
    for (const char *text : {"VB1:u8", "VB0:u8*2@5", "VB1:u8"})
        items.push_back(parseItem(text, Notation::Raw));
    const ReadPlan plan = planReads(items, costAt(9600));
    QCOMPARE(int(plan.requests.size()), 3);
    QCOMPARE(plan.requests.at(1).pool.station.value_or(-1), 5);
    TakenPlaces taken;
    QVERIFY(taken.take(items.at(0)));
    QVERIFY(taken.take(items.at(1)));
    QVERIFY(!taken.take(items.at(2)));
}

void TestReadPlan::rawResultsOfAnotherLengthAreRefused()
{
    const PlannedRequest request = planRead(parseItem("N1:i32*2", Notation::Raw)).requests.front();
    QCOMPARE(failureOf([&] { placeBytes(request, bytes("d2040000")); }).left(47),
             QString("5: the driver handed over 4 bytes instead of 8 "));
}

TEST_CLASS(TestReadPlan)
#include "test_read_plan.moc"
