// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Writes that fail: on the line, by what the controller answers, and before anything is sent.

#include "answer.h"
#include "commands.h"
#include "faults.h"
#include "hex.h"
#include "log_capture.h"
#include "outcome.h"
#include "sample_writes.h"
#include "scripted_port.h"
#include "simatic_s7_200_ppi/s7_200_ppi.h"

#include <QtTest>

namespace {

void addSampleColumn()
{
    QTest::addColumn<QString>("sample");
}

void addSampleRows()
{
    const QList<SampleWrite> writes = sampleWrites();
    for (int i = 0; i < int(writes.size()); ++i)
        QTest::newRow(writes.at(i).name) << QString(writes.at(i).name);
}

// The line number that the log gives for a write when the line carries these.
int loggedLine(const SampleWrite &write, const char *acknowledgement, const QByteArray &answer)
{
    ScriptedPort port;
    port.expectsRequest().answers(acknowledgement).expectsPoll().answers(answer);
    return outcomeOfWrite(write.command(), write.data(), port).numbers.value(0, -1);
}

// The line numbers of all failure points of an exchange.
QList<int> exchangeLines(const SampleWrite &write)
{
    return QList<int>() << loggedLine(write, "10 00 02 02 04 16", QByteArray())
                        << loggedLine(write, "00", QByteArray()) << loggedLine(write, "e5", QByteArray())
                        << loggedLine(write, "e5", Answer(write.item).shortBy(1))
                        << loggedLine(write, "e5", Answer(write.item, 9))
                        << loggedLine(write, "e5",
                                      Answer(write.item).withByte(Answer::kErrorClass, 1).sealed())
                        << loggedLine(write, "e5", Answer("05 01 05"));
}

WriteOutcome outcomeOfSample(const QString &sample, const QByteArray &answer)
{
    const SampleWrite write = sampleWrite(sample);
    return outcomeOfWrite(write.command(), write.data(), answer);
}

} // namespace

class TestWriteFailures : public QObject
{
    Q_OBJECT

private slots:
    void lineFaultGivesItsReasonAndOneLogLine_data();
    void lineFaultGivesItsReasonAndOneLogLine();
    void everyLineFaultIsTriedAgain_data();
    void everyLineFaultIsTriedAgain();
    void nextWriteIsTakenAfterALineFault_data();
    void nextWriteIsTakenAfterALineFault();
    void refusalOfTheFrameIsNotPolled_data();
    void refusalOfTheFrameIsNotPolled();
    void controllerThatIsNotReadyIsPolledOnce_data();
    void controllerThatIsNotReadyIsPolledOnce();
    void faultyReceiveResults_data();
    void faultyReceiveResults();
    void claimsOfMoreBytesThanAskedForCountAsAskedFor_data();
    void claimsOfMoreBytesThanAskedForCountAsAskedFor();

    void answerWithAWrongHeaderIsRefused_data();
    void answerWithAWrongHeaderIsRefused();
    void answerThatReportsAnErrorIsRefused_data();
    void answerThatReportsAnErrorIsRefused();
    void headerIsJudgedBeforeItsErrorClass();
    void errorClassIsJudgedBeforeTheItem();
    void refusedItemNamesItsReason_data();
    void refusedItemNamesItsReason();
    void wrongAnswerWithASuccessCodeFailsWithANullText_data();
    void wrongAnswerWithASuccessCodeFailsWithANullText();
    void wrongAnswerWithAnotherCodeNamesTheCode();
    void answerWithoutAnItemIsRefused_data();
    void answerWithoutAnItemIsRefused();
    void wrongAnswersAreTriedAgain_data();
    void wrongAnswersAreTriedAgain();

    void whatCanNotBeWrittenIsRefusedUnsent_data();
    void whatCanNotBeWrittenIsRefusedUnsent();
    void refusedWriteUsesNoReference();

    void failurePointsOfAnExchangeHaveLinesOfTheirOwn_data();
    void failurePointsOfAnExchangeHaveLinesOfTheirOwn();
    void debugModeDoesNotChangeTheLog();
};

void TestWriteFailures::lineFaultGivesItsReasonAndOneLogLine_data()
{
    addSampleColumn();
    QTest::addColumn<int>("faultIndex");
    const QList<SampleWrite> writes = sampleWrites();
    for (int i = 0; i < int(writes.size()); ++i) {
        const QList<LineFault> faults = lineFaults(writes.at(i).item, 1);
        for (int j = 0; j < int(faults.size()); ++j)
            QTest::newRow((QByteArray(writes.at(i).name) + ": " + faults.at(j).name).constData())
                << QString(writes.at(i).name) << j;
    }
}

