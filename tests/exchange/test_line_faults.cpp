// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What reads and writes make of frames that are missing, short, malformed or foreign.

#include "answer.h"
#include "commands.h"
#include "faults.h"
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

// The samples for tests of what does not depend on the kind of data.
QList<Sample> oneOfEachOperation()
{
    return QList<Sample>() << sample("read bytes of VB100") << sample("write bytes of VB100");
}

// A row for every fault of every sample.
void addFaultRows(const QList<Sample> &all)
{
    addSampleColumn();
    QTest::addColumn<int>("faultIndex");
    for (int i = 0; i < int(all.size()); ++i) {
        const QList<LineFault> faults = lineFaults(all.at(i).item, 1);
        for (int j = 0; j < int(faults.size()); ++j)
            sampleRow(all.at(i), faults.at(j).name) << j;
    }
}

// What the driver records when the line carries this to a read, after the request.
QString reasonOf(ScriptedPort &port)
{
    return outcomeOfRead(byteCommand("VB100", 4), port).reason;
}

} // namespace

class TestLineFaults : public QObject
{
    Q_OBJECT

private slots:
    void faultGivesItsReasonAndOneLogLine_data();
    void faultGivesItsReasonAndOneLogLine();
    void everyFaultIsTriedAgain_data();
    void everyFaultIsTriedAgain();
    void nextCallIsServedAfterAFault_data();
    void nextCallIsServedAfterAFault();
    void refusalIsReadWith5MoreBytesAndNoPoll_data();
    void refusalIsReadWith5MoreBytesAndNoPoll();
    void controllerThatIsNotReadyIsPolledOnce_data();
    void controllerThatIsNotReadyIsPolledOnce();
    void faultyReceiveResults_data();
    void faultyReceiveResults();
    void claimsOfMoreBytesThanAskedForCountAsAskedFor_data();
    void claimsOfMoreBytesThanAskedForCountAsAskedFor();
    void refusalWithACarryInItsSumIsNotTaken();
    void answerOfLength2FromStation8PassesOnlyLayer2();
    void answerOfLength1IsPacketLoss();
    void failedReceiveOfARefusalIsPacketLoss();
    void claimedHeadOfThreeBytesIsInvalid();
};

void TestLineFaults::faultGivesItsReasonAndOneLogLine_data()
{
    addFaultRows(samples());
}

void TestLineFaults::faultGivesItsReasonAndOneLogLine()
{
    QFETCH(QString, sample);
    QFETCH(int, faultIndex);
    const Sample call = ::sample(sample);
    const LineFault fault = lineFaults(call.item, 1).at(faultIndex);
    ScriptedPort port;
    addAttempt(port, fault);
    const Outcome outcome = outcomeOf(call, port);
    QCOMPARE(outcome.result, QString(""));
    QVERIFY(outcome.failed);
    QCOMPARE(outcome.reason, fault.text);
    QCOMPARE(outcome.texts, QStringList() << fault.text);
    QVERIFY(port.scriptIsFinished());
}

void TestLineFaults::everyFaultIsTriedAgain_data()
{
    addFaultRows(oneOfEachOperation());
}

void TestLineFaults::everyFaultIsTriedAgain()
{
    QFETCH(QString, sample);
    QFETCH(int, faultIndex);
    const Sample call = ::sample(sample);
    ScriptedPort port;
    port.retries(2);
    for (int reference = 1; reference <= 3; ++reference)
        addAttempt(port, lineFaults(call.item, reference).at(faultIndex));
    const Outcome outcome = outcomeOf(call, port);
    QCOMPARE(port.requestsSent(), 3);
    QCOMPARE(outcome.texts, copies(lineFaults(call.item, 1).at(faultIndex).text, 3));
    QVERIFY(port.scriptIsFinished());
}

void TestLineFaults::nextCallIsServedAfterAFault_data()
{
    addFaultRows(oneOfEachOperation());
}

void TestLineFaults::nextCallIsServedAfterAFault()
{
    QFETCH(QString, sample);
    QFETCH(int, faultIndex);
    const Sample call = ::sample(sample);
    ScriptedPort port;
    addAttempt(port, lineFaults(call.item, 1).at(faultIndex));
    port.serves(Answer(call.item, 2));
    DriverS7_200_PPI driver;
    LogCapture log;
    QCOMPARE(resultOf(driver, port, call), QString(""));
    QCOMPARE(resultOf(driver, port, call), QString(call.result));
    QVERIFY(!driver.hasError());
    QCOMPARE(driver.getLastError(), QString(""));
    QVERIFY(port.scriptIsFinished());
}

void TestLineFaults::refusalIsReadWith5MoreBytesAndNoPoll_data()
{
    addSampleRows();
}

void TestLineFaults::refusalIsReadWith5MoreBytesAndNoPoll()
{
    QFETCH(QString, sample);
    ScriptedPort port;
    port.expectsRequest().answers("10 00 02 02 04 16");
    QCOMPARE(outcomeOf(::sample(sample), port).reason, QString("no resource"));
    QCOMPARE(QStringList(port.events().mid(4)), QStringList() << "receive(1) -> 1"
                                                              << "receive(5) -> 5"
                                                              << "retry");
    QVERIFY(port.scriptIsFinished());
}

void TestLineFaults::controllerThatIsNotReadyIsPolledOnce_data()
{
    addSampleRows();
}

