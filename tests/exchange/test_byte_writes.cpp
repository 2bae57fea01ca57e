// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Writes of bytes that succeed: frames, stations, references, and what of an answer may vary; and what
// all good writes have in common.

#include "answer.h"
#include "commands.h"
#include "hex.h"
#include "log_capture.h"
#include "outcome.h"
#include "sample_writes.h"
#include "scripted_port.h"
#include "silent_port.h"
#include "simatic_s7_200_ppi/s7_200_ppi.h"

#include <QtTest>

namespace {

const char kPoll[] = "10 02 00 5c 5e 16";
const char kTaken[] = "05 01 ff";

} // namespace

class TestByteWrites : public QObject
{
    Q_OBJECT

private slots:
    void threeBytesToVB10();
    void oneTimer();
    void everyKindOfWriteIsTaken_data();
    void everyKindOfWriteIsTaken();
    void successLeavesAnEmptyTextAndNoLogLine_data();
    void successLeavesAnEmptyTextAndNoLogLine();
    void prefixDecidesTheElements_data();
    void prefixDecidesTheElements();
    void countOfTheCommandDoesNotMatter_data();
    void countOfTheCommandDoesNotMatter();
    void oddBytesOfTimersAndCountersAreFilledToAWord_data();
    void oddBytesOfTimersAndCountersAreFilledToAWord();
    void writeWithoutDataIsSent_data();
    void writeWithoutDataIsSent();
    void longDataAreSentInOneRequest();
    void onlyHCAndAIWAreRefused_data();
    void onlyHCAndAIWAreRefused();
    void onlyTheLowByteOfTheStationIsSent();
    void referenceAdvancesWithEveryWrite();
    void readsAndWritesShareTheReference();
    void answerToReference0IsTaken();
    void headerFieldsThatMayVary_data();
    void headerFieldsThatMayVary();
    void bytesBehindTheReturnCodeDoNotMatter();
    void defaultWriteBytesTakesPrefixAndNumber();
    void writeBytesLeavesTheDataOfAllTypes();
    void writeBytesMakesOneAttempt();
};

void TestByteWrites::threeBytesToVB10()
{
    ScriptedPort port;
    port.expects("68 22 22 68 02 00 6c 32 01 00 00 00 01 00 0e 00 07"
                 "05 01 12 0a 10 02 00 03 00 01 84 00 00 50 00 04 00 18 11 22 33 45 16")
        .answers("e5")
        .expects(kPoll)
        .answers("68 12 12 68 00 02 08 32 03 00 00 00 01 00 02 00 01 00 00 05 01 ff 48 16");
    DriverS7_200_PPI driver;
    QVERIFY(driver.write(&port, byteCommand("VB10", 3), bytes("11 22 33")) != 0);
    QVERIFY(port.scriptIsFinished());
}

void TestByteWrites::oneTimer()
{
    ScriptedPort port;
    port.expects("68 24 24 68 02 00 6c 32 01 00 00 00 01 00 0e 00 09"
                 "05 01 12 0a 10 1f 00 01 00 00 1f 00 00 25 00 04 00 28 00 00 00 01 2c a8 16")
        .answers("e5")
        .expects(kPoll)
        .answers("68 12 12 68 00 02 08 32 03 00 00 00 01 00 02 00 01 00 00 05 01 ff 48 16");
    DriverS7_200_PPI driver;
    QVERIFY(driver.write(&port, byteCommand("T37", 2), bytes("2c 01")) != 0);
    QVERIFY(port.scriptIsFinished());
}

void TestByteWrites::everyKindOfWriteIsTaken_data()
{
    QTest::addColumn<QString>("sample");
    const QList<SampleWrite> writes = sampleWrites();
    for (int i = 0; i < int(writes.size()); ++i)
        QTest::newRow(writes.at(i).name) << QString(writes.at(i).name);
}

void TestByteWrites::everyKindOfWriteIsTaken()
{
    QFETCH(QString, sample);
    const SampleWrite write = sampleWrite(sample);
    ScriptedPort port;
    port.serves(Answer(write.item));
    QVERIFY(outcomeOfWrite(write.command(), write.data(), port).taken);
    QVERIFY(port.scriptIsFinished());
}

void TestByteWrites::successLeavesAnEmptyTextAndNoLogLine_data()
{
    everyKindOfWriteIsTaken_data();
}

void TestByteWrites::successLeavesAnEmptyTextAndNoLogLine()
{
    QFETCH(QString, sample);
    const SampleWrite write = sampleWrite(sample);
    const WriteOutcome outcome = outcomeOfWrite(write.command(), write.data(), Answer(write.item));
    QVERIFY(!outcome.failed);
    QVERIFY(outcome.reason.isEmpty());
    QVERIFY(!outcome.reason.isNull());
    QCOMPARE(outcome.texts, QStringList());
}

