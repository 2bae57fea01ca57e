// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The repetition of failed reads and writes, the pauses between them, and the error state that they leave.

#include "answer.h"
#include "commands.h"
#include "hex.h"
#include "log_capture.h"
#include "outcome.h"
#include "sample_rows.h"
#include "scripted_port.h"
#include "simatic_s7_200_ppi/s7_200_ppi.h"
#include "test_class.h"

#include <QtTest>

#include <climits>

namespace {

void expectSilentRequests(ScriptedPort &port, int count)
{
    for (int i = 0; i < count; ++i)
        port.expectsRequest();
}

// The calls of an attempt that nothing answers, when the port's delay is 0.
QStringList silentAttempt(const QByteArray &request)
{
    return QStringList() << "delay"
                         << "option 12 = 0"
                         << "pause 12 ms"
                         << "send " + hex(request) << "receive(1) -> 0"
                         << "retry";
}

QStringList silentAttemptAfter(const char *pause, const QByteArray &request)
{
    QStringList events = silentAttempt(request);
    events.insert(1, pause);
    return events;
}

// A call of the sample's operation on bytes, or on another type.
Sample withType(Sample call, int dataType)
{
    call.dataType = dataType;
    return call;
}

} // namespace

class TestRetries : public QObject
{
    Q_OBJECT

private slots:
    void controllerThatNeverAnswersIsAskedRetryPlus1Times_data();
    void controllerThatNeverAnswersIsAskedRetryPlus1Times();
    void everyAttemptFollowsThePortsPause_data();
    void everyAttemptFollowsThePortsPause();
    void delay0MakesNoPause_data();
    void delay0MakesNoPause();
    void negativePauseIsCountedIn32BitsOfNanoseconds_data();
    void negativePauseIsCountedIn32BitsOfNanoseconds();
    void everyAttemptAsksThePortForItsStation_data();
    void everyAttemptAsksThePortForItsStation();
    void everyFailureAsksThePortForItsRetries_data();
    void everyFailureAsksThePortForItsRetries();
    void everyAttemptHasANewReference_data();
    void everyAttemptHasANewReference();
    void successEndsTheAttemptsAndClearsTheError_data();
    void successEndsTheAttemptsAndClearsTheError();
    void lastErrorIsThatOfTheLastAttempt_data();
    void lastErrorIsThatOfTheLastAttempt();
    void everyFailedAttemptIsLogged_data();
    void everyFailedAttemptIsLogged();
    void errorOfAnEarlierCallIsCleared_data();
    void errorOfAnEarlierCallIsCleared();
    void answerToAnEarlierAttemptIsNotTaken_data();
    void answerToAnEarlierAttemptIsNotTaken();

    void typesThatAreNotServedReturnAtOnce_data();
    void typesThatAreNotServedReturnAtOnce();
    void typesThatAreNotServedClearTheError_data();
    void typesThatAreNotServedClearTheError();
    void typesThatAreNotServedUseNoReference_data();
    void typesThatAreNotServedUseNoReference();

    void readHandlersMakeOneAttempt();
    void newDriverHasNoErrorAndANullText();
    void errorStateIsSetAndCleared();
    void pauseBeforeAFrameIs12Milliseconds();
    void panelIsStation0();
};

void TestRetries::controllerThatNeverAnswersIsAskedRetryPlus1Times_data()
{
    addSampleColumn();
    QTest::addColumn<int>("retries");
    QTest::addColumn<int>("requests");
    for (const Sample &call : samples()) {
        sampleRow(call, "0") << 0 << 1;
        sampleRow(call, "1") << 1 << 2;
        sampleRow(call, "2") << 2 << 3;
        sampleRow(call, "3") << 3 << 4;
        sampleRow(call, "10") << 10 << 11;
        sampleRow(call, "-1") << -1 << 1;
        sampleRow(call, "INT_MIN") << INT_MIN << 1;
    }
}

void TestRetries::controllerThatNeverAnswersIsAskedRetryPlus1Times()
{
    QFETCH(QString, sample);
    QFETCH(int, retries);
    QFETCH(int, requests);
    ScriptedPort port;
    port.retries(retries);
    expectSilentRequests(port, requests);
    const Outcome outcome = outcomeOf(::sample(sample), port);
    QCOMPARE(outcome.result, QString(""));
    QVERIFY(outcome.failed);
    QCOMPARE(outcome.reason, QString("plc no response"));
    QCOMPARE(port.requestsSent(), requests);
    QVERIFY(port.scriptIsFinished());
}

