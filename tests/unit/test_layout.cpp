// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What a host built elsewhere relies on: sizes and offsets of the records, the order of the slots, the
// names that the library exports. Written down for the panel (32-bit ARM) and for a PC (64 bits).

#include "abstract_device_interface.h"
#include "communicator_command.h"
#include "device_setting.h"
#include "driver_interface.h"
#include "driver_setting.h"
#include "simatic_s7_200_ppi/ppi_response.h"
#include "simatic_s7_200_ppi/s7_200_ppi.h"
#include "tools/project_database.h"
#include "tools/tx_package.h"

#include <QFile>
#include <QProcess>
#include <QStringList>
#include <QtTest>

#include <climits>
#include <cstddef>
#include <cstring>

namespace {

// Bytes on the panel and on a PC. Qt 6 has larger strings and lists, and runs on the PC only.
int bytes(int panel, int pc, int pcWithQt6)
{
    if (sizeof(void *) == 4)
        return panel;
    return QT_VERSION < 0x060000 ? pc : pcWithQt6;
}

void newRow(const char *name, size_t found, int wanted)
{
    QTest::newRow(name) << int(found) << wanted;
}

#define SIZE_OF(type) #type, sizeof(type)
#define OFFSET_OF(type, field) #type "::" #field, offsetof(type, field)

// The place of a virtual operation in the table of its class, from what the ABI makes of a pointer to it:
// 1 and the offset in the table; on ARM the offset, the 1 stands in the second half.
template <typename Operation> int slotOf(Operation operation)
{
    struct
    {
        std::ptrdiff_t first;
        std::ptrdiff_t second;
    } pointer;
    static_assert(sizeof pointer == sizeof operation, "a pointer to a member has two halves");
    memcpy(&pointer, &operation, sizeof pointer);
#ifdef __arm__
    const std::ptrdiff_t offset = pointer.second & 1 ? pointer.first : -1;
#else
    const std::ptrdiff_t offset = pointer.first & 1 ? pointer.first - 1 : -1;
#endif
    return offset < 0 ? -1 : int(offset / std::ptrdiff_t(sizeof(void *)));
}

void newSlot(const char *name, int found, int wanted)
{
    QTest::newRow(name) << found << wanted;
}

#define SLOT_OF(operation) #operation, slotOf(&operation)

int callIntSlot(DriverInterface *driver, int slot)
{
    typedef int (*Operation)(DriverInterface *);
    Operation **object = reinterpret_cast<Operation **>(driver);
    return (*object)[slot](driver);
}

class SilentPort : public AbstractDeviceInterface
{
public:
    int receive(unsigned char *, int) override { return 0; }
    int send(const unsigned char *, int length) override { return length; }
    bool setOption(int, const QVariant &) override { return true; }
    int retry() override { return 0; }
    int stationId() override { return 2; }
    int delay() override { return 0; }
};

template <typename Field, typename Object> const Field &fieldAt(const Object &object, int offset)
{
    return *reinterpret_cast<const Field *>(reinterpret_cast<const char *>(&object) + offset);
}

QStringList linesOf(const QByteArray &text)
{
    QStringList lines = QString::fromLatin1(text.constData()).split('\n');
    lines.removeAll(QString(""));
    lines.removeDuplicates();
    lines.sort();
    return lines;
}

QString without(const QStringList &others, QStringList names)
{
    for (const QString &other : others)
        names.removeAll(other);
    return names.join("\n");
}

// Demangled. The compilers' names of an argument list and Qt's two names of a pair are made one.
QStringList exportedNames()
{
    QProcess nm;
    nm.start("nm", QStringList() << "-D"
                                 << "-C"
                                 << "--defined-only"
                                 << "--format=just-symbols" << PLUGIN_FILE);
    nm.waitForFinished();
    QByteArray text = nm.readAllStandardOutput();
    text.replace("std::__va_list", "va_list").replace("__va_list_tag*", "va_list");
    text.replace("std::pair<", "QPair<");
    return linesOf(text);
}

QStringList namesOfTheList()
{
    QFile file(SOURCE_DIR "/tests/unit/exported_names.txt");
    file.open(QIODevice::ReadOnly);
    return linesOf(file.readAll());
}

// Meta data go by a name of each Qt's own.
bool isForeign(const QString &name)
{
    return name.startsWith("qt_plugin_query_metadata");
}

} // namespace