void TestWriteFailures::lineFaultGivesItsReasonAndOneLogLine()
{
    QFETCH(QString, sample);
    QFETCH(int, faultIndex);
    const SampleWrite write = sampleWrite(sample);
    const LineFault fault = lineFaults(write.item, 1).at(faultIndex);
    ScriptedPort port;
    addAttempt(port, fault);
    const WriteOutcome outcome = outcomeOfWrite(write.command(), write.data(), port);
    QVERIFY(!outcome.taken);
    QVERIFY(outcome.failed);
    QCOMPARE(outcome.reason, fault.text);
    QCOMPARE(outcome.texts, QStringList() << fault.text);
    QVERIFY(port.scriptIsFinished());
}

void TestWriteFailures::everyLineFaultIsTriedAgain_data()
{
    QTest::addColumn<int>("faultIndex");
    const QList<LineFault> faults = lineFaults("05 01 ff", 1);
    for (int i = 0; i < int(faults.size()); ++i)
        QTest::newRow(faults.at(i).name.constData()) << i;
}

void TestWriteFailures::everyLineFaultIsTriedAgain()
{
    QFETCH(int, faultIndex);
    const SampleWrite write = sampleWrite("bytes of VB100");
    ScriptedPort port;
    port.retries(2);
    for (int reference = 1; reference <= 3; ++reference)
        addAttempt(port, lineFaults(write.item, reference).at(faultIndex));
    const WriteOutcome outcome = outcomeOfWrite(write.command(), write.data(), port);
    QCOMPARE(port.requestsSent(), 3);
    QCOMPARE(outcome.texts, copies(lineFaults(write.item, 1).at(faultIndex).text, 3));
    QVERIFY(port.scriptIsFinished());
}

void TestWriteFailures::nextWriteIsTakenAfterALineFault_data()
{
    everyLineFaultIsTriedAgain_data();
}

void TestWriteFailures::nextWriteIsTakenAfterALineFault()
{
    QFETCH(int, faultIndex);
    const SampleWrite write = sampleWrite("bytes of VB100");
    ScriptedPort port;
    addAttempt(port, lineFaults(write.item, 1).at(faultIndex));
    port.serves(Answer(write.item, 2));
    DriverS7_200_PPI driver;
    LogCapture log;
    QCOMPARE(driver.write(&port, write.command(), write.data()), 0);
    QVERIFY(driver.write(&port, write.command(), write.data()) != 0);
    QVERIFY(!driver.hasError());
    QVERIFY(port.scriptIsFinished());
}

void TestWriteFailures::refusalOfTheFrameIsNotPolled_data()
{
    addSampleColumn();
    addSampleRows();
}

void TestWriteFailures::refusalOfTheFrameIsNotPolled()
{
    QFETCH(QString, sample);
    const SampleWrite write = sampleWrite(sample);
    ScriptedPort port;
    port.expectsRequest().answers("10 00 02 02 04 16");
    QCOMPARE(outcomeOfWrite(write.command(), write.data(), port).reason, QString("no resource"));
    QCOMPARE(QStringList(port.events().mid(4)), QStringList() << "receive(1) -> 1"
                                                              << "receive(5) -> 5"
                                                              << "retry");
    QVERIFY(port.scriptIsFinished());
}

void TestWriteFailures::controllerThatIsNotReadyIsPolledOnce_data()
{
    addSampleColumn();
    addSampleRows();
}

void TestWriteFailures::controllerThatIsNotReadyIsPolledOnce()
{
    QFETCH(QString, sample);
    const SampleWrite write = sampleWrite(sample);
    ScriptedPort port;
    port.retries(1);
    port.serves(bytes("e5")).serves(Answer(write.item, 2));
    const WriteOutcome outcome = outcomeOfWrite(write.command(), write.data(), port);
    QVERIFY(outcome.taken);
    QCOMPARE(outcome.texts, QStringList() << "packet length < minimum second response");
    QVERIFY(port.scriptIsFinished());
}

void TestWriteFailures::faultyReceiveResults_data()
{
    const QString tooShort("packet length < minimum second response");
    QTest::addColumn<int>("call");
    QTest::addColumn<int>("result");
    QTest::addColumn<QString>("text");
    QTest::newRow("acknowledgement, -1") << 1 << -1 << "plc no response";
    QTest::newRow("acknowledgement, 0") << 1 << 0 << "plc no response";
    QTest::newRow("head, -1") << 2 << -1 << tooShort;
    QTest::newRow("head, 6") << 2 << 6 << tooShort;
    QTest::newRow("rest, -1") << 3 << -1 << "packet loss";
    QTest::newRow("rest, 0") << 3 << 0 << "packet loss";
    QTest::newRow("rest, 16") << 3 << 16 << "packet loss";
}

