// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Reads and writes that succeed: frames, order of calls, stations, references, and what of an answer may
// vary.

#include "answer.h"
#include "commands.h"
#include "fake_sleep.h"
#include "frame_vectors.h"
#include "hex.h"
#include "log_capture.h"
#include "outcome.h"
#include "sample_rows.h"
#include "scripted_port.h"
#include "silent_port.h"
#include "simatic_s7_200_ppi/s7_200_ppi.h"
#include "test_class.h"

#include <QtTest>

namespace {

const char kPoll[] = "10 02 00 5c 5e 16";

QByteArray requestToStation2(const Sample &sample)
{
    ScriptedPort port(2);
    port.expectsRequest();
    outcomeOf(sample, port);
    return port.frames().value(0);
}

// Does what is asked of it, and says that it does not know the option.
class PortWithoutOptions : public ScriptedPort
{
public:
    bool setOption(int key, const QVariant &value) override
    {
        ScriptedPort::setOption(key, value);
        return false;
    }
};

// What the port sees of the sample's exchange with another command.
QStringList eventsOf(const Sample &sample, const CommunicatorCommand &command)
{
    ScriptedPort port;
    port.serves(Answer(sample.item));
    if (sample.operation == kRead)
        outcomeOfRead(command, port);
    else
        outcomeOfWrite(command, sample.data(), port);
    return port.events();
}

// A table with a read and a write of bytes.
void addOneOfEachOperation()
{
    addSampleColumn();
    sampleRow(sample("read bytes of VB100"));
    sampleRow(sample("write bytes of VB100"));
}

} // namespace

class TestGoodExchanges : public QObject
{
    Q_OBJECT

private slots:
    void readIsThisConversation_data();
    void readIsThisConversation();
    void writeIsThisConversation_data();
    void writeIsThisConversation();
    void everyKindGivesItsResult_data();
    void everyKindGivesItsResult();
    void successLeavesAnEmptyTextAndNoLogLine_data();
    void successLeavesAnEmptyTextAndNoLogLine();
    void portIsCalledInThisOrder_data();
    void portIsCalledInThisOrder();
    void pauseCutShortByASignalIsResumed();
    void onlyTheLowByteOfTheStationIsSent_data();
    void onlyTheLowByteOfTheStationIsSent();
    void stationMinus1IsStation255OnTheLine();
    void pollGoesToTheStationThatThePortHasThen_data();
    void pollGoesToTheStationThatThePortHasThen();
    void referenceAdvancesWithEveryCall();
    void readsAndWritesShareTheReference();
    void referenceIsThatOfTheObject();
    void referenceWrapsFrom65535To0();
    void answerToReference0IsTaken_data();
    void answerToReference0IsTaken();
    void headerFieldsThatMayVary_data();
    void headerFieldsThatMayVary();
    void bytesBehindTheAcknowledgementAreThrownAway_data();
    void bytesBehindTheAcknowledgementAreThrownAway();
    void resultOfTheOptionIsNotLookedAt_data();
    void resultOfTheOptionIsNotLookedAt();
    void everyCallUsesItsOwnPort();
    void fieldsThatAreTheHostsDoNotMatter_data();
    void fieldsThatAreTheHostsDoNotMatter();
};

void TestGoodExchanges::readIsThisConversation_data()
{
    QTest::addColumn<CommunicatorCommand>("read");
    QTest::addColumn<QByteArray>("request");
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<QString>("data");
    const FrameVectors frames("exchange/exchanges.frames");
    const auto row = [&](const char *name, const CommunicatorCommand &read, const char *data) {
        QTest::newRow(name) << read << frames.sent(name) << frames.received(name) << data;
    };
    row("4 bytes of VB100", byteCommand("VB100", 4), "11223344");
    row("6 bytes of VD100", byteCommand("VD100", 6), "443322118877");
    row("2 words of VW100", wordCommand("VW100", 2), "22114433");
    row("2 double words of VD100", doubleWordCommand("VD100", 2), "4433221188776655");
    row("8 bits of V10.0", bitCommand("V10.0", 8), "0100010000010001");
    row("3 bytes of T37", byteCommand("T37", 3), "341278");
}

