// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "abstract_device_interface.h"
#include "device_setting.h"
#include "driver_interface.h"
#include "driver_setting.h"
#include "test_class.h"

#include <QtTest>

namespace {

// Overrides what must be, each operation with a result of its own, so that a slot out of order shows.
class PlainDriver : public DriverInterface
{
public:
    explicit PlainDriver(bool *destroyed = nullptr) : destroyedFlag(destroyed) {}
    ~PlainDriver() override
    {
        if (destroyedFlag)
            *destroyedFlag = true;
    }
    int totalSize() override { return 2; }
    int write(AbstractDeviceInterface *, const CommunicatorCommand &, const QByteArray &) override
    {
        return 3;
    }
    QByteArray read(AbstractDeviceInterface *, const CommunicatorCommand &) override
    {
        return QByteArray("4");
    }
    bool initialize(AbstractDeviceInterface *) override { return true; }
    bool validation(const QString &text) override { return text == QLatin1String("6"); }
    DeviceSetting *getDefaultSerialDeviceSetting() override { return nullptr; }
    DriverSetting *getDefaultDriverSetting() override { return nullptr; }
    int supportedCommunicationFlags() override { return 13; }
    void setDebugMode(bool) override {}
    int getBlockAccessSize() override { return 15; }
    int getBitBlockAccessSize() override { return 16; }
    bool hasError() override { return false; }
    QString getLastError() override { return QLatin1String("18"); }
    QObject *getThisObject() override { return nullptr; }

private:
    bool *destroyedFlag;
};

// Calls the operation in a slot of the object's table, the way a host built elsewhere does. Counted from
// 1, the destructor being the first: it has two entries in the table (Itanium C++ ABI).
int callIntSlot(DriverInterface *driver, int operation)
{
    typedef int (*Slot)(DriverInterface *);
    Slot **object = reinterpret_cast<Slot **>(driver);
    return (*object)[operation](driver);
}

} // namespace

class TestDriverInterface : public QObject
{
    Q_OBJECT

private slots:
    void whatADriverDoesNotSayHasDefaults();
    void sessionCommandsAreIgnored();
    void itIsDestroyedThroughTheInterface();
    void operationsStandInTheirSlots();
    void theIdentifierEndsInNameAndVersion();
};

void TestDriverInterface::whatADriverDoesNotSayHasDefaults()
{
    PlainDriver driver;
    QCOMPARE(driver.name(), QString("Not Assigned"));
    QCOMPARE(driver.vender(), QString("Not Assigned"));
    QCOMPARE(driver.getVersionNumber(), QString("Not Assigned"));
    QCOMPARE(driver.getStringBasedDefaultDriverSetting(), QString("RS232,9600,EVEN,7,1"));
    QVERIFY(!driver.isSupportSessionCommand());
    QVERIFY(driver.deviceSettingChanged(nullptr));
    QVERIFY(driver.isConnected(nullptr));
}

void TestDriverInterface::sessionCommandsAreIgnored()
{
    PlainDriver driver;
    driver.setSessionCommand(QList<CommunicatorCommand>() << CommunicatorCommand());
    driver.clearSessionCommand();
    QVERIFY(!driver.isSupportSessionCommand());
}

void TestDriverInterface::itIsDestroyedThroughTheInterface()
{
    bool destroyed = false;
    DriverInterface *driver = new PlainDriver(&destroyed);
    delete driver;
    QVERIFY(destroyed);
}

void TestDriverInterface::operationsStandInTheirSlots()
{
    PlainDriver driver;
    QCOMPARE(callIntSlot(&driver, 2), 2);
    QCOMPARE(callIntSlot(&driver, 13), 13);
    QCOMPARE(callIntSlot(&driver, 15), 15);
    QCOMPARE(callIntSlot(&driver, 16), 16);
}

void TestDriverInterface::theIdentifierEndsInNameAndVersion()
{
    QVERIFY(QString(qobject_interface_iid<DriverInterface *>()).endsWith(".drivers.DriverInterface/1.1"));
}

TEST_CLASS(TestDriverInterface)
#include "test_driver_interface.moc"
