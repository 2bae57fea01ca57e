// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The driver, loaded from the library named on the command line, against a terminal that plays a script.
// Bytes are hexadecimal text.

#include <abstract_device_interface.h>
#include <driver_interface.h>

#include <QFileInfo>
#include <QPluginLoader>
#include <QtDebug>

#include <cstring>

class ScriptedPort : public AbstractDeviceInterface
{
public:
    explicit ScriptedPort(const char *answer) : input(QByteArray::fromHex(answer)) {}

    int receive(unsigned char *buffer, int maxLength) override
    {
        const QByteArray piece = input.left(maxLength);
        input.remove(0, int(piece.size()));
        std::memcpy(buffer, piece.constData(), size_t(piece.size()));
        return int(piece.size());
    }
    int send(const unsigned char *data, int length) override
    {
        sent += QByteArray(reinterpret_cast<const char *>(data), length).toHex();
        return length;
    }
    bool setOption(int, const QVariant &) override { return true; }
    int retry() override { return 0; }
    int stationId() override { return 5; }
    int delay() override { return 0; }

    QByteArray input;
    QByteArray sent;
};

static int failures = 0;

static void compare(const char *claim, const QByteArray &found, const QByteArray &expected)
{
    if (found == expected)
        return;
    qWarning("FAIL  %s: %s, not %s", claim, found.constData(), expected.constData());
    ++failures;
}

static CommunicatorCommand doubleWord(const char *address)
{
    CommunicatorCommand command;
    command.dataType = kDoubleWords;
    command.count = 1;
    command.address = QString::fromLatin1(address);
    return command;
}

static void compareRefused(DriverInterface *driver, const char *address, const char *answer, const char *text)
{
    ScriptedPort port(answer);
    compare("nothing comes of it", driver->read(&port, doubleWord(address)).toHex(), "");
    compare("the reason is told", driver->getLastError().toLatin1(), text);
}

int main(int, char *arguments[])
{
    QPluginLoader loader(QFileInfo(arguments[1]).absoluteFilePath());
    DriverInterface *driver = qobject_cast<DriverInterface *>(loader.instance());
    if (!driver)
        qFatal("%s", qPrintable(loader.errorString()));

    ScriptedPort net("06 05 4e 01 00 00 04 d2 65 99");
    compare("a net weight of 1234", driver->read(&net, doubleWord("N1")).toHex(), "d2040000");
    compare("the request for it", net.sent, "0205524e012cbd");

    ScriptedPort tare("06 05 54 01 00 00 00 fa 65 7d");
    const int written = driver->write(&tare, doubleWord("T1"), QByteArray::fromHex("fa000000"));
    compare("the tare is taken", QByteArray::number(written), "1");
    compare("the request for it", tare.sent, "0205575401000000fa4fcd");

    compareRefused(driver, "N1", "", "the terminal does not answer");
    compareRefused(driver, "N1", "06 05 4e 01 00 00", "the answer ends early");
    compareRefused(driver, "N1", "06 05 4e 01 00 00 04 d2 65 98", "bad check value");
    compareRefused(driver, "N1", "06 05 47 01 00 00 04 d2 65 00", "an answer to another request");
    compareRefused(driver, "N1", "15 05 03 52 95", "the terminal refuses, reason 3");
    compareRefused(driver, "N5", "",
                   "the terminal has one double word each in G1 to G4, N1 to N4 and T1 to T4");
    return failures == 0 ? 0 : 1;
}
