// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Reads of bytes that succeed: frames, order of calls, references, and how the answer becomes the
// result.

#include "answer.h"
#include "commands.h"
#include "fake_sleep.h"
#include "hex.h"
#include "log_capture.h"
#include "outcome.h"
#include "sample_reads.h"
#include "scripted_port.h"
#include "silent_port.h"
#include "simatic_s7_200_ppi/s7_200_ppi.h"

#include <QtTest>

#include <climits>

namespace {

const char kPoll[] = "10 02 00 5c 5e 16";
const char kFourBytes[] = "04 01 ff 04 00 20 11 22 33 44";

} // namespace

class TestByteRead : public QObject
{
    Q_OBJECT

private slots:
    void fourBytesOfVB100();
    void sixBytesOfVD100();
    void twoTimers();
    void everyKindOfReadGivesItsResult_data();
    void everyKindOfReadGivesItsResult();
    void successLeavesAnEmptyTextAndNoLogLine_data();
    void successLeavesAnEmptyTextAndNoLogLine();
    void portIsCalledInThisOrder();
    void pauseCutShortByASignalIsResumed();
    void onlyTheLowByteOfTheStationIsSent();
    void requestNamesAreaAndElements_data();
    void requestNamesAreaAndElements();
    void countsBeyond16Bits_data();
    void countsBeyond16Bits();
    void referenceAdvancesWithEveryRead();
    void referenceIsThatOfTheObject();
    void referenceWrapsFrom65535To0();
    void answerToReference0IsTaken();
    void resultIsFittedToTheCount_data();
    void resultIsFittedToTheCount();
    void resultMayBeLongerThan65535Bytes();
    void largestAnswerIsRead();
    void headerFieldsThatMayVary_data();
    void headerFieldsThatMayVary();
    void bytesBehindTheAcknowledgementAreThrownAway();
    void hugeCountOfARefusedAnswerFails_data();
    void hugeCountOfARefusedAnswerFails();
    void negativeCountGivesNoData_data();
    void negativeCountGivesNoData();
};

void TestByteRead::fourBytesOfVB100()
{
    ScriptedPort port;
    port.expects("68 1b 1b 68 02 00 6c 32 01 00 00 00 01 00 0e 00 00"
                 "04 01 12 0a 10 02 00 04 00 01 84 00 03 20 8f 16")
        .answers("e5")
        .expects(kPoll)
        .answers("68 19 19 68 00 02 08 32 03 00 00 00 01 00 02 00 08 00 00"
                 "04 01 ff 04 00 20 11 22 33 44 1c 16");
    DriverS7_200_PPI driver;
    QCOMPARE(hex(driver.read(&port, byteCommand("VB100", 4))), QString("11223344"));
    QVERIFY(port.scriptIsFinished());
}

void TestByteRead::sixBytesOfVD100()
{
    ScriptedPort port;
    port.expects("68 1b 1b 68 02 00 6c 32 01 00 00 00 01 00 0e 00 00"
                 "04 01 12 0a 10 06 00 02 00 01 84 00 03 20 91 16")
        .answers("e5")
        .expects(kPoll)
        .answers(Answer("04 01 ff 04 00 40 11 22 33 44 55 66 77 88"));
    DriverS7_200_PPI driver;
    QCOMPARE(hex(driver.read(&port, byteCommand("VD100", 6))), QString("443322118877"));
    QVERIFY(port.scriptIsFinished());
}

void TestByteRead::twoTimers()
{
    ScriptedPort port;
    port.expects("68 1b 1b 68 02 00 6c 32 01 00 00 00 01 00 0e 00 00"
                 "04 01 12 0a 10 1f 00 02 00 00 1f 00 00 25 46 16")
        .answers("e5")
        .expects(kPoll)
        .answers("68 1f 1f 68 00 02 08 32 03 00 00 00 01 00 02 00 0e 00 00"
                 "04 01 ff 09 00 0a 02 00 00 12 34 00 00 00 56 78 7d 16");
    DriverS7_200_PPI driver;
    QCOMPARE(hex(driver.read(&port, byteCommand("T37", 3))), QString("341278"));
    QVERIFY(port.scriptIsFinished());
}

