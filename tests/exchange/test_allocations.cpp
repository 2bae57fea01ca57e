// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What one attempt takes from the heap. A panel polls for years on a small one.

#include "allocation_counter.h"
#include "answer.h"
#include "commands.h"
#include "controller_in_memory.h"
#include "hex.h"
#include "outcome.h"
#include "quiet_log.h"
#include "sample_rows.h"
#include "simatic_s7_200_ppi/s7_200_ppi.h"

#include <QtTest>

#include <ctime>
#include <new>

namespace {

const int kMostForARead = 8;
const int kMostForAWrite = 12;         // of one item
const int kMostForEachFurtherItem = 2; // its block and its value

// What Qt takes for a line of the log, whoever writes it.
int costOfATraceLine()
{
    AllocationCounter::start();
    qDebug("%s:%d:", "../../../runtime/drivers/simatic_s7_200_ppi/s7_200_ppi.cpp", 1000);
    return AllocationCounter::stop();
}

} // namespace

// No pauses, and none written down.
extern "C" int nanosleep(const struct timespec *, struct timespec *)
{
    return 0;
}

class TestAllocations : public QObject
{
    Q_OBJECT

private slots:
    void allocationsOfQtAndOfNewAreCounted();
    void readTakesAtMost8AndAWrite12_data();
    void readTakesAtMost8AndAWrite12();
};

void TestAllocations::allocationsOfQtAndOfNewAreCounted()
{
    AllocationCounter::start();
    const QByteArray array(100, 'x');
    QCOMPARE(AllocationCounter::stop(), 1);

    AllocationCounter::start();
    void *const block = ::operator new(100);
    QCOMPARE(AllocationCounter::stop(), 1);
    ::operator delete(block);
}

void TestAllocations::readTakesAtMost8AndAWrite12_data()
{
    addSampleRows();
}

void TestAllocations::readTakesAtMost8AndAWrite12()
{
    QFETCH(QString, sample);
    const Sample call = ::sample(sample);
    const CommunicatorCommand command = call.command();
    const QByteArray given = call.data();
    const bool isRead = call.operation == kRead;
    ControllerInMemory port((Answer(call.item)));
    DriverS7_200_PPI driver;
    const QuietLog quiet;
    QByteArray data;
    int taken = 0;
    for (int i = 0; i < 2; ++i) { // the first call may take what stays for all others
        data = QByteArray();
        AllocationCounter::start();
        if (isRead)
            data = driver.read(&port, command);
        else
            taken = driver.write(&port, command, given);
    }
    const int count = AllocationCounter::stop() - (call.isTraced ? costOfATraceLine() : 0);
    QCOMPARE(isRead ? hex(data) : QString(taken ? kTaken : ""), QString(call.result));
    const int furtherItems = call.isBitWrite() ? int(given.size()) - 1 : 0;
    const int most = isRead ? kMostForARead : kMostForAWrite + furtherItems * kMostForEachFurtherItem;
    QVERIFY2(count <= most, QByteArray::number(count).constData());
}

QTEST_APPLESS_MAIN(TestAllocations)

#include "test_allocations.moc"
