// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "abstract_device_interface.h"
#include "device_setting.h"
#include "driver_setting.h"
#include "fake_sleep.h"
#include "simatic_s7_200_ppi/s7_200_ppi.h"

#include <QScopedPointer>
#include <QtTest>

namespace {

// Only notes the options that are set.
class OptionPort : public AbstractDeviceInterface
{
public:
    int receive(unsigned char *, int) override { return 0; }
    int send(const unsigned char *, int) override { return 0; }
    bool setOption(int key, const QVariant &value) override
    {
        options.append(QString("%1 = %2 %3").arg(key).arg(value.typeName()).arg(value.toInt()));
        return true;
    }
    int retry() override { return 0; }
    int stationId() override { return 2; }
    int delay() override { return 0; }

    QStringList options;
};

} // namespace

class TestDriverObject : public QObject
{
    Q_OBJECT

private slots:
    void itTellsWhatItIs();
    void itTellsItsSizes();
    void itVouchesForNoText();
    void defaultsAreNewRecordsOnEveryCall();
    void theDefaultSerialLineIsPpis();
    void theDefaultTimingIsTheDrivers();
    void aNewDriverHasNoErrorAndANullText();
    void aClearedErrorIsEmptyButNotNull();
    void anErrorIsKeptWithItsText();
    void initializePurgesThePort();
    void initializeTakesNoPort();
    void thePauseBeforeAFrameIsTwelveMilliseconds();
    void thePauseIsFinishedAfterASignal();
    void thePanelIsStationZero();
    void theMetaObjectNamesTheClassAndNothingElse();
    void metacastKnowsClassAndInterface();
    void theDriverIsItsOwnObject();
};

void TestDriverObject::itTellsWhatItIs()
{
    DriverS7_200_PPI driver;
    QCOMPARE(driver.name(), QString("Simatic S7-200 PPI"));
    QCOMPARE(driver.vender(), QString("Siemens"));
    QCOMPARE(driver.getVersionNumber(), QString("1.0.0"));
    QCOMPARE(driver.getStringBasedDefaultDriverSetting(), QString("RS485,9600,EVEN,8,1"));
}

void TestDriverObject::itTellsItsSizes()
{
    DriverS7_200_PPI driver;
    QCOMPARE(driver.totalSize(), 12250);
    QCOMPARE(driver.supportedCommunicationFlags(), 112);
    QCOMPARE(driver.getBlockAccessSize(), 32);
    QCOMPARE(driver.getBitBlockAccessSize(), 32);
    QVERIFY(!driver.isSupportSessionCommand());
    QVERIFY(driver.deviceSettingChanged(nullptr));
    QVERIFY(driver.isConnected(nullptr));
}

void TestDriverObject::itVouchesForNoText()
{
    DriverS7_200_PPI driver;
    QVERIFY(!driver.validation("VB100"));
    QVERIFY(!driver.validation(QString()));
}

void TestDriverObject::defaultsAreNewRecordsOnEveryCall()
{
    DriverS7_200_PPI driver;
    const QScopedPointer<DeviceSetting> first(driver.getDefaultSerialDeviceSetting());
    const QScopedPointer<DeviceSetting> second(driver.getDefaultSerialDeviceSetting());
    QVERIFY(first.data() != second.data());
    const QScopedPointer<DriverSetting> third(driver.getDefaultDriverSetting());
    const QScopedPointer<DriverSetting> fourth(driver.getDefaultDriverSetting());
    QVERIFY(third.data() != fourth.data());
}

void TestDriverObject::theDefaultSerialLineIsPpis()
{
    DriverS7_200_PPI driver;
    const QScopedPointer<DeviceSetting> setting(driver.getDefaultSerialDeviceSetting());
    QCOMPARE(int(setting->type), 64);
    QCOMPARE(setting->string, QString("COM2"));
    QCOMPARE(setting->baudrate, 9600);
    QCOMPARE(setting->databits, 8);
    QCOMPARE(setting->stopbits, 0);
    QCOMPARE(setting->parity, 2);
    QCOMPARE(setting->linkID, -1);
}

void TestDriverObject::theDefaultTimingIsTheDrivers()
{
    DriverS7_200_PPI driver;
    const QScopedPointer<DriverSetting> setting(driver.getDefaultDriverSetting());
    QCOMPARE(setting->timeout, 500);
    QCOMPARE(setting->retry, 3);
    QCOMPARE(setting->stationid, 2);
    QCOMPARE(setting->delay, 0);
}

