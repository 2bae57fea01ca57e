// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// read VB0..VB9 was told that VB0..VB9 is not an address of the controller, which left the user to guess what
// else to write. Ranges are for dump alone, and the text was looked at as an address only.

#include "host/items/item.h"
#include "test_class.h"
#include "tests/host/support/refused_text.h"

#include <QString>
#include <QtTest>

using namespace host;

class ARangeGivenToReadIsNoAddress : public QObject
{
    Q_OBJECT

private slots:
    void rangeIsToldToBeOne_data();
    void rangeIsToldToBeOne();
};

void ARangeGivenToReadIsNoAddress::rangeIsToldToBeOne_data()
{
    addRefusedTexts();
    refused("VB0..VB9", "a range, which only dump takes", "write a count, as VB100*4");
}

void ARangeGivenToReadIsNoAddress::rangeIsToldToBeOne()
{
    compareRefusal([](const QString &text) { parseItem(text); });
}

TEST_CLASS(ARangeGivenToReadIsNoAddress)
#include "a_range_given_to_read_is_no_address.moc"