void TestByteWrites::prefixDecidesTheElements_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<int>("dataType");
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<QByteArray>("frame");
    QTest::newRow("VB10") << "VB10" << int(kByte) << bytes("11 22 33")
                          << bytes("68 22 22 68 02 00 6c 32 01 00 00 00 01 00 0e 00 07"
                                   "05 01 12 0a 10 02 00 03 00 01 84 00 00 50 00 04 00 18 11 22 33 45 16");
    QTest::newRow("VW10") << "VW10" << int(kByte) << bytes("34 12 78 56")
                          << bytes("68 23 23 68 02 00 6c 32 01 00 00 00 01 00 0e 00 08"
                                   "05 01 12 0a 10 04 00 02 00 01 84 00 00 50 00 04 00 20 12 34 56 78 fd 16");
    QTest::newRow("VD10") << "VD10" << int(kBlock) << bytes("44 33 22 11")
                          << bytes("68 23 23 68 02 00 6c 32 01 00 00 00 01 00 0e 00 08"
                                   "05 01 12 0a 10 06 00 01 00 01 84 00 00 50 00 04 00 20 11 22 33 44 94 16");
    QTest::newRow("AQW2") << "AQW2" << int(kByte) << bytes("34 12")
                          << bytes("68 21 21 68 02 00 6c 32 01 00 00 00 01 00 0e 00 06"
                                   "05 01 12 0a 10 04 00 01 00 00 07 00 00 10 00 04 00 10 12 34 5e 16");
    QTest::newRow("C5") << "C5" << int(kBlock) << bytes("05 00 06 01")
                        << bytes("68 25 25 68 02 00 6c 32 01 00 00 00 01 00 0e 00 0a"
                                 "05 01 12 0a 10 1e 00 02 00 00 1e 00 00 05"
                                 "00 04 00 30 00 00 05 00 01 06 6f 16");
    QTest::newRow("T37.2 is timer 372") << "T37.2" << int(kByte) << bytes("2c 01")
                                        << bytes("68 24 24 68 02 00 6c 32 01 00 00 00 01 00 0e 00 09"
                                                 "05 01 12 0a 10 1f 00 01 00 00 1f 00 01 74"
                                                 "00 04 00 28 00 00 00 01 2c f8 16");
    QTest::newRow("vb10") << "vb10" << int(kByte) << bytes("11")
                          << bytes("68 20 20 68 02 00 6c 32 01 00 00 00 01 00 0e 00 05"
                                   "05 01 12 0a 10 02 00 01 00 00 00 00 00 50 00 04 00 08 11 57 16");
    QTest::newRow("10") << "10" << int(kByte) << bytes("11")
                        << bytes("68 20 20 68 02 00 6c 32 01 00 00 00 01 00 0e 00 05"
                                 "05 01 12 0a 10 02 00 01 00 00 00 00 00 50 00 04 00 08 11 57 16");
    QTest::newRow("no address") << "" << int(kByte) << bytes("11")
                                << bytes("68 20 20 68 02 00 6c 32 01 00 00 00 01 00 0e 00 05"
                                         "05 01 12 0a 10 02 00 01 00 00 00 00 00 00 00 04 00 08 11 07 16");
}

void TestByteWrites::prefixDecidesTheElements()
{
    QFETCH(QString, address);
    QFETCH(int, dataType);
    QFETCH(QByteArray, data);
    QFETCH(QByteArray, frame);
    QCOMPARE(hex(requestOf(command(dataType, address, int(data.size())), data)), hex(frame));
}

void TestByteWrites::countOfTheCommandDoesNotMatter_data()
{
    QTest::addColumn<int>("count");
    QTest::newRow("0") << 0;
    QTest::newRow("1") << 1;
    QTest::newRow("4") << 4;
    QTest::newRow("-1") << -1;
    QTest::newRow("65539") << 65539;
    QTest::newRow("2147483647") << 2147483647;
}

void TestByteWrites::countOfTheCommandDoesNotMatter()
{
    QFETCH(int, count);
    QCOMPARE(hex(requestOf(byteCommand("VB10", count), bytes("11 22 33"))),
             hex(bytes("68 22 22 68 02 00 6c 32 01 00 00 00 01 00 0e 00 07"
                       "05 01 12 0a 10 02 00 03 00 01 84 00 00 50 00 04 00 18 11 22 33 45 16")));
    QCOMPARE(hex(requestOf(command(kBlock, "T37", count), bytes("2c 01"))),
             hex(bytes("68 24 24 68 02 00 6c 32 01 00 00 00 01 00 0e 00 09"
                       "05 01 12 0a 10 1f 00 01 00 00 1f 00 00 25 00 04 00 28 00 00 00 01 2c a8 16")));
}

