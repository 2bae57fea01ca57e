// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Answers whose frame is good and whose content is not, as all reads treat them, and as the byte read
// does.

#include "answer.h"
#include "commands.h"
#include "faults.h"
#include "hex.h"
#include "log_capture.h"
#include "outcome.h"
#include "sample_reads.h"
#include "scripted_port.h"
#include "simatic_s7_200_ppi/s7_200_ppi.h"

#include <QtTest>

namespace {

const char kInvalid[] = "invalid response";
const char kUndecoded[] = "invalid PLC response";

void addSampleColumn()
{
    QTest::addColumn<QString>("sample");
}

void addSampleRows()
{
    const QList<SampleRead> reads = sampleReads();
    for (int i = 0; i < int(reads.size()); ++i)
        QTest::newRow(reads.at(i).name) << QString(reads.at(i).name);
}

// The line number that the log gives for a read when the line carries these.
int loggedLine(const CommunicatorCommand &command, const char *acknowledgement, const QByteArray &answer)
{
    ScriptedPort port;
    port.expectsRequest().answers(acknowledgement).expectsPoll().answers(answer);
    return outcomeOf(command, port).numbers.value(0, -1);
}

// The line numbers of all failure points before the item is decoded.
QList<int> exchangeLines(const SampleRead &sample)
{
    const CommunicatorCommand command = sample.command();
    return QList<int>() << loggedLine(command, "10 00 02 02 04 16", QByteArray())
                        << loggedLine(command, "00", QByteArray()) << loggedLine(command, "e5", QByteArray())
                        << loggedLine(command, "e5", Answer(sample.item).shortBy(1))
                        << loggedLine(command, "e5", Answer(sample.item, 9))
                        << loggedLine(command, "e5",
                                      Answer(sample.item).withByte(Answer::kErrorClass, 1).sealed());
}

} // namespace

class TestReadFailures : public QObject
{
    Q_OBJECT

private slots:
    void answerWithAWrongHeaderIsRefused_data();
    void answerWithAWrongHeaderIsRefused();
    void answerToAnOlderRequestIsRefused();
    void answerThatReportsAnErrorIsRefused_data();
    void answerThatReportsAnErrorIsRefused();
    void headerIsJudgedBeforeItsErrorClass();
    void itemLongerThanItsFrameIsRefused_data();
    void itemLongerThanItsFrameIsRefused();
    void itemCutByTheEndOfItsFrameIsRefused_data();
    void itemCutByTheEndOfItsFrameIsRefused();

    void byteReadOfMemoryNamesTheReturnCode_data();
    void byteReadOfMemoryNamesTheReturnCode();
    void byteReadOfHighSpeedCountersNamesTheReturnCode_data();
    void byteReadOfHighSpeedCountersNamesTheReturnCode();
    void refusedTimersAndCountersAreNotLogged_data();
    void refusedTimersAndCountersAreNotLogged();
    void itemThatDoesNotDecode_data();
    void itemThatDoesNotDecode();
    void answerWithoutAnItemIsRefused();

    void failurePointsOfAnExchangeHaveLinesOfTheirOwn_data();
    void failurePointsOfAnExchangeHaveLinesOfTheirOwn();
    void decodingFailuresOfMemoryHaveLinesOfTheirOwn();
    void decodingFailuresOfHighSpeedCountersHaveLinesOfTheirOwn();
    void emptyListsOfTimersAndCountersHaveLinesOfTheirOwn();
    void debugModeDoesNotChangeTheLog();
};

void TestReadFailures::answerWithAWrongHeaderIsRefused_data()
{
    addSampleColumn();
    QTest::addColumn<int>("offset");
    QTest::addColumn<int>("value");
    const QList<SampleRead> reads = sampleReads();
    for (int i = 0; i < int(reads.size()); ++i) {
        for (const HeaderFault &fault : headerFaults())
            QTest::newRow((QByteArray(reads.at(i).name) + ": " + fault.name).constData())
                << QString(reads.at(i).name) << fault.offset << fault.value;
    }
}

void TestReadFailures::answerWithAWrongHeaderIsRefused()
{
    QFETCH(QString, sample);
    QFETCH(int, offset);
    QFETCH(int, value);
    const SampleRead read = sampleRead(sample);
    const Outcome outcome = outcomeOf(read.command(), Answer(read.item).withByte(offset, value).sealed());
    QCOMPARE(outcome.data, QString(""));
    QVERIFY(outcome.failed);
    QCOMPARE(outcome.reason, QString(read.invalidHeader));
    QCOMPARE(outcome.texts, QStringList() << read.invalidHeader);
}

