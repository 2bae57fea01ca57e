// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The repetition of failed reads, the pauses between them, and the error state that they leave.

#include "answer.h"
#include "commands.h"
#include "hex.h"
#include "log_capture.h"
#include "scripted_port.h"
#include "simatic_s7_200_ppi/s7_200_ppi.h"

#include <QtTest>

#include <climits>

namespace {

const char kFourBytes[] = "04 01 ff 04 00 20 11 22 33 44";

void expectSilentRequests(ScriptedPort &port, int count)
{
    for (int i = 0; i < count; ++i)
        port.expectsRequest();
}

// The events of one read without those of sending and receiving.
QStringList eventsAround(const ScriptedPort &port)
{
    QStringList events;
    const QStringList all = port.events();
    for (int i = 0; i < int(all.size()); ++i) {
        const QString &event = all.at(i);
        if (event == "delay" || event == "retry" || event == "pause 30 ms" || event == "pause 0 ms")
            events += event;
        else if (event.startsWith("send 68"))
            events += "request";
    }
    return events;
}

} // namespace

class TestRetries : public QObject
{
    Q_OBJECT

private slots:
    void controllerThatNeverAnswersIsAskedRetryPlus1Times_data();
    void controllerThatNeverAnswersIsAskedRetryPlus1Times();
    void everyAttemptFollowsAPause();
    void delay0MakesNoPause();
    void everyAttemptHasANewReference();
    void successEndsTheAttempts();
    void successAfterAFailureClearsTheError();
    void lastErrorIsThatOfTheLastAttempt();
    void everyFailedAttemptIsLogged();
    void errorOfAnEarlierReadIsCleared();
    void wrongAnswersAreTriedAgain_data();
    void wrongAnswersAreTriedAgain();
    void typesThatAreNotServedReturnAtOnce_data();
    void typesThatAreNotServedReturnAtOnce();
    void typesThatAreNotServedClearTheError_data();
    void typesThatAreNotServedClearTheError();
    void typesThatAreNotServedUseNoReference();

    void newDriverHasNoErrorAndANullText();
    void errorStateIsSetAndCleared();
    void pauseBeforeAFrameIs12Milliseconds();
    void panelIsStation0();
};

void TestRetries::controllerThatNeverAnswersIsAskedRetryPlus1Times_data()
{
    QTest::addColumn<int>("retries");
    QTest::addColumn<int>("requests");
    QTest::newRow("0") << 0 << 1;
    QTest::newRow("1") << 1 << 2;
    QTest::newRow("3") << 3 << 4;
    QTest::newRow("10") << 10 << 11;
    QTest::newRow("-1") << -1 << 1;
    QTest::newRow("INT_MIN") << INT_MIN << 1;
}

void TestRetries::controllerThatNeverAnswersIsAskedRetryPlus1Times()
{
    QFETCH(int, retries);
    QFETCH(int, requests);
    ScriptedPort port;
    port.retries(retries);
    expectSilentRequests(port, requests);
    DriverS7_200_PPI driver;
    LogCapture log;
    QCOMPARE(hex(driver.read(&port, byteCommand("VB100", 4))), QString(""));
    QCOMPARE(port.requestsSent(), requests);
    QVERIFY(driver.hasError());
    QCOMPARE(driver.getLastError(), QString("plc no response"));
    QVERIFY(port.scriptIsFinished());
}

void TestRetries::everyAttemptFollowsAPause()
{
    ScriptedPort port;
    port.retries(2).delays(30);
    expectSilentRequests(port, 3);
    DriverS7_200_PPI driver;
    LogCapture log;
    driver.read(&port, byteCommand("VB100", 4));
    QCOMPARE(eventsAround(port), QStringList() << "delay"
                                               << "pause 30 ms"
                                               << "request"
                                               << "retry"
                                               << "delay"
                                               << "pause 30 ms"
                                               << "request"
                                               << "retry"
                                               << "delay"
                                               << "pause 30 ms"
                                               << "request"
                                               << "retry");
}

void TestRetries::delay0MakesNoPause()
{
    ScriptedPort port;
    port.retries(1);
    expectSilentRequests(port, 2);
    DriverS7_200_PPI driver;
    LogCapture log;
    driver.read(&port, byteCommand("VB100", 4));
    QCOMPARE(eventsAround(port), QStringList() << "delay"
                                               << "request"
                                               << "retry"
                                               << "delay"
                                               << "request"
                                               << "retry");
}

void TestRetries::everyAttemptHasANewReference()
{
    ScriptedPort port;
    port.retries(2);
    expectSilentRequests(port, 3);
    DriverS7_200_PPI driver;
    LogCapture log;
    driver.read(&port, byteCommand("VB100", 4));
    QCOMPARE(hex(port.frames().value(0).mid(11, 2)), QString("0001"));
    QCOMPARE(hex(port.frames().value(1).mid(11, 2)), QString("0002"));
    QCOMPARE(hex(port.frames().value(2).mid(11, 2)), QString("0003"));
}

