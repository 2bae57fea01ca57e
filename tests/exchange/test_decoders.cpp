// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The decoders of layer-7 answers to reads, called with the bytes behind the layer-2 head.

#include "hex.h"
#include "simatic_s7_200_ppi/ppi_response.h"
#include "test_class.h"

#include <QtTest>

namespace {

typedef bool (*RecordDecoder)(const unsigned char *, std::vector<S7_200_PPI_Timer> &, unsigned char &);

// "value/status value/status", the value in hex; "refused" when the decoder returns false.
QString records(RecordDecoder decode, const QByteArray &received)
{
    std::vector<S7_200_PPI_Timer> list;
    unsigned char code = 0;
    if (!decode(unsignedBytes(received), list, code))
        return list.empty() ? QString("refused") : QString("refused, but with records");
    QStringList texts;
    for (const S7_200_PPI_Timer &record : list)
        texts += QString("%1/%2").arg(record.value, 4, 16, QLatin1Char('0')).arg(int(record.status));
    return texts.join(" ");
}

// What the check of an answer's header returns and hands out.
struct Header
{
    int size;
    unsigned short parameterLength;
    unsigned short dataLength;
    unsigned char errorClass;
    unsigned char errorCode;
};

Header unpacked(const QByteArray &bytes, int reference)
{
    Header header = {0, 0, 0, 0, 0};
    header.size = S7_200_PPILayer2UnpackSD2ReadWriteRspHeader(
        unsignedBytes(bytes), static_cast<unsigned short>(reference), header.parameterLength,
        header.dataLength, header.errorClass, header.errorCode);
    return header;
}

} // namespace

class TestDecoders : public QObject
{
    Q_OBJECT

private slots:
    void returnCodeHasItsMessage_data();
    void returnCodeHasItsMessage();
    void successHasANullMessage();
    void headerIsCheckedAgainstTheRequest_data();
    void headerIsCheckedAgainstTheRequest();
    void headerFieldsAreHandedOut();
    void headerFieldsAreHandedOutOfARefusedHeader();
    void bytesFollowThePrefix_data();
    void bytesFollowThePrefix();
    void bytesOfARefusedItemAreEmpty_data();
    void bytesOfARefusedItemAreEmpty();
    void returnCodeOfBytesIsHandedOut();
    void highSpeedCounters_data();
    void highSpeedCounters();
    void returnCodeOfHighSpeedCountersIsHandedOut();
    void timers_data();
    void timers();
    void counters_data();
    void counters();
    void recordsAreAppended();
    void returnCodeOfTimersAndCountersIsHandedOut();
};

void TestDecoders::returnCodeHasItsMessage_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("text");
    QTest::newRow("01") << 0x01 << "Hardware fault";
    QTest::newRow("03") << 0x03 << "Illegal object access";
    QTest::newRow("05") << 0x05 << "Invalid address (incorrect variable address)";
    QTest::newRow("06") << 0x06 << "Data type is not supported";
    QTest::newRow("0a") << 0x0a << "Object does not exist or length error";
    QTest::newRow("ff") << 0xff << "";
    QTest::newRow("00") << 0x00 << "unknow error";
    QTest::newRow("02") << 0x02 << "unknow error";
    QTest::newRow("04") << 0x04 << "unknow error";
    QTest::newRow("07") << 0x07 << "unknow error";
    QTest::newRow("0b") << 0x0b << "unknow error";
    QTest::newRow("85") << 0x85 << "unknow error";
    QTest::newRow("fe") << 0xfe << "unknow error";
}

void TestDecoders::returnCodeHasItsMessage()
{
    QFETCH(int, code);
    QFETCH(QString, text);
    QCOMPARE(S7_200_PPIReadRspErrorCodeToStr(static_cast<unsigned char>(code)), text);
}

void TestDecoders::successHasANullMessage()
{
    QVERIFY(S7_200_PPIReadRspErrorCodeToStr(0xff).isNull());
}