void TestReadFailures::answerToAnOlderRequestIsRefused()
{
    ScriptedPort port;
    port.expects("68 1b 1b 68 02 00 6c 32 01 00 00 00 01 00 0e 00 00"
                 "04 01 12 0a 10 02 00 04 00 01 84 00 03 20 8f 16")
        .answers("e5")
        .expects("10 02 00 5c 5e 16")
        .answers("68 19 19 68 00 02 08 32 03 00 00 00 02 00 02 00 08 00 00"
                 "04 01 ff 04 00 20 11 22 33 44 1d 16");
    const Outcome outcome = outcomeOf(byteCommand("VB100", 4), port);
    QCOMPARE(outcome.data, QString(""));
    QCOMPARE(outcome.reason, QString("invalid response"));
    QVERIFY(port.scriptIsFinished());
}

void TestReadFailures::answerThatReportsAnErrorIsRefused_data()
{
    addSampleColumn();
    QTest::addColumn<int>("offset");
    QTest::addColumn<int>("value");
    const QList<SampleRead> reads = sampleReads();
    for (int i = 0; i < int(reads.size()); ++i) {
        const QString sample(reads.at(i).name);
        const QByteArray name = QByteArray(reads.at(i).name);
        QTest::newRow((name + ": error class 85").constData()) << sample << int(Answer::kErrorClass) << 0x85;
        QTest::newRow((name + ": error class 01").constData()) << sample << int(Answer::kErrorClass) << 1;
        QTest::newRow((name + ": error code 04").constData()) << sample << int(Answer::kErrorCode) << 4;
        QTest::newRow((name + ": error code ff").constData()) << sample << int(Answer::kErrorCode) << 0xff;
    }
}

void TestReadFailures::answerThatReportsAnErrorIsRefused()
{
    QFETCH(QString, sample);
    QFETCH(int, offset);
    QFETCH(int, value);
    const SampleRead read = sampleRead(sample);
    const Outcome outcome = outcomeOf(read.command(), Answer(read.item).withByte(offset, value).sealed());
    QCOMPARE(outcome.data, QString(""));
    QVERIFY(outcome.failed);
    QCOMPARE(outcome.reason, QString("invalid request to PLC"));
    QCOMPARE(outcome.texts, QStringList() << "invalid request to PLC");
}

void TestReadFailures::headerIsJudgedBeforeItsErrorClass()
{
    const SampleRead read = sampleRead("bytes of VB100");
    const Answer answer = Answer(read.item, 9).withByte(Answer::kErrorClass, 0x85).sealed();
    QCOMPARE(outcomeOf(read.command(), answer).reason, QString("invalid response"));
}

void TestReadFailures::itemLongerThanItsFrameIsRefused_data()
{
    addSampleColumn();
    QTest::addColumn<int>("length");
    const QList<SampleRead> reads = sampleReads();
    for (int i = 0; i < int(reads.size()); ++i) {
        const QByteArray item = bytes(reads.at(i).item);
        const int unit = item.at(3) == 4 ? 8 : 1;
        const int oneByteMore = (int(item.size()) - 6 + 1) * unit;
        const QByteArray name = QByteArray(reads.at(i).name);
        QTest::newRow((name + ": 1 byte longer").constData()) << QString(reads.at(i).name) << oneByteMore;
        QTest::newRow((name + ": 65528").constData()) << QString(reads.at(i).name) << 65528;
    }
}

void TestReadFailures::itemLongerThanItsFrameIsRefused()
{
    QFETCH(QString, sample);
    QFETCH(int, length);
    const SampleRead read = sampleRead(sample);
    const Answer answer = Answer(read.item).withWord(Answer::kItemLength, length).sealed();
    const Outcome outcome = outcomeOf(read.command(), answer);
    QCOMPARE(outcome.data, QString(""));
    QCOMPARE(outcome.reason, QString("invalid response"));
    QCOMPARE(outcome.texts.value(outcome.texts.size() - 1), QString("invalid response"));
}

// The check sum reads as the item's transport size here, and the end byte as the high byte of its length.
void TestReadFailures::itemCutByTheEndOfItsFrameIsRefused_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QByteArray>("answer");
    const QByteArray memory =
        bytes("68 12 12 68 00 02 08 32 03 00 00 00 01 00 02 bd 01 00 00 04 01 ff 04 16");
    const QByteArray object =
        bytes("68 12 12 68 00 02 08 32 03 00 00 00 01 00 02 c2 01 00 00 04 01 ff 09 16");
    QTest::newRow("VB") << "VB100" << memory;
    QTest::newRow("T") << "T37" << object;
    QTest::newRow("C") << "C5" << object;
    QTest::newRow("HC") << "HC0" << object;
}

void TestReadFailures::itemCutByTheEndOfItsFrameIsRefused()
{
    QFETCH(QString, address);
    QFETCH(QByteArray, answer);
    const Outcome outcome = outcomeOf(byteCommand(address, 4), answer);
    QCOMPARE(outcome.data, QString(""));
    QCOMPARE(outcome.texts, QStringList() << "invalid response");
}