class TestLayout : public QObject
{
    Q_OBJECT

private slots:
    void theMachineIsOneOfTheTwo();
    void typesHaveTheirSizes_data();
    void typesHaveTheirSizes();
    void fieldsOfTheRecordsStandAtTheirOffsets_data();
    void fieldsOfTheRecordsStandAtTheirOffsets();
    void fieldsOfTheDriverStandBehindItsBases();
    void fieldsOfAPackageAreBytesSectionsAndCounter();
    void operationsStandInTheirSlots_data();
    void operationsStandInTheirSlots();
    void aDriverIsCalledByTheSlots();
    void namedCodesHaveTheirNumbers_data();
    void namedCodesHaveTheirNumbers();
    void noExportedNameEverGoes();
    void everyExportedNameIsListed();
};

// What code for one of them gets wrong on the other.
void TestLayout::theMachineIsOneOfTheTwo()
{
    QCOMPARE(CHAR_MIN, sizeof(void *) == 4 ? 0 : -128);
    QCOMPARE(int(sizeof(long)), bytes(4, 8, 8));
    QCOMPARE(int(sizeof(size_t)), bytes(4, 8, 8));
}

void TestLayout::typesHaveTheirSizes_data()
{
    QTest::addColumn<int>("found");
    QTest::addColumn<int>("wanted");
    newRow(SIZE_OF(CommunicatorCommand), bytes(20, 24, 40));
    newRow(SIZE_OF(DeviceSetting), bytes(44, 64, 112));
    newRow(SIZE_OF(DriverSetting), bytes(24, 32, 48));
    newRow(SIZE_OF(device_type), 4);
    newRow(SIZE_OF(S7_200_PPI_Timer), 4);
    newRow(SIZE_OF(DriverInterface), bytes(4, 8, 8));
    newRow(SIZE_OF(AbstractDeviceInterface), bytes(4, 8, 8));
    newRow(SIZE_OF(DriverS7_200_PPI), bytes(24, 48, 64));
    newRow(SIZE_OF(TxPackage), bytes(12, 24, 40));
    newRow(SIZE_OF(LinkIdStationId), 8);
}

void TestLayout::typesHaveTheirSizes()
{
    QFETCH(int, found);
    QFETCH(int, wanted);
    QCOMPARE(found, wanted);
}

void TestLayout::fieldsOfTheRecordsStandAtTheirOffsets_data()
{
    QTest::addColumn<int>("found");
    QTest::addColumn<int>("wanted");
    newRow(OFFSET_OF(CommunicatorCommand, linkId), 0);
    newRow(OFFSET_OF(CommunicatorCommand, tagId), 4);
    newRow(OFFSET_OF(CommunicatorCommand, dataType), 8);
    newRow(OFFSET_OF(CommunicatorCommand, count), 12);
    newRow(OFFSET_OF(CommunicatorCommand, address), 16);

    newRow(OFFSET_OF(DeviceSetting, type), 0);
    newRow(OFFSET_OF(DeviceSetting, string), bytes(4, 8, 8));
    newRow(OFFSET_OF(DeviceSetting, baudrate), bytes(8, 16, 32));
    newRow(OFFSET_OF(DeviceSetting, databits), bytes(12, 20, 36));
    newRow(OFFSET_OF(DeviceSetting, stopbits), bytes(16, 24, 40));
    newRow(OFFSET_OF(DeviceSetting, parity), bytes(20, 28, 44));
    newRow(OFFSET_OF(DeviceSetting, extraValue), bytes(24, 32, 48));
    newRow(OFFSET_OF(DeviceSetting, extraText), bytes(28, 40, 56));
    newRow(OFFSET_OF(DeviceSetting, linkID), bytes(32, 48, 80));
    newRow(OFFSET_OF(DeviceSetting, currentIPIndex), bytes(36, 52, 84));
    newRow(OFFSET_OF(DeviceSetting, socketList), bytes(40, 56, 88));

    newRow(OFFSET_OF(DriverSetting, timeout), 0);
    newRow(OFFSET_OF(DriverSetting, retry), 4);
    newRow(OFFSET_OF(DriverSetting, stationid), 8);
    newRow(OFFSET_OF(DriverSetting, delay), 12);
    newRow(OFFSET_OF(DriverSetting, text), 16);
    newRow(OFFSET_OF(DriverSetting, flag), bytes(20, 24, 40));

    newRow(OFFSET_OF(S7_200_PPI_Timer, value), 0);
    newRow(OFFSET_OF(S7_200_PPI_Timer, status), 2);

    newRow(OFFSET_OF(LinkIdStationId, linkId), 0);
    newRow(OFFSET_OF(LinkIdStationId, stationId), 4);
}

