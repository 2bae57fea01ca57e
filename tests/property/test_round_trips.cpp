// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Through the simulated controller and back: every area, every type and every count that a frame can carry
// reads as it was written, and lies in the controller's memory as it should.

#include "simulator_port.h"

#include "fake_sleep.h"
#include "log_capture.h"
#include "random.h"
#include "simatic_s7_200_ppi/s7_200_ppi.h"
#include "test_class.h"

#include <QtTest>

class TestRoundTrips : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { seed = seedOfRun(); }
    void init() { FakeSleep::reset(); }
    void memoryInItsElements_data();
    void memoryInItsElements();
    void bits_data();
    void bits();
    void timers_data();
    void timers();
    void counters_data();
    void counters();
    void statusBits();
    void fastCounters_data();
    void fastCounters();
    void analogueInputs();
    void largestRead();
    void largestWrite();

private:
    quint32 seed = 0;
};

namespace {

const int kRoomInWrite = 224; // bytes of data in a request of one item
const int kRoomForBits = 13;  // items of one bit in a request
const int kMostTimers = 44;   // in a request
const int kMostCounters = 74;

// A driver and a controller.
struct Link
{
    Link() : station(SimulatorPort::kStation, sim::Memory()), port(station) {}

    // The reason of the failure, empty on success.
    QString write(const CommunicatorCommand &command, const QByteArray &data)
    {
        return driver.write(&port, command, data) ? QString() : driver.getLastError();
    }

    QByteArray read(const CommunicatorCommand &command) { return driver.read(&port, command).toHex(); }

    LogCapture log;
    sim::Station station;
    SimulatorPort port;
    DriverS7_200_PPI driver;
};

struct NamedType
{
    const char *name;
    int type;
    int size; // of an item, in bytes
};

const NamedType kTypes[] = {
    {"bytes", kBytes, 1}, {"block", kBlock, 1}, {"words", kWords, 2}, {"double words", kDoubleWords, 4}};

struct NamedArea
{
    const char *name;
    const char *widths;
    int code;
    int size;
};

const NamedArea kAreas[] = {{"I", " BWD", sim::kAreaI, 16},    {"Q", " BWD", sim::kAreaQ, 16},
                            {"V", " BWD", sim::kAreaV, 10240}, {"M", " BWD", sim::kAreaM, 32},
                            {"SM", " BWD", sim::kAreaSM, 550}, {"S", " BWD", sim::kAreaS, 32},
                            {"AQ", "W", sim::kAreaAQ, 64}};

int widthOf(char letter)
{
    return letter == 'D' ? 4 : letter == 'W' ? 2 : 1;
}

CommunicatorCommand commandFor(int type, const QString &address, int count)
{
    CommunicatorCommand command;
    command.dataType = type;
    command.address = address;
    command.count = count;
    return command;
}

QString address(const QString &prefix, int number)
{
    return prefix + QString::number(number);
}

QString bitAddress(const QString &prefix, int bit)
{
    return QString("%1%2.%3").arg(prefix).arg(bit / 8).arg(bit % 8);
}

void addTypes()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("itemSize");
    for (const NamedType &type : kTypes)
        QTest::newRow(type.name) << type.type << type.size;
}

// 16-bit values as the controller's objects hold them, least significant byte first.
template <typename Objects> QByteArray valuesOf(const Objects &objects, int first, int count)
{
    QByteArray values;
    for (int i = first; i < first + count; ++i)
        values += QByteArray(1, char(objects[size_t(i)].value)) + char(objects[size_t(i)].value >> 8);
    return values;
}

// Whole elements of the width, most significant byte first.
QByteArray onTheLine(QByteArray data, int width)
{
    while (data.size() % width != 0)
        data += '\0';
    QByteArray turned;
    for (int i = 0; i < data.size(); ++i)
        turned += data.at(i - i % width + width - 1 - i % width);
    return turned;
}

QByteArray inMemory(const sim::Memory &memory, int area, int first, int count)
{
    const sim::Bytes &bytes = memory.bytes(uint8_t(area));
    return QByteArray(reinterpret_cast<const char *>(bytes.data()) + first, count);
}

} // namespace

