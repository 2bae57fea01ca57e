// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Exchanges of which one allocation fails, each in turn: what is sent is what a panel with enough memory
// sends, or nothing, and the next call works.

#include "allocation_counter.h"
#include "answer.h"
#include "controller_in_memory.h"
#include "hex.h"
#include "outcome.h"
#include "quiet_log.h"
#include "sample_rows.h"
#include "simatic_s7_200_ppi/s7_200_ppi.h"

#include <QtTest>

#include <ctime>

namespace {

// What came of one call.
struct Call
{
    QString result;
    bool failed;
    QString reason;
    int allocations;
};

// One call of the driver. start begins to count its allocations and tells which are refused.
template <typename Start>
Call countedCall(Start start, const Sample &sample, DriverS7_200_PPI &driver, ControllerInMemory &port)
{
    const CommunicatorCommand command = sample.command();
    const QByteArray given = sample.data();
    const bool isRead = sample.operation == kRead;
    QByteArray data;
    int taken = 0;
    Call call;
    start();
    if (isRead)
        data = driver.read(&port, command);
    else
        taken = driver.write(&port, command, given);
    call.allocations = AllocationCounter::stop();
    call.result = isRead ? hex(data) : QString(taken ? kTaken : "");
    call.failed = driver.hasError();
    call.reason = driver.getLastError();
    return call;
}

// One call of the driver, of which the allocation of that number is refused, none for 0.
Call callRefusing(int number, const Sample &sample, DriverS7_200_PPI &driver, ControllerInMemory &port)
{
    return countedCall([=]() { AllocationCounter::startAndRefuse(number); }, sample, driver, port);
}

} // namespace

// No pauses, and none written down.
extern "C" int nanosleep(const struct timespec *, struct timespec *)
{
    return 0;
}

class TestRefusedAllocations : public QObject
{
    Q_OBJECT

private slots:
    void noWrongFrameIsSent_data();
    void noWrongFrameIsSent();
    void nothingIsThrownWhenNoMemoryIsLeft_data();
    void nothingIsThrownWhenNoMemoryIsLeft();
    void aLineOfTheLogThatHasNoMemoryIsLost();
};

void TestRefusedAllocations::noWrongFrameIsSent_data()
{
    addSampleRows();
}

void TestRefusedAllocations::noWrongFrameIsSent()
{
    QFETCH(QString, sample);
    const Sample call = ::sample(sample);
    const Answer answer(call.item);
    const QuietLog quiet;
    DriverS7_200_PPI first; // the first call may take what stays for all others
    ControllerInMemory right(answer);
    const Call wanted = callRefusing(0, call, first, right);
    QCOMPARE(wanted.result, QString(call.result));
    QCOMPARE(right.framesSent(), 2);

    int unsent = 0;
    for (int number = 1; number <= wanted.allocations; ++number) {
        DriverS7_200_PPI driver;
        ControllerInMemory port(answer);
        const Call made = callRefusing(number, call, driver, port);
        if (made.failed) {
            QCOMPARE(made.result, QString());
            QCOMPARE(made.reason, QString("invalid request to PLC"));
        } else {
            QCOMPARE(made.result, wanted.result);
        }
        QVERIFY(port.framesSent() <= 2);
        for (int i = 0; i < port.framesSent(); ++i)
            QCOMPARE(hex(port.frame(i)), hex(right.frame(i)));
        unsent += port.framesSent() == 0 ? 1 : 0;

        ControllerInMemory again(answer);
        QCOMPARE(callRefusing(0, call, driver, again).result, wanted.result);
    }
    QVERIFY(unsent > 0);
}

void TestRefusedAllocations::nothingIsThrownWhenNoMemoryIsLeft_data()
{
    addSampleRows();
}

// There may be no memory for the reason either: the failure has no text then.
void TestRefusedAllocations::nothingIsThrownWhenNoMemoryIsLeft()
{
    QFETCH(QString, sample);
    const Sample call = ::sample(sample);
    const Answer answer(call.item);
    const QuietLog quiet;
    DriverS7_200_PPI first;
    ControllerInMemory right(answer);
    const Call wanted = callRefusing(0, call, first, right);
    for (int number = 1; number <= wanted.allocations; ++number) {
        DriverS7_200_PPI driver;
        ControllerInMemory port(answer);
        const Call made =
            countedCall([=]() { AllocationCounter::startAndRefuseFrom(number); }, call, driver, port);
        QVERIFY(made.failed);
        QCOMPARE(made.result, QString());
        QVERIFY(made.reason.isEmpty() || made.reason == "invalid request to PLC");
        for (int i = 0; i < port.framesSent(); ++i)
            QCOMPARE(hex(port.frame(i)), hex(right.frame(i)));
    }
}

// The controller refuses the address; the reason is there, whatever becomes of the line.
void TestRefusedAllocations::aLineOfTheLogThatHasNoMemoryIsLost()
{
    const QuietLog quiet;
    CommunicatorCommand command;
    command.dataType = kBytes;
    command.count = 4;
    command.address = "VB100";
    bool isKept = false;
    for (int number = 1; number <= 40; ++number) {
        ControllerInMemory port((Answer("04 01 05 04 00 00")));
        DriverS7_200_PPI driver;
        AllocationCounter::startAndRefuse(number);
        const QByteArray data = driver.read(&port, command);
        AllocationCounter::stop();
        QVERIFY(data.isEmpty());
        QVERIFY(driver.hasError());
        const QString reason = driver.getLastError();
        isKept = isKept || reason == "Invalid address (incorrect variable address)";
        QVERIFY2(reason == "Invalid address (incorrect variable address)" ||
                     reason == "invalid request to PLC",
                 qPrintable(reason));
    }
    QVERIFY(isKept);
}

QTEST_APPLESS_MAIN(TestRefusedAllocations)

#include "test_refused_allocations.moc"