void TestRetries::everyAttemptFollowsThePortsPause_data()
{
    addSampleRows();
}

void TestRetries::everyAttemptFollowsThePortsPause()
{
    QFETCH(QString, sample);
    ScriptedPort port;
    port.retries(2).delays(30);
    expectSilentRequests(port, 3);
    outcomeOf(::sample(sample), port);
    QCOMPARE(port.events(), silentAttemptAfter("pause 30 ms", port.frames().value(0)) +
                                silentAttemptAfter("pause 30 ms", port.frames().value(1)) +
                                silentAttemptAfter("pause 30 ms", port.frames().value(2)));
}

void TestRetries::delay0MakesNoPause_data()
{
    addSampleRows();
}

void TestRetries::delay0MakesNoPause()
{
    QFETCH(QString, sample);
    ScriptedPort port;
    port.retries(1);
    expectSilentRequests(port, 2);
    outcomeOf(::sample(sample), port);
    QCOMPARE(port.events(), silentAttempt(port.frames().value(0)) + silentAttempt(port.frames().value(1)));
}

// -1 ms are 2^32 - 1000000 ns; the lowest int is a multiple of 2^32 ns.
void TestRetries::negativePauseIsCountedIn32BitsOfNanoseconds_data()
{
    QTest::addColumn<int>("delay");
    QTest::addColumn<QStringList>("pauses");
    QTest::newRow("-1 ms") << -1 << QStringList("pause 4293967296 ns");
    QTest::newRow("-5 ms") << -5 << QStringList("pause 4289967296 ns");
    QTest::newRow("-5000 ms") << -5000 << QStringList("pause 3589934592 ns");
    QTest::newRow("lowest") << INT_MIN << QStringList();
}

void TestRetries::negativePauseIsCountedIn32BitsOfNanoseconds()
{
    QFETCH(int, delay);
    QFETCH(QStringList, pauses);
    const char *const calls[] = {"read bytes of VB100", "write bytes of VB100"};
    for (const char *call : calls) {
        ScriptedPort port;
        port.delays(delay).expectsRequest();
        outcomeOf(sample(call), port);
        QCOMPARE(port.events().filter("pause"), pauses + QStringList("pause 12 ms"));
    }
}

void TestRetries::everyAttemptAsksThePortForItsStation_data()
{
    addSampleRows();
}

void TestRetries::everyAttemptAsksThePortForItsStation()
{
    QFETCH(QString, sample);
    const Sample call = ::sample(sample);
    ScriptedPort port(2);
    port.retries(1).expectsRequest().thenHasStation(3);
    port.expectsRequest()
        .answers("e5")
        .expects("10 03 00 5c 5f 16")
        .answers(Answer(call.item, 2).from(3).sealed());
    QCOMPARE(outcomeOf(call, port).result, QString(call.result));
    QCOMPARE(hex(port.frames().value(0).mid(4, 3)), QString("02006c"));
    QCOMPARE(hex(port.frames().value(1).mid(4, 3)), QString("03006c"));
    QVERIFY(port.scriptIsFinished());
}

void TestRetries::everyFailureAsksThePortForItsRetries_data()
{
    addSampleColumn();
    QTest::addColumn<int>("atFirst");
    QTest::addColumn<int>("fromTheSecondAttemptOn");
    QTest::addColumn<int>("requests");
    for (const Sample &call : samples()) {
        sampleRow(call, "1, then 3") << 1 << 3 << 4;
        sampleRow(call, "3, then 1") << 3 << 1 << 2;
        sampleRow(call, "3, then 0") << 3 << 0 << 2;
    }
}

void TestRetries::everyFailureAsksThePortForItsRetries()
{
    QFETCH(QString, sample);
    QFETCH(int, atFirst);
    QFETCH(int, fromTheSecondAttemptOn);
    QFETCH(int, requests);
    ScriptedPort port;
    port.retries(atFirst).expectsRequest().expectsRequest().thenRetries(fromTheSecondAttemptOn);
    expectSilentRequests(port, requests - 2);
    outcomeOf(::sample(sample), port);
    QCOMPARE(port.requestsSent(), requests);
    QVERIFY(port.scriptIsFinished());
}