void TestLayout::fieldsOfTheRecordsStandAtTheirOffsets()
{
    QFETCH(int, found);
    QFETCH(int, wanted);
    QCOMPARE(found, wanted);
}

void TestLayout::fieldsOfTheDriverStandBehindItsBases()
{
    DriverS7_200_PPI driver;
    const char *object = reinterpret_cast<const char *>(&driver);
    const char *interface = reinterpret_cast<const char *>(static_cast<DriverInterface *>(&driver));
    QVERIFY(reinterpret_cast<const char *>(static_cast<QObject *>(&driver)) == object);
    QCOMPARE(int(interface - object), bytes(8, 16, 16));

    SilentPort port;
    CommunicatorCommand command;
    command.dataType = kBytes;
    command.count = 1;
    command.address = "VB0";
    driver.read(&port, command);
    QCOMPARE(fieldAt<bool>(driver, bytes(12, 24, 24)), true);
    QCOMPARE(fieldAt<bool>(driver, bytes(13, 25, 25)), false);
    QCOMPARE(fieldAt<QString>(driver, bytes(16, 32, 32)), QString("plc no response"));
    QCOMPARE(fieldAt<int>(driver, bytes(20, 40, 56)), 1);

    driver.clearError();
    driver.setDebugMode(true);
    QCOMPARE(fieldAt<bool>(driver, bytes(12, 24, 24)), false);
    QCOMPARE(fieldAt<bool>(driver, bytes(13, 25, 25)), true);
}

void TestLayout::fieldsOfAPackageAreBytesSectionsAndCounter()
{
    TxPackage package;
    package.appendByte(0x10);
    package.appendWord(0x0201);
    package.setSectionSize(QList<int>() << 1 << 1);
    QCOMPARE(*fieldAt<QByteArray *>(package, 0), QByteArray("\x10\x01"));
    QCOMPARE(fieldAt<QList<int>>(package, bytes(4, 8, 8)), QList<int>() << 1 << 1);
    QCOMPARE(fieldAt<int>(package, bytes(8, 16, 32)), 3);
    package.clearAll();
    QCOMPARE(fieldAt<int>(package, bytes(8, 16, 32)), 0);
}

