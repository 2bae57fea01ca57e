// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Whoever followed a hint was refused again: for VB100=-129 it named i8, which begins at -128, and for
// VB1:str*3=Hello a list of values, which a text does not have. Hints were chosen by the kind of item and
// without a look at the value.

#include "host/items/assignment.h"
#include "test_class.h"
#include "tests/host/support/refused_text.h"

#include <QString>
#include <QtTest>

using namespace host;

class AHintLeadsToTheNextRefusal : public QObject
{
    Q_OBJECT

private slots:
    void hintsNameWhatIsTaken_data();
    void hintsNameWhatIsTaken();
};

void AHintLeadsToTheNextRefusal::hintsNameWhatIsTaken_data()
{
    addRefusedTexts();
    const QString small = "%1 is too small for %2";
    const QString nearest = "the nearest value is 0; for %1 there is %2";
    refused("VB100=-129", small.arg("-129", "u8: 0 to 255"), nearest.arg("-129", "i16"));
    refused("VB100=-40000", small.arg("-40000", "u8: 0 to 255"), nearest.arg("-40000", "i32"));
    refused("VW2=-40000", small.arg("-40000", "u16: 0 to 65535"), nearest.arg("-40000", "i32"));
    refused("VB2=-2147483649", small.arg("-2147483649", "u8: 0 to 255"), nearest.arg("-2147483649", "i64"));
    refused("VB2=-9223372036854775809", small.arg("-9223372036854775809", "u8: 0 to 255"),
            "the nearest value is 0");
    refused("T38=-40000", small.arg("-40000", "u16: 0 to 65535"), "the nearest value is 0");
    refused("VB0=0b12", "\"0b12\" is not a whole number",
            "0b begins a number of 0 and 1 only, 0x one of hexadecimal digits");
    refused("VB1:str*3=Hello", "a count is not needed here",
            "write VB1:str=TEXT, a text as long as you mean");
}

void AHintLeadsToTheNextRefusal::hintsNameWhatIsTaken()
{
    compareRefusal([](const QString &text) { parseAssignment(text); });
}

TEST_CLASS(AHintLeadsToTheNextRefusal)
#include "a_hint_leads_to_the_next_refusal.moc"
