// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The order of calls of a good write, the repetition of failed ones, the types that are not served, and
// counts that nothing can hold.

#include "address_sanitizer.h"
#include "answer.h"
#include "commands.h"
#include "hex.h"
#include "log_capture.h"
#include "outcome.h"
#include "sample_writes.h"
#include "scripted_port.h"
#include "short_memory.h"
#include "simatic_s7_200_ppi/s7_200_ppi.h"

#include <QtTest>

#include <climits>

namespace {

void expectSilentRequests(ScriptedPort &port, int count)
{
    for (int i = 0; i < count; ++i)
        port.expectsRequest();
}

QString referenceOf(const QByteArray &request)
{
    return hex(request.mid(11, 2));
}

} // namespace

class TestWriteRetries : public QObject
{
    Q_OBJECT

private slots:
    void portIsCalledInThisOrder_data();
    void portIsCalledInThisOrder();
    void delay0MakesNoPause();
    void everyAttemptFollowsThePortsPause();
    void controllerThatNeverAnswersIsAskedRetryPlus1Times_data();
    void controllerThatNeverAnswersIsAskedRetryPlus1Times();
    void everyAttemptHasANewReference_data();
    void everyAttemptHasANewReference();
    void successEndsTheAttempts();
    void successAfterAFailureClearsTheError();
    void lastErrorIsThatOfTheLastAttempt();
    void everyFailedAttemptIsLogged();
    void errorOfAnEarlierWriteIsCleared();
    void answerToAnEarlierAttemptIsNotTaken();
    void answerThatComesLateIsThrownAway();

    void typesThatAreNotServedReturnAtOnce_data();
    void typesThatAreNotServedReturnAtOnce();
    void typesThatAreNotServedClearTheError_data();
    void typesThatAreNotServedClearTheError();
    void typesThatAreNotServedUseNoReference();

    void countsThatNoArrayHoldsFail_data();
    void countsThatNoArrayHoldsFail();
    void countsThatMemoryDoesNotHoldFail_data();
    void countsThatMemoryDoesNotHoldFail();
    void nextWriteIsTakenAfterACountThatNothingHolds();
    void countsThatNothingHoldsDoNotMatterForBytesAndBits();
};

void TestWriteRetries::portIsCalledInThisOrder_data()
{
    QTest::addColumn<QString>("sample");
    const QList<SampleWrite> writes = sampleWrites();
    for (int i = 0; i < int(writes.size()); ++i)
        QTest::newRow(writes.at(i).name) << QString(writes.at(i).name);
}

