// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The traffic in words.

#include "conversation.h"

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
    const auto row = [](const char *name, const char *frame, const char *meaning) {
        QTest::newRow(name) << frame << meaning;
    };
    row("acknowledgement", "e5", "acknowledged");
    row("poll", "10 02 00 5c 5e 16", "0 to 2: poll");
    row("no resource", "10 00 02 02 04 16", "2 to 0: refused, no resource");
    row("not active", "10 00 02 03 05 16", "2 to 0: refused, service not active");
    row("another service", "10 02 00 49 4b 16", "0 to 2: function code 49");
    row("no frame", "68 16 16", "not a frame");
    row("read of bytes",
        "68 1b 1b 68 02 00 6c 32 01 00 00 00 01 00 0e 00 00"
        "04 01 12 0a 10 02 00 04 00 01 84 00 03 20 8f 16",
        "0 to 2: request 1: read V100 (4 bytes)");
    row("read of a timer",
        "68 1b 1b 68 02 00 6c 32 01 00 00 01 01 00 0e 00 00"
        "04 01 12 0a 10 1f 00 01 00 00 1f 00 00 25 46 16",
        "0 to 2: request 257: read T37 (1 objects)");
    row("read of an unknown kind",
        "68 1b 1b 68 02 00 6c 32 01 00 00 00 01 00 0e 00 00"
        "04 01 12 0a 10 99 00 01 00 01 99 00 03 23 3b 16",
        "0 to 2: request 1: read area 99 100.3 (1 elements of kind 99)");
    row("write of bits",
        "68 32 32 68 02 00 6c 32 01 00 00 00 07 00 1a 00 0b 05 02"
        "12 0a 10 01 00 01 00 00 83 00 00 07 12 0a 10 01 00 01 00 00 83 00 00 08"
        "00 03 00 01 01 00 00 03 00 01 01 4f 16",
        "0 to 2: request 7: write M0.7 (1 bits) M1.0 (1 bits)");
    row("no job", "68 04 04 68 02 00 6c 99 07 16", "0 to 2: request 0: not a job");
    row("answer", "68 12 12 68 00 02 08 32 03 00 00 00 07 00 02 00 01 00 00 05 01 ff 4e 16",
        "2 to 0: answer 7: first item's code ff");
    row("refusal of a job", "68 0f 0f 68 00 02 08 32 02 00 00 00 09 00 00 00 00 81 04 cc 16",
        "2 to 0: answer 9: error 81 04");
    row("cut answer", "68 04 04 68 00 02 08 32 3c 16", "2 to 0: answer 0");
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
