// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A host of one page: loads a driver, lends it a serial port, and prints what it reads in hexadecimal.
//
//   minimal_host LIBRARY DEVICE STATION ADDRESS COUNT      e.g. libs7_200_ppi.so /dev/ttyUSB0 2 VB100 4

#include <abstract_device_interface.h>
#include <driver_interface.h>

#include <QFileInfo>
#include <QPluginLoader>
#include <QtDebug>

#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

class SerialPort : public AbstractDeviceInterface
{
public:
    SerialPort(const char *device, int station) : line(open(device, O_RDWR | O_NOCTTY)), station(station)
    {
        termios settings;
        if (line < 0 || tcgetattr(line, &settings) != 0)
            qFatal("%s cannot be used", device);
        cfmakeraw(&settings);
        cfsetspeed(&settings, B9600);
        settings.c_cflag |= PARENB | CLOCAL | CREAD; // even parity, no modem lines
        tcsetattr(line, TCSANOW, &settings);         // fails on a pseudo-terminal, which has no parity
    }
    ~SerialPort() override { close(line); }

    // Each byte may take the whole time-out. Good enough here; count the time down in a real host.
    int receive(unsigned char *buffer, int maxLength) override
    {
        int received = 0;
        pollfd input = {line, POLLIN, 0};
        while (received < maxLength && poll(&input, 1, 500) > 0) {
            const ssize_t count = ::read(line, buffer + received, size_t(maxLength - received));
            if (count <= 0)
                break;
            received += int(count);
        }
        return received;
    }
    int send(const unsigned char *data, int length) override
    {
        return int(::write(line, data, size_t(length)));
    }
    bool setOption(int key, const QVariant &) override { return key == 12 && tcflush(line, TCIFLUSH) == 0; }
    int retry() override { return 3; }
    int stationId() override { return station; }
    int delay() override { return 0; }

private:
    Q_DISABLE_COPY(SerialPort)
    int line;
    int station;
};

int main(int count, char *arguments[])
{
    if (count != 6)
        qFatal("usage: minimal_host LIBRARY DEVICE STATION ADDRESS COUNT");
    QPluginLoader loader(QFileInfo(arguments[1]).absoluteFilePath());
    DriverInterface *driver = qobject_cast<DriverInterface *>(loader.instance());
    if (!driver)
        qFatal("%s", qPrintable(loader.errorString()));

    SerialPort port(arguments[2], QByteArray(arguments[3]).toInt());
    driver->initialize(&port);
    CommunicatorCommand command;
    command.dataType = 1; // bytes
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
