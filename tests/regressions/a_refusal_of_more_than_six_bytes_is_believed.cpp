// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A port that claimed more bytes than a refusal has made the driver tell a reason that nobody had sent. The
// claim was cut to the bytes that were asked for, so that exactly six, a whole refusal, seemed to be there.

#include "commands.h"
#include "outcome.h"
#include "scripted_port.h"
#include "test_class.h"

#include <QString>
#include <QtTest>

#include <climits>

class ARefusalOfMoreThanSixBytesIsBelieved : public QObject
{
    Q_OBJECT

private slots:
    void moreThanSixBytesArePacketLoss();
};

void ARefusalOfMoreThanSixBytesIsBelieved::moreThanSixBytesArePacketLoss()
{
    ScriptedPort port;
    port.expectsRequest().answers("10 00 02 02 04 16").receiveClaims(2, INT_MAX);
    QCOMPARE(outcomeOfRead(byteCommand("VB100", 4), port).reason, QString("first NAK packet loss"));
}

TEST_CLASS(ARefusalOfMoreThanSixBytesIsBelieved)
#include "a_refusal_of_more_than_six_bytes_is_believed.moc"
