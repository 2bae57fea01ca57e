// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The driver, loaded from the library named on the command line, against a terminal that plays a script.
// Bytes are hexadecimal text.

#include <driver_interface.h>
#include <testing/scripted_port.h>

#include <QFileInfo>
#include <QPluginLoader>
#include <QtDebug>

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

static void compareScript(const ScriptedPort &port)
{
    compare("the frames are those of the script", port.scriptIsFinished() ? "yes" : "no", "yes");
}

static void compareRefused(DriverInterface *driver, const char *answer, const char *text)
{
    ScriptedPort port(5);
    port.expects("02 05 52 4e 01 2c bd").answers(answer);
    compare("nothing comes of it", driver->read(&port, doubleWord("N1")).toHex(), "");
    compare("the reason is told", driver->getLastError().toLatin1(), text);
    compareScript(port);
}

int main(int, char *arguments[])
{
    QPluginLoader loader(QFileInfo(arguments[1]).absoluteFilePath());
    DriverInterface *driver = qobject_cast<DriverInterface *>(loader.instance());
    if (!driver)
        qFatal("%s", qPrintable(loader.errorString()));

    ScriptedPort net(5);
    net.expects("02 05 52 4e 01 2c bd").answers("06 05 4e 01 00 00 04 d2 65 99");
    compare("a net weight of 1234", driver->read(&net, doubleWord("N1")).toHex(), "d2040000");
    compareScript(net);

    ScriptedPort tare(5);
    tare.expects("02 05 57 54 01 00 00 00 fa 4f cd").answers("06 05 54 01 00 00 00 fa 65 7d");
    const int written = driver->write(&tare, doubleWord("T1"), QByteArray::fromHex("fa000000"));
    compare("the tare is taken", QByteArray::number(written), "1");
    compareScript(tare);

    ScriptedPort slow(5);
    slow.retries(1).delays(20);
    slow.expects("02 05 52 4e 01 2c bd").answersLate("06 05 4e 01 00 00 04 d2 65 99");
    slow.expects("02 05 52 4e 01 2c bd").answers("06 05 4e 01 00 00 04 d2 65 99");
    compare("asked again, it answers", driver->read(&slow, doubleWord("N1")).toHex(), "d2040000");
    compareScript(slow);

    compareRefused(driver, "", "the terminal does not answer");
    compareRefused(driver, "06 05", "the answer ends early");
    compareRefused(driver, "06 05 4e 01 00 00", "the answer ends early");
    compareRefused(driver, "06 05 4e 01 00 00 04 d2 65 98", "bad check value");
    compareRefused(driver, "06 05 47 01 00 00 04 d2 65 00", "an answer to another request");
    compareRefused(driver, "15 05 03 52 95", "the terminal refuses, reason 3");

    ScriptedPort unused(5);
    compare("nothing comes of N5", driver->read(&unused, doubleWord("N5")).toHex(), "");
    compare("the reason is told", driver->getLastError().toLatin1(),
            "the terminal has one double word each in G1 to G4, N1 to N4 and T1 to T4");
    compareScript(unused);
    return failures == 0 ? 0 : 1;
}
