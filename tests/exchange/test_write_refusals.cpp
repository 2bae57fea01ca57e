// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Writes that are refused: by what the controller's item says, and before anything is sent.

#include "answer.h"
#include "commands.h"
#include "faults.h"
#include "hex.h"
#include "log_capture.h"
#include "outcome.h"
#include "sample_rows.h"
#include "scripted_port.h"
#include "simatic_s7_200_ppi/s7_200_ppi.h"
#include "test_class.h"

#include <QtTest>

class TestWriteRefusals : public QObject
{
    Q_OBJECT

private slots:
    void refusedItemNamesItsReason_data();
    void refusedItemNamesItsReason();
    void wrongAnswerWithASuccessCodeFailsWithANullText_data();
    void wrongAnswerWithASuccessCodeFailsWithANullText();
    void wrongAnswerWithAnotherCodeNamesTheCode();
    void answerWithoutAnItemIsRefused_data();
    void answerWithoutAnItemIsRefused();
    void bytesBehindTheReturnCodeDoNotMatter();

    void whatCanNotBeWrittenIsRefusedUnsent_data();
    void whatCanNotBeWrittenIsRefusedUnsent();
    void onlyHCAndAIWAreRefused_data();
    void onlyHCAndAIWAreRefused();
    void refusedWriteUsesNoReference();
};

void TestWriteRefusals::refusedItemNamesItsReason_data()
{
    addSampleColumn();
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("text");
    for (const Sample &write : samples()) {
        if (write.operation == kRead)
            continue;
        for (const Refusal &refusal : refusals())
            sampleRow(write, QByteArray::number(refusal.code, 16)) << refusal.code << QString(refusal.text);
    }
}

void TestWriteRefusals::refusedItemNamesItsReason()
{
    QFETCH(QString, sample);
    QFETCH(int, code);
    QFETCH(QString, text);
    const Answer answer = Answer("05 01 ff").withByte(Answer::kReturnCode, code).sealed();
    const Outcome outcome = outcomeOf(::sample(sample), answer);
    QCOMPARE(outcome.result, QString(""));
    QVERIFY(outcome.failed);
    QCOMPARE(outcome.reason, text);
    QCOMPARE(outcome.texts, QStringList() << text);
}

// For bits see answerWithoutReturnCodesIsInvalidAndLogged.
void TestWriteRefusals::wrongAnswerWithASuccessCodeFailsWithANullText_data()
{
    addSampleColumn();
    QTest::addColumn<QString>("item");
    for (const Sample &write : samples()) {
        if (write.operation == kRead || write.isBitWrite())
            continue;
        sampleRow(write, "function 4") << "04 01 ff";
        sampleRow(write, "0 items") << "05 00 ff";
        sampleRow(write, "2 items") << "05 02 ff ff";
    }
}

void TestWriteRefusals::wrongAnswerWithASuccessCodeFailsWithANullText()
{
    QFETCH(QString, sample);
    QFETCH(QString, item);
    const Outcome outcome = outcomeOf(::sample(sample), Answer(item));
    QCOMPARE(outcome.result, QString(""));
    QVERIFY(outcome.failed);
    QVERIFY(outcome.reason.isNull());
    QCOMPARE(outcome.texts, QStringList() << "");
}

void TestWriteRefusals::wrongAnswerWithAnotherCodeNamesTheCode()
{
    QCOMPARE(outcomeOf(sample("write bytes of VB100"), Answer("04 01 06")).reason,
             QString("Data type is not supported"));
    QCOMPARE(outcomeOf(sample("write bytes of T37"), Answer("05 02 03")).reason,
             QString("Illegal object access"));
}

// Behind a PDU of nothing but the header lie check sum, end and zero bytes, so the return code reads 00.
void TestWriteRefusals::answerWithoutAnItemIsRefused_data()
{
    addSampleColumn();
    QTest::addColumn<QString>("text");
    for (const Sample &write : samples()) {
        if (write.operation == kWrite)
            sampleRow(write) << (write.isBitWrite() ? "invalid response" : "unknow error");
    }
}