void TestWriteFailures::faultyReceiveResults()
{
    QFETCH(int, call);
    QFETCH(int, result);
    QFETCH(QString, text);
    ScriptedPort port;
    port.expectsRequest().answers("e5");
    if (call > 1)
        port.expectsPoll().answers(Answer("05 01 ff"));
    port.receiveClaims(call, result);
    const WriteOutcome outcome = outcomeOfWrite(byteCommand("VB10", 1), bytes("11"), port);
    QVERIFY(!outcome.taken);
    QCOMPARE(outcome.reason, text);
    QCOMPARE(outcome.texts, QStringList() << text);
    QVERIFY(port.scriptIsFinished());
}

void TestWriteFailures::claimsOfMoreBytesThanAskedForCountAsAskedFor_data()
{
    QTest::addColumn<int>("call");
    QTest::newRow("acknowledgement") << 1;
    QTest::newRow("head") << 2;
    QTest::newRow("rest") << 3;
}

void TestWriteFailures::claimsOfMoreBytesThanAskedForCountAsAskedFor()
{
    QFETCH(int, call);
    ScriptedPort port;
    port.serves(Answer("05 01 ff")).receiveClaims(call, 0x7fffffff);
    QVERIFY(outcomeOfWrite(byteCommand("VB10", 1), bytes("11"), port).taken);
    QVERIFY(port.scriptIsFinished());
}

void TestWriteFailures::answerWithAWrongHeaderIsRefused_data()
{
    addSampleColumn();
    QTest::addColumn<int>("offset");
    QTest::addColumn<int>("value");
    const QList<SampleWrite> writes = sampleWrites();
    for (int i = 0; i < int(writes.size()); ++i) {
        for (const HeaderFault &fault : headerFaults())
            QTest::newRow((QByteArray(writes.at(i).name) + ": " + fault.name).constData())
                << QString(writes.at(i).name) << fault.offset << fault.value;
    }
}

void TestWriteFailures::answerWithAWrongHeaderIsRefused()
{
    QFETCH(QString, sample);
    QFETCH(int, offset);
    QFETCH(int, value);
    const SampleWrite write = sampleWrite(sample);
    const WriteOutcome outcome = outcomeOfSample(sample, Answer(write.item).withByte(offset, value).sealed());
    QVERIFY(!outcome.taken);
    QVERIFY(outcome.failed);
    QCOMPARE(outcome.reason, QString("invalid response1"));
    QCOMPARE(outcome.texts, QStringList() << "invalid response1");
}

void TestWriteFailures::answerThatReportsAnErrorIsRefused_data()
{
    addSampleColumn();
    QTest::addColumn<int>("offset");
    QTest::addColumn<int>("value");
    const QList<SampleWrite> writes = sampleWrites();
    for (int i = 0; i < int(writes.size()); ++i) {
        const QString sample(writes.at(i).name);
        const QByteArray name = QByteArray(writes.at(i).name);
        QTest::newRow((name + ": error class 85").constData()) << sample << int(Answer::kErrorClass) << 0x85;
        QTest::newRow((name + ": error class 01").constData()) << sample << int(Answer::kErrorClass) << 1;
        QTest::newRow((name + ": error code 04").constData()) << sample << int(Answer::kErrorCode) << 4;
        QTest::newRow((name + ": error code ff").constData()) << sample << int(Answer::kErrorCode) << 0xff;
    }
}

void TestWriteFailures::answerThatReportsAnErrorIsRefused()
{
    QFETCH(QString, sample);
    QFETCH(int, offset);
    QFETCH(int, value);
    const SampleWrite write = sampleWrite(sample);
    const WriteOutcome outcome = outcomeOfSample(sample, Answer(write.item).withByte(offset, value).sealed());
    QVERIFY(!outcome.taken);
    QVERIFY(outcome.failed);
    QCOMPARE(outcome.reason, QString("invalid request to PLC"));
    QCOMPARE(outcome.texts, QStringList() << "invalid request to PLC");
}

