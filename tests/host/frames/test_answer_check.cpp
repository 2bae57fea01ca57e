// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Answers compared with what was asked for.

#include "host/frames/answer_check.h"

#include "hex.h"
#include "test_class.h"

#include <QtTest>

#include <optional>

using namespace host;

namespace {

// The bytes from the destination to the end of the PDU as a whole frame.
QByteArray frame(const QByteArray &counted)
{
    uchar sum = 0;
    for (const char byte : counted)
        sum = uchar(sum + uchar(byte));
    const char size = char(counted.size());
    return QByteArray("\x68") + size + size + '\x68' + counted + char(sum) + '\x16';
}

QByteArray request(const QByteArray &items)
{
    const int count = int(items.size()) / 12;
    return frame(bytes("02006c320100000001") + '\0' + char(2 + items.size()) + bytes("000004") + char(count) +
                 items);
}

QByteArray answer(const char *data, int count = 1)
{
    const QByteArray items = bytes(data);
    return frame(bytes("000208320300000001") + bytes("0002") + '\0' + char(items.size()) + bytes("000004") +
                 char(count) + items);
}

const char kTwoWords[] = "120a1004000200018400 0320";
const char kOneByte[] = "120a1002000100018400 0320";
const char kTwoTimers[] = "120a101f000200001f00 0025";
const char kNineBits[] = "120a1001000900018400 0320";

} // namespace

class TestAnswerCheck : public QObject
{
    Q_OBJECT

private slots:
    void whatIsMissingIsCounted_data();
    void whatIsMissingIsCounted();
    void otherFramesSayNothing();
    void theNextRequestForgetsTheLastAnswer();
};

void TestAnswerCheck::whatIsMissingIsCounted_data()
{
    QTest::addColumn<QByteArray>("asked");
    QTest::addColumn<QByteArray>("answered");
    QTest::addColumn<QString>("shortage");
    const auto row = [](const char *name, const QByteArray &items, const QByteArray &answered,
                        const char *shortage) {
        QTest::newRow(name) << request(items) << answered << QString(shortage);
    };
    const QByteArray words = bytes(kTwoWords);
    const QByteArray byte = bytes(kOneByte);
    row("all of it", words, answer("ff04002011223344"), "");
    row("more", words, answer("ff04003011223344 5566"), "");
    row("one word", words, answer("ff0400101122"), "2 of 4");
    row("three bytes", words, answer("ff040018112233"), "3 of 4");
    row("a part of a byte does not count", words, answer("ff04001e11223344"), "3 of 4");
    row("nothing", words, answer("ff040000"), "0 of 4");
    row("the item says more than the frame holds", words, answer("ff0400201122"), "2 of 4");
    row("no item at all", words, answer(""), "0 of 4");
    row("a refused item has no data", words, answer("05000000"), "");
    row("two timers", bytes(kTwoTimers), answer("ff09000a020000012c020000012d"), "");
    row("one timer", bytes(kTwoTimers), answer("ff090005020000012c"), "5 of 10");
    row("bits, one a byte", bytes(kNineBits), answer("ff030009010101010101010101"), "2 of 9");
    row("two items", byte + words, answer("ff0400081100ff04002011223344", 2), "");
    row("the second is short", byte + words, answer("ff0400081100ff0400101122", 2), "2 of 4");
    row("the second is not there", byte + words, answer("ff04000811", 1), "0 of 4");
}

void TestAnswerCheck::whatIsMissingIsCounted()
{
    QFETCH(QByteArray, asked);
    QFETCH(QByteArray, answered);
    QFETCH(QString, shortage);
    AnswerCheck check;
    check.sent(asked);
    check.received(bytes("e5"));
    check.sent(bytes("1002005c5e16"));
    check.received(answered);
    const std::optional<Shortage> &lack = check.shortage();
    QCOMPARE(lack ? QString("%1 of %2").arg(lack->came).arg(lack->asked) : QString(), shortage);
}

// A refusal of the whole request, an answer to a write, other protocols, damaged and cut frames.
void TestAnswerCheck::otherFramesSayNothing()
{
    AnswerCheck check;
    check.sent(request(bytes(kTwoWords)));
    check.heardNothing(false);
    check.received(frame(bytes("000208320200000001000000008104")));
    check.received(frame(bytes("0002083203000000010002000100000501ff")));
    check.received(bytes("680303680200006c6e16"));
    check.received(bytes("68"));
    check.received(QByteArray());
    QVERIFY(!check.shortage());
    check.sent(bytes("680303680200006c6e16"));
    check.received(answer("ff040000"));
    QVERIFY(!check.shortage());
}

void TestAnswerCheck::theNextRequestForgetsTheLastAnswer()
{
    AnswerCheck check;
    check.sent(request(bytes(kTwoWords)));
    check.received(answer("ff0400101122"));
    check.sent(bytes("1002005c5e16"));
    QVERIFY(check.shortage());
    check.sent(request(bytes(kTwoWords)));
    QVERIFY(!check.shortage());
}

TEST_CLASS(TestAnswerCheck)
#include "test_answer_check.moc"
