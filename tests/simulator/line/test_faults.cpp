// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Misbehaviour that can be asked for: what each kind does to a conversation.

#include "conversation.h"
#include "frame_vectors.h"
#include "test_class.h"

#include <QtTest>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <set>

using namespace std::chrono_literals;

namespace {

const QString kWriteMB0 = "68 20 20 68 02 00 6c 32 01 00 00 00 01 00 0e 00 05"
                          "05 01 12 0a 10 02 00 01 00 00 83 00 00 00"
                          "00 04 00 08 5a d3 16";

sim::Simulator lineWith(std::initializer_list<const char *> faults, uint32_t seed = 1)
{
    sim::Simulator line;
    line.addStation(2);
    line.setSeed(seed);
    for (const char *fault : faults)
        line.addFault(sim::parseFault(fault));
    return line;
}

// All that many requests with a poll each bring back.
QStringList conversation(const char *fault, uint32_t seed)
{
    sim::Simulator line = lineWith({fault}, seed);
    QStringList heard;
    for (int i = 0; i < 200; ++i)
        heard << say(line, kReadVB100) << say(line, kPoll);
    return heard;
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
    void everyItemIsRefused();
    void ignoredWritesAreAnsweredAsTheOthers();
    void lateAnswerComesWhenItsTimeIsUp();
    void lateAcknowledgementComesWhenItsTimeIsUp();
    void lateAnswerMeetsTheNextRequest();
    void echoOfEveryFrameComesFirst();
    void noiseStandsInFrontOfTheAnswer();
    void noiseStandsInFrontOfTheAcknowledgement();
    void noiseStandsWithinTheAnswer();
    void noiseStandsWithinTwoBytes();
    void corruptAnswerDiffersInOneByte();
    void checkSumThatIsCutOffIsNotChanged();
    void refusalWithoutACodeIsThatOfAnAddress();
    void faultConcernsTheNumberedRequestOnly();
    void onlyRequestsForTheStationsCount();
    void faultsOfARequestAddUp();
    void firstOfExclusiveFaultsWins();
    void percentageIsKept();
    void whatIsNearlyCertainFailsToHappenSometimes();
    void sameSeedGivesTheSameRun_data();
    void sameSeedGivesTheSameRun();
};

void TestSimulatorFaults::faultChangesTheConversation_data()
{
    QTest::addColumn<QString>("afterRequest");
    QTest::addColumn<QString>("afterPoll");
    const FrameVectors frames("simulator/line/faults.frames");
    for (const QByteArray &fault : frames.names())
        QTest::newRow(fault.constData()) << hex(frames.received(fault, 0)) << hex(frames.received(fault, 1));
}

void TestSimulatorFaults::faultChangesTheConversation()
{
    QFETCH(QString, afterRequest);
    QFETCH(QString, afterPoll);
    sim::Simulator line = lineWith({QTest::currentDataTag()});
    QCOMPARE(say(line, kReadVB100), plain(afterRequest));
    QCOMPARE(say(line, kPoll), plain(afterPoll));
}

void TestSimulatorFaults::onlyARefusedRequestIsNotDone_data()
{
    QTest::addColumn<int>("mb0");
    for (const char *name : {"no-resource", "not-active", "silent", "wrong-ack", "error-class",
                             "hardware-fault", "item-refused", "ignore-writes"})
        QTest::newRow(name) << 0;
    for (const char *name : {"late-ack", "noise-ack", "no-answer", "not-ready", "late", "truncated", "short",
                             "corrupt", "noise", "noise-inside", "bad-checksum", "bad-end", "wrong-source",
                             "wrong-destination", "stale-reference", "echo"})
        QTest::newRow(name) << 0x5A;
}

void TestSimulatorFaults::onlyARefusedRequestIsNotDone()
{
    QFETCH(int, mb0);
    sim::Simulator line = lineWith({QTest::currentDataTag()});
    say(line, kWriteMB0);
    QCOMPARE(int(line.station(2)->memory().bytes(sim::kAreaM)[0]), mb0);
}

void TestSimulatorFaults::unansweredPollTakesTheAnswer()
{
    sim::Simulator line = lineWith({"no-answer"});
    say(line, kReadVB100);
    QCOMPARE(say(line, kPoll), QString());
    QCOMPARE(say(line, kPoll), plain("e5"));
}

void TestSimulatorFaults::notReadyStationAnswersTheSecondPoll()
{
    sim::Simulator line = lineWith({"not-ready"});
    say(line, kReadVB100);
    QCOMPARE(say(line, kPoll), plain("e5"));
    QCOMPARE(say(line, kPoll), plain(kAnswerVB100));
    QCOMPARE(say(line, kPoll), plain("e5"));
}

void TestSimulatorFaults::everyItemIsRefused()
{
    const QString items = "12 0a 10 01 0001 0000 83 000000"
                          "12 0a 10 01 0001 0000 83 000001";
    sim::Simulator broken = lineWith({"hardware-fault"});
    QCOMPARE(writeItems(broken, items, "00 03 0001 01 00  00 03 0001 01"), plain("01 01"));
    QCOMPARE(readItems(broken, items), plain("01 00 0000  01 00 0000"));
    sim::Simulator refusing = lineWith({"item-refused=0a"});
    QCOMPARE(writeItems(refusing, items, "00 03 0001 01 00  00 03 0001 01"), plain("0a 0a"));
    QCOMPARE(readItems(refusing, items), plain("0a 00 0000  0a 00 0000"));
}

void TestSimulatorFaults::ignoredWritesAreAnsweredAsTheOthers()
{
    sim::Simulator line = lineWith({"ignore-writes"});
    const QString items = "12 0a 10 01 0001 0000 83 000000"
                          "12 0a 10 01 0001 0000 83 000800";
    QCOMPARE(writeItems(line, items, "00 03 0001 01 00  00 03 0001 01"), plain("ff 05"));
    QCOMPARE(readItems(line, items.left(31)), plain("ff 03 0001 00"));
}

void TestSimulatorFaults::lateAnswerComesWhenItsTimeIsUp()
{
    sim::Simulator line = lineWith({"late=300"});
    QCOMPARE(say(line, kReadVB100), plain("e5"));
    QCOMPARE(say(line, kPoll), QString());
    QCOMPARE(hex(line.advance(299ms)), QString());
    QCOMPARE(hex(line.advance(1ms)), plain(kAnswerVB100));
    QCOMPARE(hex(line.advance(1h)), QString());
}

void TestSimulatorFaults::lateAcknowledgementComesWhenItsTimeIsUp()
{
    sim::Simulator line = lineWith({"late-ack"});
    QCOMPARE(say(line, kReadVB100), QString());
    QCOMPARE(hex(line.advance(999ms)), QString());
    QCOMPARE(hex(line.advance(1ms)), plain("e5"));
}

// A master that has given up and asks again hears the old answer where it waits for the new one.
void TestSimulatorFaults::lateAnswerMeetsTheNextRequest()
{
    sim::Simulator line = lineWith({"late=300@1"});
    say(line, kReadVB100);
    QCOMPARE(say(line, kPoll), QString());
    line.advance(200ms);
    QCOMPARE(say(line, kReadVB100), plain("e5"));
    QCOMPARE(hex(line.advance(100ms)), plain(kAnswerVB100));
    QCOMPARE(say(line, kPoll), plain(kAnswerVB100));
}

void TestSimulatorFaults::echoOfEveryFrameComesFirst()
{
    sim::Simulator line = lineWith({"echo@1"});
    line.setTurnaround(20ms);
    QCOMPARE(say(line, kReadVB100), plain(kReadVB100));
    QCOMPARE(hex(line.advance(20ms)), plain("e5"));
    QCOMPARE(say(line, kPoll), plain(kPoll));
    QCOMPARE(hex(line.advance(20ms)), plain(kAnswerVB100));
    QCOMPARE(say(line, kReadVB100), QString());
    QCOMPARE(hex(line.advance(20ms)), plain("e5"));
}

void TestSimulatorFaults::noiseStandsInFrontOfTheAnswer()
{
    sim::Simulator line = lineWith({"noise=5"});
    QCOMPARE(say(line, kReadVB100), plain("e5"));
    const QString heard = say(line, kPoll);
    QCOMPARE(heard.mid(10), plain(kAnswerVB100));
    say(line, kReadVB100);
    QVERIFY(say(line, kPoll) != heard);
}

void TestSimulatorFaults::noiseStandsInFrontOfTheAcknowledgement()
{
    sim::Simulator line = lineWith({"noise-ack"});
    const QString heard = say(line, kReadVB100);
    QCOMPARE(heard.mid(6), plain("e5"));
    QCOMPARE(say(line, kPoll), plain(kAnswerVB100));
    QVERIFY(say(line, kReadVB100) != heard);
}

void TestSimulatorFaults::noiseStandsWithinTheAnswer()
{
    const QString good = plain(kAnswerVB100);
    sim::Simulator line = lineWith({"noise-inside=2"});
    std::set<int> places;
    for (int i = 0; i < 500; ++i) {
        say(line, kReadVB100);
        const QString heard = say(line, kPoll);
        QCOMPARE(heard.size(), good.size() + 4);
        int place = 2;
        while (place < good.size() && heard.left(place) + heard.mid(place + 4) != good)
            place += 2;
        QVERIFY2(place < good.size(), qPrintable(heard));
        places.insert(place);
    }
    QVERIFY2(places.size() > 20, qPrintable(QString::number(places.size())));
}

void TestSimulatorFaults::noiseStandsWithinTwoBytes()
{
    sim::Simulator line = lineWith({"short=2", "noise-inside=1"});
    say(line, kReadVB100);
    const QString heard = say(line, kPoll);
    QCOMPARE(heard.left(2) + heard.mid(4), plain(kAnswerVB100).left(4));
}

void TestSimulatorFaults::corruptAnswerDiffersInOneByte()
{
    const sim::Bytes good = frameBytes(kAnswerVB100);
    sim::Simulator line = lineWith({"corrupt"});
    std::set<size_t> places;
    for (int i = 0; i < 500; ++i) {
        say(line, kReadVB100);
        sim::Bytes heard = line.feed(frameBytes(kPoll));
        QCOMPARE(heard.size(), good.size());
        const auto place =
            size_t(std::mismatch(good.begin(), good.end(), heard.begin()).first - good.begin());
        QVERIFY(place < good.size());
        heard[place] = uint8_t(heard[place] ^ 0xFF);
        QCOMPARE(hex(heard), hex(good));
        places.insert(place);
    }
    QCOMPARE(places.size(), good.size());
}

void TestSimulatorFaults::checkSumThatIsCutOffIsNotChanged()
{
    sim::Simulator line = lineWith({"short=1", "bad-checksum"});
    say(line, kReadVB100);
    QCOMPARE(say(line, kPoll), QString("68"));
}

void TestSimulatorFaults::refusalWithoutACodeIsThatOfAnAddress()
{
    sim::Simulator line = lineWith({});
    sim::Fault fault;
    fault.kind = sim::FaultKind::ItemRefused;
    line.addFault(fault);
    say(line, kReadVB100);
    sim::Simulator usual = lineWith({"item-refused=05"});
    say(usual, kReadVB100);
    QCOMPARE(say(line, kPoll), say(usual, kPoll));
}

void TestSimulatorFaults::faultConcernsTheNumberedRequestOnly()
{
    sim::Simulator line = lineWith({"no-resource@2"});
    QCOMPARE(say(line, kReadVB100), plain("e5"));
    QCOMPARE(say(line, kReadVB100), plain("10 00 02 02 04 16"));
    QCOMPARE(say(line, kReadVB100), plain("e5"));
}

void TestSimulatorFaults::onlyRequestsForTheStationsCount()
{
    sim::Simulator line = lineWith({"no-resource@3"});
    line.addStation(4);
    say(line, kReadVB100);
    say(line, kPoll);
    say(line, "68 07 07 68 03 00 6c 32 01 00 00 a2 16");
    say(line, plain(kReadVB100).replace("8c16", "8d16"));
    QCOMPARE(say(line, "68 07 07 68 04 00 6c 32 01 00 00 a3 16"), plain("e5"));
    QCOMPARE(say(line, kReadVB100), plain("10 00 02 02 04 16"));
}

void TestSimulatorFaults::faultsOfARequestAddUp()
{
    sim::Simulator line = lineWith({"late=50", "bad-end", "short=4@2", "wrong-source=9", "echo"});
    QCOMPARE(say(line, kReadVB100), plain(kReadVB100 + "e5"));
    QCOMPARE(say(line, kPoll), plain(kPoll));
    QCOMPARE(hex(line.advance(50ms)),
             plain("68 16 16 68 00 09 08 32 03 00 00 00 01 00 02 00 05 00 00 04 01 ff 04 00 08 11 6f 17"));
    QCOMPARE(say(line, kReadVB100), plain(kReadVB100 + "e5"));
    QCOMPARE(say(line, kPoll), plain(kPoll));
    QCOMPARE(hex(line.advance(50ms)), plain("68 16 16 68"));
}

void TestSimulatorFaults::firstOfExclusiveFaultsWins()
{
    sim::Simulator line = lineWith({"not-active@2", "no-resource"});
    QCOMPARE(say(line, kReadVB100), plain("10 00 02 02 04 16"));
    QCOMPARE(say(line, kReadVB100), plain("10 00 02 03 05 16"));
}

void TestSimulatorFaults::percentageIsKept()
{
    sim::Simulator line = lineWith({"silent%25"});
    int silent = 0;
    for (int i = 0; i < 4000; ++i)
        silent += say(line, kReadVB100).isEmpty() ? 1 : 0;
    QVERIFY2(silent > 850 && silent < 1150, qPrintable(QString::number(silent)));
}

void TestSimulatorFaults::whatIsNearlyCertainFailsToHappenSometimes()
{
    sim::Simulator line = lineWith({"silent%99.99"});
    int answered = 0;
    for (int i = 0; i < 100000; ++i)
        answered += say(line, kReadVB100).isEmpty() ? 0 : 1;
    QVERIFY2(answered > 2 && answered < 30, qPrintable(QString::number(answered)));
}

void TestSimulatorFaults::sameSeedGivesTheSameRun_data()
{
    QTest::addColumn<QString>("fault");
    for (const char *fault : {"silent%50", "noise", "noise-ack", "noise-inside", "corrupt"})
        QTest::newRow(fault) << fault;
}

void TestSimulatorFaults::sameSeedGivesTheSameRun()
{
    const char *fault = QTest::currentDataTag();
    QCOMPARE(conversation(fault, 7), conversation(fault, 7));
    QVERIFY(conversation(fault, 7) != conversation(fault, 8));
}

TEST_CLASS(TestSimulatorFaults)
#include "test_faults.moc"