void TestRetries::everyAttemptHasANewReference_data()
{
    addSampleRows();
}

void TestRetries::everyAttemptHasANewReference()
{
    QFETCH(QString, sample);
    ScriptedPort port;
    port.retries(2);
    expectSilentRequests(port, 3);
    outcomeOf(::sample(sample), port);
    QCOMPARE(referenceOf(port.frames().value(0)), QString("0001"));
    QCOMPARE(referenceOf(port.frames().value(1)), QString("0002"));
    QCOMPARE(referenceOf(port.frames().value(2)), QString("0003"));
}

void TestRetries::successEndsTheAttemptsAndClearsTheError_data()
{
    addSampleRows();
}

void TestRetries::successEndsTheAttemptsAndClearsTheError()
{
    QFETCH(QString, sample);
    const Sample call = ::sample(sample);
    ScriptedPort port;
    port.retries(3).delays(30).expectsRequest().serves(Answer(call.item, 2));
    const Outcome outcome = outcomeOf(call, port);
    QCOMPARE(outcome.result, QString(call.result));
    QVERIFY(!outcome.failed);
    QVERIFY(outcome.reason.isEmpty());
    QVERIFY(!outcome.reason.isNull());
    QCOMPARE(QStringList(port.events().mid(0, 7)), silentAttemptAfter("pause 30 ms", port.frames().value(0)));
    QCOMPARE(int(port.events().count("retry")), 1);
    QVERIFY(port.scriptIsFinished());
}

void TestRetries::lastErrorIsThatOfTheLastAttempt_data()
{
    addSampleRows();
}

void TestRetries::lastErrorIsThatOfTheLastAttempt()
{
    QFETCH(QString, sample);
    ScriptedPort port;
    port.retries(2).expectsRequest().expectsRequest().answers("00").expectsRequest().answers(
        "10 00 02 03 05 16");
    QCOMPARE(outcomeOf(::sample(sample), port).reason, QString("no service actived"));
}

void TestRetries::everyFailedAttemptIsLogged_data()
{
    addSampleRows();
}

void TestRetries::everyFailedAttemptIsLogged()
{
    QFETCH(QString, sample);
    const Sample call = ::sample(sample);
    ScriptedPort port;
    port.retries(2).expectsRequest().expectsRequest().answers("00").serves(Answer(call.item, 3));
    const QStringList failures = QStringList() << "plc no response"
                                               << "invalid response";
    QCOMPARE(outcomeOf(call, port).texts, call.isTraced ? failures + QStringList(QString("")) : failures);
}

void TestRetries::errorOfAnEarlierCallIsCleared_data()
{
    addSampleRows();
}

void TestRetries::errorOfAnEarlierCallIsCleared()
{
    QFETCH(QString, sample);
    const Sample call = ::sample(sample);
    ScriptedPort port;
    port.expectsRequest().serves(Answer(call.item, 2));
    DriverS7_200_PPI driver;
    LogCapture log;
    resultOf(driver, port, call);
    QVERIFY(driver.hasError());
    resultOf(driver, port, call);
    QVERIFY(!driver.hasError());
    QCOMPARE(driver.getLastError(), QString(""));
}

void TestRetries::answerToAnEarlierAttemptIsNotTaken_data()
{
    addSampleRows();
}

void TestRetries::answerToAnEarlierAttemptIsNotTaken()
{
    QFETCH(QString, sample);
    const Sample call = ::sample(sample);
    ScriptedPort port;
    port.retries(1).expectsRequest().serves(Answer(call.item, 1));
    const Outcome outcome = outcomeOf(call, port);
    QCOMPARE(outcome.result, QString(""));
    QCOMPARE(outcome.reason, QString(call.invalidHeader));
}

