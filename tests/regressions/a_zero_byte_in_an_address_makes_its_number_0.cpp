// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// An address text from a device, with a zero byte behind its number, addressed number 0 in place of 12. All
// bytes of the text were looked at for blanks, the zero byte was taken for one, and an address with a blank
// has no number.

#include "test_class.h"
#include "tools/address_text.h"

#include <QByteArray>
#include <QtTest>

class AZeroByteInAnAddressMakesItsNumber0 : public QObject
{
    Q_OBJECT

private slots:
    void zeroByteEndsTheNumber();
};

void AZeroByteInAnAddressMakesItsNumber0::zeroByteEndsTheNumber()
{
    const char text[] = {'V', '1', '2', '\0', '3'};
    QCOMPARE(ExtractPLCDeviceAddress(QByteArray(text, sizeof text), 10), 12);
}

TEST_CLASS(AZeroByteInAnAddressMakesItsNumber0)
#include "a_zero_byte_in_an_address_makes_its_number_0.moc"
