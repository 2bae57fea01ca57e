// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Lists of numbers on the command line.

#include "host/text/number_list.h"

#include "test_class.h"
#include "tests/host/support/refused_text.h"

#include <QtTest>

using namespace host;

namespace {

const NumberKind kStation = {"station", 0, 126, true};
const NumberKind kBaud = {"baud rate", 50, 4000000, false};

QString listText(const QString &text, const NumberKind &kind)
{
    QStringList numbers;
    for (const int number : parseNumbers(text, kind))
        numbers << QString::number(number);
    return numbers.join(' ');
}

} // namespace

class TestNumberList : public QObject
{
    Q_OBJECT

private slots:
    void numbersAndSpansMakeAList();
    void whatIsNoNumberIsToldWithTheLimits_data();
    void whatIsNoNumberIsToldWithTheLimits();
    void onlyKindsWithSpansTakeThem();
};

void TestNumberList::numbersAndSpansMakeAList()
{
    QCOMPARE(listText("2", kStation), QString("2"));
    QCOMPARE(listText("5,2..4, 9", kStation), QString("5 2 3 4 9"));
    QCOMPARE(listText("0..126", kStation).section(' ', -1), QString("126"));
    QCOMPARE(listText("3,2..4,3", kStation), QString("3 2 4"));
    QCOMPARE(listText("19200,9600", kBaud), QString("19200 9600"));
}

void TestNumberList::whatIsNoNumberIsToldWithTheLimits_data()
{
    addRefusedTexts();
    const QString hint = "write numbers from 0 to 126, commas between, or spans as 2..9";
    refused("", "\"\" is no station", hint);
    refused("x", "\"x\" is no station", hint);
    refused("2,,3", "\"\" is no station", hint);
    refused("-1", "\"-1\" is no station", hint);
    refused("127", "\"127\" is no station", hint);
    refused("2..x", "\"x\" is no station", hint);
    refused("..9", "\"\" is no station", hint);
    refused("99999999999", "\"99999999999\" is no station", hint);
    refused("9..2", "2 is less than 9", "write 2..9");
}

void TestNumberList::whatIsNoNumberIsToldWithTheLimits()
{
    compareRefusal([](const QString &text) { parseNumbers(text, kStation); });
}

void TestNumberList::onlyKindsWithSpansTakeThem()
{
    QCOMPARE(
        failureOf([] { parseNumbers("9600..19200", kBaud); }),
        QString("2: \"9600..19200\" is no baud rate / write numbers from 50 to 4000000, commas between"));
}

TEST_CLASS(TestNumberList)
#include "test_number_list.moc"