void TestRoundTrips::memoryInItsElements_data()
{
    QTest::addColumn<QString>("prefix");
    QTest::addColumn<int>("area");
    QTest::addColumn<int>("areaSize");
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("itemSize");
    for (const NamedArea &area : kAreas) {
        for (const char *width = area.widths; *width; ++width) {
            for (const NamedType &type : kTypes) {
                const QString prefix = (QString(area.name) + *width).trimmed();
                QTest::newRow(qPrintable(type.name + (" of " + prefix)))
                    << prefix << area.code << area.size << type.type << type.size;
            }
        }
    }
}

void TestRoundTrips::memoryInItsElements()
{
    QFETCH(QString, prefix);
    QFETCH(int, area);
    QFETCH(int, areaSize);
    QFETCH(int, type);
    QFETCH(int, itemSize);
    const int width = widthOf(prefix.back().toLatin1());
    Random random(seed);
    Link link;
    for (int count = 1; count * itemSize <= qMin(kRoomInWrite, areaSize); ++count) {
        const QByteArray data = random.bytes(count * itemSize);
        const QByteArray wire = onTheLine(data, width);
        const int size = int(wire.size());
        const int first = random.below((areaSize - size) / width + 1) * width;
        const CommunicatorCommand command = commandFor(type, address(prefix, first), count);
        QCOMPARE(link.write(command, data), QString());
        QCOMPARE(link.read(command), data.toHex());
        QCOMPARE(inMemory(link.station.memory(), area, first, size).toHex(), wire.toHex());
    }
}

void TestRoundTrips::bits_data()
{
    QTest::addColumn<QString>("prefix");
    QTest::addColumn<int>("type");
    const auto row = [](const char *name, const QString &prefix, int type) {
        QTest::newRow(name) << prefix << type;
    };
    for (const NamedArea &area : kAreas) {
        if (*area.widths != ' ')
            continue;
        row(area.name, QString(area.name), kBits);
        row(qPrintable(QString("%1, block").arg(area.name)), QString(area.name), kBitBlock);
    }
}

// Bits that straddle more bytes than their number needs can only be read one by one.
void TestRoundTrips::bits()
{
    QFETCH(QString, prefix);
    QFETCH(int, type);
    Random random(seed);
    Link link;
    for (int count = 1; count <= kRoomForBits; ++count) {
        for (int first = 0; first < 16; ++first) {
            QByteArray data;
            for (int i = 0; i < count; ++i)
                data += char(random.below(2));
            QCOMPARE(link.write(commandFor(type, bitAddress(prefix, first), count), data), QString());
            for (int i = 0; i < count; ++i)
                QCOMPARE(link.read(commandFor(type, bitAddress(prefix, first + i), 1)),
                         data.mid(i, 1).toHex());
            if ((first % 8 + count + 7) / 8 == (count + 7) / 8)
                QCOMPARE(link.read(commandFor(type, bitAddress(prefix, first), count)), data.toHex());
        }
    }
}

void TestRoundTrips::timers_data()
{
    addTypes();
}

void TestRoundTrips::timers()
{
    QFETCH(int, type);
    QFETCH(int, itemSize);
    Random random(seed);
    Link link;
    for (int count = 1; count * itemSize <= kMostTimers * 2; ++count) {
        const QByteArray data = random.bytes(count * itemSize);
        const int first = random.below(int(sim::kTimerCount) - kMostTimers);
        const CommunicatorCommand command = commandFor(type, address("T", first), count);
        QCOMPARE(link.write(command, data), QString());
        QCOMPARE(link.read(command), data.toHex());
        QCOMPARE(valuesOf(link.station.memory().timers, first, int(data.size()) / 2).toHex(),
                 data.left(data.size() / 2 * 2).toHex());
    }
}

void TestRoundTrips::counters_data()
{
    addTypes();
}

