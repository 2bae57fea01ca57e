// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The decoders of layer-7 answers to writes, called with the bytes behind the header, and the fitting of
// a write's data to its command.

#include "commands.h"
#include "faults.h"
#include "hex.h"
#include "simatic_s7_200_ppi/ppi_request.h"
#include "simatic_s7_200_ppi/ppi_response.h"
#include "test_class.h"

#include <QtTest>

#include <climits>
#include <new>

namespace {

bool canBeFitted(const CommunicatorCommand &command)
{
    try {
        DriverS7_200_PPIGetSafeData(command, bytes("11"));
    } catch (const std::bad_alloc &) {
        return false;
    }
    return true;
}

} // namespace

class TestWriteDecoders : public QObject
{
    Q_OBJECT

private slots:
    void writeAnswerIsTakenOrRefused_data();
    void writeAnswerIsTakenOrRefused();
    void onlyReturnCodeFFIsSuccess();

    void everyItemHasAReturnCode_data();
    void everyItemHasAReturnCode();
    void returnCodesBeyondTheFrameAre00_data();
    void returnCodesBeyondTheFrameAre00();
    void returnCodesHaveTheirMessagesInOrder_data();
    void returnCodesHaveTheirMessagesInOrder();
    void refusedItemHasItsMessage_data();
    void refusedItemHasItsMessage();

    void dataOfWordsIsFittedToTheCommand_data();
    void dataOfWordsIsFittedToTheCommand();
    void countsBeyond16BitsAreNotCut();
    void dataThatNoArrayHoldsAreRefused_data();
    void dataThatNoArrayHoldsAreRefused();
};

void TestWriteDecoders::writeAnswerIsTakenOrRefused_data()
{
    QTest::addColumn<QByteArray>("parameters");
    QTest::addColumn<bool>("taken");
    QTest::addColumn<int>("returnCode");
    QTest::newRow("taken") << bytes("05 01 ff") << true << 0xff;
    QTest::newRow("return code 05") << bytes("05 01 05") << false << 0x05;
    QTest::newRow("return code 00") << bytes("05 01 00") << false << 0x00;
    QTest::newRow("function 4") << bytes("04 01 ff") << false << 0xff;
    QTest::newRow("function 85") << bytes("85 01 ff") << false << 0xff;
    QTest::newRow("0 items") << bytes("05 00 ff") << false << 0xff;
    QTest::newRow("2 items") << bytes("05 02 ff") << false << 0xff;
    QTest::newRow("function 4, return code 0a") << bytes("04 01 0a") << false << 0x0a;
}

void TestWriteDecoders::writeAnswerIsTakenOrRefused()
{
    QFETCH(QByteArray, parameters);
    QFETCH(bool, taken);
    QFETCH(int, returnCode);
    unsigned char code = 0x77;
    QCOMPARE(S7_200_PPICheckWriteRspParamData(unsignedBytes(parameters), code), taken);
    QCOMPARE(int(code), returnCode);
}

void TestWriteDecoders::onlyReturnCodeFFIsSuccess()
{
    for (int returnCode = 0; returnCode < 256; ++returnCode) {
        QByteArray parameters = bytes("05 01 00");
        parameters[2] = char(returnCode);
        unsigned char code = 0x77;
        QCOMPARE(S7_200_PPICheckWriteRspParamData(unsignedBytes(parameters), code), returnCode == 0xff);
        QCOMPARE(int(code), returnCode);
    }
}

void TestWriteDecoders::everyItemHasAReturnCode_data()
{
    QTest::addColumn<QByteArray>("parameters");
    QTest::addColumn<QString>("codes");
    QTest::newRow("1 item") << bytes("05 01 ff") << "ff";
    QTest::newRow("3 items") << bytes("05 03 ff 0a 05") << "ff0a05";
    QTest::newRow("fewer items than bytes") << bytes("05 01 ff 0a 05") << "ff";
    QTest::newRow("255 items") << bytes("05 ff") + QByteArray(255, '\x0a') << QString("0a").repeated(255);
    QTest::newRow("no items") << bytes("05 00 ff") << "";
    QTest::newRow("function 4") << bytes("04 01 ff") << "";
    QTest::newRow("function 85") << bytes("85 01 ff") << "";
}

void TestWriteDecoders::everyItemHasAReturnCode()
{
    QFETCH(QByteArray, parameters);
    QFETCH(QString, codes);
    QCOMPARE(hex(S7_200_PPIGetWriteRspCodes(unsignedBytes(parameters), int(parameters.size()))), codes);
}

// What stands in the buffer behind the bytes that are held is ff, the code of success.
void TestWriteDecoders::returnCodesBeyondTheFrameAre00_data()
{
    QTest::addColumn<QByteArray>("parameters");
    QTest::addColumn<int>("held");
    QTest::addColumn<QString>("codes");
    QTest::newRow("2 of 3 held") << bytes("05 03 ff 0a ff ff ff") << 4 << "ff0a00";
    QTest::newRow("1 of 3 held") << bytes("05 03 ff ff ff ff ff") << 3 << "ff0000";
    QTest::newRow("none of 3 held") << bytes("05 03 ff ff ff ff ff") << 2 << "000000";
}