void TestGoodExchanges::readIsThisConversation()
{
    QFETCH(CommunicatorCommand, read);
    QFETCH(QByteArray, request);
    QFETCH(QByteArray, answer);
    QFETCH(QString, data);
    ScriptedPort port;
    port.expects(request).answers("e5").expects(kPoll).answers(answer);
    QCOMPARE(outcomeOfRead(read, port).result, data);
    QVERIFY(port.scriptIsFinished());
}

void TestGoodExchanges::writeIsThisConversation_data()
{
    QTest::addColumn<CommunicatorCommand>("write");
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<QByteArray>("request");
    QTest::addColumn<QByteArray>("answer");
    const FrameVectors frames("exchange/exchanges.frames");
    const auto row = [&](const char *name, const CommunicatorCommand &write, const char *data) {
        QTest::newRow(name) << write << bytes(data) << frames.sent(name) << frames.received(name);
    };
    row("3 bytes of VB10", byteCommand("VB10", 3), "11 22 33");
    row("2 words of VW10", wordCommand("VW10", 2), "34 12 78 56");
    row("1 double word of VD4", doubleWordCommand("VD4", 1), "44 33 22 11");
    row("1 bit of V10.3", bitCommand("V10.3", 1), "01");
    row("3 bits over the end of a byte", bitCommand("V10.6", 3), "01 00 01");
    row("2 bytes of T37", byteCommand("T37", 2), "2c 01");
}

void TestGoodExchanges::writeIsThisConversation()
{
    QFETCH(CommunicatorCommand, write);
    QFETCH(QByteArray, data);
    QFETCH(QByteArray, request);
    QFETCH(QByteArray, answer);
    ScriptedPort port;
    port.expects(request).answers("e5").expects(kPoll).answers(answer);
    QCOMPARE(outcomeOfWrite(write, data, port).result, QString(kTaken));
    QVERIFY(port.scriptIsFinished());
}

void TestGoodExchanges::everyKindGivesItsResult_data()
{
    addSampleRows();
}

void TestGoodExchanges::everyKindGivesItsResult()
{
    QFETCH(QString, sample);
    const Sample good = ::sample(sample);
    ScriptedPort port;
    port.serves(Answer(good.item));
    QCOMPARE(outcomeOf(good, port).result, QString(good.result));
    QVERIFY(port.scriptIsFinished());
}

void TestGoodExchanges::successLeavesAnEmptyTextAndNoLogLine_data()
{
    addSampleRows();
}

void TestGoodExchanges::successLeavesAnEmptyTextAndNoLogLine()
{
    QFETCH(QString, sample);
    const Sample good = ::sample(sample);
    const Outcome outcome = outcomeOf(good, Answer(good.item));
    QVERIFY(!outcome.failed);
    QVERIFY(outcome.reason.isEmpty());
    QVERIFY(!outcome.reason.isNull());
    QCOMPARE(outcome.texts, good.isTraced ? QStringList(QString("")) : QStringList());
}

void TestGoodExchanges::portIsCalledInThisOrder_data()
{
    addSampleRows();
}

void TestGoodExchanges::portIsCalledInThisOrder()
{
    QFETCH(QString, sample);
    const Sample good = ::sample(sample);
    const QByteArray answer = Answer(good.item);
    const int rest = int(answer.size()) - 7;
    ScriptedPort port;
    port.delays(30).serves(answer);
    outcomeOf(good, port);
    QCOMPARE(port.events(), QStringList() << "delay"
                                          << "pause 30 ms"
                                          << "option 12 = 0"
                                          << "pause 12 ms"
                                          << "send " + hex(port.frames().value(0)) << "receive(1) -> 1"
                                          << "option 12 = 0"
                                          << "pause 12 ms"
                                          << "send 1002005c5e16"
                                          << "receive(7) -> 7" << QString("receive(%1) -> %1").arg(rest));
}

void TestGoodExchanges::pauseCutShortByASignalIsResumed()
{
    ScriptedPort port;
    FakeSleep::interruptNext(1);
    DriverS7_200_PPI driver;
    driver.read(&port, byteCommand("VB100", 4));
    QCOMPARE(QStringList(port.events().mid(0, 4)), QStringList() << "delay"
                                                                 << "option 12 = 0"
                                                                 << "pause 12 ms"
                                                                 << "pause 6 ms");
}