void TestLineFaults::controllerThatIsNotReadyIsPolledOnce()
{
    QFETCH(QString, sample);
    const Sample call = ::sample(sample);
    const QString tooShort("packet length < minimum second response");
    ScriptedPort port;
    port.retries(1).serves(bytes("e5")).serves(Answer(call.item, 2));
    const Outcome outcome = outcomeOf(call, port);
    QCOMPARE(outcome.result, QString(call.result));
    QCOMPARE(outcome.texts.value(0), tooShort);
    QCOMPARE(int(outcome.texts.size()), call.isTraced ? 2 : 1);
    QVERIFY(port.scriptIsFinished());
}

void TestLineFaults::faultyReceiveResults_data()
{
    addSampleColumn();
    QTest::addColumn<int>("call");
    QTest::addColumn<int>("result");
    QTest::addColumn<QString>("text");
    for (const Sample &any : oneOfEachOperation()) {
        const QString tooShort("packet length < minimum second response");
        const int rest = int(QByteArray(Answer(any.item)).size()) - 7;
        sampleRow(any, "acknowledgement, -1") << 1 << -1 << "plc no response";
        sampleRow(any, "acknowledgement, -1000") << 1 << -1000 << "plc no response";
        sampleRow(any, "acknowledgement, 0") << 1 << 0 << "plc no response";
        sampleRow(any, "head, -1") << 2 << -1 << tooShort;
        sampleRow(any, "head, 0") << 2 << 0 << tooShort;
        sampleRow(any, "head, 6") << 2 << 6 << tooShort;
        sampleRow(any, "rest, -1") << 3 << -1 << "packet loss";
        sampleRow(any, "rest, 0") << 3 << 0 << "packet loss";
        sampleRow(any, "rest, 1 less") << 3 << rest - 1 << "packet loss";
    }
}

void TestLineFaults::faultyReceiveResults()
{
    QFETCH(QString, sample);
    QFETCH(int, call);
    QFETCH(int, result);
    QFETCH(QString, text);
    const Sample any = ::sample(sample);
    ScriptedPort port;
    port.expectsRequest().answers("e5");
    if (call > 1)
        port.expectsPoll().answers(Answer(any.item));
    port.receiveClaims(call, result);
    const Outcome outcome = outcomeOf(any, port);
    QCOMPARE(outcome.result, QString(""));
    QCOMPARE(outcome.reason, text);
    QCOMPARE(outcome.texts, QStringList() << text);
    QVERIFY(port.scriptIsFinished());
}

void TestLineFaults::claimsOfMoreBytesThanAskedForCountAsAskedFor_data()
{
    addSampleColumn();
    QTest::addColumn<int>("call");
    QTest::addColumn<int>("result");
    for (const Sample &any : oneOfEachOperation()) {
        const int rest = int(QByteArray(Answer(any.item)).size()) - 7;
        sampleRow(any, "acknowledgement, 2") << 1 << 2;
        sampleRow(any, "acknowledgement, INT_MAX") << 1 << INT_MAX;
        sampleRow(any, "head, 8") << 2 << 8;
        sampleRow(any, "head, INT_MAX") << 2 << INT_MAX;
        sampleRow(any, "rest, 1 more") << 3 << rest + 1;
        sampleRow(any, "rest, INT_MAX") << 3 << INT_MAX;
    }
}

void TestLineFaults::claimsOfMoreBytesThanAskedForCountAsAskedFor()
{
    QFETCH(QString, sample);
    QFETCH(int, call);
    QFETCH(int, result);
    const Sample any = ::sample(sample);
    ScriptedPort port;
    port.serves(Answer(any.item)).receiveClaims(call, result);
    QCOMPARE(outcomeOf(any, port).result, QString(any.result));
    QVERIFY(port.scriptIsFinished());
}

// 00 + fe + 02 is 100, which the check sum can not hold.
void TestLineFaults::refusalWithACarryInItsSumIsNotTaken()
{
    ScriptedPort port(254);
    port.expectsRequest().answers("10 00 fe 02 00 16");
    QCOMPARE(reasonOf(port), QString("invalid response9"));
}

// Of such a frame the function code 08 is the check sum, too.
void TestLineFaults::answerOfLength2FromStation8PassesOnlyLayer2()
{
    ScriptedPort port(8);
    port.expectsRequest().answers("e5").expectsPoll().answers("68 02 02 68 00 08 08 16");
    QCOMPARE(outcomeOfRead(byteCommand("VB100", 4), port).texts, QStringList() << "invalid response");
}

void TestLineFaults::answerOfLength1IsPacketLoss()
{
    ScriptedPort port;
    port.expectsRequest().answers("e5").expectsPoll().answers("68 01 01 68 00 02 08");
    QCOMPARE(outcomeOfRead(byteCommand("VB100", 4), port).texts, QStringList() << "packet loss");
}

void TestLineFaults::failedReceiveOfARefusalIsPacketLoss()
{
    ScriptedPort port;
    port.expectsRequest().answers("10 00 02 02 04 16").receiveClaims(2, -1);
    QCOMPARE(reasonOf(port), QString("first NAK packet loss"));
}

void TestLineFaults::claimedHeadOfThreeBytesIsInvalid()
{
    ScriptedPort port;
    port.expectsRequest().answers("e5").expectsPoll().answers("68 19 19").receiveClaims(2, 100);
    QCOMPARE(reasonOf(port), QString("invalid response"));
}

TEST_CLASS(TestLineFaults)

#include "test_line_faults.moc"
