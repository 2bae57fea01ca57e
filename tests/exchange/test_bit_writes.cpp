// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Writes of bits: one item for each, and a return code for each in the answer.

#include "answer.h"
#include "commands.h"
#include "hex.h"
#include "log_capture.h"
#include "outcome.h"
#include "scripted_port.h"
#include "simatic_s7_200_ppi/s7_200_ppi.h"
#include "test_class.h"

#include <QtTest>

class TestBitWrites : public QObject
{
    Q_OBJECT

private slots:
    void addressNamesTheFirstBit_data();
    void addressNamesTheFirstBit();
    void bitBlocksAreBits();
    void numberOfBitsIsThatOfTheData_data();
    void numberOfBitsIsThatOfTheData();
    void valuesAreSentAsTheyStand();
    void inputsAndCountersThatByteWritesRefuseAreSent_data();
    void inputsAndCountersThatByteWritesRefuseAreSent();
    void bits256HaveNoItems();
    void bitsOf256ItemsAreTakenByAnyTakenItem();

    void everyItemMustBeTaken_data();
    void everyItemMustBeTaken();
    void itemsOfTheAnswerAreCountedByTheAnswer_data();
    void itemsOfTheAnswerAreCountedByTheAnswer();
    void answerWithoutReturnCodesIsInvalidAndLogged_data();
    void answerWithoutReturnCodesIsInvalidAndLogged();
    void codesBeyondTheFrameCountAs00_data();
    void codesBeyondTheFrameCountAs00();
    void largestAnswerHolds238Codes();
    void writeWithoutBitsIsInvalidAndNotSent();
};

void TestBitWrites::addressNamesTheFirstBit_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("block");
    const auto row = [](const char *name, const char *address, const char *block) {
        QTest::newRow(name) << address << block;
    };
    row("V10.3", "V10.3", "0502120a10010001000184000053120a10010001000184000054");
    row("Q0.7", "Q0.7", "0502120a10010001000082000007120a10010001000082000008");
    row("M13 is M13.3", "M13", "0502120a1001000100008300006b120a1001000100008300006c");
    row("V10.12 is V10.2", "V10.12", "0502120a10010001000184000052120a10010001000184000053");
    row("V10.9, then V11.0", "V10.9", "0502120a10010001000184000059120a10010001000184000058");
    row("V10.A is bit 17", "V10.A", "0502120a10010001000184000061120a10010001000184000058");
    row("V10. is bit -2", "V10.", "0502120a1001000100018400004e120a10010001000184000058");
    row("VB10.3", "VB10.3", "0502120a10010001000184000053120a10010001000184000054");
    row("unknown prefix", "v10.3", "0502120a10010001000000000053120a10010001000000000054");
    row("no prefix", "10.3", "0502120a10010001000000000053120a10010001000000000054");
    row("no address", "", "0502120a10010001000000000000120a10010001000000000001");
}

void TestBitWrites::addressNamesTheFirstBit()
{
    QFETCH(QString, address);
    QFETCH(QString, block);
    QCOMPARE(hex(requestOf(bitCommand(address, 2), bytes("01 01")).mid(17, 26)), block);
}

void TestBitWrites::bitBlocksAreBits()
{
    QCOMPARE(hex(requestOf(command(kBitBlock, "V10.3", 1), bytes("01"))),
             hex(bytes("68 20 20 68 02 00 6c 32 01 00 00 00 01 00 0e 00 05"
                       "05 01 12 0a 10 01 00 01 00 01 84 00 00 53 00 03 00 01 01 c6 16")));
}

void TestBitWrites::numberOfBitsIsThatOfTheData_data()
{
    QTest::addColumn<int>("count");
    QTest::newRow("1") << 1;
    QTest::newRow("3") << 3;
    QTest::newRow("0") << 0;
    QTest::newRow("-1") << -1;
    QTest::newRow("2147483647") << 2147483647;
}