void TestGoodExchanges::onlyTheLowByteOfTheStationIsSent_data()
{
    addSampleColumn();
    QTest::addColumn<int>("station");
    for (const Sample &good : samples()) {
        sampleRow(good, "station 258") << 258;
        sampleRow(good, "station 32514") << 32514;
        sampleRow(good, "station -254") << -254;
    }
}

void TestGoodExchanges::onlyTheLowByteOfTheStationIsSent()
{
    QFETCH(QString, sample);
    QFETCH(int, station);
    const Sample good = ::sample(sample);
    const QByteArray request = requestToStation2(good);
    ScriptedPort port(station);
    port.expects(request).answers("e5").expects(kPoll).answers(Answer(good.item));
    QCOMPARE(outcomeOf(good, port).result, QString(good.result));
    QCOMPARE(hex(port.frames().value(0).mid(4, 3)), QString("02006c"));
    QVERIFY(port.scriptIsFinished());
}

void TestGoodExchanges::stationMinus1IsStation255OnTheLine()
{
    ScriptedPort port(-1);
    port.expects("68 1b 1b 68 ff 00 6c 32 01 00 00 00 01 00 0e 00 00"
                 "04 01 12 0a 10 02 00 04 00 01 84 00 03 20 8c 16")
        .answers("e5")
        .expects("10 ff 00 5c 5b 16")
        .answers("68 19 19 68 00 ff 08 32 03 00 00 00 01 00 02 00 08 00 00"
                 "04 01 ff 04 00 20 11 22 33 44 19 16");
    QCOMPARE(outcomeOfRead(byteCommand("VB100", 4), port).result, QString("11223344"));
    QVERIFY(port.scriptIsFinished());
}

void TestGoodExchanges::pollGoesToTheStationThatThePortHasThen_data()
{
    addSampleRows();
}

void TestGoodExchanges::pollGoesToTheStationThatThePortHasThen()
{
    QFETCH(QString, sample);
    const Sample good = ::sample(sample);
    ScriptedPort port(2);
    port.expects(requestToStation2(good)).answers("e5").thenHasStation(3);
    port.expects("10 03 00 5c 5f 16").answers(Answer(good.item).from(3).sealed());
    QCOMPARE(outcomeOf(good, port).result, QString(good.result));
    QVERIFY(port.scriptIsFinished());
}

void TestGoodExchanges::referenceAdvancesWithEveryCall()
{
    const QList<Sample> all = samples();
    ScriptedPort port;
    for (int i = 0; i < int(all.size()); ++i)
        port.serves(Answer(all.at(i).item, i + 1));
    DriverS7_200_PPI driver;
    LogCapture log;
    for (int i = 0; i < int(all.size()); ++i) {
        QCOMPARE(resultOf(driver, port, all.at(i)), QString(all.at(i).result));
        QCOMPARE(referenceOf(port.frames().value(2 * i)).toInt(nullptr, 16), i + 1);
    }
    QVERIFY(port.scriptIsFinished());
}

void TestGoodExchanges::readsAndWritesShareTheReference()
{
    const Sample read = sample("read bytes of VB100");
    const Sample write = sample("write bytes of VB100");
    ScriptedPort port;
    port.serves(Answer(write.item, 1)).serves(Answer(read.item, 2)).serves(Answer(write.item, 3));
    DriverS7_200_PPI driver;
    QCOMPARE(resultOf(driver, port, write), QString(kTaken));
    QCOMPARE(resultOf(driver, port, read), QString("11223344"));
    QCOMPARE(resultOf(driver, port, write), QString(kTaken));
    QVERIFY(port.scriptIsFinished());
}

void TestGoodExchanges::referenceIsThatOfTheObject()
{
    ScriptedPort port;
    port.serves(Answer(kFourBytes, 1)).serves(Answer(kFourBytes, 1));
    DriverS7_200_PPI one;
    DriverS7_200_PPI other;
    QCOMPARE(hex(one.read(&port, byteCommand("VB100", 4))), QString("11223344"));
    QCOMPARE(hex(other.read(&port, byteCommand("VB100", 4))), QString("11223344"));
}

