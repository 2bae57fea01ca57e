// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A line with simulated stations: who hears what, how long it takes, and who is told.

#include "conversation.h"
#include "test_class.h"

#include <QtTest>

#include <chrono>

using namespace std::chrono_literals;

namespace {

const QString kReadVB100Of3 = "68 1b 1b 68 03 00 6c 32 01 00 00 00 01 00 0e 00 00"
                              "04 01 12 0a 10 02 00 01 00 01 84 00 03 20 8d 16";
const QString kPollOf3 = "10 03 00 5c 5f 16";
const QString kAnswerOf3 =
    "68 16 16 68 00 03 08 32 03 00 00 00 01 00 02 00 05 00 00 04 01 ff 04 00 08 33 8b 16";

sim::Simulator lineWithStation2()
{
    sim::Simulator line;
    line.addStation(2);
    return line;
}

} // namespace

class TestSimulatorLine : public QObject
{
    Q_OBJECT

private slots:
    void everyStationHasItsOwnMemory();
    void everyStationOwesItsOwnAnswer();
    void stationThatIsNotThereIsSilent();
    void newStationTakesTheOldOnesPlace();
    void clockStandsUntilItIsMoved();
    void withoutAPaceNothingIsEverDue();
    void everyByteTakesItsTime();
    void requestTakesItsTimeToo();
    void everythingPassesTheLineOneAfterTheOther();
    void turnaroundComesBeforeEveryReply();
    void silenceEndsABegunFrame();
    void wholeFramesMayFollowAfterAnySilence();
    void trafficIsTold();
    void lateTrafficIsToldWhenItBegins();
    void liveValuesFollowTheClock();
    void writtenLiveValueIsOverwritten();
};

void TestSimulatorLine::everyStationHasItsOwnMemory()
{
    sim::Simulator line;
    line.addStation(2);
    line.addStation(3).memory().bytes(sim::kAreaV)[100] = 0x33;
    QCOMPARE(say(line, kReadVB100), plain("e5"));
    QCOMPARE(say(line, kPoll), plain(kAnswerVB100));
    QCOMPARE(say(line, kReadVB100Of3), plain("e5"));
    QCOMPARE(say(line, kPollOf3), plain(kAnswerOf3));
}

void TestSimulatorLine::everyStationOwesItsOwnAnswer()
{
    sim::Simulator line;
    line.addStation(2);
    line.addStation(3).memory().bytes(sim::kAreaV)[100] = 0x33;
    QCOMPARE(say(line, kReadVB100 + kReadVB100Of3), plain("e5 e5"));
    QCOMPARE(say(line, kPollOf3 + kPoll), plain(kAnswerOf3 + kAnswerVB100));
}

void TestSimulatorLine::stationThatIsNotThereIsSilent()
{
    sim::Simulator line = lineWithStation2();
    QCOMPARE(say(line, kReadVB100Of3), QString());
    QCOMPARE(say(line, kPollOf3), QString());
    QVERIFY(line.station(3) == nullptr);
}

void TestSimulatorLine::newStationTakesTheOldOnesPlace()
{
    sim::Simulator line = lineWithStation2();
    line.addStation(2, sim::Memory());
    QCOMPARE(int(line.station(2)->memory().bytes(sim::kAreaV)[100]), 0);
}

void TestSimulatorLine::clockStandsUntilItIsMoved()
{
    sim::Simulator line(5s);
    QVERIFY(line.now() == 5s);
    say(line, kPoll);
    line.advance(1ms);
    QVERIFY(line.now() == 5001ms);
    line.advanceTo(4s);
    QVERIFY(line.now() == 5001ms);
}

void TestSimulatorLine::withoutAPaceNothingIsEverDue()
{
    sim::Simulator line = lineWithStation2();
    say(line, kReadVB100);
    say(line, kPoll);
    QVERIFY(!line.nextDue());
}

// 1100 baud: 10 ms a byte.
void TestSimulatorLine::everyByteTakesItsTime()
{
    sim::Simulator line = lineWithStation2();
    say(line, kReadVB100);
    line.setPace(1100);
    QCOMPARE(say(line, kPoll), QString());
    QVERIFY(line.nextDue() == sim::Time(60ms + 10ms)); // the poll's 6 bytes, the answer's first one
    QCOMPARE(hex(line.advance(69ms)), QString());
    QCOMPARE(hex(line.advance(1ms)), plain("68"));
    QCOMPARE(hex(line.advance(35ms)), plain("16 16 68"));
    QCOMPARE(hex(line.advance(234ms)), plain(kAnswerVB100).mid(8, 46));
    QCOMPARE(hex(line.advance(1ms)), plain("16"));
    QVERIFY(!line.nextDue());
}

// 9600 baud: 1.1458 ms a byte; 33 bytes of request and 1 of acknowledgement 38.958 ms.
void TestSimulatorLine::requestTakesItsTimeToo()
{
    sim::Simulator line = lineWithStation2();
    line.setPace(9600);
    QCOMPARE(say(line, kReadVB100), QString());
    QCOMPARE(hex(line.advance(38957us)), QString());
    QCOMPARE(hex(line.advance(2us)), plain("e5"));
}