void TestBitWrites::numberOfBitsIsThatOfTheData()
{
    QFETCH(int, count);
    QCOMPARE(hex(requestOf(bitCommand("Q0.7", count), bytes("01 00"))),
             hex(bytes("68 32 32 68 02 00 6c 32 01 00 00 00 01 00 1a 00 0b"
                       "05 02 12 0a 10 01 00 01 00 00 82 00 00 07 12 0a 10 01 00 01 00 00 82 00 00 08"
                       "00 03 00 01 01 00 00 03 00 01 00 46 16")));
}

void TestBitWrites::valuesAreSentAsTheyStand()
{
    const QByteArray request = requestOf(bitCommand("V10.3", 2), bytes("ff 02"));
    QCOMPARE(hex(request.mid(43, 11)), hex(bytes("00 03 00 01 ff 00 00 03 00 01 02")));
}

void TestBitWrites::inputsAndCountersThatByteWritesRefuseAreSent_data()
{
    QTest::addColumn<QString>("block");
    QTest::newRow("HC0") << "0501120a10010001000020000000";
    QTest::newRow("AIW0") << "0501120a10010001000006000000";
    QTest::newRow("HC2.1") << "0501120a10010001000020000011";
}

void TestBitWrites::inputsAndCountersThatByteWritesRefuseAreSent()
{
    QFETCH(QString, block);
    QCOMPARE(hex(requestOf(bitCommand(QTest::currentDataTag(), 1), bytes("01")).mid(17, 14)), block);
}

void TestBitWrites::bits256HaveNoItems()
{
    ScriptedPort port;
    port.serves(Answer("05 00"));
    const Outcome outcome = outcomeOfWrite(bitCommand("V0.0", 256), QByteArray(256, '\x01'), port);
    QCOMPARE(hex(port.frames().at(0).left(25)), hex(bytes("68 0e 0e 68 02 00 6c 32 01 00 00 00 01 00 02 05 ff"
                                                          "05 00 00 03 00 01 01 00")));
    QCOMPARE(int(port.frames().at(0).size()), 1556);
    QCOMPARE(outcome.result, QString(""));
    QCOMPARE(outcome.reason, QString("invalid response"));
}

void TestBitWrites::bitsOf256ItemsAreTakenByAnyTakenItem()
{
    QCOMPARE(outcomeOfWrite(bitCommand("V0.0", 256), QByteArray(256, '\x01'), Answer(kAccepted)).result,
             QString(kTaken));
}

void TestBitWrites::everyItemMustBeTaken_data()
{
    const QString address("Invalid address (incorrect variable address)");
    const QString object("Object does not exist or length error");
    QTest::addColumn<QString>("item");
    QTest::addColumn<QString>("text");
    const auto row = [](const char *name, const char *item, const QString &text) {
        QTest::newRow(name) << item << text;
    };
    row("05", "05 01 05", address);
    row("00", "05 01 00", "unknow error");
    row("ff 05", "05 02 ff 05", "," + address);
    row("05 ff", "05 02 05 ff", address + ",");
    row("ff 0a ff", "05 03 ff 0a ff", "," + object + ",");
    row("0a 05", "05 02 0a 05", object + "," + address);
    row("01 03 06", "05 03 01 03 06", "Hardware fault,Illegal object access,Data type is not supported");
    row("fe 04", "05 02 fe 04", "unknow error,unknow error");
}

void TestBitWrites::everyItemMustBeTaken()
{
    QFETCH(QString, item);
    QFETCH(QString, text);
    const Outcome outcome = outcomeOfWrite(bitCommand("V10.0", 3), bytes("01 01 01"), Answer(item));
    QCOMPARE(outcome.result, QString(""));
    QVERIFY(outcome.failed);
    QCOMPARE(outcome.reason, text);
    QCOMPARE(outcome.texts, QStringList() << text);
}

