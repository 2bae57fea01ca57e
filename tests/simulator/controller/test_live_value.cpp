// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Values that change by themselves: where they lie, and what they are at which time.

#include "complaint.h"
#include "conversation.h"

#include "simulator/controller/live_value.h"
#include "test_class.h"

#include <QtTest>

#include <chrono>
#include <cstdint>
#include <stdexcept>

using namespace std::chrono_literals;

namespace {

constexpr sim::Time kStart = 1000s;

sim::Memory memoryWith(const QString &live, int milliseconds)
{
    sim::Memory memory;
    for (const sim::LiveValue &value : sim::parseLiveValues(live.toStdString()))
        value.store(memory, kStart + std::chrono::milliseconds(milliseconds), kStart);
    return memory;
}

QString bytesAt(const sim::Memory &memory, uint8_t area, int first, int count)
{
    const auto begin = memory.bytes(area).begin() + first;
    return hex(sim::Bytes(begin, begin + count));
}

QString complaint(const QString &text)
{
    return complaintOf<std::invalid_argument>([&] { sim::parseLiveValues(text.toStdString()); });
}

} // namespace

class TestSimulatorLiveValue : public QObject
{
    Q_OBJECT

private slots:
    void valueIsThatOfItsTime_data();
    void valueIsThatOfItsTime();
    void everyAreaCanLive_data();
    void everyAreaCanLive();
    void numbersLieInTheMemoryOfObjects();
    void onlyTheNamedBitChanges();
    void demoChangesInEverySecond();
    void demoLeavesTheExampleAlone();
    void badTextIsRefused_data();
    void badTextIsRefused();
};

void TestSimulatorLiveValue::valueIsThatOfItsTime_data()
{
    QTest::addColumn<QString>("course");
    QTest::addColumn<int>("milliseconds");
    QTest::addColumn<QString>("vd0");
    QTest::newRow("ramp begins") << "VW0=ramp:0..1000/10s" << 0 << "0000 0000";
    QTest::newRow("ramp, a quarter") << "VW0=ramp:0..1000/10s" << 2500 << "00fa 0000";
    QTest::newRow("ramp, rounded") << "VW0=ramp:0..10/10s" << 2600 << "0003 0000";
    QTest::newRow("ramp, near its end") << "VW0=ramp:0..1000/10s" << 9999 << "03e8 0000";
    QTest::newRow("ramp begins again") << "VW0=ramp:0..1000/10s" << 10000 << "0000 0000";
    QTest::newRow("ramp falls") << "VW0=ramp:1000..0/10s" << 2500 << "02ee 0000";
    QTest::newRow("ramp below zero") << "VW0=ramp:-1000..1000/10s" << 2500 << "fe0c 0000";
    QTest::newRow("ramp of a byte") << "VB1=ramp:0..200/1min" << 30000 << "0064 0000";
    QTest::newRow("ramp of a double word") << "VD0=ramp:0..4294967295/1h" << 1800000 << "8000 0000";
    QTest::newRow("ramp of a number with a fraction") << "VD0:f32=ramp:0..1/1s" << 500 << "3f00 0000";
    QTest::newRow("sine begins") << "VW0=sine:500+-400/30s" << 0 << "01f4 0000";
    QTest::newRow("sine, top") << "VW0=sine:500+-400/30s" << 7500 << "0384 0000";
    QTest::newRow("sine, middle") << "VW0=sine:500+-400/30s" << 15000 << "01f4 0000";
    QTest::newRow("sine, bottom") << "VW0=sine:500+-400/30s" << 22500 << "0064 0000";
    QTest::newRow("sine, other sign") << "VW0=sine:500\u00b1400/30s" << 7500 << "0384 0000";
    QTest::newRow("sine of a number with a fraction") << "VD0:f32=sine:20.5+-2/4s" << 1000 << "41b4 0000";
    QTest::newRow("clock") << "VD0=clock" << 999 << "0000 03e8";
    QTest::newRow("clock, a second later") << "VD0=clock" << 1000 << "0000 03e9";
    QTest::newRow("counter begins") << "VW0=counter:1/s" << 999 << "0000 0000";
    QTest::newRow("counter") << "VW0=counter:1/s" << 5000 << "0005 0000";
    QTest::newRow("counter, several at a time") << "VW0=counter:10/2s" << 3000 << "000f 0000";
    QTest::newRow("counter, backwards") << "VW0=counter:-1/s" << 2000 << "fffe 0000";
    QTest::newRow("counter is full") << "VB0=counter:1/ms" << 257 << "0100 0000";
    QTest::newRow("counter with a fraction") << "VD0:f32=counter:1/s" << 2500 << "4000 0000";
    QTest::newRow("blink begins") << "V0.7=blink:1s" << 0 << "8000 0000";
    QTest::newRow("blink, first half") << "V0.7=blink:1s" << 499 << "8000 0000";
    QTest::newRow("blink, second half") << "V0.7=blink:1s" << 500 << "0000 0000";
    QTest::newRow("blink, again") << "V0.7=blink:1s" << 1000 << "8000 0000";
    QTest::newRow("blink slowly") << "V0.7=blink:2min" << 59999 << "8000 0000";
}