void TestReadFailures::byteReadOfMemoryNamesTheReturnCode_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("text");
    for (const Refusal &refusal : refusals())
        QTest::newRow(QByteArray::number(refusal.code, 16).constData())
            << refusal.code << QString(refusal.text);
}

void TestReadFailures::byteReadOfMemoryNamesTheReturnCode()
{
    QFETCH(int, code);
    QFETCH(QString, text);
    const Answer answer = Answer("04 01 00 00 00 00").withByte(Answer::kReturnCode, code).sealed();
    const Outcome outcome = outcomeOf(byteCommand("VB100", 4), answer);
    QCOMPARE(outcome.data, QString(""));
    QVERIFY(outcome.failed);
    QCOMPARE(outcome.reason, text);
    QCOMPARE(outcome.texts, QStringList() << text);
}

void TestReadFailures::byteReadOfHighSpeedCountersNamesTheReturnCode_data()
{
    byteReadOfMemoryNamesTheReturnCode_data();
}

void TestReadFailures::byteReadOfHighSpeedCountersNamesTheReturnCode()
{
    QFETCH(int, code);
    QFETCH(QString, text);
    const Answer answer = Answer("04 01 00 00 00 00").withByte(Answer::kReturnCode, code).sealed();
    const Outcome outcome = outcomeOf(byteCommand("HC0", 4), answer);
    QCOMPARE(outcome.data, QString(""));
    QVERIFY(outcome.failed);
    QCOMPARE(outcome.reason, text);
    QCOMPARE(outcome.texts, QStringList() << text);
}

void TestReadFailures::refusedTimersAndCountersAreNotLogged_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<int>("code");
    for (const Refusal &refusal : refusals()) {
        const QByteArray code = QByteArray::number(refusal.code, 16);
        QTest::newRow(("T37, " + code).constData()) << "T37" << refusal.code;
        QTest::newRow(("C5, " + code).constData()) << "C5" << refusal.code;
    }
}

void TestReadFailures::refusedTimersAndCountersAreNotLogged()
{
    QFETCH(QString, address);
    QFETCH(int, code);
    const Answer answer = Answer("04 01 00 00 00 00").withByte(Answer::kReturnCode, code).sealed();
    const Outcome outcome = outcomeOf(byteCommand(address, 4), answer);
    QCOMPARE(outcome.data, QString(""));
    QVERIFY(outcome.failed);
    QCOMPARE(outcome.reason, QString("invalid PLC response"));
    QCOMPARE(outcome.texts, QStringList());
}

void TestReadFailures::itemThatDoesNotDecode_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("item");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("logged");
    const QString one("04 01 ff 04 00 08 11");
    QTest::newRow("memory, function 5") << "VB100"
                                        << "05 01 ff 04 00 08 11" << kInvalid << true;
    QTest::newRow("memory, 0 items") << "VB100"
                                     << "04 00 ff 04 00 08 11" << kInvalid << true;
    QTest::newRow("memory, 2 items") << "VB100"
                                     << "04 02 ff 04 00 08 11" << kInvalid << true;
    QTest::newRow("memory, transport size 3") << "VB100"
                                              << "04 01 ff 03 00 01 11" << kInvalid << true;
    QTest::newRow("memory, transport size 9") << "VB100"
                                              << "04 01 ff 09 00 01 11" << kInvalid << true;
    QTest::newRow("memory, no data") << "VB100"
                                     << "04 01 ff 04 00 00" << kInvalid << true;
    QTest::newRow("memory, 7 bits") << "VB100"
                                    << "04 01 ff 04 00 07 11" << kInvalid << true;
    QTest::newRow("memory, 8 bits of words") << "VW100"
                                             << "04 01 ff 04 00 08 11" << kInvalid << true;
    QTest::newRow("memory, 24 bits of double words") << "VD100"
                                                     << "04 01 ff 04 00 18 11 22 33" << kInvalid << true;
    QTest::newRow("memory, function 5 and code 0a") << "VB100"
                                                    << "05 01 0a 04 00 00"
                                                    << "Object does not exist or length error" << true;
    QTest::newRow("HC, function 5") << "HC0"
                                    << "05 01 ff 09 00 05 00 01 02 03 04" << kInvalid << true;
    QTest::newRow("HC, 2 items") << "HC0"
                                 << "04 02 ff 09 00 05 00 01 02 03 04" << kInvalid << true;
    QTest::newRow("HC, transport size 4") << "HC0"
                                          << "04 01 ff 04 00 05 00 01 02 03 04" << kInvalid << true;
    QTest::newRow("HC, no data") << "HC0"
                                 << "04 01 ff 09 00 00" << kInvalid << true;
    QTest::newRow("T, function 5") << "T37"
                                   << "05 01 ff 09 00 05 02 00 00 12 34" << kUndecoded << false;
    QTest::newRow("T, 2 items") << "T37"
                                << "04 02 ff 09 00 05 02 00 00 12 34" << kUndecoded << false;
    QTest::newRow("T, transport size 4") << "T37"
                                         << "04 01 ff 04 00 05 02 00 00 12 34" << kUndecoded << false;
    QTest::newRow("T, empty list") << "T37"
                                   << "04 01 ff 09 00 00" << kInvalid << true;
    QTest::newRow("C, function 5") << "C5"
                                   << "05 01 ff 09 00 03 10 12 34" << kUndecoded << false;
    QTest::newRow("C, 2 items") << "C5"
                                << "04 02 ff 09 00 03 10 12 34" << kUndecoded << false;
    QTest::newRow("C, transport size 4") << "C5"
                                         << "04 01 ff 04 00 03 10 12 34" << kUndecoded << false;
    QTest::newRow("C, empty list") << "C5"
                                   << "04 01 ff 09 00 00" << kInvalid << true;
}

