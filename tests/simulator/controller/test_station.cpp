// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The simulated station's turn-taking: acknowledgement, poll, answer, and when it keeps silent.

#include "conversation.h"
#include "test_class.h"

#include <QtTest>

#include <cstdint>

namespace {

// Reads of one byte, references 1 and 2.
const QString kReadVB101 = "68 1b 1b 68 02 00 6c 32 01 00 00 00 02 00 0e 00 00"
                           "04 01 12 0a 10 02 00 01 00 01 84 00 03 28 95 16";

const QString kAnswerVB101 =
    "68 16 16 68 00 02 08 32 03 00 00 00 02 00 02 00 05 00 00 04 01 ff 04 00 08 22 7a 16";

} // namespace

class TestSimulatorStation : public QObject
{
    Q_OBJECT

private slots:
    void answerComesOnceAndOnlyWhenPolled();
    void pollWithoutRequestIsAcknowledged();
    void pollWithTheFrameCountBitIsAnswered();
    void requestWithTheFrameCountBitIsAnswered();
    void newRequestTakesTheAnswersPlace();
    void anotherMasterGetsNoAnswerThatIsNotItsOwn();
    void answerGoesToTheMasterThatAsked();
    void framesForOtherStationsAreIgnored_data();
    void framesForOtherStationsAreIgnored();
    void answersOnTheLineAreIgnored();
    void damagedRequestLeavesThePendingAnswer();
    void otherServicesAreNotActive();
    void bytesMayComeOneByOne();
    void severalFramesMayComeAtOnce();
};

void TestSimulatorStation::answerComesOnceAndOnlyWhenPolled()
{
    sim::Station station(2);
    QCOMPARE(say(station, kReadVB100), plain("e5"));
    QCOMPARE(say(station, kPoll), plain(kAnswerVB100));
    QCOMPARE(say(station, kPoll), plain("e5"));
}

void TestSimulatorStation::pollWithoutRequestIsAcknowledged()
{
    sim::Station station(2);
    QCOMPARE(say(station, kPoll), plain("e5"));
}

void TestSimulatorStation::pollWithTheFrameCountBitIsAnswered()
{
    sim::Station station(2);
    say(station, kReadVB100);
    QCOMPARE(say(station, "10 02 00 7c 7e 16"), plain(kAnswerVB100));
}

void TestSimulatorStation::requestWithTheFrameCountBitIsAnswered()
{
    sim::Station station(2);
    QCOMPARE(say(station, "68 1b 1b 68 02 00 7c 32 01 00 00 00 01 00 0e 00 00"
                          "04 01 12 0a 10 02 00 01 00 01 84 00 03 20 9c 16"),
             plain("e5"));
    QCOMPARE(say(station, kPoll), plain(kAnswerVB100));
}

void TestSimulatorStation::newRequestTakesTheAnswersPlace()
{
    sim::Station station(2);
    QCOMPARE(say(station, kReadVB100), plain("e5"));
    QCOMPARE(say(station, kReadVB101), plain("e5"));
    QCOMPARE(say(station, kPoll), plain(kAnswerVB101));
    QCOMPARE(say(station, kPoll), plain("e5"));
}

void TestSimulatorStation::anotherMasterGetsNoAnswerThatIsNotItsOwn()
{
    sim::Station station(2);
    say(station, kReadVB100);
    QCOMPARE(say(station, "10 02 01 5c 5f 16"), plain("e5"));
    QCOMPARE(say(station, kPoll), plain(kAnswerVB100));
}

void TestSimulatorStation::answerGoesToTheMasterThatAsked()
{
    sim::Station station(5);
    QCOMPARE(say(station, "68 1b 1b 68 05 01 6c 32 01 00 00 00 01 00 0e 00 00"
                          "04 01 12 0a 10 02 00 01 00 01 84 00 03 20 90 16"),
             plain("e5"));
    QCOMPARE(say(station, "10 05 01 5c 62 16"),
             plain("68 16 16 68 01 05 08 32 03 00 00 00 01 00 02 00 05 00 00 04 01 ff 04 00 08 11 6c 16"));
}

void TestSimulatorStation::framesForOtherStationsAreIgnored_data()
{
    QTest::addColumn<QString>("frame");
    QTest::newRow("request for 3") << "68 07 07 68 03 00 6c 32 01 00 00 a2 16";
    QTest::newRow("poll of 3") << "10 03 00 5c 5f 16";
    QTest::newRow("poll of all") << "10 7f 00 5c db 16";
    QTest::newRow("another service of 3") << "10 03 00 49 4c 16";
}

void TestSimulatorStation::framesForOtherStationsAreIgnored()
{
    QFETCH(QString, frame);
    sim::Station station(2);
    say(station, kReadVB100);
    QCOMPARE(say(station, frame), QString());
    QCOMPARE(say(station, kPoll), plain(kAnswerVB100));
}

void TestSimulatorStation::answersOnTheLineAreIgnored()
{
    sim::Station station(2);
    QCOMPARE(say(station, "e5"), QString());
    QCOMPARE(say(station, "10 02 00 02 04 16"), QString());
    QCOMPARE(say(station, "68 03 03 68 02 00 08 0a 16"), QString());
}

void TestSimulatorStation::damagedRequestLeavesThePendingAnswer()
{
    sim::Station station(2);
    say(station, kReadVB100);
    QCOMPARE(say(station, plain(kReadVB101).replace("9516", "9616")), QString());
    QCOMPARE(say(station, plain(kReadVB101).replace("9516", "9517")), QString());
    QCOMPARE(say(station, kPoll), plain(kAnswerVB100));
}

void TestSimulatorStation::otherServicesAreNotActive()
{
    sim::Station station(2);
    QCOMPARE(say(station, "10 02 00 49 4b 16"), plain("10 00 02 03 05 16"));
    QCOMPARE(say(station, "68 04 04 68 02 00 46 00 48 16"), plain("10 00 02 03 05 16"));
}

void TestSimulatorStation::bytesMayComeOneByOne()
{
    sim::Station station(2);
    QString heard;
    for (const uint8_t byte : frameBytes(kReadVB100 + kPoll))
        heard += hex(station.receive(&byte, 1)) + ".";
    QCOMPARE(heard, QString(".").repeated(32) + "e5." + QString(".").repeated(5) + plain(kAnswerVB100) + ".");
}

void TestSimulatorStation::severalFramesMayComeAtOnce()
{
    sim::Station station(2);
    QCOMPARE(say(station, "00 ff" + kReadVB100 + kPoll + "68" + kReadVB101 + "10" + kPoll),
             plain("e5" + kAnswerVB100 + "e5" + kAnswerVB101));
}

TEST_CLASS(TestSimulatorStation)
#include "test_station.moc"
