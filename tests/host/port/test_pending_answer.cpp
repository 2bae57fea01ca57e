// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// How much of an answer may still be under way, after every beginning of one.

#include "host/port/pending_answer.h"

#include "hex.h"
#include "test_class.h"

#include <QtTest>

using namespace host;

namespace {

const char kRequest[] = "681b1b6802006c320100000001000e00000401120a10020001000183000000e316";
const char kPoll[] = "1002005c5e16";
const char kAnswer[] = "681616680002083203000000010002000500000401ff0400081168 16";
constexpr int kUnknown = 261; // the longest frame

PendingAnswer after(const char *sent, const QByteArray &heard)
{
    PendingAnswer pending;
    pending.received("earlier");
    pending.sent(bytes(sent));
    for (const char byte : heard)
        pending.received(QByteArray(1, byte));
    return pending;
}

} // namespace

class TestPendingAnswer : public QObject
{
    Q_OBJECT

private slots:
    void whatIsMissing_data();
    void whatIsMissing();
    void howAnExchangeGoesOn();
    void onlyAWholeFrameIsAnEcho();
    void noiseIsNotKeptForEver();
};

void TestPendingAnswer::whatIsMissing_data()
{
    QTest::addColumn<QByteArray>("sent");
    QTest::addColumn<QByteArray>("heard");
    QTest::addColumn<int>("missing");
    const auto row = [](const char *name, const char *sent, const QByteArray &heard, int missing) {
        QTest::newRow(name) << QByteArray(sent) << heard << missing;
    };
    row("nothing was sent", "", bytes("68"), 0);
    row("another protocol", "0205", bytes("02"), 0);
    row("nobody heard the request", kRequest, QByteArray(), 0);
    row("an acknowledgement", kRequest, bytes("e5"), 0);
    row("a refusal", kRequest, bytes("100002020416"), 0);
    row("half a refusal", kRequest, bytes("100002"), 3);
    row("the answer to an earlier poll", kRequest, bytes(kAnswer).left(10), 18);
    row("noise", kRequest, bytes("00"), kUnknown);
    row("no answer to the poll", kPoll, QByteArray(), kUnknown);
    row("a byte of the answer", kPoll, bytes(kAnswer).left(1), kUnknown);
    row("two bytes of the answer", kPoll, bytes(kAnswer).left(2), 26);
    row("the answer but for its end", kPoll, bytes(kAnswer).chopped(1), 1);
    row("the answer", kPoll, bytes(kAnswer), 0);
    row("a late acknowledgement", kPoll, bytes("e5"), kUnknown);
    row("a late acknowledgement before it", kPoll, bytes("e5") + bytes(kAnswer).left(6), 22);
    row("behind an echo", kPoll, bytes(kPoll) + bytes(kAnswer).left(6), 22);
    row("a refused poll", kPoll, bytes("100002020416"), 0);
}

void TestPendingAnswer::whatIsMissing()
{
    QFETCH(QByteArray, sent);
    QFETCH(QByteArray, heard);
    QFETCH(int, missing);
    QCOMPARE(after(sent.constData(), heard).missing(), missing);
}

void TestPendingAnswer::howAnExchangeGoesOn()
{
    QVERIFY(!PendingAnswer().hasFailed());
    QVERIFY(after(kRequest, QByteArray()).hasFailed());
    QVERIFY(!after(kRequest, bytes("e5")).hasFailed());
    QVERIFY(after(kRequest, bytes("e5")).isAcknowledged());
    QVERIFY(!after(kPoll, bytes("e5")).isAcknowledged());
    QVERIFY(after(kPoll, bytes("e5")).hasFailed());
    QVERIFY(!after(kPoll, bytes(kAnswer).chopped(1)).isAnswered());
    QVERIFY(after(kPoll, bytes(kAnswer)).isAnswered());
    QVERIFY(!after(kPoll, bytes(kAnswer)).hasFailed());
}

void TestPendingAnswer::onlyAWholeFrameIsAnEcho()
{
    QVERIFY(after(kRequest, bytes(kRequest)).isEcho());
    QVERIFY(after(kRequest, bytes(kRequest) + bytes("e5")).isEcho());
    QVERIFY(!after(kRequest, bytes(kRequest).chopped(1)).isEcho());
    QVERIFY(after(kRequest, bytes(kRequest).chopped(1)).isEchoBegun());
    QVERIFY(after(kRequest, bytes("68")).isEchoBegun());
    QVERIFY(!after(kRequest, bytes("68686868")).isEcho());
    QVERIFY(!after(kRequest, bytes("68686868")).isEchoBegun());
    QVERIFY(!after(kRequest, QByteArray()).isEchoBegun());
    QVERIFY(!after(kRequest, bytes(kRequest)).isEchoBegun());
    QVERIFY(!PendingAnswer().isEcho());
}

void TestPendingAnswer::noiseIsNotKeptForEver()
{
    PendingAnswer pending = after(kPoll, QByteArray());
    for (int i = 0; i < 1000; ++i)
        pending.received(QByteArray(1000, 'U'));
    QCOMPARE(pending.missing(), kUnknown);
}

TEST_CLASS(TestPendingAnswer)
#include "test_pending_answer.moc"
