// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The traffic in words.

#include "conversation.h"
#include "frame_vectors.h"

#include "simulator/trace/trace.h"
#include "test_class.h"

#include <QtTest>

#include <string>

class TestSimulatorTrace : public QObject
{
    Q_OBJECT

private slots:
    void frameIsToldInWords_data();
    void frameIsToldInWords();
    void directionIsShown();
};

void TestSimulatorTrace::frameIsToldInWords_data()
{
    QTest::addColumn<QString>("frame");
    QTest::addColumn<QString>("meaning");
    const FrameVectors frames("simulator/trace/trace.frames");
    const auto row = [&](const char *name, const char *meaning) {
        QTest::newRow(name) << hex(frames.frame(name)) << meaning;
    };
    row("acknowledgement", "acknowledged");
    row("poll", "0 to 2: poll");
    row("no resource", "2 to 0: refused, no resource");
    row("not active", "2 to 0: refused, service not active");
    row("another service", "0 to 2: function code 49");
    row("no frame", "not a frame");
    row("read of bytes", "0 to 2: request 1: read V100 (4 bytes)");
    row("read of a timer", "0 to 2: request 257: read T37 (1 objects)");
    row("read of an unknown kind", "0 to 2: request 1: read area 99 100.3 (1 elements of kind 99)");
    row("write of bits", "0 to 2: request 7: write M0.7 (1 bits) M1.0 (1 bits)");
    row("no job", "0 to 2: request 0: not a job");
    row("answer", "2 to 0: answer 7: first item's code ff");
    row("refusal of a job", "2 to 0: answer 9: error 81 04");
    row("cut answer", "2 to 0: answer 0");
}

void TestSimulatorTrace::frameIsToldInWords()
{
    QFETCH(QString, frame);
    QFETCH(QString, meaning);
    const QString line = QString::fromStdString(sim::traceLine(sim::Traffic::Sent, frameBytes(frame)));
    QCOMPARE(line.section("  ", 1), meaning);
}

void TestSimulatorTrace::directionIsShown()
{
    const sim::Bytes poll = frameBytes("10 02 00 5c 5e 16");
    QCOMPARE(sim::traceLine(sim::Traffic::Received, poll), std::string("> 10 02 00 5c 5e 16  0 to 2: poll"));
    QCOMPARE(sim::traceLine(sim::Traffic::Sent, {0xE5}), std::string("< e5  acknowledged"));
    QCOMPARE(sim::traceLine(sim::Traffic::Skipped, {0x0A, 0xFF}), std::string("? 0a ff  skipped"));
}

TEST_CLASS(TestSimulatorTrace)
#include "test_trace.moc"
