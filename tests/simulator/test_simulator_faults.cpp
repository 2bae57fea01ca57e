// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Misbehaviour that can be asked for.

#include "conversation.h"

#include <QtTest>

namespace {

const QString kReadVB100 = "68 1b 1b 68 02 00 6c 32 01 00 00 00 01 00 0e 00 00"
                           "04 01 12 0a 10 02 00 01 00 01 84 00 03 20 8c 16";
const QString kWriteMB0 = "68 20 20 68 02 00 6c 32 01 00 00 00 01 00 0e 00 05"
                          "05 01 12 0a 10 02 00 01 00 00 83 00 00 00"
                          "00 04 00 08 5a d3 16";
const QString kPoll = "10 02 00 5c 5e 16";
const QString kAnswerVB100 =
    "68 16 16 68 00 02 08 32 03 00 00 00 01 00 02 00 05 00 00 04 01 ff 04 00 08 11 68 16";

sim::Station faultyStation(const char *fault)
{
    sim::Station station(2);
    station.addFault(sim::parseFault(fault).value());
    return station;
}

} // namespace

class TestSimulatorFaults : public QObject
{
    Q_OBJECT

private slots:
    void faultChangesTheConversation_data();
    void faultChangesTheConversation();
    void onlyARefusedRequestIsNotDone_data();
    void onlyARefusedRequestIsNotDone();
    void unansweredPollTakesTheAnswer();
    void notReadyStationAnswersTheSecondPoll();
    void hardwareFaultConcernsEveryItem();
    void ignoredWritesAreAnsweredAsTheOthers();
    void faultConcernsTheNumberedRequestOnly();
    void onlyRequestsForTheStationCount();
    void firstFaultOfARequestWins();
    void everyFaultHasAName();
    void faultTextIsRead();
    void badFaultTextIsRefused_data();
    void badFaultTextIsRefused();
};

void TestSimulatorFaults::faultChangesTheConversation_data()
{
    QTest::addColumn<QString>("afterRequest");
    QTest::addColumn<QString>("afterPoll");
    QTest::newRow("no-resource") << "10 00 02 02 04 16"
                                 << "e5";
    QTest::newRow("not-active") << "10 00 02 03 05 16"
                                << "e5";
    QTest::newRow("silent") << ""
                            << "e5";
    QTest::newRow("wrong-ack") << "00"
                               << "e5";
    QTest::newRow("no-answer") << "e5"
                               << "";
    QTest::newRow("not-ready") << "e5"
                               << "e5";
    QTest::newRow("truncated")
        << "e5"
        << "68 16 16 68 00 02 08 32 03 00 00 00 01 00 02 00 05 00 00 04 01 ff 04 00 08";
    QTest::newRow("bad-checksum")
        << "e5"
        << "68 16 16 68 00 02 08 32 03 00 00 00 01 00 02 00 05 00 00 04 01 ff 04 00 08 11 69 16";
    QTest::newRow("bad-end")
        << "e5"
        << "68 16 16 68 00 02 08 32 03 00 00 00 01 00 02 00 05 00 00 04 01 ff 04 00 08 11 68 17";
    QTest::newRow("wrong-source")
        << "e5"
        << "68 16 16 68 00 03 08 32 03 00 00 00 01 00 02 00 05 00 00 04 01 ff 04 00 08 11 69 16";
    QTest::newRow("stale-reference")
        << "e5"
        << "68 16 16 68 00 02 08 32 03 00 00 00 00 00 02 00 05 00 00 04 01 ff 04 00 08 11 67 16";
    QTest::newRow("error-class") << "e5"
                                 << "68 0f 0f 68 00 02 08 32 02 00 00 00 01 00 00 00 00 81 04 c4 16";
    QTest::newRow("hardware-fault")
        << "e5"
        << "68 15 15 68 00 02 08 32 03 00 00 00 01 00 02 00 04 00 00 04 01 01 00 00 00 4c 16";
}

void TestSimulatorFaults::faultChangesTheConversation()
{
    QFETCH(QString, afterRequest);
    QFETCH(QString, afterPoll);
    sim::Station station = faultyStation(QTest::currentDataTag());
    QCOMPARE(say(station, kReadVB100), plain(afterRequest));
    QCOMPARE(say(station, kPoll), plain(afterPoll));
}

void TestSimulatorFaults::onlyARefusedRequestIsNotDone_data()
{
    QTest::addColumn<int>("mb0");
    for (const char *name : {"no-resource", "not-active", "silent", "wrong-ack", "error-class",
                             "hardware-fault", "ignore-writes"})
        QTest::newRow(name) << 0;
    for (const char *name : {"no-answer", "not-ready", "truncated", "bad-checksum", "bad-end", "wrong-source",
                             "stale-reference"})
        QTest::newRow(name) << 0x5A;
}