void TestByteRead::everyKindOfReadGivesItsResult_data()
{
    QTest::addColumn<int>("index");
    const QList<SampleRead> reads = sampleReads();
    for (int i = 0; i < int(reads.size()); ++i)
        QTest::newRow(reads.at(i).name) << i;
}

void TestByteRead::everyKindOfReadGivesItsResult()
{
    QFETCH(int, index);
    const SampleRead sample = sampleReads().at(index);
    QCOMPARE(outcomeOf(sample.command(), Answer(sample.item)).data, QString(sample.result));
}

void TestByteRead::successLeavesAnEmptyTextAndNoLogLine_data()
{
    everyKindOfReadGivesItsResult_data();
}

void TestByteRead::successLeavesAnEmptyTextAndNoLogLine()
{
    QFETCH(int, index);
    const SampleRead sample = sampleReads().at(index);
    ScriptedPort port;
    port.serves(Answer(sample.item));
    DriverS7_200_PPI driver;
    LogCapture log;
    driver.read(&port, sample.command());
    QVERIFY(!driver.hasError());
    QVERIFY(driver.getLastError().isEmpty());
    QVERIFY(!driver.getLastError().isNull());
    QCOMPARE(log.texts(), sample.isTraced ? QStringList(QString("")) : QStringList());
}

void TestByteRead::portIsCalledInThisOrder()
{
    ScriptedPort port;
    port.delays(7).serves(Answer(kFourBytes));
    DriverS7_200_PPI driver;
    driver.read(&port, byteCommand("VB100", 4));
    QStringList expected;
    expected << "delay"
             << "pause 7 ms"
             << "option 12 = 0"
             << "pause 12 ms"
             << "send 681b1b6802006c320100000001000e00000401120a10020004000184000320"
                "8f16"
             << "receive(1) -> 1"
             << "option 12 = 0"
             << "pause 12 ms"
             << "send 1002005c5e16"
             << "receive(7) -> 7"
             << "receive(24) -> 24";
    QCOMPARE(port.events(), expected);
}

void TestByteRead::pauseCutShortByASignalIsResumed()
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

void TestByteRead::onlyTheLowByteOfTheStationIsSent()
{
    ScriptedPort port(0x7f02);
    port.serves(Answer(kFourBytes));
    DriverS7_200_PPI driver;
    QCOMPARE(hex(driver.read(&port, byteCommand("VB100", 4))), QString("11223344"));
    QCOMPARE(hex(port.frames().value(0).mid(4, 3)), QString("02006c"));
    QVERIFY(port.scriptIsFinished());
}

void TestByteRead::requestNamesAreaAndElements_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<int>("count");
    QTest::addColumn<QString>("block");
    QTest::newRow("VB100, 4 bytes") << "VB100" << 4 << "0401120a10020004000184000320";
    QTest::newRow("V100 without width, 4 bytes") << "V100" << 4 << "0401120a10020004000184000320";
    QTest::newRow("VW100, 3 bytes are 2 words") << "VW100" << 3 << "0401120a10040002000184000320";
    QTest::newRow("VW100, 4 bytes are 2 words") << "VW100" << 4 << "0401120a10040002000184000320";
    QTest::newRow("VD100, 1 byte is 1 double word") << "VD100" << 1 << "0401120a10060001000184000320";
    QTest::newRow("VD100, 4 bytes are 1 double word") << "VD100" << 4 << "0401120a10060001000184000320";
    QTest::newRow("VD100, 5 bytes are 2 double words") << "VD100" << 5 << "0401120a10060002000184000320";
    QTest::newRow("SMB28, 1 byte") << "SMB28" << 1 << "0401120a100200010000050000e0";
    QTest::newRow("AIW16, 2 bytes") << "AIW16" << 2 << "0401120a10040001000006000080";
    QTest::newRow("T37, 3 bytes are 2 timers") << "T37" << 3 << "0401120a101f000200001f000025";
    QTest::newRow("T37, 4 bytes are 2 timers") << "T37" << 4 << "0401120a101f000200001f000025";
    QTest::newRow("C5, 1 byte is 1 counter") << "C5" << 1 << "0401120a101e000100001e000005";
    QTest::newRow("HC0, 4 bytes are 1 counter") << "HC0" << 4 << "0401120a10200001000020000000";
    QTest::newRow("HC0, 5 bytes are 2 counters") << "HC0" << 5 << "0401120a10200002000020000000";
    QTest::newRow("no bytes") << "VB100" << 0 << "0401120a10020000000184000320";
    QTest::newRow("no timers") << "T37" << 0 << "0401120a101f000000001f000025";
    QTest::newRow("unknown prefix") << "DB100" << 4 << "0401120a10020004000000000320";
    QTest::newRow("unknown prefix of double words") << "VXD100" << 4 << "0401120a10060001000100000320";
    QTest::newRow("lower case") << "vb100" << 4 << "0401120a10020004000000000320";
    QTest::newRow("digits only") << "100" << 4 << "0401120a10020004000000000320";
    QTest::newRow("empty address") << "" << 1 << "0401120a10020001000000000000";
    QTest::newRow("bit address keeps its digits") << "V10.3" << 1 << "0401120a10020001000184000338";
}