void TestBitWrites::itemsOfTheAnswerAreCountedByTheAnswer_data()
{
    QTest::addColumn<QString>("item");
    QTest::newRow("fewer than asked") << "05 01 ff";
    QTest::newRow("as many as asked") << "05 02 ff ff";
    QTest::newRow("more than asked") << "05 04 ff ff ff ff";
    QTest::newRow("codes behind the last are not looked at") << "05 02 ff ff 05 0a";
}

void TestBitWrites::itemsOfTheAnswerAreCountedByTheAnswer()
{
    QFETCH(QString, item);
    QCOMPARE(outcomeOfWrite(bitCommand("V10.0", 2), bytes("01 01"), Answer(item)).result, QString(kTaken));
}

void TestBitWrites::answerWithoutReturnCodesIsInvalidAndLogged_data()
{
    QTest::addColumn<QString>("item");
    QTest::newRow("function 4") << "04 01 ff";
    QTest::newRow("function 4, return code 05") << "04 01 05";
    QTest::newRow("function 85") << "85 01 ff";
    QTest::newRow("no items") << "05 00";
    QTest::newRow("no items, but a code") << "05 00 ff";
    QTest::newRow("nothing behind the header") << "";
}

void TestBitWrites::answerWithoutReturnCodesIsInvalidAndLogged()
{
    QFETCH(QString, item);
    const Outcome outcome = outcomeOfWrite(bitCommand("V10.3", 1), bytes("01"), Answer(item));
    QCOMPARE(outcome.result, QString(""));
    QVERIFY(outcome.failed);
    QCOMPARE(outcome.reason, QString("invalid response"));
    QCOMPARE(outcome.texts, QStringList() << "invalid response");
}

// The check sums are ff and would read as success.
void TestBitWrites::codesBeyondTheFrameCountAs00_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<QString>("text");
    const auto row = [](const char *name, const char *answer, const char *text) {
        QTest::newRow(name) << bytes(answer) << text;
    };
    row("1 of 2 codes held", "68 12 12 68 00 02 08 32 03 00 00 00 01 00 02 00 b7 00 00 05 02 ff ff 16",
        ",unknow error");
    row("no code held", "68 11 11 68 00 02 08 32 03 00 00 00 01 00 02 00 b7 00 00 05 01 ff 16",
        "unknow error");
}

void TestBitWrites::codesBeyondTheFrameCountAs00()
{
    QFETCH(QByteArray, answer);
    QFETCH(QString, text);
    const Outcome outcome = outcomeOfWrite(bitCommand("V10.3", 2), bytes("01 01"), answer);
    QCOMPARE(outcome.result, QString(""));
    QCOMPARE(outcome.reason, text);
    QCOMPARE(outcome.texts, QStringList() << text);
}

void TestBitWrites::largestAnswerHolds238Codes()
{
    const QString codes = QString("ff").repeated(238);
    QCOMPARE(outcomeOfWrite(bitCommand("V0.0", 238), QByteArray(238, '\x01'), Answer("05 ee" + codes)).result,
             QString(kTaken));
    const Outcome tooMany =
        outcomeOfWrite(bitCommand("V0.0", 239), QByteArray(239, '\x01'), Answer("05 ef" + codes));
    QCOMPARE(tooMany.reason, QString(",").repeated(238) + "unknow error");
}

void TestBitWrites::writeWithoutBitsIsInvalidAndNotSent()
{
    ScriptedPort port;
    const Outcome outcome = outcomeOfWrite(bitCommand("V10.3", 1), QByteArray(), port);
    QCOMPARE(outcome.result, QString(""));
    QVERIFY(outcome.failed);
    QCOMPARE(outcome.reason, QString("invalid response"));
    QCOMPARE(outcome.texts, QStringList() << "invalid response");
    QVERIFY(port.scriptIsFinished());
}

TEST_CLASS(TestBitWrites)

#include "test_bit_writes.moc"
