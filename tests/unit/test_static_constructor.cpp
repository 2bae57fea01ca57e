// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A host may make its driver in a static constructor: everything that the library creates at load time
// must exist by then.

#include "abstract_device_interface.h"
#include "driver_interface.h"
#include "hex.h"
#include "tools/project_database.h"

#include <QtTest>

namespace {

// Keeps the first frame sent and never answers.
class SilentPort : public AbstractDeviceInterface
{
public:
    int receive(unsigned char *, int) override { return 0; }
    int send(const unsigned char *data, int length) override
    {
        frame = QByteArray(reinterpret_cast<const char *>(data), length);
        return length;
    }
    bool setOption(int, const QVariant &) override { return true; }
    int retry() override { return 0; }
    int stationId() override { return 2; }
    int delay() override { return 0; }

    QByteArray frame;
};

struct EarlyHost
{
    EarlyHost()
        : driver(CreateDriver()), version(driver->getVersionNumber()),
          directories(COMPILE_PATH + QLatin1Char('/') + DATABASE_PATH)
    {
        CommunicatorCommand command;
        command.dataType = kBytes;
        command.count = 4;
        command.address = QLatin1String("VB100");
        driver->read(&port, command);
    }
    ~EarlyHost() { delete driver; }

    SilentPort port;
    DriverInterface *driver;
    QString version;
    QString directories;
};

EarlyHost g_earlyHost;

} // namespace

class TestStaticConstructor : public QObject
{
    Q_OBJECT

private slots:
    void theDirectoryNamesExist();
    void theVersionTextExists();
    void theAreaTableIsFilled();
};

void TestStaticConstructor::theDirectoryNamesExist()
{
    QCOMPARE(g_earlyHost.directories, QString("compile/database"));
}

void TestStaticConstructor::theVersionTextExists()
{
    QCOMPARE(g_earlyHost.version, QString("1.0.0"));
}

void TestStaticConstructor::theAreaTableIsFilled()
{
    QCOMPARE(hex(g_earlyHost.port.frame), hex(bytes("68 1b 1b 68 02 00 6c 32 01 00 00 00 01 00 0e 00 00"
                                                    "04 01 12 0a 10 02 00 04 00 01 84 00 03 20 8f 16")));
}

QTEST_APPLESS_MAIN(TestStaticConstructor)
#include "test_static_constructor.moc"
