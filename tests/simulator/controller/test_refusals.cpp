// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What the simulated controller refuses: single items with a return code, whole jobs with an error class.

#include "conversation.h"
#include "test_class.h"

#include <QtTest>

class TestSimulatorRefusals : public QObject
{
    Q_OBJECT

private slots:
    void readItemIsRefused_data();
    void readItemIsRefused();
    void writeItemIsRefused_data();
    void writeItemIsRefused();
    void jobIsRefused_data();
    void jobIsRefused();
    void refusedJobIsAnsweredByteForByte();
};

void TestSimulatorRefusals::readItemIsRefused_data()
{
    QTest::addColumn<QString>("item");
    QTest::addColumn<QString>("code");
    const auto row = [](const char *name, const char *item, const char *code) {
        QTest::newRow(name) << item << code;
    };

    row("area 00", "12 0a 10 02 0001 0000 00 000000", "0a");
    row("area ff", "12 0a 10 02 0001 0000 ff 000000", "0a");
    row("V with data block 0", "12 0a 10 02 0001 0000 84 000000", "0a");
    row("V with data block 2", "12 0a 10 02 0001 0002 84 000000", "0a");
    row("M with data block 1", "12 0a 10 02 0001 0001 83 000000", "0a");
    row("T with data block 1", "12 0a 10 1f 0001 0001 1f 000000", "0a");

    row("V as timers", "12 0a 10 1f 0001 0001 84 000000", "06");
    row("V as an unknown kind", "12 0a 10 03 0001 0001 84 000000", "06");
    row("T as words", "12 0a 10 04 0001 0000 1f 000000", "06");
    row("T as a bit", "12 0a 10 01 0001 0000 1f 000000", "06");
    row("T as counters", "12 0a 10 1e 0001 0000 1f 000000", "06");
    row("C as timers", "12 0a 10 1f 0001 0000 1e 000000", "06");
    row("HC as double words", "12 0a 10 06 0001 0000 20 000000", "06");
    row("AI as a bit", "12 0a 10 01 0001 0000 06 000000", "06");
    row("AI as bytes", "12 0a 10 02 0001 0000 06 000000", "06");
    row("AQ as double words", "12 0a 10 06 0001 0000 07 000000", "06");

    row("no byte", "12 0a 10 02 0000 0001 84 000000", "0a");
    row("no timer", "12 0a 10 1f 0000 0000 1f 000000", "0a");
    row("two bits", "12 0a 10 01 0002 0000 83 000000", "0a");
    row("235 bytes", "12 0a 10 02 00eb 0001 84 000000", "0a");
    row("118 words", "12 0a 10 04 0076 0001 84 000000", "0a");
    row("59 double words", "12 0a 10 06 003b 0001 84 000000", "0a");
    row("47 timers", "12 0a 10 1f 002f 0000 1f 000000", "0a");
    row("79 counters", "12 0a 10 1e 004f 0000 1e 000000", "0a");
    row("65535 double words", "12 0a 10 06 ffff 0001 84 000000", "0a");

    row("VB10240", "12 0a 10 02 0001 0001 84 014000", "05");
    row("VW10239", "12 0a 10 04 0001 0001 84 013ff8", "05");
    row("VD10237", "12 0a 10 06 0001 0001 84 013fe8", "05");
    row("VB10200, 41", "12 0a 10 02 0029 0001 84 013ec0", "05");
    row("the highest address", "12 0a 10 02 0001 0001 84 fffff8", "05");
    row("IB16", "12 0a 10 02 0001 0000 81 000080", "05");
    row("Q16.0", "12 0a 10 01 0001 0000 82 000080", "05");
    row("MB32", "12 0a 10 02 0001 0000 83 000100", "05");
    row("SMB550", "12 0a 10 02 0001 0000 05 001130", "05");
    row("SB32", "12 0a 10 02 0001 0000 04 000100", "05");
    row("AIW64", "12 0a 10 04 0001 0000 06 000200", "05");
    row("AQW62, 2", "12 0a 10 04 0002 0000 07 0001f0", "05");
    row("AIW1", "12 0a 10 04 0001 0000 06 000008", "05");
    row("byte at a bit", "12 0a 10 02 0001 0001 84 000001", "05");
    row("T256", "12 0a 10 1f 0001 0000 1f 000100", "05");
    row("T255, 2", "12 0a 10 1f 0002 0000 1f 0000ff", "05");
    row("C256", "12 0a 10 1e 0001 0000 1e 000100", "05");
    row("HC6", "12 0a 10 20 0001 0000 20 000006", "05");
    row("HC with the highest number", "12 0a 10 20 0001 0000 20 ffffff", "05");
}

