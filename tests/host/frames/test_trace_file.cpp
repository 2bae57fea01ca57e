// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The records of a trace.

#include "host/frames/trace_file.h"

#include "hex.h"
#include "test_class.h"
#include "tests/host/support/failure_of.h"

#include <QtTest>

#include <cstring>
#include <optional>

using namespace host;

class TestTraceFile : public QObject
{
    Q_OBJECT

private slots:
    void aRecordHasTimeDirectionAndBytes();
    void aCaptureHasTheTimeInMicroseconds();
    void commentsAreNoRecords();
    void otherLinesOfATraceAreRefused();
};

void TestTraceFile::aRecordHasTimeDirectionAndBytes()
{
    const std::optional<TraceRecord> record =
        parseTraceLine("2026-01-31T12:00:00.263Z > 10 02 00 5c 5e 16\r");
    QVERIFY(record);
    QCOMPARE(record->time, QString("2026-01-31T12:00:00.263Z"));
    QCOMPARE(record->direction, QString(">"));
    QCOMPARE(hex(record->bytes), QString("1002005c5e16"));
    QCOMPARE(parseTraceLine("2026-01-31T12:00:00.264Z < e5")->direction, QString("<"));
}

// Two words, the upper one first, behind type, length and interface of the block.
void TestTraceFile::aCaptureHasTheTimeInMicroseconds()
{
    const QByteArray packet = captureRecord({"2026-01-31T12:00:00.263Z", "<", QByteArray("\xe5")});
    quint32 words[5] = {};
    QVERIFY(packet.size() > int(sizeof words));
    std::memcpy(words, packet.constData(), sizeof words);
    QCOMPARE(words[0], quint32(6));
    QCOMPARE(quint64(words[3]) << 32 | words[4], quint64(1769860800263000));
}

void TestTraceFile::commentsAreNoRecords()
{
    QVERIFY(!parseTraceLine("# s7ppi-sim 1.0.0 on /dev/pts/3"));
    QVERIFY(!parseTraceLine(""));
    QVERIFY(!parseTraceLine("\r"));
}

void TestTraceFile::otherLinesOfATraceAreRefused()
{
    QCOMPARE(failureOf([] { parseTraceLine("10 02 00"); }).section(" / ", 0, 0),
             QString("2: no record of a trace"));
    QCOMPARE(failureOf([] { parseTraceLine("2026-01-31T12:00:00.264Z < e"); }).section(" / ", 0, 0),
             QString("2: \"e\" is an odd number of digits"));
}

TEST_CLASS(TestTraceFile)
#include "test_trace_file.moc"
