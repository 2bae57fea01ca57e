// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The plug-in's proposal, the options and the kernel's answer brought together.

#include "host/port/line_settings.h"

#include "device_setting.h"
#include "test_class.h"
#include "tests/host/support/failure_of.h"

#include <QtTest>

using namespace host;

namespace {

DeviceSetting proposal(int stopBitsCode, int parityCode)
{
    return DeviceSetting(kRs485Port, "COM2", 9600, 8, stopBitsCode, parityCode);
}

const LineSettings kUsual = {9600, kEvenParity, 8, 1};

} // namespace

class TestLineSettings : public QObject
{
    Q_OBJECT

private slots:
    void codesOfTheProposalAreUnderstood_data();
    void codesOfTheProposalAreUnderstood();
    void unknownCodesAreRefused_data();
    void unknownCodesAreRefused();
    void optionsReplaceTheProposal();
    void differencesAreNamed_data();
    void differencesAreNamed();
};

void TestLineSettings::codesOfTheProposalAreUnderstood_data()
{
    QTest::addColumn<int>("stopBits");
    QTest::addColumn<int>("parity");
    QTest::addColumn<QString>("text");
    QTest::newRow("none") << int(kOneStopBit) << int(kNoParity)
                          << "9600 baud, no parity, 8 data bits, 1 stop bit";
    QTest::newRow("odd") << int(kOneStopBit) << int(kOddParity)
                         << "9600 baud, odd parity, 8 data bits, 1 stop bit";
    QTest::newRow("even") << int(kOneStopBit) << int(kEvenParity)
                          << "9600 baud, even parity, 8 data bits, 1 stop bit";
    QTest::newRow("mark") << int(kOneStopBit) << int(kMarkParity)
                          << "9600 baud, mark parity, 8 data bits, 1 stop bit";
    QTest::newRow("space, two stop bits")
        << int(kTwoStopBits) << int(kSpaceParity) << "9600 baud, space parity, 8 data bits, 2 stop bits";
}

void TestLineSettings::codesOfTheProposalAreUnderstood()
{
    QFETCH(int, stopBits);
    QFETCH(int, parity);
    QTEST(lineText(lineSettings(proposal(stopBits, parity))), "text");
}

void TestLineSettings::unknownCodesAreRefused_data()
{
    QTest::addColumn<int>("stopBits");
    QTest::addColumn<int>("parity");
    QTest::addColumn<QString>("text");
    QTest::newRow("parity 5") << int(kOneStopBit) << 5 << "7: the plug-in proposes parity code 5";
    QTest::newRow("parity -1") << int(kOneStopBit) << -1 << "7: the plug-in proposes parity code -1";
    QTest::newRow("stop bits 1") << 1 << int(kEvenParity) << "7: the plug-in proposes stop-bits code 1";
}

void TestLineSettings::unknownCodesAreRefused()
{
    QFETCH(int, stopBits);
    QFETCH(int, parity);
    QTEST(failureOf([&] { lineSettings(proposal(stopBits, parity)); }).section(" / ", 0, 0), "text");
}

void TestLineSettings::optionsReplaceTheProposal()
{
    Options options;
    QCOMPARE(lineText(withOptions(kUsual, options)), lineText(kUsual));
    options.baud = 187500;
    options.parity = "none";
    options.dataBits = 7;
    options.stopBits = 2;
    QCOMPARE(lineText(withOptions(kUsual, options)),
             QString("187500 baud, no parity, 7 data bits, 2 stop bits"));
}

void TestLineSettings::differencesAreNamed_data()
{
    QTest::addColumn<int>("baud");
    QTest::addColumn<int>("parity");
    QTest::addColumn<int>("dataBits");
    QTest::addColumn<int>("stopBits");
    QTest::addColumn<QString>("text");
    QTest::newRow("none") << 9600 << int(kEvenParity) << 8 << 1 << "";
    QTest::newRow("speed within 2 %") << 9792 << int(kEvenParity) << 8 << 1 << "";
    QTest::newRow("speed beyond 2 %")
        << 9793 << int(kEvenParity) << 8 << 1 << "9793 baud instead of 9600 baud";
    QTest::newRow("parity") << 9600 << int(kNoParity) << 8 << 1 << "no parity instead of even parity";
    QTest::newRow("all") << 4800 << int(kOddParity) << 7 << 2
                         << "4800 baud instead of 9600 baud, odd parity instead of even parity, "
                            "7 data bits instead of 8 data bits, 2 stop bits instead of 1 stop bit";
}

void TestLineSettings::differencesAreNamed()
{
    QFETCH(int, baud);
    QFETCH(int, parity);
    QFETCH(int, dataBits);
    QFETCH(int, stopBits);
    QTEST(lineDifference(kUsual, {baud, ParityCode(parity), dataBits, stopBits}), "text");
}

TEST_CLASS(TestLineSettings)
#include "test_line_settings.moc"