void TestByteWrites::oddBytesOfTimersAndCountersAreFilledToAWord_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<QByteArray>("frame");
    QTest::newRow("C5") << bytes("05 00 06")
                        << bytes("68 25 25 68 02 00 6c 32 01 00 00 00 01 00 0e 00 0a"
                                 "05 01 12 0a 10 1e 00 02 00 00 1e 00 00 05"
                                 "00 04 00 30 00 00 05 00 00 06 6e 16");
    QTest::newRow("T37") << bytes("2c 01 e8")
                         << bytes("68 29 29 68 02 00 6c 32 01 00 00 00 01 00 0e 00 0e"
                                  "05 01 12 0a 10 1f 00 02 00 00 1f 00 00 25"
                                  "00 04 00 50 00 00 00 01 2c 00 00 00 00 e8 be 16");
    QTest::newRow("T10") << bytes("2c")
                         << bytes("68 24 24 68 02 00 6c 32 01 00 00 00 01 00 0e 00 09"
                                  "05 01 12 0a 10 1f 00 01 00 00 1f 00 00 0a"
                                  "00 04 00 28 00 00 00 00 2c 8c 16");
}

void TestByteWrites::oddBytesOfTimersAndCountersAreFilledToAWord()
{
    QFETCH(QByteArray, data);
    QFETCH(QByteArray, frame);
    QCOMPARE(hex(requestOf(byteCommand(QTest::currentDataTag(), int(data.size())), data)), hex(frame));
}

void TestByteWrites::writeWithoutDataIsSent_data()
{
    QTest::addColumn<QByteArray>("frame");
    QTest::newRow("VB10") << bytes("68 1f 1f 68 02 00 6c 32 01 00 00 00 01 00 0e 00 04"
                                   "05 01 12 0a 10 02 00 00 00 01 84 00 00 50 00 04 00 00 c1 16");
    QTest::newRow("T37") << bytes("68 1f 1f 68 02 00 6c 32 01 00 00 00 01 00 0e 00 04"
                                  "05 01 12 0a 10 1f 00 00 00 00 1f 00 00 25 00 04 00 00 4d 16");
}

void TestByteWrites::writeWithoutDataIsSent()
{
    QFETCH(QByteArray, frame);
    QCOMPARE(hex(requestOf(byteCommand(QTest::currentDataTag(), 1), QByteArray())), hex(frame));
}

void TestByteWrites::longDataAreSentInOneRequest()
{
    ScriptedPort port;
    port.serves(Answer(kTaken));
    QVERIFY(outcomeOfWrite(byteCommand("VB0", 300), QByteArray(300, '\x01'), port).taken);
    QCOMPARE(int(port.frames().at(0).size()), 337);
    QVERIFY(port.scriptIsFinished());
}

void TestByteWrites::onlyHCAndAIWAreRefused_data()
{
    QTest::addColumn<bool>("sent");
    QTest::newRow("HC0") << false;
    QTest::newRow("AIW0") << false;
    QTest::newRow("HC") << false;
    QTest::newRow("AIW2.1") << false;
    QTest::newRow("hc0") << true;
    QTest::newRow("aiw0") << true;
    QTest::newRow("AI0") << true;
    QTest::newRow("AIWX0") << true;
    QTest::newRow("HCB0") << true;
    QTest::newRow("AQW0") << true;
    QTest::newRow("IW0") << true;
}

void TestByteWrites::onlyHCAndAIWAreRefused()
{
    QFETCH(bool, sent);
    const QByteArray request = requestOf(byteCommand(QTest::currentDataTag(), 2), bytes("34 12"));
    QCOMPARE(!request.isEmpty(), sent);
}

void TestByteWrites::onlyTheLowByteOfTheStationIsSent()
{
    ScriptedPort port(0x102);
    port.expects("68 22 22 68 02 00 6c 32 01 00 00 00 01 00 0e 00 07"
                 "05 01 12 0a 10 02 00 03 00 01 84 00 00 50 00 04 00 18 11 22 33 45 16")
        .answers("e5")
        .expects(kPoll)
        .answers(Answer(kTaken));
    QVERIFY(outcomeOfWrite(byteCommand("VB10", 3), bytes("11 22 33"), port).taken);
    QVERIFY(port.scriptIsFinished());
}