void TestDecoders::headerIsCheckedAgainstTheRequest_data()
{
    QTest::addColumn<QByteArray>("header");
    QTest::addColumn<int>("reference");
    QTest::addColumn<int>("size");
    QTest::newRow("answer with data") << bytes("32 03 0000 0001 0002 0008 00 00") << 1 << 12;
    QTest::newRow("answer without data") << bytes("32 02 0000 0001 0002 0000 00 00") << 1 << 12;
    QTest::newRow("parameter length 0") << bytes("32 03 0000 0001 0000 0008 00 00") << 1 << 12;
    QTest::newRow("any data length") << bytes("32 03 0000 0001 0002 ffff 00 00") << 1 << 12;
    QTest::newRow("any error") << bytes("32 03 0000 0001 0002 0008 85 04") << 1 << 12;
    QTest::newRow("reference 0") << bytes("32 03 0000 0000 0002 0008 00 00") << 0 << 12;
    QTest::newRow("reference ffff") << bytes("32 03 0000 ffff 0002 0008 00 00") << 0xffff << 12;
    QTest::newRow("protocol 31") << bytes("31 03 0000 0001 0002 0008 00 00") << 1 << -1;
    QTest::newRow("message type 1") << bytes("32 01 0000 0001 0002 0008 00 00") << 1 << -1;
    QTest::newRow("message type 4") << bytes("32 04 0000 0001 0002 0008 00 00") << 1 << -1;
    QTest::newRow("message type 7") << bytes("32 07 0000 0001 0002 0008 00 00") << 1 << -1;
    QTest::newRow("reserved 0001") << bytes("32 03 0001 0001 0002 0008 00 00") << 1 << -1;
    QTest::newRow("reserved 0100") << bytes("32 03 0100 0001 0002 0008 00 00") << 1 << -1;
    QTest::newRow("parameter length 1") << bytes("32 03 0000 0001 0001 0008 00 00") << 1 << -1;
    QTest::newRow("parameter length 3") << bytes("32 03 0000 0001 0003 0008 00 00") << 1 << -1;
    QTest::newRow("parameter length 4") << bytes("32 03 0000 0001 0004 0008 00 00") << 1 << -1;
    QTest::newRow("parameter length 6") << bytes("32 03 0000 0001 0006 0008 00 00") << 1 << -1;
    QTest::newRow("parameter length 0202") << bytes("32 03 0000 0001 0202 0008 00 00") << 1 << -1;
    QTest::newRow("reference one lower") << bytes("32 03 0000 0001 0002 0008 00 00") << 2 << -1;
    QTest::newRow("reference of the other byte") << bytes("32 03 0000 0101 0002 0008 00 00") << 1 << -1;
    QTest::newRow("ffff for 0") << bytes("32 03 0000 ffff 0002 0008 00 00") << 0 << -1;
}

void TestDecoders::headerIsCheckedAgainstTheRequest()
{
    QFETCH(QByteArray, header);
    QFETCH(int, reference);
    QFETCH(int, size);
    QCOMPARE(unpacked(header, reference).size, size);
}

void TestDecoders::headerFieldsAreHandedOut()
{
    const Header header = unpacked(bytes("32 03 0000 0001 0002 1234 85 04"), 1);
    QCOMPARE(int(header.parameterLength), 2);
    QCOMPARE(int(header.dataLength), 0x1234);
    QCOMPARE(int(header.errorClass), 0x85);
    QCOMPARE(int(header.errorCode), 4);
}

void TestDecoders::headerFieldsAreHandedOutOfARefusedHeader()
{
    const Header header = unpacked(bytes("99 99 9999 9999 abcd 1234 85 04"), 1);
    QCOMPARE(int(header.parameterLength), 0xabcd);
    QCOMPARE(int(header.dataLength), 0x1234);
    QCOMPARE(int(header.errorClass), 0x85);
    QCOMPARE(int(header.errorCode), 4);
}

void TestDecoders::bytesFollowThePrefix_data()
{
    QTest::addColumn<QByteArray>("prefix");
    QTest::addColumn<QByteArray>("parameters");
    QTest::addColumn<QString>("data");
    const QByteArray four = bytes("04 01 ff 04 0020 11223344");
    const QByteArray six = bytes("04 01 ff 04 0030 112233445566");
    QTest::newRow("VB") << QByteArray("VB") << four << "11223344";
    QTest::newRow("V") << QByteArray("V") << four << "11223344";
    QTest::newRow("no prefix") << QByteArray() << four << "11223344";
    QTest::newRow("VW") << QByteArray("VW") << four << "22114433";
    QTest::newRow("VD") << QByteArray("VD") << four << "44332211";
    QTest::newRow("AIW") << QByteArray("AIW") << four << "22114433";
    QTest::newRow("SMD") << QByteArray("SMD") << four << "44332211";
    QTest::newRow("W") << QByteArray("W") << four << "22114433";
    QTest::newRow("vw") << QByteArray("vw") << four << "11223344";
    QTest::newRow("48 bits of VW") << QByteArray("VW") << six << "221144336655";
    QTest::newRow("48 bits of VD") << QByteArray("VD") << six << "44332211";
    QTest::newRow("20 bits of VB") << QByteArray("VB") << bytes("04 01 ff 04 0014 112233") << "1122";
    QTest::newRow("20 bits of VW") << QByteArray("VW") << bytes("04 01 ff 04 0014 112233") << "2211";
    QTest::newRow("31 bits of VD") << QByteArray("VD") << bytes("04 01 ff 04 001f 11223344") << "";
    QTest::newRow("7 bits of VB") << QByteArray("VB") << bytes("04 01 ff 04 0007 11") << "";
    QTest::newRow("no data") << QByteArray("VB") << bytes("04 01 ff 04 0000") << "";
}