void TestWriteFailures::headerIsJudgedBeforeItsErrorClass()
{
    const QByteArray answer = Answer("05 01 ff", 9).withByte(Answer::kErrorClass, 0x85).sealed();
    QCOMPARE(outcomeOfSample("bytes of VB100", answer).reason, QString("invalid response1"));
}

void TestWriteFailures::errorClassIsJudgedBeforeTheItem()
{
    const QByteArray answer = Answer("05 01 05").withByte(Answer::kErrorClass, 0x85).sealed();
    QCOMPARE(outcomeOfSample("bytes of VB100", answer).reason, QString("invalid request to PLC"));
    QCOMPARE(outcomeOfSample("bit of V10.3", answer).reason, QString("invalid request to PLC"));
}

void TestWriteFailures::refusedItemNamesItsReason_data()
{
    addSampleColumn();
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("text");
    const QList<SampleWrite> writes = sampleWrites();
    for (int i = 0; i < int(writes.size()); ++i) {
        for (const Refusal &refusal : refusals())
            QTest::newRow(
                (QByteArray(writes.at(i).name) + ": " + QByteArray::number(refusal.code, 16)).constData())
                << QString(writes.at(i).name) << refusal.code << QString(refusal.text);
    }
}

void TestWriteFailures::refusedItemNamesItsReason()
{
    QFETCH(QString, sample);
    QFETCH(int, code);
    QFETCH(QString, text);
    const QByteArray answer = Answer("05 01 ff").withByte(Answer::kReturnCode, code).sealed();
    const WriteOutcome outcome = outcomeOfSample(sample, answer);
    QVERIFY(!outcome.taken);
    QVERIFY(outcome.failed);
    QCOMPARE(outcome.reason, text);
    QCOMPARE(outcome.texts, QStringList() << text);
}

// For bits see answerWithoutReturnCodesIsInvalidAndLogged.
void TestWriteFailures::wrongAnswerWithASuccessCodeFailsWithANullText_data()
{
    addSampleColumn();
    QTest::addColumn<QString>("item");
    const QList<SampleWrite> writes = sampleWrites();
    for (int i = 0; i < int(writes.size()); ++i) {
        if (writes.at(i).isOfBits())
            continue;
        const QByteArray name = QByteArray(writes.at(i).name);
        const QString sample(writes.at(i).name);
        QTest::newRow((name + ": function 4").constData()) << sample << "04 01 ff";
        QTest::newRow((name + ": 0 items").constData()) << sample << "05 00 ff";
        QTest::newRow((name + ": 2 items").constData()) << sample << "05 02 ff ff";
    }
}

void TestWriteFailures::wrongAnswerWithASuccessCodeFailsWithANullText()
{
    QFETCH(QString, sample);
    QFETCH(QString, item);
    const WriteOutcome outcome = outcomeOfSample(sample, Answer(item));
    QVERIFY(!outcome.taken);
    QVERIFY(outcome.failed);
    QVERIFY(outcome.reason.isNull());
    QCOMPARE(outcome.texts, QStringList() << "");
}

void TestWriteFailures::wrongAnswerWithAnotherCodeNamesTheCode()
{
    QCOMPARE(outcomeOfSample("bytes of VB100", Answer("04 01 06")).reason,
             QString("Data type is not supported"));
    QCOMPARE(outcomeOfSample("bytes of T37", Answer("05 02 03")).reason, QString("Illegal object access"));
}

// Behind a PDU of nothing but the header lie check sum, end and zero bytes, so the return code reads 00.
void TestWriteFailures::answerWithoutAnItemIsRefused_data()
{
    addSampleColumn();
    addSampleRows();
}

void TestWriteFailures::answerWithoutAnItemIsRefused()
{
    QFETCH(QString, sample);
    const WriteOutcome outcome = outcomeOfSample(sample, Answer(""));
    QVERIFY(!outcome.taken);
    QCOMPARE(outcome.reason, QString(sampleWrite(sample).isOfBits() ? "invalid response" : "unknow error"));
}

void TestWriteFailures::wrongAnswersAreTriedAgain_data()
{
    QTest::addColumn<QString>("sample");
    QTest::addColumn<QByteArray>("answer");
    QTest::newRow("another reference") << "bytes of VB100" << QByteArray(Answer("05 01 ff", 9));
    QTest::newRow("error class") << "bytes of VB100"
                                 << QByteArray(
                                        Answer("05 01 ff").withByte(Answer::kErrorClass, 0x85).sealed());
    QTest::newRow("refused item") << "bytes of VB100" << QByteArray(Answer("05 01 05"));
    QTest::newRow("null text") << "bytes of VB100" << QByteArray(Answer("04 01 ff"));
    QTest::newRow("refused bit") << "bits of V10.6" << QByteArray(Answer("05 03 ff 0a ff"));
    QTest::newRow("no return codes") << "bits of V10.6" << QByteArray(Answer("05 00"));
}