void TestSimulatorFaults::onlyARefusedRequestIsNotDone()
{
    QFETCH(int, mb0);
    sim::Station station = faultyStation(QTest::currentDataTag());
    say(station, kWriteMB0);
    QCOMPARE(int(station.memory().bytes(sim::kAreaM)[0]), mb0);
}

void TestSimulatorFaults::unansweredPollTakesTheAnswer()
{
    sim::Station station = faultyStation("no-answer");
    say(station, kReadVB100);
    QCOMPARE(say(station, kPoll), QString());
    QCOMPARE(say(station, kPoll), plain("e5"));
}

void TestSimulatorFaults::notReadyStationAnswersTheSecondPoll()
{
    sim::Station station = faultyStation("not-ready");
    say(station, kReadVB100);
    QCOMPARE(say(station, kPoll), plain("e5"));
    QCOMPARE(say(station, kPoll), plain(kAnswerVB100));
    QCOMPARE(say(station, kPoll), plain("e5"));
}

void TestSimulatorFaults::hardwareFaultConcernsEveryItem()
{
    sim::Station station = faultyStation("hardware-fault");
    const QString items = "12 0a 10 01 0001 0000 83 000000"
                          "12 0a 10 01 0001 0000 83 000001";
    QCOMPARE(writeItems(station, items, "00 03 0001 01 00  00 03 0001 01"), plain("01 01"));
    QCOMPARE(readItems(station, items), plain("01 00 0000  01 00 0000"));
}

void TestSimulatorFaults::ignoredWritesAreAnsweredAsTheOthers()
{
    sim::Station station = faultyStation("ignore-writes");
    const QString items = "12 0a 10 01 0001 0000 83 000000"
                          "12 0a 10 01 0001 0000 83 000800";
    QCOMPARE(writeItems(station, items, "00 03 0001 01 00  00 03 0001 01"), plain("ff 05"));
    QCOMPARE(readItems(station, items.left(31)), plain("ff 03 0001 00"));
    QCOMPARE(say(station, kReadVB100), plain("e5"));
    QCOMPARE(say(station, kPoll), plain(kAnswerVB100));
}

void TestSimulatorFaults::faultConcernsTheNumberedRequestOnly()
{
    sim::Station station = faultyStation("no-resource@2");
    QCOMPARE(say(station, kReadVB100), plain("e5"));
    QCOMPARE(say(station, kReadVB100), plain("10 00 02 02 04 16"));
    QCOMPARE(say(station, kReadVB100), plain("e5"));
}

void TestSimulatorFaults::onlyRequestsForTheStationCount()
{
    sim::Station station = faultyStation("no-resource@2");
    say(station, kReadVB100);
    say(station, kPoll);
    say(station, "68 07 07 68 03 00 6c 32 01 00 00 a2 16");
    say(station, plain(kReadVB100).replace("8c16", "8d16"));
    QCOMPARE(say(station, kReadVB100), plain("10 00 02 02 04 16"));
}

void TestSimulatorFaults::firstFaultOfARequestWins()
{
    sim::Station station = faultyStation("not-active@2");
    station.addFault(sim::parseFault("no-resource").value());
    QCOMPARE(say(station, kReadVB100), plain("10 00 02 02 04 16"));
    QCOMPARE(say(station, kReadVB100), plain("10 00 02 03 05 16"));
}

void TestSimulatorFaults::everyFaultHasAName()
{
    QCOMPARE(int(sim::faultNames().size()), int(sim::FaultKind::IgnoreWrites));
    for (const sim::FaultName &name : sim::faultNames())
        QVERIFY(sim::parseFault(name.name)->kind == name.kind);
}

void TestSimulatorFaults::faultTextIsRead()
{
    const std::optional<sim::Fault> always = sim::parseFault("silent");
    QVERIFY(always && always->kind == sim::FaultKind::Silent);
    QCOMPARE(always->request, 0u);
    const std::optional<sim::Fault> third = sim::parseFault("stale-reference@3");
    QVERIFY(third && third->kind == sim::FaultKind::StaleReference);
    QCOMPARE(third->request, 3u);
}

void TestSimulatorFaults::badFaultTextIsRefused_data()
{
    QTest::addColumn<QString>("text");
    for (const char *text : {"", "@1", "loud", "Silent", "silent ", "silent@", "silent@0", "silent@-1",
                             "silent@x", "silent@1x", "silent@1@2", "silent@99999999999"})
        QTest::newRow(text) << text;
}

void TestSimulatorFaults::badFaultTextIsRefused()
{
    QFETCH(QString, text);
    QVERIFY(!sim::parseFault(text.toStdString()));
}

QTEST_APPLESS_MAIN(TestSimulatorFaults)
#include "test_simulator_faults.moc"