void TestRoundTrips::counters()
{
    QFETCH(int, type);
    QFETCH(int, itemSize);
    Random random(seed);
    Link link;
    for (int count = 1; count * itemSize <= kMostCounters * 2; ++count) {
        const QByteArray data = random.bytes(count * itemSize);
        const int first = random.below(int(sim::kCounterCount) - kMostCounters);
        const CommunicatorCommand command = commandFor(type, address("C", first), count);
        QCOMPARE(link.write(command, data), QString());
        QCOMPARE(link.read(command), data.toHex());
        QCOMPARE(valuesOf(link.station.memory().counters, first, int(data.size()) / 2).toHex(),
                 data.left(data.size() / 2 * 2).toHex());
    }
}

void TestRoundTrips::statusBits()
{
    Random random(seed);
    Link link;
    QByteArray ofTimers;
    QByteArray ofCounters;
    for (int i = 0; i < kMostTimers; ++i) {
        ofTimers += char(link.station.memory().timers[size_t(i)].status = random.oneIn(2));
        ofCounters += char(link.station.memory().counters[size_t(i)].status = random.oneIn(2));
    }
    for (int count = 1; count <= kMostTimers; ++count) {
        QCOMPARE(link.read(commandFor(kBits, "T0", count)), ofTimers.left(count).toHex());
        QCOMPARE(link.read(commandFor(kBitBlock, "C0", count)), ofCounters.left(count).toHex());
    }
    QCOMPARE(link.write(commandFor(kBits, "T0", 1), QByteArray(1, '\1')),
             QString("can not write data to T0"));
    QCOMPARE(link.write(commandFor(kBits, "C0", 1), QByteArray(1, '\1')),
             QString("can not write data to C0"));
}

void TestRoundTrips::fastCounters_data()
{
    addTypes();
}

void TestRoundTrips::fastCounters()
{
    QFETCH(int, type);
    QFETCH(int, itemSize);
    Link link;
    QByteArray values;
    for (uint32_t i = 0; i < sim::kHighSpeedCounterCount; ++i) {
        const uint32_t value = 0x91a2b3c4 + i;
        link.station.memory().highSpeedCounters[i] = value;
        values += QByteArray(1, char(value)) + char(value >> 8) + char(value >> 16) + char(value >> 24);
    }
    for (int count = 1; count * itemSize <= values.size(); ++count) {
        const CommunicatorCommand command = commandFor(type, "HC0", count);
        QCOMPARE(link.read(command), values.left(count * itemSize).toHex());
        QCOMPARE(link.write(command, values), QString("can not write data to HC0"));
    }
}

void TestRoundTrips::analogueInputs()
{
    Link link;
    sim::Bytes &inputs = link.station.memory().bytes(sim::kAreaAI);
    for (size_t i = 0; i < inputs.size(); ++i)
        inputs[i] = uint8_t(0x91 + i);
    const QByteArray host =
        onTheLine(inMemory(link.station.memory(), sim::kAreaAI, 0, int(inputs.size())), 2);
    for (int count = 1; count <= host.size() / 2; ++count) {
        const CommunicatorCommand command = commandFor(kWords, "AIW0", count);
        QCOMPARE(link.read(command), host.left(2 * count).toHex());
        QCOMPARE(link.write(command, host), QString("can not write data to AIW0"));
    }
}

void TestRoundTrips::largestRead()
{
    const int most = 234;
    Link link;
    QCOMPARE(link.read(commandFor(kBytes, "VB0", most)), QByteArray(most, '\0').toHex());
    QCOMPARE(link.read(commandFor(kBytes, "VB0", most + 1)), QByteArray());
    QCOMPARE(link.driver.getLastError(), QString("Object does not exist or length error"));
}

// One byte more makes the length byte of the frame wrap; the controller then sees no frame.
void TestRoundTrips::largestWrite()
{
    Link link;
    const QByteArray data(kRoomInWrite + 1, '\x91');
    QCOMPARE(link.write(commandFor(kBytes, "VB0", kRoomInWrite), data.left(kRoomInWrite)), QString());
    const sim::Memory before = link.station.memory();
    QCOMPARE(link.write(commandFor(kBytes, "VB500", kRoomInWrite + 1), data), QString("plc no response"));
    QVERIFY(link.station.memory() == before);
}

TEST_CLASS(TestRoundTrips)

#include "test_round_trips.moc"
