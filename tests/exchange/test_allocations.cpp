// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What one attempt takes from the heap. A panel polls for years on a small one.

#include "abstract_device_interface.h"
#include "allocation_counter.h"
#include "answer.h"
#include "commands.h"
#include "hex.h"
#include "outcome.h"
#include "quiet_log.h"
#include "sample_rows.h"
#include "simatic_s7_200_ppi/s7_200_ppi.h"

#include <QtTest>

#include <cstring>
#include <ctime>
#include <new>

namespace {

const int kMostForARead = 3;
const int kMostForAWrite = 2;

// A controller that gives one answer to every request and takes nothing from the heap.
class ControllerInMemory : public AbstractDeviceInterface
{
public:
    explicit ControllerInMemory(const QByteArray &frame)
        : answerLength(int(frame.size())), next(nullptr), remaining(0)
    {
        std::memcpy(answer, frame.constData(), size_t(answerLength));
    }

    int receive(unsigned char *buffer, int maxLength) override
    {
        const int length = qMin(maxLength, remaining);
        std::memcpy(buffer, next, size_t(length));
        next += length;
        remaining -= length;
        return length;
    }

    int send(const unsigned char *data, int length) override
    {
        static const unsigned char acknowledgement = 0xe5;
        const bool isRequest = data[0] == 0x68;
        if (isRequest)
            takeReference(data + Answer::kReference);
        next = isRequest ? &acknowledgement : answer;
        remaining = isRequest ? 1 : answerLength;
        return length;
    }

    bool setOption(int, const QVariant &) override { return true; }
    int retry() override { return 0; }
    int stationId() override { return 2; }
    int delay() override { return 0; }

private:
    void takeReference(const unsigned char *reference)
    {
        unsigned char &sum = answer[answerLength - 2];
        for (int i = 0; i < 2; ++i) {
            unsigned char &field = answer[Answer::kReference + i];
            sum = static_cast<unsigned char>(sum - field + reference[i]);
            field = reference[i];
        }
    }

    unsigned char answer[262];
    int answerLength;
    const unsigned char *next;
    int remaining;
};

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
    void readTakesAtMost3AndAWrite2_data();
    void readTakesAtMost3AndAWrite2();
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

void TestAllocations::readTakesAtMost3AndAWrite2_data()
{
    addSampleRows();
}

void TestAllocations::readTakesAtMost3AndAWrite2()
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
    QVERIFY2(count <= (isRead ? kMostForARead : kMostForAWrite), QByteArray::number(count).constData());
}

QTEST_APPLESS_MAIN(TestAllocations)

#include "test_allocations.moc"