void TestByteRead::requestNamesAreaAndElements()
{
    QFETCH(QString, address);
    QFETCH(int, count);
    QFETCH(QString, block);
    QCOMPARE(askedFor(byteCommand(address, count)), block);
}

void TestByteRead::countsBeyond16Bits_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<int>("count");
    QTest::addColumn<QString>("elements");
    QTest::newRow("65535 bytes") << "VB0" << 65535 << "ffff";
    QTest::newRow("65536 bytes") << "VB0" << 65536 << "0000";
    QTest::newRow("65539 bytes") << "VB0" << 65539 << "0003";
    QTest::newRow("65535 bytes as words") << "VW0" << 65535 << "8000";
    QTest::newRow("65539 bytes as words") << "VW0" << 65539 << "0002";
    QTest::newRow("65535 bytes as double words") << "VD0" << 65535 << "4000";
    QTest::newRow("65537 bytes as double words") << "VD0" << 65537 << "0001";
    QTest::newRow("65537 bytes of timers") << "T0" << 65537 << "8001";
    QTest::newRow("131073 bytes of timers") << "T0" << 131073 << "0001";
    QTest::newRow("131073 bytes of counters") << "C0" << 131073 << "0001";
    QTest::newRow("65537 bytes of high-speed counters") << "HC0" << 65537 << "4001";
    QTest::newRow("262145 bytes of high-speed counters") << "HC0" << 262145 << "0001";
    QTest::newRow("INT_MAX bytes") << "VB0" << INT_MAX << "ffff";
    QTest::newRow("INT_MAX bytes of timers") << "T0" << INT_MAX << "0000";
    QTest::newRow("INT_MAX bytes of high-speed counters") << "HC0" << INT_MAX << "0000";
    QTest::newRow("-1 bytes") << "VB0" << -1 << "ffff";
    QTest::newRow("-1 bytes as double words") << "VD0" << -1 << "4000";
    QTest::newRow("INT_MIN bytes") << "VB0" << INT_MIN << "0000";
}

void TestByteRead::countsBeyond16Bits()
{
    QFETCH(QString, address);
    QFETCH(int, count);
    QFETCH(QString, elements);
    QCOMPARE(askedFor(byteCommand(address, count)).mid(12, 4), elements);
}

void TestByteRead::referenceAdvancesWithEveryRead()
{
    ScriptedPort port;
    port.serves(Answer(kFourBytes, 1)).serves(Answer(kFourBytes, 2)).serves(Answer(kFourBytes, 3));
    DriverS7_200_PPI driver;
    QCOMPARE(hex(driver.read(&port, byteCommand("VB100", 4))), QString("11223344"));
    QCOMPARE(hex(driver.read(&port, byteCommand("VB100", 4))), QString("11223344"));
    QCOMPARE(hex(driver.read(&port, byteCommand("VB100", 4))), QString("11223344"));
    QCOMPARE(hex(port.frames().value(0).mid(11, 2)), QString("0001"));
    QCOMPARE(hex(port.frames().value(2).mid(11, 2)), QString("0002"));
    QCOMPARE(hex(port.frames().value(4).mid(11, 2)), QString("0003"));
}

