// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Two bits written from M1/ on, whose first bit is -1, went to the byte behind: the second one to M2.0 in
// place of M1.0. The bit number, which has no sign, was compared with 7 before it was advanced and not after.

#include "commands.h"
#include "hex.h"
#include "outcome.h"
#include "simatic_s7_200_ppi/ppi_request.h"
#include "test_class.h"

#include <QByteArray>
#include <QtTest>

class BitsBehindBitMinus1AreWrittenAByteTooFar : public QObject
{
    Q_OBJECT

private slots:
    void bit0OfTheSameByteFollows();
};

void BitsBehindBitMinus1AreWrittenAByteTooFar::bit0OfTheSameByteFollows()
{
    const QByteArray request = requestOf(bitCommand("M1/", 2), bytes("01 00"));
    QCOMPARE(hex(request.mid(17, 26)), QString("0502120a10010001000083000007120a10010001000083000008"));
}

TEST_CLASS(BitsBehindBitMinus1AreWrittenAByteTooFar)
#include "bits_behind_bit_minus_1_are_written_a_byte_too_far.moc"