void TestSimulatorRefusals::readItemIsRefused()
{
    QFETCH(QString, item);
    QFETCH(QString, code);
    sim::Station station(2);
    QCOMPARE(readItems(station, item), code + plain("00 0000"));
}

void TestSimulatorRefusals::writeItemIsRefused_data()
{
    QTest::addColumn<QString>("item");
    QTest::addColumn<QString>("written");
    QTest::addColumn<QString>("code");
    const auto row = [](const char *name, const char *item, const char *written, const char *code) {
        QTest::newRow(name) << item << written << code;
    };

    row("AIW0", "12 0a 10 04 0001 0000 06 000000", "00 04 0010 0001", "03");
    row("AI as a bit", "12 0a 10 01 0001 0000 06 000000", "00 03 0001 01", "03");
    row("HC0", "12 0a 10 20 0001 0000 20 000000", "00 04 0028 0000000001", "03");
    row("HC as a bit", "12 0a 10 01 0001 0000 20 000000", "00 03 0001 01", "03");

    row("unknown area", "12 0a 10 02 0001 0000 00 000000", "00 04 0008 01", "0a");
    row("V with data block 0", "12 0a 10 02 0001 0000 84 000000", "00 04 0008 01", "0a");

    row("T as a bit", "12 0a 10 01 0001 0000 1f 000005", "00 03 0001 01", "06");
    row("C as words", "12 0a 10 04 0001 0000 1e 000005", "00 04 0010 0001", "06");
    row("AQ as a byte", "12 0a 10 02 0001 0000 07 000000", "00 04 0008 01", "06");
    row("byte with a bit's data", "12 0a 10 02 0001 0000 83 000000", "00 03 0001 01", "06");
    row("bit with a byte's data", "12 0a 10 01 0001 0000 83 000000", "00 04 0008 01", "06");
    row("word with data in bytes", "12 0a 10 04 0001 0000 83 000000", "00 09 0002 0001", "06");
    row("timer with data in bytes", "12 0a 10 1f 0001 0000 1f 000000", "00 09 0005 0000000001", "06");

    row("less data than bytes", "12 0a 10 02 0003 0000 83 000000", "00 04 0010 0001", "0a");
    row("more data than bytes", "12 0a 10 02 0001 0000 83 000000", "00 04 0010 0001", "0a");
    row("7 bits for a byte", "12 0a 10 02 0001 0000 83 000000", "00 04 0007 01", "0a");
    row("no data", "12 0a 10 02 0001 0000 83 000000", "00 04 0000", "0a");
    row("no byte", "12 0a 10 02 0000 0000 83 000000", "00 04 0000", "0a");
    row("two bits for one", "12 0a 10 01 0001 0000 83 000000", "00 03 0002 01", "0a");
    row("timer of 3 bytes", "12 0a 10 1f 0001 0000 1f 000000", "00 04 0018 00 0001", "0a");
    row("two counters for one", "12 0a 10 1e 0001 0000 1e 000000", "00 04 0030 00 0001 00 0002", "0a");
    // 8192 bytes are 65536 bits, which the length field shows as 0.
    row("8192 bytes without data", "12 0a 10 02 2000 0001 84 000000", "00 04 0000", "0a");

    row("VB10240", "12 0a 10 02 0001 0001 84 014000", "00 04 0008 01", "05");
    row("MW31", "12 0a 10 04 0001 0000 83 0000f8", "00 04 0010 0001", "05");
    row("Q16.0", "12 0a 10 01 0001 0000 82 000080", "00 03 0001 01", "05");
    row("AQW1", "12 0a 10 04 0001 0000 07 000008", "00 04 0010 0001", "05");
    row("T256", "12 0a 10 1f 0001 0000 1f 000100", "00 04 0028 0000000001", "05");
    row("C255, 2", "12 0a 10 1e 0002 0000 1e 0000ff", "00 04 0030 00 0001 00 0002", "05");
}

void TestSimulatorRefusals::writeItemIsRefused()
{
    QFETCH(QString, item);
    QFETCH(QString, written);
    QFETCH(QString, code);
    sim::Station station(2);
    const sim::Memory before = station.memory();
    QCOMPARE(writeItems(station, item, written), code);
    QVERIFY(station.memory() == before);
}

