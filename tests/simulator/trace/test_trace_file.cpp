// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The traffic as a file for programs.

#include "conversation.h"

#include "simulator/protocol/layer2.h"
#include "simulator/trace/trace_file.h"
#include "test_class.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <chrono>
#include <csignal>
#include <stdexcept>

#include <sys/resource.h>

using namespace std::chrono_literals;

namespace {

// As a full disk, for all files that this process writes: none grows beyond that many bytes.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t bytes)
    {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &before);
        const rlimit limited = {bytes, before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limited);
    }
    ~FileSizeLimit() { setrlimit(RLIMIT_FSIZE, &before); }

    FileSizeLimit(const FileSizeLimit &) = delete;
    FileSizeLimit &operator=(const FileSizeLimit &) = delete;

private:
    rlimit before = {};
};

} // namespace

class TestSimulatorTraceFile : public QObject
{
    Q_OBJECT

private slots:
    void recordIsTimeDirectionAndBytes_data();
    void recordIsTimeDirectionAndBytes();
    void fileBeginsAnewAndGrowsAtOnce();
    void captureHasThePduByItself();
    void fileThatCannotBeOpenedIsTold();
    void fullDiskIsTold();
    void fileThatTakesNoMoreIsToldOnce();
};

void TestSimulatorTraceFile::recordIsTimeDirectionAndBytes_data()
{
    QTest::addColumn<qint64>("milliseconds"); // as date(1) counts
    QTest::addColumn<int>("traffic");
    QTest::addColumn<QString>("bytes");
    QTest::addColumn<QString>("record");
    const auto row = [](const char *name, qint64 milliseconds, int traffic, const char *bytes,
                        const char *record) {
        QTest::newRow(name) << milliseconds << traffic << bytes << record;
    };
    row("request", qint64(1769860800250), int(sim::Traffic::Received), "10 02 00 5c 5e 16",
        "2026-01-31T12:00:00.250Z > 10 02 00 5c 5e 16");
    row("answer", qint64(1709210096007), int(sim::Traffic::Sent), "E5", "2024-02-29T12:34:56.007Z < e5");
    row("no frame", qint64(0), int(sim::Traffic::Skipped), "00 ff", "1970-01-01T00:00:00.000Z > 00 ff");
}

void TestSimulatorTraceFile::recordIsTimeDirectionAndBytes()
{
    QFETCH(qint64, milliseconds);
    QFETCH(int, traffic);
    QFETCH(QString, bytes);
    QFETCH(QString, record);
    const sim::Time time = std::chrono::milliseconds(milliseconds);
    const auto nearlyNext = time + 999us; // cut, not rounded
    QCOMPARE(QString::fromStdString(sim::traceRecord(time, sim::Traffic(traffic), frameBytes(bytes))),
             record);
    QCOMPARE(QString::fromStdString(sim::traceRecord(nearlyNext, sim::Traffic(traffic), frameBytes(bytes))),
             record);
}

void TestSimulatorTraceFile::fileBeginsAnewAndGrowsAtOnce()
{
    const QTemporaryDir folder;
    QFile file(folder.filePath("trace"));
    QVERIFY(file.open(QIODevice::ReadWrite));
    file.write("something older");
    file.close();
    sim::TraceFile trace(folder.filePath("trace").toStdString(), "a heading");
    QVERIFY(trace.write(0s, sim::Traffic::Received, {0x10}));
    QVERIFY(trace.write(1s, sim::Traffic::Sent, {0xE5}));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(QString::fromLatin1(file.readAll()), QString("# a heading\n"
                                                          "1970-01-01T00:00:00.000Z > 10\n"
                                                          "1970-01-01T00:00:01.000Z < e5\n"));
}

// Once within the frame of the line, and once in a packet that other dissectors read.
void TestSimulatorTraceFile::captureHasThePduByItself()
{
    const QTemporaryDir directory;
    const QString name = directory.filePath("line.pcapng");
    const QByteArray request = QByteArray::fromHex(kReadVB100.toLatin1());
    const QByteArray poll = QByteArray::fromHex(kPoll.toLatin1());
    sim::TraceFile file(name.toStdString(), "a line");
    QVERIFY(file.write(sim::Time(1s), sim::Traffic::Received, sim::Bytes(request.begin(), request.end())));
    QVERIFY(file.write(sim::Time(2s), sim::Traffic::Received, sim::Bytes(poll.begin(), poll.end())));
    QVERIFY(file.write(sim::Time(3s), sim::Traffic::Received, sim::sd2(2, 0, 0x6C, {})));
    QFile capture(name);
    QVERIFY(capture.open(QIODevice::ReadOnly));
    const QByteArray packets = capture.readAll();
    QCOMPARE(packets.count(request), 1);
    QCOMPARE(packets.count(request.mid(7, request.size() - 9)), 2);
    QCOMPARE(packets.count(poll), 1);
    // Neither the poll nor the empty frame carries anything.
    QCOMPARE(packets.count("s7comm_cotp"), 1);
}

void TestSimulatorTraceFile::fileThatCannotBeOpenedIsTold()
{
    QString error;
    try {
        sim::TraceFile trace("/nonexistent/trace", "a heading");
    } catch (const std::runtime_error &failure) {
        error = QString::fromStdString(failure.what());
    }
    QCOMPARE(error, QString("/nonexistent/trace: cannot write: No such file or directory"));
}

void TestSimulatorTraceFile::fullDiskIsTold()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("trace");
    QVERIFY(QFile::link("/dev/full", path));
    QString error;
    try {
        sim::TraceFile trace(path.toStdString(), "a heading");
    } catch (const std::runtime_error &failure) {
        error = QString::fromStdString(failure.what());
    }
    QCOMPARE(error, path + ": cannot write: No space left on device");
}

void TestSimulatorTraceFile::fileThatTakesNoMoreIsToldOnce()
{
    const QTemporaryDir folder;
    sim::TraceFile trace(folder.filePath("trace").toStdString(), "a heading");
    const FileSizeLimit limit(50);
    QVERIFY(trace.write(0s, sim::Traffic::Received, {0x10}));
    QVERIFY(trace.isGood());
    QVERIFY(!trace.write(0s, sim::Traffic::Sent, {0xE5}));
    QVERIFY(!trace.isGood());
    QVERIFY(trace.write(0s, sim::Traffic::Sent, {0xE5}));
    QVERIFY(!trace.isGood());
}

TEST_CLASS(TestSimulatorTraceFile)
#include "test_trace_file.moc"