void TestByteWrites::referenceAdvancesWithEveryWrite()
{
    ScriptedPort port;
    DriverS7_200_PPI driver;
    const QList<SampleWrite> writes = sampleWrites();
    for (int i = 0; i < int(writes.size()); ++i)
        port.serves(Answer(writes.at(i).item, i + 1));
    for (int i = 0; i < int(writes.size()); ++i)
        QVERIFY(driver.write(&port, writes.at(i).command(), writes.at(i).data()) != 0);
    QVERIFY(port.scriptIsFinished());
}

void TestByteWrites::readsAndWritesShareTheReference()
{
    ScriptedPort port;
    port.serves(Answer(kTaken, 1)).serves(Answer("04 01 ff 04 00 08 11", 2)).serves(Answer(kTaken, 3));
    DriverS7_200_PPI driver;
    QVERIFY(driver.write(&port, byteCommand("VB10", 1), bytes("11")) != 0);
    QCOMPARE(hex(driver.read(&port, byteCommand("VB10", 1))), QString("11"));
    QVERIFY(driver.write(&port, byteCommand("VB10", 1), bytes("11")) != 0);
    QVERIFY(port.scriptIsFinished());
}

void TestByteWrites::answerToReference0IsTaken()
{
    DriverS7_200_PPI driver;
    LogCapture log;
    SilentPort silent(65534);
    driver.write(&silent, byteCommand("VB10", 1), bytes("11"));
    QCOMPARE(silent.references.last(), 65535);
    ScriptedPort port;
    port.serves(Answer(kTaken, 0));
    QVERIFY(driver.write(&port, byteCommand("VB10", 1), bytes("11")) != 0);
    QCOMPARE(hex(port.frames().at(0).mid(11, 2)), QString("0000"));
}

void TestByteWrites::headerFieldsThatMayVary_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::newRow("message type 2") << QByteArray(Answer(kTaken).withByte(Answer::kMessageType, 2).sealed());
    QTest::newRow("parameter length 0")
        << QByteArray(Answer(kTaken).withWord(Answer::kParameterLength, 0).sealed());
    QTest::newRow("data length 0") << QByteArray(Answer(kTaken).withWord(Answer::kDataLength, 0).sealed());
    QTest::newRow("data length ffff")
        << QByteArray(Answer(kTaken).withWord(Answer::kDataLength, 0xffff).sealed());
}

void TestByteWrites::headerFieldsThatMayVary()
{
    QFETCH(QByteArray, answer);
    QVERIFY(outcomeOfWrite(byteCommand("VB10", 1), bytes("11"), answer).taken);
    QVERIFY(outcomeOfWrite(bitCommand("V10.3", 1), bytes("01"), answer).taken);
}

void TestByteWrites::bytesBehindTheReturnCodeDoNotMatter()
{
    QVERIFY(outcomeOfWrite(byteCommand("VB10", 1), bytes("11"), Answer("05 01 ff 0a 05 00")).taken);
}

void TestByteWrites::defaultWriteBytesTakesPrefixAndNumber()
{
    ScriptedPort port;
    port.expects("68 21 21 68 02 00 6c 32 01 00 00 00 01 00 0e 00 06"
                 "05 01 12 0a 10 04 00 01 00 00 06 00 00 00 00 04 00 10 12 34 4d 16")
        .answers("e5")
        .expects(kPoll)
        .answers(Answer(kTaken));
    DriverS7_200_PPI driver;
    QVERIFY(driver.defaultWriteBytes(&port, "AIW", 0, bytes("34 12")));
    QVERIFY(port.scriptIsFinished());
}

void TestByteWrites::writeBytesLeavesTheDataOfAllTypes()
{
    ScriptedPort port;
    port.expects("68 22 22 68 02 00 6c 32 01 00 00 00 01 00 0e 00 07"
                 "05 01 12 0a 10 02 00 03 00 01 84 00 00 50 00 04 00 18 11 22 33 45 16")
        .answers("e5")
        .expects(kPoll)
        .answers(Answer(kTaken));
    DriverS7_200_PPI driver;
    QVERIFY(driver.writeBytes(&port, wordCommand("VB10", 1), bytes("11 22 33")));
    QVERIFY(port.scriptIsFinished());
}

void TestByteWrites::writeBytesMakesOneAttempt()
{
    ScriptedPort port;
    port.retries(3).delays(30).expectsRequest();
    DriverS7_200_PPI driver;
    LogCapture log;
    QVERIFY(!driver.writeBytes(&port, byteCommand("VB10", 1), bytes("11")));
    QCOMPARE(driver.getLastError(), QString("plc no response"));
    QVERIFY(port.scriptIsFinished());
}

QTEST_APPLESS_MAIN(TestByteWrites)

#include "test_byte_writes.moc"