void TestDriverObject::aNewDriverHasNoErrorAndANullText()
{
    DriverS7_200_PPI driver;
    QVERIFY(!driver.hasError());
    QVERIFY(driver.getLastError().isNull());
}

void TestDriverObject::aClearedErrorIsEmptyButNotNull()
{
    DriverS7_200_PPI driver;
    driver.setCommError("something");
    driver.clearError();
    QVERIFY(!driver.hasError());
    QVERIFY(driver.getLastError().isEmpty());
    QVERIFY(!driver.getLastError().isNull());
}

void TestDriverObject::anErrorIsKeptWithItsText()
{
    DriverS7_200_PPI driver;
    driver.setCommError("checksum error");
    QVERIFY(driver.hasError());
    QCOMPARE(driver.getLastError(), QString("checksum error"));
    driver.setCommError(QString());
    QVERIFY(driver.hasError());
    QVERIFY(driver.getLastError().isNull());
}

void TestDriverObject::initializePurgesThePort()
{
    DriverS7_200_PPI driver;
    OptionPort port;
    QVERIFY(driver.initialize(&port));
    QCOMPARE(port.options, QStringList("12 = int 0"));
}

void TestDriverObject::initializeTakesNoPort()
{
    DriverS7_200_PPI driver;
    QVERIFY(driver.initialize(nullptr));
    QVERIFY(!driver.hasError());
}

void TestDriverObject::thePauseBeforeAFrameIsTwelveMilliseconds()
{
    FakeSleep::reset();
    DriverS7_200_PPI driver;
    driver.delayBeforeReq();
    QCOMPARE(FakeSleep::pauses(), QList<qint64>() << 12000000);
}

void TestDriverObject::thePauseIsFinishedAfterASignal()
{
    FakeSleep::reset();
    FakeSleep::interruptNext(2);
    DriverS7_200_PPI driver;
    driver.delayBeforeReq();
    QCOMPARE(FakeSleep::pauses(), QList<qint64>() << 12000000 << 6000000 << 3000000);
}

void TestDriverObject::thePanelIsStationZero()
{
    DriverS7_200_PPI driver;
    OptionPort port;
    QCOMPARE(driver.getSourceAddr(&port), 0);
    QCOMPARE(driver.getSourceAddr(nullptr), 0);
}

void TestDriverObject::theMetaObjectNamesTheClassAndNothingElse()
{
    const DriverS7_200_PPI driver;
    const QMetaObject *meta = driver.metaObject();
    QCOMPARE(QString(meta->className()), QString("DriverS7_200_PPI"));
    QCOMPARE(meta->methodCount(), meta->methodOffset());
    QCOMPARE(meta->propertyCount(), meta->propertyOffset());
    QCOMPARE(meta->classInfoCount(), 0);
    QVERIFY(!driver.parent());
}

void TestDriverObject::metacastKnowsClassAndInterface()
{
    DriverS7_200_PPI driver;
    void *interface = static_cast<DriverInterface *>(&driver);
    QVERIFY(!driver.qt_metacast(nullptr));
    QVERIFY(driver.qt_metacast("DriverS7_200_PPI") == static_cast<void *>(&driver));
    QVERIFY(driver.qt_metacast("DriverInterface") == interface);
    QVERIFY(driver.qt_metacast(DRIVER_INTERFACE_ID) == interface);
    QVERIFY(driver.qt_metacast("DriverInterface") != driver.qt_metacast("DriverS7_200_PPI"));
    QVERIFY(driver.qt_metacast("QObject") == static_cast<void *>(static_cast<QObject *>(&driver)));
    QVERIFY(!driver.qt_metacast("QTimer"));
}

void TestDriverObject::theDriverIsItsOwnObject()
{
    DriverS7_200_PPI driver;
    QVERIFY(driver.getThisObject() == static_cast<QObject *>(&driver));
    QVERIFY(qobject_cast<DriverInterface *>(driver.getThisObject()) ==
            static_cast<DriverInterface *>(&driver));
}

QTEST_APPLESS_MAIN(TestDriverObject)
#include "test_driver_object.moc"