void TestRetries::successEndsTheAttempts()
{
    ScriptedPort port;
    port.retries(3).delays(30).expectsRequest().serves(Answer(kFourBytes, 2));
    DriverS7_200_PPI driver;
    LogCapture log;
    driver.read(&port, byteCommand("VB100", 4));
    QCOMPARE(eventsAround(port), QStringList() << "delay"
                                               << "pause 30 ms"
                                               << "request"
                                               << "retry"
                                               << "delay"
                                               << "pause 30 ms"
                                               << "request");
    QVERIFY(port.scriptIsFinished());
}

void TestRetries::successAfterAFailureClearsTheError()
{
    ScriptedPort port;
    port.retries(1).expectsRequest().serves(Answer(kFourBytes, 2));
    DriverS7_200_PPI driver;
    LogCapture log;
    QCOMPARE(hex(driver.read(&port, byteCommand("VB100", 4))), QString("11223344"));
    QVERIFY(!driver.hasError());
    QVERIFY(driver.getLastError().isEmpty());
    QVERIFY(!driver.getLastError().isNull());
}

void TestRetries::lastErrorIsThatOfTheLastAttempt()
{
    ScriptedPort port;
    port.retries(2).expectsRequest().expectsRequest().answers("00").expectsRequest().answers(
        "10 00 02 03 05 16");
    DriverS7_200_PPI driver;
    LogCapture log;
    driver.read(&port, byteCommand("VB100", 4));
    QCOMPARE(driver.getLastError(), QString("no service actived"));
}

void TestRetries::everyFailedAttemptIsLogged()
{
    ScriptedPort port;
    port.retries(2).expectsRequest().expectsRequest().answers("00").serves(Answer(kFourBytes, 3));
    DriverS7_200_PPI driver;
    LogCapture log;
    driver.read(&port, byteCommand("VB100", 4));
    QCOMPARE(log.texts(), QStringList() << "plc no response"
                                        << "invalid response");
}

void TestRetries::errorOfAnEarlierReadIsCleared()
{
    ScriptedPort port;
    port.expectsRequest().serves(Answer(kFourBytes, 2));
    DriverS7_200_PPI driver;
    LogCapture log;
    driver.read(&port, byteCommand("VB100", 4));
    QVERIFY(driver.hasError());
    driver.read(&port, byteCommand("VB100", 4));
    QVERIFY(!driver.hasError());
    QCOMPARE(driver.getLastError(), QString(""));
}

void TestRetries::wrongAnswersAreTriedAgain_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::newRow("another reference") << QByteArray(Answer(kFourBytes, 9));
    QTest::newRow("error class") << QByteArray(
        Answer(kFourBytes).withByte(Answer::kErrorClass, 0x85).sealed());
    QTest::newRow("refused item") << QByteArray(Answer("04 01 05 00 00 00"));
    QTest::newRow("no data") << QByteArray(Answer("04 01 ff 04 00 00"));
}

void TestRetries::wrongAnswersAreTriedAgain()
{
    QFETCH(QByteArray, answer);
    ScriptedPort port;
    port.retries(1).serves(answer).serves(Answer(kFourBytes, 2));
    DriverS7_200_PPI driver;
    LogCapture log;
    QCOMPARE(hex(driver.read(&port, byteCommand("VB100", 4))), QString("11223344"));
    QVERIFY(port.scriptIsFinished());
}

void TestRetries::typesThatAreNotServedReturnAtOnce_data()
{
    QTest::addColumn<int>("dataType");
    QTest::newRow("quad word") << 4;
    QTest::newRow("7") << 7;
    QTest::newRow("256") << 256;
    QTest::newRow("INT_MAX") << INT_MAX;
    QTest::newRow("-1") << -1;
    QTest::newRow("INT_MIN") << INT_MIN;
}

void TestRetries::typesThatAreNotServedReturnAtOnce()
{
    QFETCH(int, dataType);
    ScriptedPort port;
    port.retries(3).delays(7);
    DriverS7_200_PPI driver;
    LogCapture log;
    QCOMPARE(hex(driver.read(&port, command(dataType, "VB100", 4))), QString(""));
    QCOMPARE(port.events(), QStringList() << "delay"
                                          << "pause 7 ms");
    QVERIFY(!driver.hasError());
    QCOMPARE(log.lines(), QStringList());
}

void TestRetries::typesThatAreNotServedClearTheError_data()
{
    typesThatAreNotServedReturnAtOnce_data();
}

void TestRetries::typesThatAreNotServedClearTheError()
{
    QFETCH(int, dataType);
    ScriptedPort port;
    DriverS7_200_PPI driver;
    driver.setCommError("earlier");
    driver.read(&port, command(dataType, "VB100", 4));
    QVERIFY(!driver.hasError());
    QVERIFY(driver.getLastError().isEmpty());
    QVERIFY(!driver.getLastError().isNull());
}

void TestRetries::typesThatAreNotServedUseNoReference()
{
    ScriptedPort port;
    port.serves(Answer(kFourBytes, 1));
    DriverS7_200_PPI driver;
    driver.read(&port, command(kQuadWord, "VD100", 1));
    QCOMPARE(hex(driver.read(&port, byteCommand("VB100", 4))), QString("11223344"));
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

QTEST_APPLESS_MAIN(TestRetries)

#include "test_retries.moc"