void TestSimulatorLiveValue::valueIsThatOfItsTime()
{
    QFETCH(QString, course);
    QFETCH(int, milliseconds);
    QFETCH(QString, vd0);
    QCOMPARE(bytesAt(memoryWith(course, milliseconds), sim::kAreaV, 0, 4), plain(vd0));
}

void TestSimulatorLiveValue::everyAreaCanLive_data()
{
    QTest::addColumn<QString>("place");
    QTest::addColumn<int>("area");
    QTest::addColumn<int>("last");
    QTest::newRow("I") << "IB15" << int(sim::kAreaI) << 15;
    QTest::newRow("Q") << "QB15" << int(sim::kAreaQ) << 15;
    QTest::newRow("V") << "VB10239" << int(sim::kAreaV) << 10239;
    QTest::newRow("M") << "MW30" << int(sim::kAreaM) << 31;
    QTest::newRow("SM") << "SMD546" << int(sim::kAreaSM) << 549;
    QTest::newRow("S") << "SB31" << int(sim::kAreaS) << 31;
    QTest::newRow("AI") << "AIW62" << int(sim::kAreaAI) << 63;
    QTest::newRow("AQ") << "AQW62" << int(sim::kAreaAQ) << 63;
}

void TestSimulatorLiveValue::everyAreaCanLive()
{
    QFETCH(QString, place);
    QFETCH(int, area);
    QFETCH(int, last);
    const sim::Memory memory = memoryWith(place + "=ramp:5..5/1s", 0);
    QCOMPARE(bytesAt(memory, uint8_t(area), last, 1), QString("05"));
}

void TestSimulatorLiveValue::numbersLieInTheMemoryOfObjects()
{
    QCOMPARE(int(memoryWith("T37=ramp:0..300/3s", 1000).timers[37].value), 100);
    QCOMPARE(int(memoryWith("C255=counter:1/s", 7000).counters[255].value), 7);
    QCOMPARE(memoryWith("HC5=counter:100000/s", 7000).highSpeedCounters[5], 700000u);
}

void TestSimulatorLiveValue::onlyTheNamedBitChanges()
{
    sim::Memory memory;
    memory.bytes(sim::kAreaM)[3] = 0xA5;
    const sim::LiveValue blink("M3.2", "blink:1s");
    blink.store(memory, kStart + 500ms, kStart);
    QCOMPARE(int(memory.bytes(sim::kAreaM)[3]), 0xA1);
    blink.store(memory, kStart, kStart);
    QCOMPARE(int(memory.bytes(sim::kAreaM)[3]), 0xA5);
}

void TestSimulatorLiveValue::demoChangesInEverySecond()
{
    for (int i = 0; i < 10; ++i)
        QVERIFY(!(memoryWith("demo", 700 * i) == memoryWith("demo", 700 * i + 700)));
}

void TestSimulatorLiveValue::demoLeavesTheExampleAlone()
{
    sim::Memory memory = sim::exampleMemory();
    for (const sim::LiveValue &value : sim::parseLiveValues("demo"))
        value.store(memory, kStart + 1s, kStart);
    QCOMPARE(bytesAt(memory, sim::kAreaV, 100, 4), QString("11223344"));
    QCOMPARE(bytesAt(memory, sim::kAreaSM, 0, 1), QString("21")); // SM0.5 blinks beside SM0.0
    QCOMPARE(int(memory.timers[37].value), 300);
    QCOMPARE(int(memory.counters[5].value), 5);
    QCOMPARE(memory.highSpeedCounters[0], 100000u);
}