void TestWriteRefusals::answerWithoutAnItemIsRefused()
{
    QFETCH(QString, sample);
    QFETCH(QString, text);
    const Outcome outcome = outcomeOf(::sample(sample), Answer(""));
    QCOMPARE(outcome.result, QString(""));
    QCOMPARE(outcome.reason, text);
}

void TestWriteRefusals::bytesBehindTheReturnCodeDoNotMatter()
{
    QCOMPARE(outcomeOf(sample("write bytes of VB100"), Answer("05 01 ff 0a 05 00")).result, QString(kTaken));
}

void TestWriteRefusals::whatCanNotBeWrittenIsRefusedUnsent_data()
{
    QTest::addColumn<int>("dataType");
    QTest::addColumn<QString>("address");
    QTest::newRow("bytes of HC") << int(kBytes) << "HC0";
    QTest::newRow("bytes of AIW") << int(kBytes) << "AIW0";
    QTest::newRow("block of HC") << int(kBlock) << "HC5";
    QTest::newRow("block of AIW") << int(kBlock) << "AIW2";
    QTest::newRow("words of HC") << int(kWords) << "HC0";
    QTest::newRow("words of AIW") << int(kWords) << "AIW30";
    QTest::newRow("double words of HC") << int(kDoubleWords) << "HC0";
    QTest::newRow("double words of AIW") << int(kDoubleWords) << "AIW0";
    QTest::newRow("bits of T") << int(kBits) << "T5";
    QTest::newRow("bits of C") << int(kBits) << "C5";
    QTest::newRow("bit block of T") << int(kBitBlock) << "T37";
    QTest::newRow("bit block of C") << int(kBitBlock) << "C0.1";
    QTest::newRow("the address as it stands") << int(kBytes) << "HC 0 x";
}

void TestWriteRefusals::whatCanNotBeWrittenIsRefusedUnsent()
{
    QFETCH(int, dataType);
    QFETCH(QString, address);
    ScriptedPort port;
    port.retries(2).delays(30);
    const Outcome outcome = outcomeOfWrite(command(dataType, address, 1), bytes("34 12"), port);
    QCOMPARE(outcome.result, QString(""));
    QVERIFY(outcome.failed);
    QCOMPARE(outcome.reason, "can not write data to " + address);
    QCOMPARE(outcome.texts, QStringList());
    const QStringList attempt = QStringList() << "delay"
                                              << "pause 30 ms"
                                              << "retry";
    QCOMPARE(port.events(), attempt + attempt + attempt);
}

void TestWriteRefusals::onlyHCAndAIWAreRefused_data()
{
    QTest::addColumn<bool>("sent");
    QTest::newRow("HC0") << false;
    QTest::newRow("AIW0") << false;
    QTest::newRow("HC") << false;
    QTest::newRow("AIW2.1") << false;
    QTest::newRow("hc0") << true;
    QTest::newRow("aiw0") << true;
    QTest::newRow("AI0") << true;
    QTest::newRow("AIWX0") << true;
    QTest::newRow("HCB0") << true;
    QTest::newRow("AQW0") << true;
    QTest::newRow("IW0") << true;
}

void TestWriteRefusals::onlyHCAndAIWAreRefused()
{
    QFETCH(bool, sent);
    const QByteArray request = requestOf(byteCommand(QTest::currentDataTag(), 2), bytes("34 12"));
    QCOMPARE(!request.isEmpty(), sent);
}

void TestWriteRefusals::refusedWriteUsesNoReference()
{
    ScriptedPort port;
    port.serves(Answer("05 01 ff", 1));
    DriverS7_200_PPI driver;
    driver.write(&port, byteCommand("HC0", 4), bytes("11 22 33 44"));
    driver.write(&port, bitCommand("T5", 1), bytes("01"));
    QVERIFY(driver.write(&port, byteCommand("VB10", 1), bytes("11")) != 0);
    QVERIFY(port.scriptIsFinished());
}

TEST_CLASS(TestWriteRefusals)

#include "test_write_refusals.moc"
