// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The plug-in, loaded as a panel does it, against the simulator's program over a pseudo-terminal. Pauses
// are real here.

#include "hex.h"
#include "host/driver/plugin.h"
#include "host/driver/simulator_process.h"
#include "host/port/serial_port.h"

#include <QtTest>

using namespace host;

namespace {

CommunicatorCommand command(const char *address, DataType type, int count)
{
    CommunicatorCommand command;
    command.address = QLatin1String(address);
    command.dataType = type;
    command.count = count;
    return command;
}

LineSettings ppiLine()
{
    const Plugin plugin(QStringLiteral(PLUGIN_FILE));
    return lineSettings(*plugin.serialDefaults());
}

} // namespace

class TestWholeLine : public QObject
{
    Q_OBJECT

private slots:
    void everyKindOfObjectIsRead_data();
    void everyKindOfObjectIsRead();
    void whatWasWrittenIsReadBack_data();
    void whatWasWrittenIsReadBack();
    void theControllersRefusalIsReported();
    void aStationThatIsNotThereDoesNotAnswer();
    void manyExchangesStayInStep();
};

void TestWholeLine::everyKindOfObjectIsRead_data()
{
    QTest::addColumn<QByteArray>("address");
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("count");
    QTest::addColumn<QString>("data");

    // The simulator begins with VB100 = 11 22 33 44, SMB0 = 1, T37 = 300 and on, C5 = 5, HC0 = 100000.
    QTest::newRow("bytes") << QByteArray("VB100") << int(kBytes) << 4 << "11223344";
    QTest::newRow("block") << QByteArray("VB101") << int(kBlock) << 2 << "2233";
    QTest::newRow("word, host byte order") << QByteArray("VW100") << int(kWords) << 1 << "2211";
    QTest::newRow("double word, host byte order")
        << QByteArray("VD100") << int(kDoubleWords) << 1 << "44332211";
    QTest::newRow("bits, one byte each") << QByteArray("V100.0") << int(kBits) << 5 << "0100000001";
    QTest::newRow("special memory") << QByteArray("SMB0") << int(kBytes) << 1 << "01";
    QTest::newRow("timer value") << QByteArray("T37") << int(kWords) << 1 << "2c01";
    QTest::newRow("timer bit") << QByteArray("T37") << int(kBits) << 1 << "01";
    QTest::newRow("counter value") << QByteArray("C5") << int(kWords) << 1 << "0500";
    QTest::newRow("high-speed counter") << QByteArray("HC0") << int(kDoubleWords) << 1 << "a0860100";
}

void TestWholeLine::everyKindOfObjectIsRead()
{
    QFETCH(QByteArray, address);
    QFETCH(int, type);
    QFETCH(int, count);
    QFETCH(QString, data);
    const SimulatorProcess simulator(QStringLiteral(SIMULATOR_FILE), {});
    const Plugin plugin(QStringLiteral(PLUGIN_FILE));
    SerialPort port(simulator.portName(), ppiLine(), Timing{500, 0, 2, 0});
    QVERIFY(plugin.driver().initialize(&port));
    const QByteArray read = plugin.driver().read(&port, command(address.constData(), DataType(type), count));
    QCOMPARE(plugin.driver().getLastError(), QString());
    QCOMPARE(hex(read), data);
}

void TestWholeLine::whatWasWrittenIsReadBack_data()
{
    QTest::addColumn<QByteArray>("address");
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("count");
    QTest::addColumn<QString>("data");

    QTest::newRow("bytes") << QByteArray("VB10") << int(kBytes) << 3 << "a1b2c3";
    QTest::newRow("words") << QByteArray("MW4") << int(kWords) << 2 << "34127856";
    QTest::newRow("double word") << QByteArray("VD20") << int(kDoubleWords) << 1 << "44332211";
    QTest::newRow("bits over a byte's end") << QByteArray("Q0.6") << int(kBits) << 2 << "0101";
    QTest::newRow("timer") << QByteArray("T5") << int(kWords) << 1 << "e803";
    QTest::newRow("counter") << QByteArray("C7") << int(kWords) << 1 << "0700";
}

void TestWholeLine::whatWasWrittenIsReadBack()
{
    QFETCH(QByteArray, address);
    QFETCH(int, type);
    QFETCH(int, count);
    QFETCH(QString, data);
    const SimulatorProcess simulator(QStringLiteral(SIMULATOR_FILE), {});
    const Plugin plugin(QStringLiteral(PLUGIN_FILE));
    SerialPort port(simulator.portName(), ppiLine(), Timing{500, 0, 2, 0});
    const CommunicatorCommand item = command(address.constData(), DataType(type), count);
    QVERIFY2(plugin.driver().write(&port, item, QByteArray::fromHex(data.toLatin1())),
             qPrintable(plugin.driver().getLastError()));
    QCOMPARE(hex(plugin.driver().read(&port, item)), data);
}

void TestWholeLine::theControllersRefusalIsReported()
{
    const SimulatorProcess simulator(QStringLiteral(SIMULATOR_FILE), {});
    const Plugin plugin(QStringLiteral(PLUGIN_FILE));
    SerialPort port(simulator.portName(), ppiLine(), Timing{500, 0, 2, 0});
    QVERIFY(plugin.driver().read(&port, command("VB20000", kBytes, 1)).isEmpty());
    QVERIFY(plugin.driver().hasError());
    QCOMPARE(plugin.driver().getLastError(), QString("Invalid address (incorrect variable address)"));
}

void TestWholeLine::aStationThatIsNotThereDoesNotAnswer()
{
    const SimulatorProcess simulator(QStringLiteral(SIMULATOR_FILE), {QStringLiteral("--station=3")});
    const Plugin plugin(QStringLiteral(PLUGIN_FILE));
    SerialPort port(simulator.portName(), ppiLine(), Timing{50, 1, 2, 0});
    QVERIFY(plugin.driver().read(&port, command("VB100", kBytes, 1)).isEmpty());
    QCOMPARE(plugin.driver().getLastError(), QString("plc no response"));
}

void TestWholeLine::manyExchangesStayInStep()
{
    const SimulatorProcess simulator(QStringLiteral(SIMULATOR_FILE), {});
    const Plugin plugin(QStringLiteral(PLUGIN_FILE));
    SerialPort port(simulator.portName(), ppiLine(), Timing{500, 0, 2, 0});
    for (int i = 0; i < 20; ++i) {
        const QByteArray value(1, char(i));
        QVERIFY(plugin.driver().write(&port, command("VB7", kBytes, 1), value));
        QCOMPARE(hex(plugin.driver().read(&port, command("VB7", kBytes, 1))), hex(value));
        QCOMPARE(hex(plugin.driver().read(&port, command("VB100", kBytes, 2))), QString("1122"));
    }
}

QTEST_GUILESS_MAIN(TestWholeLine)
#include "test_whole_line.moc"