void TestByteRead::referenceIsThatOfTheObject()
{
    ScriptedPort port;
    port.serves(Answer(kFourBytes, 1)).serves(Answer(kFourBytes, 1));
    DriverS7_200_PPI one;
    DriverS7_200_PPI other;
    QCOMPARE(hex(one.read(&port, byteCommand("VB100", 4))), QString("11223344"));
    QCOMPARE(hex(other.read(&port, byteCommand("VB100", 4))), QString("11223344"));
}

void TestByteRead::referenceWrapsFrom65535To0()
{
    SilentPort port(65536);
    DriverS7_200_PPI driver;
    LogCapture log;
    driver.read(&port, byteCommand("VB100", 4));
    QCOMPARE(int(port.references.size()), 65537);
    QCOMPARE(port.references.at(0), 1);
    QCOMPARE(port.references.mid(65533), QList<int>() << 65534 << 65535 << 0 << 1);
}

void TestByteRead::answerToReference0IsTaken()
{
    DriverS7_200_PPI driver;
    {
        SilentPort silent(65534);
        LogCapture log;
        driver.read(&silent, byteCommand("VB100", 4));
    }
    ScriptedPort port;
    port.serves(Answer(kFourBytes, 0));
    QCOMPARE(hex(driver.read(&port, byteCommand("VB100", 4))), QString("11223344"));
}

void TestByteRead::resultIsFittedToTheCount_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<int>("count");
    QTest::addColumn<QString>("item");
    QTest::addColumn<QString>("data");
    const QString memory("04 01 ff 04 00 20 11 22 33 44");
    QTest::newRow("longer is cut") << "VB100" << 3 << memory << "112233";
    QTest::newRow("much longer is cut") << "VB100" << 1 << memory << "11";
    QTest::newRow("longer is cut to nothing") << "VB100" << 0 << memory << "";
    QTest::newRow("shorter is extended") << "VB100" << 6 << memory << "112233440000";
    QTest::newRow("words are cut in their host order") << "VW100" << 3 << memory << "221144";
    QTest::newRow("double words are cut in their host order") << "VD100" << 2 << memory << "4433";
    QTest::newRow("double words are extended") << "VD100" << 5 << memory << "4433221100";
    QTest::newRow("20 bits are 2 bytes") << "VB100" << 2 << "04 01 ff 04 00 14 11 22 33"
                                         << "1122";
    QTest::newRow("7 bits more do not count") << "VB100" << 3 << "04 01 ff 04 00 17 11 22 33"
                                              << "112200";
    QTest::newRow("timers are cut") << "T37" << 3 << "04 01 ff 09 00 0a 02 00 00 12 34 00 00 00 56 78"
                                    << "341278";
    QTest::newRow("timers are extended") << "T37" << 3 << "04 01 ff 09 00 05 02 00 00 12 34"
                                         << "341200";
    QTest::newRow("counters are cut") << "C5" << 1 << "04 01 ff 09 00 03 10 12 34"
                                      << "34";
    QTest::newRow("counters are extended") << "C5" << 4 << "04 01 ff 09 00 03 10 12 34"
                                           << "34120000";
    QTest::newRow("high-speed counters are cut")
        << "HC0" << 5 << "04 01 ff 09 00 0a 00 01 02 03 04 00 05 06 07 08"
        << "0403020108";
    QTest::newRow("high-speed counters are extended") << "HC0" << 5 << "04 01 ff 09 00 05 00 01 02 03 04"
                                                      << "0403020100";
}

void TestByteRead::resultIsFittedToTheCount()
{
    QFETCH(QString, address);
    QFETCH(int, count);
    QFETCH(QString, item);
    QFETCH(QString, data);
    const CommunicatorCommand command = byteCommand(address, count);
    QCOMPARE(outcomeOf(command, Answer(item)).data, data);
}

void TestByteRead::resultMayBeLongerThan65535Bytes()
{
    const QString fourBytesAndZeros = QString("11223344") + QString(2 * 99996, QLatin1Char('0'));
    QCOMPARE(outcomeOf(byteCommand("VB100", 100000), Answer(kFourBytes)).data, fourBytesAndZeros);
}