void TestWriteRetries::portIsCalledInThisOrder()
{
    QFETCH(QString, sample);
    const SampleWrite write = sampleWrite(sample);
    const QByteArray answer = Answer(write.item);
    const int rest = int(answer.size()) - 7;
    ScriptedPort port;
    port.delays(30).serves(answer);
    outcomeOfWrite(write.command(), write.data(), port);
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

void TestWriteRetries::delay0MakesNoPause()
{
    ScriptedPort port;
    port.expectsRequest();
    outcomeOfWrite(byteCommand("VB10", 1), bytes("11"), port);
    QCOMPARE(QStringList(port.events().mid(0, 3)), QStringList() << "delay"
                                                                 << "option 12 = 0"
                                                                 << "pause 12 ms");
}

void TestWriteRetries::everyAttemptFollowsThePortsPause()
{
    ScriptedPort port;
    port.retries(1).delays(30);
    expectSilentRequests(port, 2);
    outcomeOfWrite(byteCommand("VB10", 1), bytes("11"), port);
    QCOMPARE(port.events(), QStringList() << "delay"
                                          << "pause 30 ms"
                                          << "option 12 = 0"
                                          << "pause 12 ms"
                                          << "send " + hex(port.frames().value(0)) << "receive(1) -> 0"
                                          << "retry"
                                          << "delay"
                                          << "pause 30 ms"
                                          << "option 12 = 0"
                                          << "pause 12 ms"
                                          << "send " + hex(port.frames().value(1)) << "receive(1) -> 0"
                                          << "retry");
}

void TestWriteRetries::controllerThatNeverAnswersIsAskedRetryPlus1Times_data()
{
    QTest::addColumn<int>("retries");
    QTest::addColumn<int>("requests");
    QTest::newRow("0") << 0 << 1;
    QTest::newRow("1") << 1 << 2;
    QTest::newRow("2") << 2 << 3;
    QTest::newRow("10") << 10 << 11;
    QTest::newRow("-1") << -1 << 1;
    QTest::newRow("INT_MIN") << INT_MIN << 1;
}

void TestWriteRetries::controllerThatNeverAnswersIsAskedRetryPlus1Times()
{
    QFETCH(int, retries);
    QFETCH(int, requests);
    ScriptedPort port;
    port.retries(retries);
    expectSilentRequests(port, requests);
    const WriteOutcome outcome = outcomeOfWrite(byteCommand("VB10", 1), bytes("11"), port);
    QVERIFY(!outcome.taken);
    QVERIFY(outcome.failed);
    QCOMPARE(outcome.reason, QString("plc no response"));
    QCOMPARE(port.requestsSent(), requests);
    QVERIFY(port.scriptIsFinished());
}

void TestWriteRetries::everyAttemptHasANewReference_data()
{
    portIsCalledInThisOrder_data();
}

void TestWriteRetries::everyAttemptHasANewReference()
{
    QFETCH(QString, sample);
    const SampleWrite write = sampleWrite(sample);
    ScriptedPort port;
    port.retries(2);
    expectSilentRequests(port, 3);
    outcomeOfWrite(write.command(), write.data(), port);
    QCOMPARE(referenceOf(port.frames().value(0)), QString("0001"));
    QCOMPARE(referenceOf(port.frames().value(1)), QString("0002"));
    QCOMPARE(referenceOf(port.frames().value(2)), QString("0003"));
}

void TestWriteRetries::successEndsTheAttempts()
{
    ScriptedPort port;
    port.retries(3).expectsRequest().serves(Answer("05 01 ff", 2));
    QVERIFY(outcomeOfWrite(byteCommand("VB10", 1), bytes("11"), port).taken);
    QVERIFY(port.scriptIsFinished());
}

void TestWriteRetries::successAfterAFailureClearsTheError()
{
    ScriptedPort port;
    port.retries(1).expectsRequest().serves(Answer("05 01 ff", 2));
    const WriteOutcome outcome = outcomeOfWrite(byteCommand("VB10", 1), bytes("11"), port);
    QVERIFY(outcome.taken);
    QVERIFY(!outcome.failed);
    QVERIFY(outcome.reason.isEmpty());
    QVERIFY(!outcome.reason.isNull());
}

void TestWriteRetries::lastErrorIsThatOfTheLastAttempt()
{
    ScriptedPort port;
    port.retries(2).expectsRequest().expectsRequest().answers("00").serves(Answer("05 01 0a", 3));
    QCOMPARE(outcomeOfWrite(byteCommand("VB10", 1), bytes("11"), port).reason,
             QString("Object does not exist or length error"));
}

void TestWriteRetries::everyFailedAttemptIsLogged()
{
    ScriptedPort port;
    port.retries(2).expectsRequest().expectsRequest().answers("00").serves(Answer("05 01 ff", 3));
    QCOMPARE(outcomeOfWrite(byteCommand("VB10", 1), bytes("11"), port).texts, QStringList()
                                                                                  << "plc no response"
                                                                                  << "invalid response");
}

void TestWriteRetries::errorOfAnEarlierWriteIsCleared()
{
    ScriptedPort port;
    port.serves(Answer("05 01 ff", 1));
    DriverS7_200_PPI driver;
    driver.write(&port, byteCommand("HC0", 1), bytes("11"));
    QVERIFY(driver.hasError());
    driver.write(&port, byteCommand("VB10", 1), bytes("11"));
    QVERIFY(!driver.hasError());
    QCOMPARE(driver.getLastError(), QString(""));
}

void TestWriteRetries::answerToAnEarlierAttemptIsNotTaken()
{
    ScriptedPort port;
    port.retries(1).expectsRequest().serves(Answer("05 01 ff", 1));
    const WriteOutcome outcome = outcomeOfWrite(byteCommand("VB10", 1), bytes("11"), port);
    QVERIFY(!outcome.taken);
    QCOMPARE(outcome.reason, QString("invalid response1"));
}

void TestWriteRetries::answerThatComesLateIsThrownAway()
{
    ScriptedPort port;
    port.expectsRequest().answers("e5").expectsPoll().answersLate(Answer("05 01 ff", 1)).expectsRequest();
    DriverS7_200_PPI driver;
    LogCapture log;
    QCOMPARE(driver.write(&port, byteCommand("VB10", 1), bytes("11")), 0);
    QCOMPARE(driver.write(&port, byteCommand("VB10", 1), bytes("22")), 0);
    QCOMPARE(driver.getLastError(), QString("plc no response"));
    QVERIFY(port.scriptIsFinished());
}

void TestWriteRetries::typesThatAreNotServedReturnAtOnce_data()
{
    QTest::addColumn<int>("dataType");
    QTest::newRow("quad word") << 4;
    QTest::newRow("7") << 7;
    QTest::newRow("256") << 256;
    QTest::newRow("INT_MAX") << INT_MAX;
    QTest::newRow("-1") << -1;
    QTest::newRow("INT_MIN") << INT_MIN;
}

void TestWriteRetries::typesThatAreNotServedReturnAtOnce()
{
    QFETCH(int, dataType);
    ScriptedPort port;
    port.retries(3).delays(7);
    const WriteOutcome outcome = outcomeOfWrite(command(dataType, "VB100", 4), bytes("11223344"), port);
    QVERIFY(!outcome.taken);
    QVERIFY(!outcome.failed);
    QCOMPARE(outcome.texts, QStringList());
    QCOMPARE(port.events(), QStringList() << "delay"
                                          << "pause 7 ms");
}

void TestWriteRetries::typesThatAreNotServedClearTheError_data()
{
    typesThatAreNotServedReturnAtOnce_data();
}

void TestWriteRetries::typesThatAreNotServedClearTheError()
{
    QFETCH(int, dataType);
    ScriptedPort port;
    DriverS7_200_PPI driver;
    driver.setCommError("earlier");
    driver.write(&port, command(dataType, "HC0", 4), bytes("11223344"));
    QVERIFY(!driver.hasError());
    QVERIFY(driver.getLastError().isEmpty());
    QVERIFY(!driver.getLastError().isNull());
}

void TestWriteRetries::typesThatAreNotServedUseNoReference()
{
    ScriptedPort port;
    port.serves(Answer("05 01 ff", 1));
    DriverS7_200_PPI driver;
    driver.write(&port, command(kQuadWord, "VD100", 1), bytes("1122334455667788"));
    QVERIFY(driver.write(&port, byteCommand("VB100", 1), bytes("11")) != 0);
}

void TestWriteRetries::countsThatNoArrayHoldsFail_data()
{
    QTest::addColumn<int>("dataType");
    QTest::addColumn<QString>("address");
    QTest::addColumn<int>("count");
    QTest::newRow("2^31 bytes of words") << int(kWord) << "VW0" << 0x40000000;
    QTest::newRow("INT_MAX words") << int(kWord) << "VW0" << INT_MAX;
    QTest::newRow("INT_MAX words of bytes") << int(kWord) << "VB0" << INT_MAX;
    QTest::newRow("2^31 bytes of double words") << int(kDoubleWord) << "VD0" << 0x20000000;
    QTest::newRow("2^32 bytes of double words") << int(kDoubleWord) << "VD0" << 0x40000000;
    QTest::newRow("INT_MAX double words") << int(kDoubleWord) << "VD0" << INT_MAX;
    QTest::newRow("INT_MAX timers") << int(kWord) << "T0" << INT_MAX;
    QTest::newRow("INT_MAX counters") << int(kDoubleWord) << "C0" << INT_MAX;
}

void TestWriteRetries::countsThatNoArrayHoldsFail()
{
    QFETCH(int, dataType);
    QFETCH(QString, address);
    QFETCH(int, count);
    ScriptedPort port;
    port.retries(1);
    const WriteOutcome outcome = outcomeOfWrite(command(dataType, address, count), bytes("3412"), port);
    QVERIFY(!outcome.taken);
    QVERIFY(outcome.failed);
    QCOMPARE(outcome.reason, QString("invalid request to PLC"));
    QCOMPARE(outcome.texts, copies("invalid request to PLC", 2));
    QVERIFY(port.scriptIsFinished());
}

void TestWriteRetries::countsThatMemoryDoesNotHoldFail_data()
{
    QTest::addColumn<int>("dataType");
    QTest::addColumn<QString>("address");
    QTest::addColumn<int>("count");
    const int million = 1000000;
    QTest::newRow("1 GB of words") << int(kWord) << "VW0" << 500 * million;
    QTest::newRow("1 GB of double words") << int(kDoubleWord) << "VD0" << 250 * million;
    QTest::newRow("1 GB of timers") << int(kWord) << "T0" << 500 * million;
    QTest::newRow("1 GB of counters") << int(kWord) << "C0" << 500 * million;
#ifndef UNDER_ADDRESS_SANITIZER // there a failed operator new ends the program
    QTest::newRow("40 MB of words, which fit once") << int(kWord) << "VW0" << 20 * million;
    QTest::newRow("40 MB of timers, which fit once") << int(kWord) << "T0" << 20 * million;
#endif
}

void TestWriteRetries::countsThatMemoryDoesNotHoldFail()
{
    QFETCH(int, dataType);
    QFETCH(QString, address);
    QFETCH(int, count);
    ScriptedPort port;
    const ShortMemory shortMemory;
    const WriteOutcome outcome = outcomeOfWrite(command(dataType, address, count), bytes("3412"), port);
    QVERIFY(!outcome.taken);
    QVERIFY(outcome.failed);
    QCOMPARE(outcome.reason, QString("invalid request to PLC"));
    QCOMPARE(outcome.texts, QStringList() << "invalid request to PLC");
    QVERIFY(port.scriptIsFinished());
}

void TestWriteRetries::nextWriteIsTakenAfterACountThatNothingHolds()
{
    ScriptedPort port;
    port.serves(Answer("05 01 ff", 1));
    DriverS7_200_PPI driver;
    LogCapture log;
    QCOMPARE(driver.write(&port, wordCommand("VW0", INT_MAX), bytes("3412")), 0);
    QVERIFY(driver.write(&port, wordCommand("VW0", 1), bytes("3412")) != 0);
    QVERIFY(!driver.hasError());
}

void TestWriteRetries::countsThatNothingHoldsDoNotMatterForBytesAndBits()
{
    QVERIFY(outcomeOfWrite(byteCommand("VB0", INT_MAX), bytes("11"), Answer("05 01 ff")).taken);
    QVERIFY(outcomeOfWrite(command(kBlock, "VB0", INT_MIN), bytes("11"), Answer("05 01 ff")).taken);
    QVERIFY(outcomeOfWrite(bitCommand("V0.0", INT_MAX), bytes("01"), Answer("05 01 ff")).taken);
    QVERIFY(outcomeOfWrite(command(kBitBlock, "V0.0", INT_MIN), bytes("01"), Answer("05 01 ff")).taken);
}

QTEST_APPLESS_MAIN(TestWriteRetries)

#include "test_write_retries.moc"