void TestWriteFailures::wrongAnswersAreTriedAgain()
{
    QFETCH(QString, sample);
    QFETCH(QByteArray, answer);
    const SampleWrite write = sampleWrite(sample);
    ScriptedPort port;
    port.retries(1).serves(answer).serves(Answer(write.item, 2));
    const WriteOutcome outcome = outcomeOfWrite(write.command(), write.data(), port);
    QVERIFY(outcome.taken);
    QVERIFY(!outcome.failed);
    QVERIFY(!outcome.reason.isNull());
    QCOMPARE(outcome.reason, QString(""));
    QVERIFY(port.scriptIsFinished());
}

void TestWriteFailures::whatCanNotBeWrittenIsRefusedUnsent_data()
{
    QTest::addColumn<int>("dataType");
    QTest::addColumn<QString>("address");
    QTest::newRow("bytes of HC") << int(kByte) << "HC0";
    QTest::newRow("bytes of AIW") << int(kByte) << "AIW0";
    QTest::newRow("block of HC") << int(kBlock) << "HC5";
    QTest::newRow("block of AIW") << int(kBlock) << "AIW2";
    QTest::newRow("words of HC") << int(kWord) << "HC0";
    QTest::newRow("words of AIW") << int(kWord) << "AIW30";
    QTest::newRow("double words of HC") << int(kDoubleWord) << "HC0";
    QTest::newRow("double words of AIW") << int(kDoubleWord) << "AIW0";
    QTest::newRow("bits of T") << int(kBit) << "T5";
    QTest::newRow("bits of C") << int(kBit) << "C5";
    QTest::newRow("bit block of T") << int(kBitBlock) << "T37";
    QTest::newRow("bit block of C") << int(kBitBlock) << "C0.1";
    QTest::newRow("the address as it stands") << int(kByte) << "HC 0 x";
}

void TestWriteFailures::whatCanNotBeWrittenIsRefusedUnsent()
{
    QFETCH(int, dataType);
    QFETCH(QString, address);
    ScriptedPort port;
    port.retries(2).delays(30);
    const WriteOutcome outcome = outcomeOfWrite(command(dataType, address, 1), bytes("34 12"), port);
    QVERIFY(!outcome.taken);
    QVERIFY(outcome.failed);
    QCOMPARE(outcome.reason, "can not write data to " + address);
    QCOMPARE(outcome.texts, QStringList());
    QCOMPARE(port.events(), QStringList() << "delay"
                                          << "pause 30 ms"
                                          << "retry"
                                          << "delay"
                                          << "pause 30 ms"
                                          << "retry"
                                          << "delay"
                                          << "pause 30 ms"
                                          << "retry");
}

void TestWriteFailures::refusedWriteUsesNoReference()
{
    ScriptedPort port;
    port.serves(Answer("05 01 ff", 1));
    DriverS7_200_PPI driver;
    driver.write(&port, byteCommand("HC0", 4), bytes("11 22 33 44"));
    driver.write(&port, bitCommand("T5", 1), bytes("01"));
    QVERIFY(driver.write(&port, byteCommand("VB10", 1), bytes("11")) != 0);
    QVERIFY(port.scriptIsFinished());
}

void TestWriteFailures::failurePointsOfAnExchangeHaveLinesOfTheirOwn_data()
{
    addSampleColumn();
    addSampleRows();
}

void TestWriteFailures::failurePointsOfAnExchangeHaveLinesOfTheirOwn()
{
    QFETCH(QString, sample);
    const QList<int> lines = exchangeLines(sampleWrite(sample));
    QVERIFY(!lines.contains(0) && !lines.contains(-1));
    QCOMPARE(distinct(lines), 7);
}

void TestWriteFailures::debugModeDoesNotChangeTheLog()
{
    const bool modes[] = {true, false};
    for (bool on : modes) {
        ScriptedPort port;
        port.expectsRequest();
        DriverS7_200_PPI driver;
        driver.setDebugMode(on);
        LogCapture log;
        driver.write(&port, byteCommand("VB100", 1), bytes("11"));
        QCOMPARE(log.texts(), QStringList() << "plc no response");
    }
}

QTEST_APPLESS_MAIN(TestWriteFailures)

#include "test_write_failures.moc"