void TestWriteDecoders::returnCodesBeyondTheFrameAre00()
{
    QFETCH(QByteArray, parameters);
    QFETCH(int, held);
    QFETCH(QString, codes);
    QCOMPARE(hex(S7_200_PPIGetWriteRspCodes(unsignedBytes(parameters), held)), codes);
}

void TestWriteDecoders::returnCodesHaveTheirMessagesInOrder_data()
{
    QTest::addColumn<QByteArray>("codes");
    QTest::addColumn<QString>("text");
    const auto row = [](const char *codes, const char *text) {
        QTest::newRow(codes) << bytes(codes) << text;
    };
    row("ff 05", ",Invalid address (incorrect variable address)");
    row("05 ff", "Invalid address (incorrect variable address),");
    row("ff 0a ff", ",Object does not exist or length error,");
    row("01 03 06", "Hardware fault,Illegal object access,Data type is not supported");
    row("00 04", "unknow error,unknow error");
    row("ff ff ff 05", ",,,Invalid address (incorrect variable address)");
}

void TestWriteDecoders::returnCodesHaveTheirMessagesInOrder()
{
    QFETCH(QByteArray, codes);
    QFETCH(QString, text);
    QCOMPARE(S7_200_PPIWriteRspCodesToStr(codes), text);
}

void TestWriteDecoders::refusedItemHasItsMessage_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("text");
    for (const Refusal &refusal : refusals())
        QTest::newRow(QByteArray::number(refusal.code, 16).constData())
            << refusal.code << QString(refusal.text);
}

void TestWriteDecoders::refusedItemHasItsMessage()
{
    QFETCH(int, code);
    QFETCH(QString, text);
    QCOMPARE(S7_200_PPIWriteRspCodesToStr(QByteArray(1, char(code))), text);
}

void TestWriteDecoders::dataOfWordsIsFittedToTheCommand_data()
{
    QTest::addColumn<int>("dataType");
    QTest::addColumn<int>("count");
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<QString>("fitted");
    const auto row = [](const char *name, int dataType, int count, const char *data, const char *fitted) {
        QTest::newRow(name) << dataType << count << bytes(data) << fitted;
    };
    row("3 words of 4 bytes", kWords, 3, "11223344", "112233440000");
    row("3 words of 8 bytes", kWords, 3, "1122334455667788", "112233445566");
    row("2 words of 4 bytes", kWords, 2, "11223344", "11223344");
    row("no words", kWords, 0, "11223344", "");
    row("-1 words", kWords, -1, "11223344", "");
    row("INT_MIN words", kWords, INT_MIN, "11223344", "");
    row("1 word of nothing", kWords, 1, "", "0000");
    row("2 double words of 5 bytes", kDoubleWords, 2, "1122334455", "1122334455000000");
    row("1 double word of 5 bytes", kDoubleWords, 1, "1122334455", "11223344");
    row("1 double word of 4 bytes", kDoubleWords, 1, "11223344", "11223344");
    row("no double words", kDoubleWords, 0, "11223344", "");
    row("-1 double words", kDoubleWords, -1, "11223344", "");
    row("bits stay", kBits, 1, "11223344", "11223344");
    row("bytes stay", kBytes, 1, "11223344", "11223344");
    row("quad words stay", kQuadWords, 1, "11223344", "11223344");
    row("blocks stay", kBlock, 8, "11223344", "11223344");
    row("bit blocks stay", kBitBlock, 1, "11223344", "11223344");
    row("bytes stay at a count that nothing holds", kBytes, INT_MAX, "11223344", "11223344");
}

void TestWriteDecoders::dataOfWordsIsFittedToTheCommand()
{
    QFETCH(int, dataType);
    QFETCH(int, count);
    QFETCH(QByteArray, data);
    QFETCH(QString, fitted);
    QCOMPARE(hex(DriverS7_200_PPIGetSafeData(command(dataType, "VW0", count), data)), fitted);
}

void TestWriteDecoders::countsBeyond16BitsAreNotCut()
{
    QCOMPARE(int(DriverS7_200_PPIGetSafeData(wordCommand("VW0", 65537), bytes("11")).size()), 131074);
    QCOMPARE(int(DriverS7_200_PPIGetSafeData(doubleWordCommand("VD0", 65537), bytes("11")).size()), 262148);
}

void TestWriteDecoders::dataThatNoArrayHoldsAreRefused_data()
{
    QTest::addColumn<int>("dataType");
    QTest::addColumn<int>("count");
    QTest::newRow("2^31 bytes of words") << int(kWords) << 0x40000000;
    QTest::newRow("INT_MAX words") << int(kWords) << INT_MAX;
    QTest::newRow("2^31 bytes of double words") << int(kDoubleWords) << 0x20000000;
    QTest::newRow("2^32 bytes of double words") << int(kDoubleWords) << 0x40000000;
    QTest::newRow("INT_MAX double words") << int(kDoubleWords) << INT_MAX;
}

void TestWriteDecoders::dataThatNoArrayHoldsAreRefused()
{
    QFETCH(int, dataType);
    QFETCH(int, count);
    QVERIFY(!canBeFitted(command(dataType, "VW0", count)));
}

TEST_CLASS(TestWriteDecoders)

#include "test_write_decoders.moc"
