// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What one attempt takes from the heap. A panel polls for years on a small one.

#include "abstract_device_interface.h"
#include "allocation_counter.h"
#include "answer.h"
#include "commands.h"
#include "hex.h"
#include "quiet_log.h"
#include "sample_reads.h"
#include "sample_writes.h"
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
    void readTakesAtMost3_data();
    void readTakesAtMost3();
    void writeTakesAtMost2_data();
    void writeTakesAtMost2();
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

void TestAllocations::readTakesAtMost3_data()
{
    QTest::addColumn<QString>("sample");
    const QList<SampleRead> reads = sampleReads();
    for (int i = 0; i < int(reads.size()); ++i)
        QTest::newRow(reads.at(i).name) << QString(reads.at(i).name);
}

void TestAllocations::readTakesAtMost3()
{
    QFETCH(QString, sample);
    const SampleRead read = sampleRead(sample);
    const CommunicatorCommand command = read.command();
    ControllerInMemory port((Answer(read.item)));
    DriverS7_200_PPI driver;
    const QuietLog quiet;
    driver.read(&port, command);
    AllocationCounter::start();
    const QByteArray data = driver.read(&port, command);
    const int count = AllocationCounter::stop() - (read.isTraced ? costOfATraceLine() : 0);
    QCOMPARE(hex(data), QString(read.result));
    QVERIFY2(count <= kMostForARead, QByteArray::number(count).constData());
}

void TestAllocations::writeTakesAtMost2_data()
{
    QTest::addColumn<QString>("sample");
    const QList<SampleWrite> writes = sampleWrites();
    for (int i = 0; i < int(writes.size()); ++i)
        QTest::newRow(writes.at(i).name) << QString(writes.at(i).name);
}

void TestAllocations::writeTakesAtMost2()
{
    QFETCH(QString, sample);
    const SampleWrite write = sampleWrite(sample);
    const CommunicatorCommand command = write.command();
    const QByteArray data = write.data();
    ControllerInMemory port((Answer(write.item)));
    DriverS7_200_PPI driver;
    driver.write(&port, command, data);
    AllocationCounter::start();
    const int taken = driver.write(&port, command, data);
    const int count = AllocationCounter::stop();
    QVERIFY(taken != 0);
    QVERIFY2(count <= kMostForAWrite, QByteArray::number(count).constData());
}

QTEST_APPLESS_MAIN(TestAllocations)

#include "test_allocations.moc"
