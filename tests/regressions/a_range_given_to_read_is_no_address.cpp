// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// read VB0..VB9 was told that VB0..VB9 is not an address of the controller, which left the user to guess what
// else to write. The text was looked at as an address only; it names as many values as a count would.

#include "host/items/item.h"
#include "test_class.h"

#include <QtTest>

using namespace host;

class ARangeGivenToReadIsNoAddress : public QObject
{
    Q_OBJECT

private slots:
    void rangeIsReadAsItsValues();
};

void ARangeGivenToReadIsNoAddress::rangeIsReadAsItsValues()
{
    const Item range = parseItem("VB0..VB9");
    const Item counted = parseItem("VB0*10");
    QCOMPARE(range.address.text(), counted.address.text());
    QCOMPARE(range.count, counted.count);
    QVERIFY(range.type == counted.type);
}

TEST_CLASS(ARangeGivenToReadIsNoAddress)
#include "a_range_given_to_read_is_no_address.moc"