void TestSimulatorLiveValue::badTextIsRefused_data()
{
    const QString noPlace =
        "is no place in the memory; such are V10.3 VB10 VW10 VD10 VD10:f32 AIW0 T37 C5 HC0";
    QTest::addColumn<QString>("error");
    const auto row = [](const char *name, const QString &error) { QTest::newRow(name) << error; };
    for (const char *place : {"",      "V10",  "XB1",     "vb1",     "VX1",     "VB",      "VB-1",
                              "VB1.0", "V1.8", "V1.10",   "T37.0",   "TW37",    "AI0",     "AI0.0",
                              "AIB0",  "AID0", "VW1:f32", "T37:f32", "HC0:f32", "VD4:i32", "VB1000000"})
        row(qPrintable(QString(place) + "=clock"), QString("\"%1\" %2").arg(place, noPlace));
    row("V10240.0=blink:1s", "\"V10240.0\" lies behind the last one of V, 10239");
    row("VB10240=clock", "\"VB10240\" lies behind the last one of V, 10239");
    row("VD10237=clock", "\"VD10237\" lies behind the last one of V, 10239");
    row("T256=clock", "\"T256\" lies behind the last one of T, 255");
    row("HC6=clock", "\"HC6\" lies behind the last one of HC, 5");
    row("AIW1=clock", "\"AIW1\" does not begin at an even byte");

    row("VW0", "\"VW0\" is neither PLACE=KIND:ARGUMENTS, as VW100=ramp:0..1000/10s, nor demo");
    row("VW0=", "\"\" is no kind of live value; there are ramp, sine, clock, counter, blink");
    row("VW0=sinus:1+-1/1s",
        "\"sinus\" is no kind of live value; there are ramp, sine, clock, counter, blink");
    row("VW0=sin:1+-1/1s", "\"sin\" is no kind of live value; the nearest is sine");
    row("VW0=ramp", "\"ramp\": give ramp:FROM..TO/TIME, as ramp:0..1000/10s");
    row("VW0=ramp:0..5", "\"ramp:0..5\": give ramp:FROM..TO/TIME, as ramp:0..1000/10s");
    row("VW0=ramp:0..5/10", "\"ramp:0..5/10\": give ramp:FROM..TO/TIME, as ramp:0..1000/10s");
    row("VW0=ramp:0..5/10d", "\"ramp:0..5/10d\": give ramp:FROM..TO/TIME, as ramp:0..1000/10s");
    row("VW0=ramp:0..x/10s", "\"ramp:0..x/10s\": give ramp:FROM..TO/TIME, as ramp:0..1000/10s");
    row("VW0=sine:5+4/1s", "\"sine:5+4/1s\": give sine:MIDDLE+-AMPLITUDE/TIME, as sine:500+-400/30s");
    row("VD0=clock:1", "\"clock:1\": give clock, without arguments");
    row("VW0=counter:1", "\"counter:1\": give counter:STEP/TIME, as counter:1/s");
    row("V0.0=blink", "\"blink\": give blink:TIME, as blink:1s");

    row("VW0=blink:1s", "VW0: only a bit can blink");
    row("V0.0=counter:1/s", "V0.0: a bit can only blink");
    row("VW0=clock", "VW0: clock needs a double word");
    row("VD0:f32=clock", "VD0:f32: clock needs a double word");
    row("V0.0=blink:0s", "\"blink:0s\": the time must be longer than 0");
    row("VW0=ramp:0..65536/1s", "\"ramp:0..65536/1s\" goes beyond what VW0 can hold");
    row("VW0=ramp:-32769..0/1s", "\"ramp:-32769..0/1s\" goes beyond what VW0 can hold");
    row("VB0=sine:100+-156/1s", "\"sine:100+-156/1s\" goes beyond what VB0 can hold");
    row("C0=ramp:0..65536/1s", "\"ramp:0..65536/1s\" goes beyond what C0 can hold");
}

void TestSimulatorLiveValue::badTextIsRefused()
{
    QFETCH(QString, error);
    QCOMPARE(complaint(QTest::currentDataTag()), error);
}

TEST_CLASS(TestSimulatorLiveValue)
#include "test_live_value.moc"
