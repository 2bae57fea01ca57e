// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// write VD0:f32=1,5 wrote 1 to VD0 and 5 to VD4 without a word, where 1.5 was meant. A comma stands between
// the values of an item, and nothing asked whether it may be a decimal comma.

#include "host/items/assignment.h"
#include "test_class.h"
#include "tests/host/support/refused_text.h"

#include <QString>
#include <QtTest>

using namespace host;

class ADecimalCommaWritesTwoNumbers : public QObject
{
    Q_OBJECT

private slots:
    void whatMayBeOneNumberIsRefused_data();
    void whatMayBeOneNumberIsRefused();
};

void ADecimalCommaWritesTwoNumbers::whatMayBeOneNumberIsRefused_data()
{
    addRefusedTexts();
    refused("VD0:f32=1,5", "\"1,5\" may be one number or two",
            "write VD0:f32=1.5 for one number, VD0:f32=1.0,5.0 for two");
    refused("VW2:f32=-1, 50", "\"-1, 50\" may be one number or two",
            "write VW2:f32=-1.50 for one number, VW2:f32=-1.0,50.0 for two");
}

void ADecimalCommaWritesTwoNumbers::whatMayBeOneNumberIsRefused()
{
    compareRefusal([](const QString &text) { parseAssignment(text); });
}

TEST_CLASS(ADecimalCommaWritesTwoNumbers)
#include "a_decimal_comma_writes_two_numbers.moc"