// 10 ms a byte: 33 bytes of request, 1 of acknowledgement, 6 of the poll that was sent before it came, the
// answer.
void TestSimulatorLine::everythingPassesTheLineOneAfterTheOther()
{
    sim::Simulator line = lineWithStation2();
    line.setPace(1100);
    QCOMPARE(say(line, kReadVB100), QString());
    QCOMPARE(say(line, kPoll), QString());
    QCOMPARE(hex(line.advance(339ms)), QString());
    QCOMPARE(hex(line.advance(1ms)), plain("e5"));
    QCOMPARE(hex(line.advance(69ms)), QString());
    QCOMPARE(hex(line.advance(1ms)), plain("68"));
}

void TestSimulatorLine::turnaroundComesBeforeEveryReply()
{
    sim::Simulator line = lineWithStation2();
    line.setTurnaround(30ms);
    QCOMPARE(say(line, kReadVB100), QString());
    QVERIFY(line.nextDue() == sim::Time(30ms));
    QCOMPARE(hex(line.advance(29ms)), QString());
    QCOMPARE(hex(line.advance(1ms)), plain("e5"));
    QCOMPARE(say(line, kPoll), QString());
    QCOMPARE(hex(line.advance(30ms)), plain(kAnswerVB100));
}

void TestSimulatorLine::silenceEndsABegunFrame()
{
    sim::Simulator line = lineWithStation2();
    QCOMPARE(say(line, "68 ff ff 68 02 00"), QString());
    QVERIFY(line.nextDue() == sim::Time(200ms));
    line.advance(199ms);
    QCOMPARE(say(line, kReadVB100), QString()); // still taken as part of the long frame
    line.advance(200ms);
    QCOMPARE(say(line, kReadVB100), plain("e5"));
}

void TestSimulatorLine::wholeFramesMayFollowAfterAnySilence()
{
    sim::Simulator line = lineWithStation2();
    QCOMPARE(say(line, kReadVB100), plain("e5"));
    line.advance(24h);
    QCOMPARE(say(line, kPoll), plain(kAnswerVB100));
}

void TestSimulatorLine::trafficIsTold()
{
    sim::Simulator line = lineWithStation2();
    QStringList told;
    line.setListener([&told](sim::Time time, sim::Traffic traffic, const sim::Bytes &bytes) {
        const char *names[] = {" received ", " sent ", " skipped "};
        told += QString::number(time / 1ms) + names[int(traffic)] + hex(bytes);
    });
    say(line, "00" + kPoll + kPoll);
    line.advance(5ms);
    say(line, "10 03 00 5c 5f 16");
    say(line, "ee");
    say(line, "68 ff");
    line.advance(200ms);
    QCOMPARE(told,
             QStringList({"0 skipped 00", "0 received 1002005c5e16", "0 sent e5", "0 received 1002005c5e16",
                          "0 sent e5", "5 received 1003005c5f16", "5 skipped ee", "205 skipped 68ff"}));
}

void TestSimulatorLine::lateTrafficIsToldWhenItBegins()
{
    sim::Simulator line = lineWithStation2();
    QStringList told;
    line.setListener([&told](sim::Time time, sim::Traffic traffic, const sim::Bytes &bytes) {
        if (traffic == sim::Traffic::Sent)
            told += QString::number(time / 1ms) + " " + hex(bytes);
    });
    line.setPace(1100);
    line.addFault(sim::parseFault("noise-ack=1"));
    line.addFault(sim::parseFault("late-ack=100"));
    say(line, kReadVB100);
    line.advance(439ms); // 33 bytes and 100 ms are 430 ms
    QCOMPARE(told, QStringList());
    line.advance(1ms);
    QCOMPARE(told.size(), 1);
    QVERIFY2(told.front().startsWith("440 ") && told.front().endsWith("e5"), qPrintable(told.front()));
    line.advance(1s);
    QCOMPARE(told.size(), 1);
}

void TestSimulatorLine::liveValuesFollowTheClock()
{
    sim::Simulator line(100s);
    sim::Station &station = line.addStation(2);
    station.addLiveValue({"VB100", "ramp:0..100/10s"});
    station.addLiveValue({"VD104", "clock"});
    line.advance(4s);
    QCOMPARE(int(station.memory().bytes(sim::kAreaV)[100]), 40);
    QCOMPARE(int(station.memory().bytes(sim::kAreaV)[107]), 104);
    QCOMPARE(say(line, kReadVB100), plain("e5"));
    QCOMPARE(say(line, kPoll).mid(50, 2), QString("28"));
}

void TestSimulatorLine::writtenLiveValueIsOverwritten()
{
    sim::Simulator line;
    sim::Station &station = line.addStation(2);
    station.addLiveValue({"MB0", "ramp:7..7/1s"});
    QCOMPARE(writeItems(line, "12 0a 10 02 0001 0000 83 000000", "00 04 0008 5a"), plain("ff"));
    QCOMPARE(readItems(line, "12 0a 10 02 0001 0000 83 000000"), plain("ff 04 0008 07"));
}

TEST_CLASS(TestSimulatorLine)
#include "test_line.moc"