// The destructor has the first two.
void TestLayout::operationsStandInTheirSlots_data()
{
    QTest::addColumn<int>("found");
    QTest::addColumn<int>("wanted");
    newSlot(SLOT_OF(DriverInterface::totalSize), 2);
    newSlot(SLOT_OF(DriverInterface::write), 3);
    newSlot(SLOT_OF(DriverInterface::read), 4);
    newSlot(SLOT_OF(DriverInterface::initialize), 5);
    newSlot(SLOT_OF(DriverInterface::validation), 6);
    newSlot(SLOT_OF(DriverInterface::name), 7);
    newSlot(SLOT_OF(DriverInterface::vender), 8);
    newSlot(SLOT_OF(DriverInterface::getVersionNumber), 9);
    newSlot(SLOT_OF(DriverInterface::getDefaultSerialDeviceSetting), 10);
    newSlot(SLOT_OF(DriverInterface::getDefaultDriverSetting), 11);
    newSlot(SLOT_OF(DriverInterface::getStringBasedDefaultDriverSetting), 12);
    newSlot(SLOT_OF(DriverInterface::supportedCommunicationFlags), 13);
    newSlot(SLOT_OF(DriverInterface::setDebugMode), 14);
    newSlot(SLOT_OF(DriverInterface::getBlockAccessSize), 15);
    newSlot(SLOT_OF(DriverInterface::getBitBlockAccessSize), 16);
    newSlot(SLOT_OF(DriverInterface::hasError), 17);
    newSlot(SLOT_OF(DriverInterface::getLastError), 18);
    newSlot(SLOT_OF(DriverInterface::getThisObject), 19);
    newSlot(SLOT_OF(DriverInterface::isSupportSessionCommand), 20);
    newSlot(SLOT_OF(DriverInterface::setSessionCommand), 21);
    newSlot(SLOT_OF(DriverInterface::clearSessionCommand), 22);
    newSlot(SLOT_OF(DriverInterface::deviceSettingChanged), 23);
    newSlot(SLOT_OF(DriverInterface::isConnected), 24);

    newSlot(SLOT_OF(AbstractDeviceInterface::receive), 2);
    newSlot(SLOT_OF(AbstractDeviceInterface::send), 3);
    newSlot(SLOT_OF(AbstractDeviceInterface::setOption), 4);
    newSlot(SLOT_OF(AbstractDeviceInterface::retry), 5);
    newSlot(SLOT_OF(AbstractDeviceInterface::stationId), 6);
    newSlot(SLOT_OF(AbstractDeviceInterface::delay), 7);
}

void TestLayout::operationsStandInTheirSlots()
{
    QFETCH(int, found);
    QFETCH(int, wanted);
    QCOMPARE(found, wanted);
}

void TestLayout::aDriverIsCalledByTheSlots()
{
    DriverS7_200_PPI driver;
    QCOMPARE(callIntSlot(&driver, 2), 12250);
    QCOMPARE(callIntSlot(&driver, 13), 112);
    QCOMPARE(callIntSlot(&driver, 15), 32);
    QCOMPARE(callIntSlot(&driver, 16), 32);
}

void TestLayout::namedCodesHaveTheirNumbers_data()
{
    QTest::addColumn<int>("found");
    QTest::addColumn<int>("wanted");
    QTest::newRow("kBits") << int(kBits) << 0;
    QTest::newRow("kBytes") << int(kBytes) << 1;
    QTest::newRow("kWords") << int(kWords) << 2;
    QTest::newRow("kDoubleWords") << int(kDoubleWords) << 3;
    QTest::newRow("kQuadWords") << int(kQuadWords) << 4;
    QTest::newRow("kBlock") << int(kBlock) << 5;
    QTest::newRow("kBitBlock") << int(kBitBlock) << 6;

    QTest::newRow("kClearInput") << int(kClearInput) << 12;

    QTest::newRow("kRs485Port") << int(kRs485Port) << 64;
    QTest::newRow("kOneStopBit") << int(kOneStopBit) << 0;
    QTest::newRow("kTwoStopBits") << int(kTwoStopBits) << 2;
    QTest::newRow("kNoParity") << int(kNoParity) << 0;
    QTest::newRow("kOddParity") << int(kOddParity) << 1;
    QTest::newRow("kEvenParity") << int(kEvenParity) << 2;
    QTest::newRow("kMarkParity") << int(kMarkParity) << 3;
    QTest::newRow("kSpaceParity") << int(kSpaceParity) << 4;
}

void TestLayout::namedCodesHaveTheirNumbers()
{
    QFETCH(int, found);
    QFETCH(int, wanted);
    QCOMPARE(found, wanted);
}

void TestLayout::noExportedNameEverGoes()
{
    QVERIFY(namesOfTheList().contains("CreateDriver"));
    QCOMPARE(without(exportedNames(), namesOfTheList()), QString());
}

void TestLayout::everyExportedNameIsListed()
{
    const QStringList exported = exportedNames();
    QStringList names;
    for (const QString &name : exported)
        if (!isForeign(name))
            names.append(name);
    QVERIFY(names.contains("CreateDriver"));
    QCOMPARE(without(namesOfTheList(), names), QString());
}

QTEST_APPLESS_MAIN(TestLayout)
#include "test_layout.moc"
