// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What a machine knows of its ports, on machines made of files.

#include "host/port/port_details.h"

#include "test_class.h"
#include "tests/host/support/failure_of.h"
#include "tests/host/support/pseudo_line.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <sys/stat.h>

using namespace host;

namespace {

// A directory that looks like the root of a machine: /dev, and of /sys what tells of serial ports.
class Machine
{
public:
    Machine() : root(QDir(directory.path()).canonicalPath()) {}

    QString path() const { return root; }
    QString file(const QString &name) const { return root + name; }

    void write(const QString &name, const QByteArray &text) const
    {
        makeDirectoryOf(name);
        QFile target(file(name));
        QVERIFY(target.open(QIODevice::WriteOnly) && target.write(text) == text.size());
    }
    void link(const QString &name, const QString &target) const
    {
        makeDirectoryOf(name);
        QDir().mkpath(file(target));
        QVERIFY(QFile::link(file(target), file(name)));
    }

    // Something that is no directory; a real device could not be made without the rights of root.
    void addDevice(const QString &name) const
    {
        makeDirectoryOf(name);
        QVERIFY(mkfifo(QFile::encodeName(file(name)).constData(), 0600) == 0);
    }

private:
    void makeDirectoryOf(const QString &name) const { QDir().mkpath(QFileInfo(file(name)).path()); }

    QTemporaryDir directory;
    QString root;
};

void addUsbAdapter(const Machine &machine)
{
    const QString usb = "/sys/devices/pci0/usb1/1-2";
    machine.addDevice("/dev/ttyUSB0");
    QDir().mkpath(machine.file("/dev/serial/by-id"));
    QFile::link("../../ttyUSB0", machine.file("/dev/serial/by-id/usb-FTDI_FT232R_A5XK3RJT-if00-port0"));
    machine.link("/sys/class/tty/ttyUSB0", usb + "/1-2:1.0/ttyUSB0/tty/ttyUSB0");
    machine.link("/sys/class/tty/ttyUSB0/device", usb + "/1-2:1.0/ttyUSB0");
    machine.link(usb + "/1-2:1.0/ttyUSB0/driver", "/sys/bus/usb-serial/drivers/ftdi_sio");
    machine.link("/sys/bus/usb-serial/devices/ttyUSB0", usb + "/1-2:1.0/ttyUSB0");
    machine.write(usb + "/1-2:1.0/ttyUSB0/latency_timer", "16\n");
    machine.write(usb + "/idVendor", "0403\n");
    machine.write(usb + "/idProduct", "6001\n");
    machine.write(usb + "/product", "FT232R USB UART\n");
    machine.write(usb + "/manufacturer", "FTDI\n");
    machine.write(usb + "/serial", "A5XK3RJT\n");
}

void addBoardPort(const Machine &machine, const QString &name, const QByteArray &type)
{
    const QString port = "/sys/devices/pnp0/00:01/00:01:0/" + name;
    machine.addDevice("/dev/" + name);
    machine.link("/sys/class/tty/" + name, port + "/tty/" + name);
    machine.link("/sys/class/tty/" + name + "/device", port);
    machine.write("/sys/class/tty/" + name + "/type", type);
    machine.link(port + "/driver", "/sys/bus/serial-base/drivers/port");
}

} // namespace

class TestPortDetails : public QObject
{
    Q_OBJECT

private slots:
    void onlyPortsWithHardwareAndADeviceAreListed();
    void aMachineWithoutPortsListsNone();
    void aUsbAdapterIsDescribedByItsBus();
    void anyNameOfAPortLeadsToIt_data();
    void anyNameOfAPortLeadsToIt();
    void aBoardsPortHasTheDriverOfItsController();
    void aPseudoTerminalIsToldAsOne();
    void whatIsNoPortIsRefused();
    void adviceNamesWhatHelps();
};

void TestPortDetails::onlyPortsWithHardwareAndADeviceAreListed()
{
    const Machine machine;
    addUsbAdapter(machine);
    addBoardPort(machine, "ttyS0", "4\n");
    addBoardPort(machine, "ttyS1", "0\n"); // the kernel's name for a port that the board does not have
    addBoardPort(machine, "ttyS2", "4\n");
    QVERIFY(QFile::remove(machine.file("/dev/ttyS2")));
    machine.addDevice("/dev/tty0");
    QDir().mkpath(machine.file("/sys/class/tty/tty0"));
    QCOMPARE(serialPorts(machine.path()), QStringList({"/dev/ttyS0", "/dev/ttyUSB0"}));
}

