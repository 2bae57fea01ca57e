// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Answers that arrive after the port's time-out: they never become the data of another request.

#include "answer.h"
#include "commands.h"
#include "hex.h"
#include "log_capture.h"
#include "scripted_port.h"
#include "simatic_s7_200_ppi/s7_200_ppi.h"
#include "test_class.h"

#include <QtTest>

namespace {

const char kOld[] = "04 01 ff 04 00 20 11 22 33 44";
const char kNew[] = "04 01 ff 04 00 20 55 66 77 88";

QByteArray acknowledged(const Answer &answer)
{
    return bytes("e5") + QByteArray(answer);
}

} // namespace

class TestLateAnswers : public QObject
{
    Q_OBJECT

private slots:
    void lateAcknowledgementIsNotTakenForTheNextOne();
    void lateAnswerIsNotTakenForTheNextOne();
    void restOfAnAnswerIsNotTakenForTheNextOne();
    void lateAnswerIsNotTakenWithinTheSameRead();
    void lateAnswerToThePollIsNotTakenForAnAcknowledgement();
    void lateAnswerToAWriteIsThrownAway();
    void lateAnswerIsRefusedByItsReferenceWhenThePortKeepsIt();
    void lateAnswerIsRefusedWhereAnAcknowledgementIsDue();
};

void TestLateAnswers::lateAcknowledgementIsNotTakenForTheNextOne()
{
    ScriptedPort port;
    port.expectsRequest().answersLate("e5").expectsRequest();
    DriverS7_200_PPI driver;
    LogCapture log;
    driver.read(&port, byteCommand("VB100", 4));
    driver.read(&port, byteCommand("VB100", 4));
    QCOMPARE(log.texts(), QStringList() << "plc no response"
                                        << "plc no response");
    QVERIFY(port.scriptIsFinished());
}

void TestLateAnswers::lateAnswerIsNotTakenForTheNextOne()
{
    ScriptedPort port;
    port.expectsRequest().answers("e5").expectsPoll().answersLate(Answer(kOld, 1));
    port.serves(Answer(kNew, 2));
    DriverS7_200_PPI driver;
    LogCapture log;
    QCOMPARE(hex(driver.read(&port, byteCommand("VB100", 4))), QString(""));
    QCOMPARE(hex(driver.read(&port, byteCommand("VB200", 4))), QString("55667788"));
    QVERIFY(port.scriptIsFinished());
}

void TestLateAnswers::restOfAnAnswerIsNotTakenForTheNextOne()
{
    const QByteArray old = Answer(kOld, 1);
    ScriptedPort port;
    port.expectsRequest().answers("e5").expectsPoll().answers(old.left(20)).answersLate(old.mid(20));
    port.serves(Answer(kNew, 2));
    DriverS7_200_PPI driver;
    LogCapture log;
    QCOMPARE(hex(driver.read(&port, byteCommand("VB100", 4))), QString(""));
    QCOMPARE(driver.getLastError(), QString("packet loss"));
    QCOMPARE(hex(driver.read(&port, byteCommand("VB200", 4))), QString("55667788"));
    QVERIFY(port.scriptIsFinished());
}

void TestLateAnswers::lateAnswerIsNotTakenWithinTheSameRead()
{
    ScriptedPort port;
    port.retries(1).expectsRequest().answersLate("e5").serves(Answer(kNew, 2));
    DriverS7_200_PPI driver;
    LogCapture log;
    QCOMPARE(hex(driver.read(&port, byteCommand("VB100", 4))), QString("55667788"));
    QVERIFY(port.scriptIsFinished());
}

void TestLateAnswers::lateAnswerToThePollIsNotTakenForAnAcknowledgement()
{
    ScriptedPort port;
    port.expectsRequest().answers("e5").expectsPoll().answersLate(acknowledged(Answer(kOld, 2)));
    port.expectsRequest();
    DriverS7_200_PPI driver;
    LogCapture log;
    driver.read(&port, byteCommand("VB100", 4));
    QCOMPARE(hex(driver.read(&port, byteCommand("VB200", 4))), QString(""));
    QCOMPARE(driver.getLastError(), QString("plc no response"));
    QVERIFY(port.scriptIsFinished());
}

void TestLateAnswers::lateAnswerToAWriteIsThrownAway()
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

void TestLateAnswers::lateAnswerIsRefusedByItsReferenceWhenThePortKeepsIt()
{
    ScriptedPort port;
    port.keepsOldBytes().expectsRequest().answersLate(acknowledged(Answer(kOld, 1)));
    port.expectsRequest().answers("e5").expectsPoll().answers(Answer(kNew, 2));
    DriverS7_200_PPI driver;
    LogCapture log;
    driver.read(&port, byteCommand("VB100", 4));
    QCOMPARE(hex(driver.read(&port, byteCommand("VB200", 4))), QString(""));
    QCOMPARE(driver.getLastError(), QString("invalid response"));
}

void TestLateAnswers::lateAnswerIsRefusedWhereAnAcknowledgementIsDue()
{
    ScriptedPort port;
    port.keepsOldBytes().expectsRequest().answers("e5").expectsPoll().answersLate(Answer(kOld, 1));
    port.expectsRequest().answers("e5");
    DriverS7_200_PPI driver;
    LogCapture log;
    driver.read(&port, byteCommand("VB100", 4));
    QCOMPARE(hex(driver.read(&port, byteCommand("VB200", 4))), QString(""));
    QCOMPARE(driver.getLastError(), QString("invalid response"));
    QVERIFY(port.scriptIsFinished());
}

TEST_CLASS(TestLateAnswers)

#include "test_late_answers.moc"
