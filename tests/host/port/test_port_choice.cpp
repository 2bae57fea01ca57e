// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Which adapter is taken when none is named.

#include "host/port/port_choice.h"

#include "test_class.h"
#include "tests/host/support/failure_of.h"

#include <QtTest>

using namespace host;

class TestPortChoice : public QObject
{
    Q_OBJECT

private slots:
    void noAdapterGivesNoDevice();
    void theOnlyAdapterIsTaken();
    void severalAdaptersAreListed();
    void withoutAdapterThereIsNoUsualPort();
    void theNamedPortIsTaken();
};

void TestPortChoice::noAdapterGivesNoDevice()
{
    QCOMPARE(onlyAdapter({}), QString());
}

void TestPortChoice::theOnlyAdapterIsTaken()
{
    QCOMPARE(onlyAdapter({{"/dev/ttyUSB3", "PPI cable"}}), QString("/dev/ttyUSB3"));
}

void TestPortChoice::severalAdaptersAreListed()
{
    QCOMPARE(failureOf([] {
                 onlyAdapter({{"/dev/ttyUSB0", "PPI cable"}, {"/dev/ttyACM0", ""}});
             }),
             QString("2: there are several USB serial adapters: /dev/ttyUSB0 (PPI cable), /dev/ttyACM0 / "
                     "choose one with --port, as --port /dev/ttyUSB0"));
}

void TestPortChoice::withoutAdapterThereIsNoUsualPort()
{
    QCOMPARE(
        failureOf([] { usualPort({}); }),
        QString("3: no port is named, and there is no USB serial adapter / plug the adapter in, or name a "
                "port with --port; --port sim (or S7PPI_PORT=sim) is a simulated controller"));
    QCOMPARE(usualPort({{"/dev/ttyUSB3", "PPI cable"}}), QString("/dev/ttyUSB3"));
    QVERIFY(failureOf([] { usualPort({{"/dev/ttyUSB0", ""}, {"/dev/ttyACM0", ""}}); }).startsWith("2: "));
}

void TestPortChoice::theNamedPortIsTaken()
{
    Options options;
    options.port = "/dev/ttyS7";
    QCOMPARE(choosePort(options), QString("/dev/ttyS7"));
}

TEST_CLASS(TestPortChoice)
#include "test_port_choice.moc"