void TestRetries::typesThatAreNotServedReturnAtOnce_data()
{
    addSampleColumn();
    QTest::addColumn<int>("dataType");
    const char *const calls[] = {"read bytes of VB100", "write bytes of VB100"};
    for (const char *call : calls) {
        sampleRow(sample(call), "quad word") << int(kQuadWords);
        sampleRow(sample(call), "7") << 7;
        sampleRow(sample(call), "256") << 256;
        sampleRow(sample(call), "INT_MAX") << INT_MAX;
        sampleRow(sample(call), "-1") << -1;
        sampleRow(sample(call), "INT_MIN") << INT_MIN;
    }
}

void TestRetries::typesThatAreNotServedReturnAtOnce()
{
    QFETCH(QString, sample);
    QFETCH(int, dataType);
    ScriptedPort port;
    port.retries(3).delays(7);
    const Outcome outcome = outcomeOf(withType(::sample(sample), dataType), port);
    QCOMPARE(outcome.result, QString(""));
    QVERIFY(!outcome.failed);
    QCOMPARE(outcome.texts, QStringList());
    QCOMPARE(port.events(), QStringList() << "delay"
                                          << "pause 7 ms");
}

void TestRetries::typesThatAreNotServedClearTheError_data()
{
    typesThatAreNotServedReturnAtOnce_data();
}

void TestRetries::typesThatAreNotServedClearTheError()
{
    QFETCH(QString, sample);
    QFETCH(int, dataType);
    ScriptedPort port;
    DriverS7_200_PPI driver;
    driver.setCommError("earlier");
    resultOf(driver, port, withType(::sample(sample), dataType));
    QVERIFY(!driver.hasError());
    QVERIFY(driver.getLastError().isEmpty());
    QVERIFY(!driver.getLastError().isNull());
}

void TestRetries::typesThatAreNotServedUseNoReference_data()
{
    typesThatAreNotServedReturnAtOnce_data();
}

void TestRetries::typesThatAreNotServedUseNoReference()
{
    QFETCH(QString, sample);
    QFETCH(int, dataType);
    const Sample call = ::sample(sample);
    ScriptedPort port;
    port.serves(Answer(call.item, 1));
    DriverS7_200_PPI driver;
    resultOf(driver, port, withType(call, dataType));
    QCOMPARE(resultOf(driver, port, call), QString(call.result));
}

void TestRetries::readHandlersMakeOneAttempt()
{
    typedef QByteArray (DriverS7_200_PPI::*Handler)(AbstractDeviceInterface *, const CommunicatorCommand &);
    const Handler handlers[] = {&DriverS7_200_PPI::readBits, &DriverS7_200_PPI::readBytes,
                                &DriverS7_200_PPI::readWords, &DriverS7_200_PPI::readDWords};
    for (Handler handler : handlers) {
        ScriptedPort port;
        port.retries(3).delays(30).expectsRequest();
        DriverS7_200_PPI driver;
        LogCapture log;
        QCOMPARE(hex((driver.*handler)(&port, byteCommand("VD10", 1))), QString());
        QCOMPARE(log.texts(), QStringList() << "plc no response");
        QVERIFY(driver.hasError());
        QVERIFY(!port.events().contains("delay"));
        QVERIFY(port.scriptIsFinished());
    }
}

void TestRetries::newDriverHasNoErrorAndANullText()
{
    DriverS7_200_PPI driver;
    QVERIFY(!driver.hasError());
    QVERIFY(driver.getLastError().isNull());
}

void TestRetries::errorStateIsSetAndCleared()
{
    DriverS7_200_PPI driver;
    driver.setCommError("some reason");
    QVERIFY(driver.hasError());
    QCOMPARE(driver.getLastError(), QString("some reason"));
    driver.clearError();
    QVERIFY(!driver.hasError());
    QVERIFY(driver.getLastError().isEmpty());
    QVERIFY(!driver.getLastError().isNull());
}

void TestRetries::pauseBeforeAFrameIs12Milliseconds()
{
    ScriptedPort port;
    DriverS7_200_PPI driver;
    driver.delayBeforeReq();
    QCOMPARE(port.events(), QStringList() << "pause 12 ms");
}

void TestRetries::panelIsStation0()
{
    ScriptedPort port(7);
    DriverS7_200_PPI driver;
    QCOMPARE(driver.getSourceAddr(&port), 0);
    QCOMPARE(driver.getSourceAddr(nullptr), 0);
}

TEST_CLASS(TestRetries)

#include "test_retries.moc"
