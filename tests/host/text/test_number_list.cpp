// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Lists of numbers on the command line.

#include "host/text/number_list.h"

#include "test_class.h"
#include "tests/host/support/failure_of.h"

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
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("failure");
    const auto row = [](const char *text, const char *part) {
        QTest::newRow(text) << QString(text)
                            << QString(
                                   "2: \"%1\" is no station / write numbers from 0 to 126, commas between, "
                                   "or spans as 2..9")
                                   .arg(part);
    };
    row("", "");
    row("x", "x");
    row("2,,3", "");
    row("-1", "-1");
    row("127", "127");
    row("2..x", "x");
    row("..9", "");
    row("99999999999", "99999999999");
    QTest::newRow("9..2") << "9..2"
                          << "2: 2 is less than 9 / write 2..9";
}

void TestNumberList::whatIsNoNumberIsToldWithTheLimits()
{
    QFETCH(QString, text);
    QTEST(failureOf([&] { parseNumbers(text, kStation); }), "failure");
}

void TestNumberList::onlyKindsWithSpansTakeThem()
{
    QCOMPARE(
        failureOf([] { parseNumbers("9600..19200", kBaud); }),
        QString("2: \"9600..19200\" is no baud rate / write numbers from 50 to 4000000, commas between"));
}

TEST_CLASS(TestNumberList)
#include "test_number_list.moc"
