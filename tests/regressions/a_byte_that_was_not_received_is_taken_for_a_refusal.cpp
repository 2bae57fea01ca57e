// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A station that did not answer was told to refuse, now and then. The first byte of the buffer was looked at
// although the port had said that it received none.

#include "commands.h"
#include "outcome.h"
#include "scripted_port.h"
#include "test_class.h"

#include <QString>
#include <QtTest>

class AByteThatWasNotReceivedIsTakenForARefusal : public QObject
{
    Q_OBJECT

private slots:
    void byteThatThePortDoesNotCountIsNoResponse();
};

void AByteThatWasNotReceivedIsTakenForARefusal::byteThatThePortDoesNotCountIsNoResponse()
{
    ScriptedPort port;
    port.expectsRequest().answers("10").receiveClaims(1, 0);
    QCOMPARE(outcomeOfRead(byteCommand("VB100", 4), port).reason, QString("plc no response"));
}

TEST_CLASS(AByteThatWasNotReceivedIsTakenForARefusal)
#include "a_byte_that_was_not_received_is_taken_for_a_refusal.moc"