void TestSimulatorRefusals::jobIsRefused_data()
{
    QTest::addColumn<QString>("pdu");
    QTest::addColumn<QString>("answer");
    const auto row = [](const char *name, const QString &pdu, const QString &answer) {
        QTest::newRow(name) << pdu << answer;
    };
    const QString unknown = "32 02 0000 1234 0000 0000 81 04";
    const QString inconsistent = "32 02 0000 1234 0000 0000 85 00";
    const QString item = "12 0a 10 02 0001 0001 84 000320";

    row("protocol id", "72 01 0000 1234 000e 0000 04 01" + item, unknown);
    row("answer instead of a job", "32 03 0000 1234 000e 0000 04 01" + item, unknown);
    row("message type 7", "32 07 0000 1234 000e 0000 04 01" + item, unknown);
    row("function 00", "32 01 0000 1234 000e 0000 00 01" + item, unknown);
    row("function 28", "32 01 0000 1234 0001 0000 28", unknown);
    row("function f0", "32 01 0000 1234 0008 0000 f0 00 0001 0001 00f0", unknown);

    row("empty", "", "32 02 0000 0000 0000 0000 81 04");
    row("header cut behind the reference", "32 01 0000 1234", inconsistent);
    row("header cut inside the reference", "32 01 0000 12", "32 02 0000 0000 0000 0000 85 00");
    row("reserved field", "32 01 0001 1234 000e 0000 04 01" + item, inconsistent);
    row("no parameters", "32 01 0000 1234 0000 0000", inconsistent);
    row("no item count", "32 01 0000 1234 0001 0000 04", inconsistent);
    row("no items", "32 01 0000 1234 0002 0000 04 00", inconsistent);
    row("parameter length too small", "32 01 0000 1234 000d 0000 04 01" + item, inconsistent);
    row("parameter length too large", "32 01 0000 1234 000f 0000 04 01" + item, inconsistent);
    row("parameter and data length shifted", "32 01 0000 1234 000d 0001 04 01" + item, inconsistent);
    row("huge lengths", "32 01 0000 1234 ffff ffff 04 01" + item, inconsistent);
    row("one item of two", "32 01 0000 1234 000e 0000 04 02" + item, inconsistent);
    row("two items of one", "32 01 0000 1234 001a 0000 04 01" + item + item, inconsistent);
    row("255 items", "32 01 0000 1234 000e 0000 04 ff" + item, inconsistent);
    row("item specifier", "32 01 0000 1234 000e 0000 04 01 13 0a 10 02 0001 0001 84 000320", inconsistent);
    row("address length", "32 01 0000 1234 000e 0000 04 01 12 0b 10 02 0001 0001 84 000320", inconsistent);
    row("syntax", "32 01 0000 1234 000e 0000 04 01 12 0a 11 02 0001 0001 84 000320", inconsistent);
    row("item cut", "32 01 0000 1234 0008 0000 04 01 12 0a 10 02 0001", inconsistent);
    row("read with data", "32 01 0000 1234 000e 0005 04 01" + item + "00 04 0008 01", inconsistent);
    row("write without data", "32 01 0000 1234 000e 0000 05 01" + item, inconsistent);
    row("write, half a data head", "32 01 0000 1234 000e 0003 05 01" + item + "00 04 00", inconsistent);
    row("write, data cut", "32 01 0000 1234 000e 0005 05 01" + item + "00 04 0010 01", inconsistent);
    row("write, data too long", "32 01 0000 1234 000e 0006 05 01" + item + "00 04 0008 01 00", inconsistent);
    row("write, data's first byte", "32 01 0000 1234 000e 0005 05 01" + item + "ff 04 0008 01", inconsistent);
    row("two writes without fill byte",
        "32 01 0000 1234 001a 000a 05 02" + item + item + "00 04 0008 01" + "00 04 0008 02", inconsistent);
}

void TestSimulatorRefusals::jobIsRefused()
{
    QFETCH(QString, pdu);
    QFETCH(QString, answer);
    sim::Station station(2);
    const sim::Memory before = station.memory();
    QCOMPARE(answerTo(station, pdu), plain(answer));
    QVERIFY(station.memory() == before);
}

void TestSimulatorRefusals::refusedJobIsAnsweredByteForByte()
{
    sim::Station station(2);
    QCOMPARE(say(station, "68 0e 0e 68 02 00 6c 32 01 00 00 00 09 00 01 00 00 28 d3 16"), plain("e5"));
    QCOMPARE(say(station, "10 02 00 5c 5e 16"),
             plain("68 0f 0f 68 00 02 08 32 02 00 00 00 09 00 00 00 00 81 04 cc 16"));
}

TEST_CLASS(TestSimulatorRefusals)
#include "test_refusals.moc"