void TestGoodExchanges::referenceWrapsFrom65535To0()
{
    SilentPort port(65536);
    DriverS7_200_PPI driver;
    LogCapture log;
    driver.read(&port, byteCommand("VB100", 4));
    QCOMPARE(int(port.references.size()), 65537);
    QCOMPARE(port.references.at(0), 1);
    QCOMPARE(port.references.mid(65533), QList<int>() << 65534 << 65535 << 0 << 1);
}

void TestGoodExchanges::answerToReference0IsTaken_data()
{
    addOneOfEachOperation();
}

void TestGoodExchanges::answerToReference0IsTaken()
{
    QFETCH(QString, sample);
    const Sample good = ::sample(sample);
    DriverS7_200_PPI driver;
    LogCapture log;
    SilentPort silent(65534);
    driver.read(&silent, byteCommand("VB100", 4));
    QCOMPARE(silent.references.last(), 65535);
    ScriptedPort port;
    port.serves(Answer(good.item, 0));
    QCOMPARE(resultOf(driver, port, good), QString(good.result));
    QCOMPARE(referenceOf(port.frames().value(0)), QString("0000"));
}

void TestGoodExchanges::headerFieldsThatMayVary_data()
{
    addSampleColumn();
    QTest::addColumn<int>("offset");
    QTest::addColumn<int>("value");
    for (const Sample &good : samples()) {
        sampleRow(good, "acknowledgement, message type 2") << int(Answer::kMessageType) << 2;
        sampleRow(good, "parameter length 0") << int(Answer::kParameterLength + 1) << 0;
        sampleRow(good, "data length 0") << int(Answer::kDataLength + 1) << 0;
        sampleRow(good, "data length above 65280") << int(Answer::kDataLength) << 0xff;
    }
}

void TestGoodExchanges::headerFieldsThatMayVary()
{
    QFETCH(QString, sample);
    QFETCH(int, offset);
    QFETCH(int, value);
    const Sample good = ::sample(sample);
    const Answer answer = Answer(good.item).withByte(offset, value).sealed();
    QCOMPARE(outcomeOf(good, answer).result, QString(good.result));
}

void TestGoodExchanges::bytesBehindTheAcknowledgementAreThrownAway_data()
{
    addSampleRows();
}

void TestGoodExchanges::bytesBehindTheAcknowledgementAreThrownAway()
{
    QFETCH(QString, sample);
    const Sample good = ::sample(sample);
    ScriptedPort port;
    port.expectsRequest().answers("e5 00 ff 16").expectsPoll().answers(Answer(good.item));
    QCOMPARE(outcomeOf(good, port).result, QString(good.result));
}

void TestGoodExchanges::resultOfTheOptionIsNotLookedAt_data()
{
    addSampleRows();
}

void TestGoodExchanges::resultOfTheOptionIsNotLookedAt()
{
    QFETCH(QString, sample);
    const Sample good = ::sample(sample);
    PortWithoutOptions port;
    port.serves(Answer(good.item));
    QCOMPARE(outcomeOf(good, port).result, QString(good.result));
    QVERIFY(port.scriptIsFinished());
}

// The first port is gone before the second is used.
void TestGoodExchanges::everyCallUsesItsOwnPort()
{
    DriverS7_200_PPI driver;
    {
        ScriptedPort first(2);
        first.serves(Answer(kFourBytes, 1));
        QVERIFY(driver.initialize(&first));
        QCOMPARE(hex(driver.read(&first, byteCommand("VB100", 4))), QString("11223344"));
    }
    ScriptedPort second(3);
    second.expectsRequest()
        .answers("e5")
        .expects("10 03 00 5c 5f 16")
        .answers(Answer(kFourBytes, 2).from(3).sealed());
    QCOMPARE(hex(driver.read(&second, byteCommand("VB100", 4))), QString("11223344"));
    QVERIFY(second.scriptIsFinished());
}

void TestGoodExchanges::fieldsThatAreTheHostsDoNotMatter_data()
{
    addSampleRows();
}

void TestGoodExchanges::fieldsThatAreTheHostsDoNotMatter()
{
    QFETCH(QString, sample);
    const Sample good = ::sample(sample);
    CommunicatorCommand numbered = good.command();
    numbered.linkId = 0x01020304;
    numbered.tagId = -1;
    QCOMPARE(eventsOf(good, numbered), eventsOf(good, good.command()));
}

TEST_CLASS(TestGoodExchanges)

#include "test_good_exchanges.moc"