void TestDecoders::bytesFollowThePrefix()
{
    QFETCH(QByteArray, prefix);
    QFETCH(QByteArray, parameters);
    QFETCH(QString, data);
    unsigned char code = 0;
    QCOMPARE(hex(S7_200_PPIGetRspBytes(unsignedBytes(parameters), prefix, code)), data);
    QCOMPARE(int(code), 0xff);
}

void TestDecoders::bytesOfARefusedItemAreEmpty_data()
{
    QTest::addColumn<QByteArray>("parameters");
    QTest::newRow("function 5") << bytes("05 01 ff 04 0008 11");
    QTest::newRow("0 items") << bytes("04 00 ff 04 0008 11");
    QTest::newRow("2 items") << bytes("04 02 ff 04 0008 11");
    QTest::newRow("return code 05") << bytes("04 01 05 04 0008 11");
    QTest::newRow("transport size 3") << bytes("04 01 ff 03 0008 11");
    QTest::newRow("transport size 9") << bytes("04 01 ff 09 0001 11");
}

void TestDecoders::bytesOfARefusedItemAreEmpty()
{
    QFETCH(QByteArray, parameters);
    unsigned char code = 0;
    QCOMPARE(hex(S7_200_PPIGetRspBytes(unsignedBytes(parameters), "VB", code)), QString(""));
}

void TestDecoders::returnCodeOfBytesIsHandedOut()
{
    unsigned char code = 0;
    S7_200_PPIGetRspBytes(unsignedBytes(bytes("04 01 05 00 0000")), "VB", code);
    QCOMPARE(int(code), 0x05);
    S7_200_PPIGetRspBytes(unsignedBytes(bytes("05 02 0a 00 0000")), "VB", code);
    QCOMPARE(int(code), 0x0a);
    S7_200_PPIGetRspBytes(unsignedBytes(bytes("04 01 ff 09 0000")), "VB", code);
    QCOMPARE(int(code), 0xff);
}

void TestDecoders::highSpeedCounters_data()
{
    QTest::addColumn<QByteArray>("parameters");
    QTest::addColumn<QString>("data");
    const auto row = [](const char *name, const char *parameters, const char *data) {
        QTest::newRow(name) << bytes(parameters) << data;
    };
    row("one", "04 01 ff 09 0005 99 01020304", "04030201");
    row("two", "04 01 ff 09 000a 00 01020304 00 fffefdfc", "04030201fcfdfeff");
    row("none", "04 01 ff 09 0000", "");
    row("1 byte begins another", "04 01 ff 09 0006 00 01020304 00 05060708", "0403020108070605");
    row("function 5", "05 01 ff 09 0005 00 01020304", "");
    row("0 items", "04 00 ff 09 0005 00 01020304", "");
    row("2 items", "04 02 ff 09 0005 00 01020304", "");
    row("return code 05", "04 01 05 09 0005 00 01020304", "");
    row("transport size 4", "04 01 ff 04 0005 00 01020304", "");
}

void TestDecoders::highSpeedCounters()
{
    QFETCH(QByteArray, parameters);
    QFETCH(QString, data);
    unsigned char code = 0;
    QCOMPARE(hex(S7_200_PPIGetRspHSC(unsignedBytes(parameters), code)), data);
}

void TestDecoders::returnCodeOfHighSpeedCountersIsHandedOut()
{
    unsigned char code = 0;
    S7_200_PPIGetRspHSC(unsignedBytes(bytes("04 01 0a 00 0000")), code);
    QCOMPARE(int(code), 0x0a);
    S7_200_PPIGetRspHSC(unsignedBytes(bytes("04 01 ff 04 0000")), code);
    QCOMPARE(int(code), 0xff);
}