void TestByteRead::largestAnswerIsRead()
{
    const QByteArray data(234, '\x5a');
    const Answer answer("04 01 ff 04 07 50" + hex(data));
    QCOMPARE(hex(QByteArray(answer).mid(1, 2)), QString("ffff"));
    QCOMPARE(outcomeOf(byteCommand("VB0", 234), answer).data, hex(data));
}

void TestByteRead::headerFieldsThatMayVary_data()
{
    QTest::addColumn<int>("offset");
    QTest::addColumn<int>("value");
    QTest::newRow("acknowledgement, message type 2") << int(Answer::kMessageType) << 2;
    QTest::newRow("parameter length 0") << int(Answer::kParameterLength + 1) << 0;
    QTest::newRow("data length 0") << int(Answer::kDataLength + 1) << 0;
    QTest::newRow("data length 65288") << int(Answer::kDataLength) << 0xff;
}

void TestByteRead::headerFieldsThatMayVary()
{
    QFETCH(int, offset);
    QFETCH(int, value);
    const Answer answer = Answer(kFourBytes).withByte(offset, value).sealed();
    QCOMPARE(outcomeOf(byteCommand("VB100", 4), answer).data, QString("11223344"));
}

void TestByteRead::bytesBehindTheAcknowledgementAreThrownAway()
{
    ScriptedPort port;
    port.expectsRequest().answers("e5 00 ff 16").expectsPoll().answers(Answer(kFourBytes));
    DriverS7_200_PPI driver;
    QCOMPARE(hex(driver.read(&port, byteCommand("VB100", 4))), QString("11223344"));
}

void TestByteRead::hugeCountOfARefusedAnswerFails_data()
{
    QTest::addColumn<int>("dataType");
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("item");
    const QString noMemory("04 01 05 00 00 00");
    const QString noObject("04 01 0a 09 00 00");
    QTest::newRow("bytes") << int(kByte) << "VB0" << noMemory;
    QTest::newRow("bytes of timers") << int(kByte) << "T0" << noObject;
    QTest::newRow("bytes of counters") << int(kByte) << "C0" << noObject;
    QTest::newRow("bytes of high-speed counters") << int(kByte) << "HC0" << noObject;
    QTest::newRow("words") << int(kWord) << "VW0" << noMemory;
    QTest::newRow("words of high-speed counters") << int(kWord) << "HC0" << noObject;
    QTest::newRow("double words") << int(kDoubleWord) << "VD0" << noMemory;
    QTest::newRow("double words of timers") << int(kDoubleWord) << "T0" << noObject;
    QTest::newRow("bits") << int(kBit) << "V0.7" << noMemory;
    QTest::newRow("bits of one byte") << int(kBit) << "V0.7"
                                      << "04 01 ff 04 00 08 ff";
    QTest::newRow("bits of counters") << int(kBit) << "C0" << noObject;
}

void TestByteRead::hugeCountOfARefusedAnswerFails()
{
    QFETCH(int, dataType);
    QFETCH(QString, address);
    QFETCH(QString, item);
    const CommunicatorCommand read = command(dataType, address, INT_MAX);
    const Outcome outcome = outcomeOf(read, Answer(item));
    QCOMPARE(outcome.data, QString(""));
    QVERIFY(outcome.failed);
}

void TestByteRead::negativeCountGivesNoData_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("count");
    const char *const fitted[] = {"bytes of VB100", "bytes of T37",         "bytes of HC0", "words of VW100",
                                  "words of HC0",   "double word of VD100", "bits of V10.0"};
    for (const char *name : fitted) {
        const QByteArray text(name);
        QTest::newRow((text + ", -1").constData()) << QString(name) << -1;
        QTest::newRow((text + ", INT_MIN").constData()) << QString(name) << INT_MIN;
    }
}

void TestByteRead::negativeCountGivesNoData()
{
    QFETCH(QString, name);
    QFETCH(int, count);
    const SampleRead sample = sampleRead(name);
    const CommunicatorCommand read = command(sample.dataType, sample.address, count);
    QCOMPARE(outcomeOf(read, Answer(sample.item)).data, QString(""));
}

QTEST_APPLESS_MAIN(TestByteRead)

#include "test_byte_read.moc"