void TestReadFailures::itemThatDoesNotDecode()
{
    QFETCH(QString, address);
    QFETCH(QString, item);
    QFETCH(QString, text);
    QFETCH(bool, logged);
    const CommunicatorCommand command = byteCommand(address, 4);
    const Outcome outcome = outcomeOf(command, Answer(item));
    QCOMPARE(outcome.data, QString(""));
    QVERIFY(outcome.failed);
    QCOMPARE(outcome.reason, text);
    QCOMPARE(outcome.texts, logged ? QStringList(text) : QStringList());
}

// Behind a PDU of nothing but the header lie check sum, end and zero bytes, so the return code reads 00.
void TestReadFailures::answerWithoutAnItemIsRefused()
{
    const Outcome outcome = outcomeOf(byteCommand("VB100", 4), Answer(""));
    QCOMPARE(outcome.data, QString(""));
    QCOMPARE(outcome.reason, QString("unknow error"));
}

void TestReadFailures::failurePointsOfAnExchangeHaveLinesOfTheirOwn_data()
{
    addSampleColumn();
    addSampleRows();
}

void TestReadFailures::failurePointsOfAnExchangeHaveLinesOfTheirOwn()
{
    QFETCH(QString, sample);
    const QList<int> lines = exchangeLines(sampleRead(sample));
    QVERIFY(!lines.contains(0) && !lines.contains(-1));
    QCOMPARE(distinct(lines), 6);
}

void TestReadFailures::decodingFailuresOfMemoryHaveLinesOfTheirOwn()
{
    const SampleRead sample = sampleRead("bytes of VB100");
    const QList<int> lines = exchangeLines(sample)
                             << loggedLine(sample.command(), "e5", Answer("04 01 05 00 00 00"))
                             << loggedLine(sample.command(), "e5", Answer("04 01 ff 04 00 00"));
    QVERIFY(!lines.contains(0) && !lines.contains(-1));
    QCOMPARE(distinct(lines), 8);
}

void TestReadFailures::decodingFailuresOfHighSpeedCountersHaveLinesOfTheirOwn()
{
    const SampleRead sample = sampleRead("bytes of HC0");
    const QList<int> lines = exchangeLines(sample)
                             << loggedLine(sample.command(), "e5", Answer("04 01 05 00 00 00"))
                             << loggedLine(sample.command(), "e5", Answer("04 01 ff 09 00 00"));
    QVERIFY(!lines.contains(0) && !lines.contains(-1));
    QCOMPARE(distinct(lines), 8);
}

void TestReadFailures::emptyListsOfTimersAndCountersHaveLinesOfTheirOwn()
{
    const char *const names[] = {"bytes of T37", "bytes of C5"};
    for (const char *name : names) {
        const SampleRead sample = sampleRead(name);
        const QList<int> lines = exchangeLines(sample)
                                 << loggedLine(sample.command(), "e5", Answer("04 01 ff 09 00 00"));
        QVERIFY(!lines.contains(0) && !lines.contains(-1));
        QCOMPARE(distinct(lines), 7);
    }
}

void TestReadFailures::debugModeDoesNotChangeTheLog()
{
    const bool modes[] = {true, false};
    for (bool on : modes) {
        ScriptedPort port;
        port.expectsRequest();
        DriverS7_200_PPI driver;
        driver.setDebugMode(on);
        LogCapture log;
        driver.read(&port, byteCommand("VB100", 4));
        QCOMPARE(log.texts(), QStringList() << "plc no response");
    }
}

QTEST_APPLESS_MAIN(TestReadFailures)

#include "test_read_failures.moc"