void TestDecoders::timers_data()
{
    QTest::addColumn<QByteArray>("parameters");
    QTest::addColumn<QString>("list");
    QTest::newRow("two") << bytes("04 01 ff 09 000a 02 00001234 00 00005678") << "1234/1 5678/0";
    QTest::newRow("only the low 16 bits count") << bytes("04 01 ff 09 0005 00 abcd0001") << "0001/0";
    QTest::newRow("status 02") << bytes("04 01 ff 09 0005 02 00000000") << "0000/1";
    QTest::newRow("status 10") << bytes("04 01 ff 09 0005 10 00000000") << "0000/0";
    QTest::newRow("status fd") << bytes("04 01 ff 09 0005 fd 00000000") << "0000/0";
    QTest::newRow("status ff") << bytes("04 01 ff 09 0005 ff 00000000") << "0000/1";
    QTest::newRow("no data") << bytes("04 01 ff 09 0000") << "";
    QTest::newRow("length 1") << bytes("04 01 ff 09 0001 02 00001234") << "1234/1";
    QTest::newRow("length 4") << bytes("04 01 ff 09 0004 02 00001234") << "1234/1";
    QTest::newRow("length 6") << bytes("04 01 ff 09 0006 02 00001234 00 00005678") << "1234/1 5678/0";
    QTest::newRow("function 5") << bytes("05 01 ff 09 0005 02 00001234") << "refused";
    QTest::newRow("0 items") << bytes("04 00 ff 09 0005 02 00001234") << "refused";
    QTest::newRow("2 items") << bytes("04 02 ff 09 0005 02 00001234") << "refused";
    QTest::newRow("return code 05") << bytes("04 01 05 09 0005 02 00001234") << "refused";
    QTest::newRow("transport size 4") << bytes("04 01 ff 04 0005 02 00001234") << "refused";
    QTest::newRow("transport size 4, no data") << bytes("04 01 ff 04 0000") << "refused";
}

void TestDecoders::timers()
{
    QFETCH(QByteArray, parameters);
    QFETCH(QString, list);
    QCOMPARE(records(S7_200_PPIGetRspTimers, parameters), list);
}

void TestDecoders::counters_data()
{
    QTest::addColumn<QByteArray>("parameters");
    QTest::addColumn<QString>("list");
    QTest::newRow("two") << bytes("04 01 ff 09 0006 10 1234 00 5678") << "1234/1 5678/0";
    QTest::newRow("status 10") << bytes("04 01 ff 09 0003 10 0000") << "0000/1";
    QTest::newRow("status 02") << bytes("04 01 ff 09 0003 02 0000") << "0000/0";
    QTest::newRow("status ef") << bytes("04 01 ff 09 0003 ef 0000") << "0000/0";
    QTest::newRow("status ff") << bytes("04 01 ff 09 0003 ff ffff") << "ffff/1";
    QTest::newRow("no data") << bytes("04 01 ff 09 0000") << "";
    QTest::newRow("length 1") << bytes("04 01 ff 09 0001 10 1234") << "1234/1";
    QTest::newRow("length 4") << bytes("04 01 ff 09 0004 10 1234 00 5678") << "1234/1 5678/0";
    QTest::newRow("function 5") << bytes("05 01 ff 09 0003 10 1234") << "refused";
    QTest::newRow("0 items") << bytes("04 00 ff 09 0003 10 1234") << "refused";
    QTest::newRow("2 items") << bytes("04 02 ff 09 0003 10 1234") << "refused";
    QTest::newRow("return code 0a") << bytes("04 01 0a 09 0003 10 1234") << "refused";
    QTest::newRow("transport size 4") << bytes("04 01 ff 04 0003 10 1234") << "refused";
}

void TestDecoders::counters()
{
    QFETCH(QByteArray, parameters);
    QFETCH(QString, list);
    QCOMPARE(records(S7_200_PPIGetRspCounters, parameters), list);
}

void TestDecoders::recordsAreAppended()
{
    std::vector<S7_200_PPI_Timer> list;
    unsigned char code = 0;
    S7_200_PPIGetRspTimers(unsignedBytes(bytes("04 01 ff 09 0005 02 00001234")), list, code);
    S7_200_PPIGetRspCounters(unsignedBytes(bytes("04 01 ff 09 0003 00 5678")), list, code);
    QCOMPARE(int(list.size()), 2);
    QCOMPARE(int(list.at(0).value), 0x1234);
    QCOMPARE(int(list.at(1).value), 0x5678);
}

void TestDecoders::returnCodeOfTimersAndCountersIsHandedOut()
{
    std::vector<S7_200_PPI_Timer> list;
    unsigned char code = 0;
    S7_200_PPIGetRspTimers(unsignedBytes(bytes("04 01 03 00 0000")), list, code);
    QCOMPARE(int(code), 0x03);
    S7_200_PPIGetRspCounters(unsignedBytes(bytes("04 01 06 00 0000")), list, code);
    QCOMPARE(int(code), 0x06);
}

TEST_CLASS(TestDecoders)

#include "test_decoders.moc"
