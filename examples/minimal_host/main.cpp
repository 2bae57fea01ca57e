// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A host of one page: loads a driver, lends it a serial port as the driver proposes it, and prints what it
// reads in hexadecimal.
//
//   minimal_host LIBRARY DEVICE STATION ADDRESS COUNT      e.g. libs7_200_ppi.so /dev/ttyUSB0 2 VB100 4

#include <abstract_device_interface.h>
#include <device_setting.h>
#include <driver_interface.h>
#include <driver_setting.h>

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QFileInfo>
#include <QPluginLoader>
#include <QSerialPort>
#include <QtDebug>

#include <memory>

#include <termios.h>

// In milliseconds. Adapters hand over what they received up to 16 ms late.
static const int kSilence = 20;
static const int kLongestClearing = 1000;

// The codes of a record are none of QSerialPort's values: 0 is one stop bit here and nothing there, 1 is odd
// parity here and nothing there.
static QSerialPort::StopBits stopBits(int code)
{
    switch (code) {
    case kOneStopBit:
        return QSerialPort::OneStop;
    case kTwoStopBits:
        return QSerialPort::TwoStop;
    default:
        qFatal("the driver proposes stop-bits code %d, which this host does not know", code);
    }
}

static QSerialPort::Parity parity(int code)
{
    switch (code) {
    case kNoParity:
        return QSerialPort::NoParity;
    case kOddParity:
        return QSerialPort::OddParity;
    case kEvenParity:
        return QSerialPort::EvenParity;
    case kMarkParity:
        return QSerialPort::MarkParity;
    case kSpaceParity:
        return QSerialPort::SpaceParity;
    default:
        qFatal("the driver proposes parity code %d, which this host does not know", code);
    }
}

// It keeps neither parity nor 7 data bits, and to ask for them may succeed once and fail from then on.
static bool isPseudoTerminal(const QString &device)
{
    return QFileInfo(device).canonicalFilePath().startsWith("/dev/pts/");
}

// Bytes with bad parity never arrive, so that a disturbed frame is too short and is asked for again.
static bool dropBadParity(int descriptor)
{
    termios settings;
    if (tcgetattr(descriptor, &settings) != 0)
        return false;
    settings.c_iflag = (settings.c_iflag & ~tcflag_t(PARMRK | ISTRIP)) | INPCK | IGNPAR;
    return tcsetattr(descriptor, TCSANOW, &settings) == 0;
}

class SerialPort : public AbstractDeviceInterface
{
public:
    SerialPort(const QString &device, const DeviceSetting &line, const DriverSetting &timing, int station)
        : timing(timing), station(station), isCleared(false)
    {
        const bool isPseudo = isPseudoTerminal(device);
        port.setPortName(device);
        port.setBaudRate(line.baudrate);
        port.setDataBits(isPseudo ? QSerialPort::Data8 : QSerialPort::DataBits(line.databits));
        port.setParity(isPseudo ? QSerialPort::NoParity : parity(line.parity));
        port.setStopBits(stopBits(line.stopbits));
        if (!port.open(QIODevice::ReadWrite) || !dropBadParity(port.handle()))
            qFatal("%s cannot be used: %s", qPrintable(device), qPrintable(port.errorString()));
    }

    int receive(unsigned char *buffer, int maxLength) override
    {
        const QDeadlineTimer deadline(timing.timeout);
        while (port.bytesAvailable() < maxLength && port.waitForReadyRead(int(deadline.remainingTime()))) {
        }
        return int(port.read(reinterpret_cast<char *>(buffer), maxLength));
    }

    // On return the frame is on the line, and the reply's time begins.
    int send(const unsigned char *data, int length) override
    {
        port.write(reinterpret_cast<const char *>(data), length);
        while (port.bytesToWrite() > 0 && port.waitForBytesWritten(timing.timeout)) {
        }
        return tcdrain(port.handle()) == 0 ? length : -1;
    }

    // After something had to be thrown away, and when the port is new, more may be under way: it is gone when
    // the line has been silent for a while.
    bool setOption(int key, const QVariant &) override
    {
        if (key != kClearInput)
            return false;
        const bool isQuiet = isCleared && port.bytesAvailable() == 0 && !port.waitForReadyRead(0);
        const QDeadlineTimer deadline(kLongestClearing);
        bool isReceiving = port.clear(QSerialPort::Input) && !isQuiet;
        while (isReceiving && !deadline.hasExpired())
            isReceiving = port.waitForReadyRead(kSilence) && port.clear(QSerialPort::Input);
        isCleared = true;
        return true;
    }

    int retry() override { return timing.retry; }
    int stationId() override { return station; }
    int delay() override { return timing.delay; }

private:
    Q_DISABLE_COPY(SerialPort)

    QSerialPort port;
    const DriverSetting timing;
    const int station;
    bool isCleared;
};

int main(int count, char *arguments[])
{
    const QCoreApplication application(count, arguments);
    if (count != 6)
        qFatal("usage: minimal_host LIBRARY DEVICE STATION ADDRESS COUNT");
    QPluginLoader loader(QFileInfo(arguments[1]).absoluteFilePath());
    DriverInterface *driver = qobject_cast<DriverInterface *>(loader.instance());
    if (!driver)
        qFatal("%s", qPrintable(loader.errorString()));

    const std::unique_ptr<DeviceSetting> line(driver->getDefaultSerialDeviceSetting());
    const std::unique_ptr<DriverSetting> timing(driver->getDefaultDriverSetting());
    SerialPort port(QString::fromLocal8Bit(arguments[2]), *line, *timing, QByteArray(arguments[3]).toInt());
    driver->initialize(&port);
    CommunicatorCommand command;
    command.dataType = kBytes;
    command.count = QByteArray(arguments[5]).toInt();
    command.address = QString::fromLocal8Bit(arguments[4]);
    const QByteArray data = driver->read(&port, command);
    if (driver->hasError()) {
        qWarning("%s: %s", arguments[4], qPrintable(driver->getLastError()));
        return 1;
    }
    puts(data.toHex().constData());
    return 0;
}