void TestPortDetails::aMachineWithoutPortsListsNone()
{
    const Machine machine;
    QCOMPARE(serialPorts(machine.path()), QStringList());
}

void TestPortDetails::aUsbAdapterIsDescribedByItsBus()
{
    const Machine machine;
    addUsbAdapter(machine);
    const PortDetails port = portDetails("/dev/ttyUSB0", machine.path());
    QCOMPARE(port.device, QString("/dev/ttyUSB0"));
    QCOMPARE(port.byId, QString("/dev/serial/by-id/usb-FTDI_FT232R_A5XK3RJT-if00-port0"));
    QCOMPARE(port.usbId, QString("0403:6001"));
    QCOMPARE(adapterText(port),
             QString("ftdi_sio, FT232R USB UART, FTDI, 0403:6001, serial number A5XK3RJT"));
    QCOMPARE(port.latency.value_or(-1), 16);
    QVERIFY(port.isReadable && port.isWritable);
    QVERIFY(port.holders.isEmpty());
}

void TestPortDetails::anyNameOfAPortLeadsToIt_data()
{
    QTest::addColumn<QString>("name");
    for (const char *name :
         {"/dev/ttyUSB0", "ttyUSB0", "/dev/serial/by-id/usb-FTDI_FT232R_A5XK3RJT-if00-port0"})
        QTest::newRow(name) << QString(name);
}

void TestPortDetails::anyNameOfAPortLeadsToIt()
{
    QFETCH(QString, name);
    const Machine machine;
    addUsbAdapter(machine);
    const PortDetails port = portDetails(name, machine.path());
    QCOMPARE(port.device, QString("/dev/ttyUSB0"));
    QCOMPARE(port.serialNumber, QString("A5XK3RJT"));
}

void TestPortDetails::aBoardsPortHasTheDriverOfItsController()
{
    const Machine machine;
    addBoardPort(machine, "ttyS0", "4\n");
    machine.link("/sys/devices/pnp0/00:01/driver", "/sys/bus/pnp/drivers/serial");
    const PortDetails port = portDetails("/dev/ttyS0", machine.path());
    QCOMPARE(adapterText(port), QString("serial"));
    QCOMPARE(port.byId, QString());
    QVERIFY(!port.latency);
}

void TestPortDetails::aPseudoTerminalIsToldAsOne()
{
    const PseudoLine line;
    const PortDetails port = portDetails(line.name());
    QCOMPARE(port.device, line.name());
    QCOMPARE(adapterText(port), QString("none, it is a pseudo-terminal"));
    QVERIFY(isPseudoTerminal(line.name()));
    QVERIFY(!isPseudoTerminal("/dev/null"));
}

void TestPortDetails::whatIsNoPortIsRefused()
{
    const Machine machine;
    machine.write("/dev/notes", "");
    machine.addDevice("/dev/null");
    const auto failure = [&](const QString &name) {
        return failureOf([&] { portDetails(name, machine.path()); }).section(" / ", 0, 0);
    };
    QCOMPARE(failure("/dev/ttyUSB7"), QString("3: /dev/ttyUSB7 does not exist"));
    QCOMPARE(failure("/dev/notes"), QString("3: /dev/notes is no port"));
    QCOMPARE(failure("/dev/null"), QString("3: /dev/null is no port"));
    QCOMPARE(failure("/dev"), QString("3: /dev is no port"));
}

void TestPortDetails::adviceNamesWhatHelps()
{
    PortDetails port;
    port.device = "/dev/ttyUSB0";
    port.isReadable = port.isWritable = true;
    port.latency = 2;
    QCOMPARE(portAdvice(port), QStringList());
    QCOMPARE(rightsText(port), QString("readable and writable"));

    port.latency = 16;
    QCOMPARE(latencyAdvice(port), QString("answers wait for the adapter's timer: echo 1 | sudo tee "
                                          "/sys/bus/usb-serial/devices/ttyUSB0/latency_timer"));
    port.holders = {{1234, "minicom"}};
    QCOMPARE(holderAdvice(port), QString("end the other program, or use another port"));

    port.isWritable = false;
    port.group = "dialout";
    QCOMPARE(rightsText(port), QString("readable, not writable, group dialout"));
    QCOMPARE(rightsAdvice(port),
             QString("join the port's group: sudo usermod -a -G dialout \"$USER\", and log in again"));
    port.group = "root";
    QVERIFY(rightsAdvice(port).startsWith("only root may use the port"));
    QCOMPARE(int(portAdvice(port).size()), 3);
}

TEST_CLASS(TestPortDetails)
#include "test_port_details.moc"
