// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Several lines at once: a thread, a driver object and a port for each. What the library holds from load
// time on, the log and the toolkit serve all of them.

#include "answer.h"
#include "device_setting.h"
#include "log_capture.h"
#include "outcome.h"
#include "samples.h"
#include "scripted_port.h"
#include "simatic_s7_200_ppi/s7_200_ppi.h"
#include "test_class.h"
#include "tools/diagnostics.h"
#include "tools/pack.h"

#include <QtTest>

#include <thread>

namespace {

const int kRounds = 20;
const int kFailuresPerRound = 2;

// One line with its own driver. It writes down what the port saw, the host got and the log says.
class Line
{
public:
    enum Order { kForwards, kBackwards };

    Line(Order itsOrder, const LogCapture &itsLog) : order(itsOrder), log(itsLog), reference(0), failures(0)
    {
    }

    void serve();

    QStringList transcript() const { return written; }
    int failureCount() const { return failures; }

private:
    void serveAll();
    void failTwice();
    void useToolkit();
    void call(ScriptedPort &port, const Sample &sample);

    Order order;
    const LogCapture &log;
    DriverS7_200_PPI driver;
    int reference;
    int failures;
    QStringList written;
};

void Line::serve()
{
    for (int round = 0; round < kRounds; ++round) {
        serveAll();
        failTwice();
        useToolkit();
    }
    written += log.lines();
}

void Line::serveAll()
{
    const QList<Sample> all = samples();
    const int count = int(all.size());
    for (int i = 0; i < count; ++i) {
        const Sample &sample = all.at(order == kForwards ? i : count - 1 - i);
        ScriptedPort port;
        port.serves(Answer(sample.item, ++reference));
        call(port, sample);
    }
}

void Line::failTwice()
{
    const Sample read = sample("read bytes of VB100");
    ScriptedPort refusal;
    refusal.expectsRequest().answers("10 00 02 02 04 16");
    ++reference;
    call(refusal, read);

    ScriptedPort damage;
    damage.serves(Answer(read.item, ++reference).withCheckSum(0));
    call(damage, read);
}

void Line::useToolkit()
{
    const QByteArray packed = ByteArrayPack("Cn2NV", reference, reference, "12345678", reference);
    written += dumpByteArray(packed);
    DeviceSetting(kRs485Port, "COM1", 9600, 8, 0, reference).dump();
}

void Line::call(ScriptedPort &port, const Sample &sample)
{
    const QString result = resultOf(driver, port, sample);
    failures += driver.hasError() ? 1 : 0;
    written += port.events();
    written += result + QLatin1Char(' ') + driver.getLastError();
}

} // namespace

class TestThreads : public QObject
{
    Q_OBJECT

private slots:
    void twoLinesAtOnceAreServedLikeEachAlone();
};

void TestThreads::twoLinesAtOnceAreServedLikeEachAlone()
{
    const LogCapture log;
    Line first(Line::kForwards, log);
    Line second(Line::kBackwards, log);
    std::thread firstThread(&Line::serve, &first);
    std::thread secondThread(&Line::serve, &second);
    firstThread.join();
    secondThread.join();

    Line firstAlone(Line::kForwards, log);
    std::thread(&Line::serve, &firstAlone).join();
    Line secondAlone(Line::kBackwards, log);
    std::thread(&Line::serve, &secondAlone).join();

    QCOMPARE(first.transcript(), firstAlone.transcript());
    QCOMPARE(second.transcript(), secondAlone.transcript());
    QCOMPARE(first.failureCount(), kRounds * kFailuresPerRound);
    QCOMPARE(second.failureCount(), kRounds * kFailuresPerRound);
}

TEST_CLASS(TestThreads)
#include "test_threads.moc"
