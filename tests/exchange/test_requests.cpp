// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Address texts, and the frames of read requests built from them.

#include "frame_vectors.h"
#include "hex.h"
#include "simatic_s7_200_ppi/ppi_address.h"
#include "simatic_s7_200_ppi/ppi_layer2.h"
#include "simatic_s7_200_ppi/ppi_request.h"
#include "simatic_s7_200_ppi/ppi_static.h"
#include "test_class.h"
#include "tools/address_text.h"

#include <QtTest>

class TestRequests : public QObject
{
    Q_OBJECT

private slots:
    void versionTextExists();
    void areaTableHasACodeForEveryPrefix_data();
    void areaTableHasACodeForEveryPrefix();
    void areaTableHas29Prefixes();
    void prefixesThatAreNotInTheAreaTable_data();
    void prefixesThatAreNotInTheAreaTable();
    void lookingUpAnUnknownPrefixDoesNotInsertIt();
    void prefixIsTheLeadingLetters_data();
    void prefixIsTheLeadingLetters();
    void byteNumberIsAllDigits_data();
    void byteNumberIsAllDigits();
    void bitNumberIsTheLastCharacter_data();
    void bitNumberIsTheLastCharacter();
    void objectsAreCountersTimersAndHighSpeedCounters_data();
    void objectsAreCountersTimersAndHighSpeedCounters();

    void poll_data();
    void poll();
    void frameAroundAPDU_data();
    void frameAroundAPDU();
    void lengthOfALongPDUWraps_data();
    void lengthOfALongPDUWraps();

    void headerAdvancesTheReference_data();
    void headerAdvancesTheReference();
    void parameterBlock_data();
    void parameterBlock();
    void pduOfElements();
    void pduOfObjects_data();
    void pduOfObjects();
    void requestOfBytes_data();
    void requestOfBytes();
    void bytesAreCountedInElementsOfThePrefix_data();
    void bytesAreCountedInElementsOfThePrefix();
    void requestOfObjects_data();
    void requestOfObjects();
    void everyPDUAdvancesTheReferenceOnce();
};

void TestRequests::versionTextExists()
{
    QCOMPARE(VERSION_STRING, QString("1.0.0"));
}

void TestRequests::areaTableHasACodeForEveryPrefix_data()
{
    QTest::addColumn<int>("code");
    const char *const inputs[] = {"I", "IB", "IW", "ID"};
    const char *const outputs[] = {"Q", "QB", "QW", "QD"};
    const char *const variables[] = {"V", "VB", "VW", "VD"};
    const char *const flags[] = {"M", "MB", "MW", "MD"};
    const char *const specials[] = {"SM", "SMB", "SMW", "SMD"};
    const char *const relays[] = {"S", "SB", "SW", "SD"};
    for (int i = 0; i < 4; ++i) {
        QTest::newRow(inputs[i]) << 0x81;
        QTest::newRow(outputs[i]) << 0x82;
        QTest::newRow(variables[i]) << 0x84;
        QTest::newRow(flags[i]) << 0x83;
        QTest::newRow(specials[i]) << 0x05;
        QTest::newRow(relays[i]) << 0x04;
    }
    QTest::newRow("T") << 0x1f;
    QTest::newRow("C") << 0x1e;
    QTest::newRow("HC") << 0x20;
    QTest::newRow("AIW") << 0x06;
    QTest::newRow("AQW") << 0x07;
}

void TestRequests::areaTableHasACodeForEveryPrefix()
{
    QFETCH(int, code);
    const QByteArray prefix(QTest::currentDataTag());
    QVERIFY(g_s7_200_ppi_area_table.contains(prefix));
    QCOMPARE(int(g_s7_200_ppi_area_table.value(prefix)), code);
}

void TestRequests::areaTableHas29Prefixes()
{
    QCOMPARE(int(g_s7_200_ppi_area_table.size()), 29);
}

void TestRequests::prefixesThatAreNotInTheAreaTable_data()
{
    QTest::addColumn<QByteArray>("prefix");
    QTest::newRow("AI") << QByteArray("AI");
    QTest::newRow("AQ") << QByteArray("AQ");
    QTest::newRow("DB") << QByteArray("DB");
    QTest::newRow("vb") << QByteArray("vb");
    QTest::newRow("no prefix") << QByteArray();
    QTest::newRow("CB") << QByteArray("CB");
}

void TestRequests::prefixesThatAreNotInTheAreaTable()
{
    QFETCH(QByteArray, prefix);
    QVERIFY(!g_s7_200_ppi_area_table.contains(prefix));
    const QByteArray block = S7_200_PPIPackLayer7ReadReqParamBlock(2, 1, prefix, 0);
    QCOMPARE(hex(block.mid(10, 1)), QString("00"));
}

void TestRequests::lookingUpAnUnknownPrefixDoesNotInsertIt()
{
    S7_200_PPIPackLayer7ReadReqParamBlock(2, 1, "DB", 0);
    QCOMPARE(int(g_s7_200_ppi_area_table.size()), 29);
}

void TestRequests::prefixIsTheLeadingLetters_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("prefix");
    QTest::newRow("VB100") << "VB100" << QByteArray("VB");
    QTest::newRow("SMB28") << "SMB28" << QByteArray("SMB");
    QTest::newRow("V10.3") << "V10.3" << QByteArray("V");
    QTest::newRow("HC0") << "HC0" << QByteArray("HC");
    QTest::newRow("100") << "100" << QByteArray();
    QTest::newRow("letters after digits") << "V1B2" << QByteArray("V");
    QTest::newRow("underscore") << "A_B1" << QByteArray("A_B");
    QTest::newRow("empty") << "" << QByteArray();
}

void TestRequests::prefixIsTheLeadingLetters()
{
    QFETCH(QString, text);
    QFETCH(QByteArray, prefix);
    QCOMPARE(ExtractPrefixSymbol(text), prefix);
}

void TestRequests::byteNumberIsAllDigits_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<uint>("number");
    QTest::newRow("VB100") << "VB100" << 100u;
    QTest::newRow("T37") << "T37" << 37u;
    QTest::newRow("AIW16") << "AIW16" << 16u;
    QTest::newRow("V10.3 keeps the digit after the dot") << "V10.3" << 103u;
    QTest::newRow("digits only") << "100" << 100u;
    QTest::newRow("no digits") << "VB" << 0u;
    QTest::newRow("empty") << "" << 0u;
    QTest::newRow("4294967295") << "VB4294967295" << 4294967295u;
    QTest::newRow("4294967297 wraps") << "VB4294967297" << 1u;
    QTest::newRow("a colon, behind 9, is no digit") << "VB1:" << 1u;
    QTest::newRow("a slash, in front of 0, is no digit") << "V/1:0" << 10u;
}

void TestRequests::byteNumberIsAllDigits()
{
    QFETCH(QString, text);
    QFETCH(uint, number);
    QCOMPARE(S7_200_PPIExtractByteAddress(text), number);
}

void TestRequests::bitNumberIsTheLastCharacter_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<uint>("byte");
    QTest::addColumn<uint>("bit");
    QTest::newRow("V10.3") << "V10.3" << 10u << 3u;
    QTest::newRow("I0.7") << "I0.7" << 0u << 7u;
    QTest::newRow("M10") << "M10" << 10u << 0u;
    QTest::newRow("M13") << "M13" << 13u << 3u;
    QTest::newRow("V10.12") << "V10.12" << 10u << 2u;
    QTest::newRow("V10.A") << "V10.A" << 10u << 17u;
    QTest::newRow("V10.9") << "V10.9" << 10u << 9u;
    QTest::newRow("a slash is -1, wrapped") << "V10./" << 10u << 4294967295u;
    QTest::newRow("a dot at the end is -2, wrapped") << "V10." << 10u << 4294967294u;
    QTest::newRow("V1.0.3") << "V1.0.3" << 1u << 3u;
    QTest::newRow("no text is place 0.0") << "" << 0u << 0u;
    QTest::newRow("a colon or a slash is no digit of the byte") << "V/1:0.3" << 10u << 3u;
}

void TestRequests::bitNumberIsTheLastCharacter()
{
    QFETCH(QString, text);
    QFETCH(uint, byte);
    QFETCH(uint, bit);
    unsigned int byteAddress = 77;
    unsigned int bitNumber = 77;
    QVERIFY(S7_200_PPIExtractAddress(text, byteAddress, bitNumber));
    QCOMPARE(byteAddress, byte);
    QCOMPARE(bitNumber, bit);
}

void TestRequests::objectsAreCountersTimersAndHighSpeedCounters_data()
{
    QTest::addColumn<bool>("isObject");
    QTest::newRow("C") << true;
    QTest::newRow("T") << true;
    QTest::newRow("HC") << true;
    QTest::newRow("c") << false;
    QTest::newRow("TB") << false;
    QTest::newRow("H") << false;
    QTest::newRow("V") << false;
    QTest::newRow("VB") << false;
    QTest::newRow("") << false;
}

void TestRequests::objectsAreCountersTimersAndHighSpeedCounters()
{
    QFETCH(bool, isObject);
    QCOMPARE(S7_200_PPIIsObj(QByteArray(QTest::currentDataTag())), isObject);
}

void TestRequests::poll_data()
{
    QTest::addColumn<int>("station");
    QTest::addColumn<int>("master");
    QTest::addColumn<QString>("frame");
    QTest::newRow("station 2") << 2 << 0 << "1002005c5e16";
    QTest::newRow("station 126") << 126 << 0 << "107e005cda16";
    QTest::newRow("station 255, check sum wraps") << 255 << 0 << "10ff005c5b16";
    QTest::newRow("another master") << 2 << 3 << "1002035c6116";
}

void TestRequests::poll()
{
    QFETCH(int, station);
    QFETCH(int, master);
    QFETCH(QString, frame);
    QCOMPARE(hex(S7_200_PPIPackLayer2SD1Poll(static_cast<unsigned char>(station),
                                             static_cast<unsigned char>(master))),
             frame);
}

void TestRequests::frameAroundAPDU_data()
{
    QTest::addColumn<int>("station");
    QTest::addColumn<QByteArray>("pdu");
    QTest::addColumn<QString>("frame");
    QTest::newRow("4 bytes") << 2 << bytes("32 01 00 00") << "6807076802006c32010000a116";
    QTest::newRow("check sum wraps") << 255 << bytes("32 01 00 00") << "68070768ff006c320100009e16";
    QTest::newRow("no PDU") << 2 << QByteArray() << "6803036802006c6e16";
    QTest::newRow("bytes above 127") << 2 << bytes("ff 80") << "6805056802006cff80ed16";
}

void TestRequests::frameAroundAPDU()
{
    QFETCH(int, station);
    QFETCH(QByteArray, pdu);
    QFETCH(QString, frame);
    QCOMPARE(hex(S7_200_PPIPackLayer2SD2Request(static_cast<unsigned char>(station), 0, pdu)), frame);
}

// The PDUs are all 01, so the check sum is 6e and as many as the wrapped length covers.
void TestRequests::lengthOfALongPDUWraps_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<QString>("head");
    QTest::addColumn<QString>("end");
    const auto row = [](const char *name, int size, const char *head, const char *end) {
        QTest::newRow(name) << size << head << end;
    };
    row("252 bytes do not", 252, "68ffff6802006c", "6a16");
    row("253 bytes, none covered", 253, "6800006802006c", "0016");
    row("300 bytes, 47 covered", 300, "682f2f6802006c", "9a16");
}

void TestRequests::lengthOfALongPDUWraps()
{
    QFETCH(int, size);
    QFETCH(QString, head);
    QFETCH(QString, end);
    const QByteArray frame = S7_200_PPIPackLayer2SD2Request(2, 0, QByteArray(size, '\x01'));
    QCOMPARE(int(frame.size()), size + 9);
    QCOMPARE(hex(frame.left(7)), head);
    QCOMPARE(hex(frame.right(2)), end);
}

void TestRequests::headerAdvancesTheReference_data()
{
    QTest::addColumn<int>("before");
    QTest::addColumn<int>("parameterLength");
    QTest::addColumn<QString>("header");
    QTest::addColumn<int>("after");
    QTest::newRow("first") << 0 << 14 << "320100000001000e0000" << 1;
    QTest::newRow("last before the wrap") << 0xfffe << 14 << "32010000ffff000e0000" << 0xffff;
    QTest::newRow("wrap") << 0xffff << 14 << "320100000000000e0000" << 0;
    QTest::newRow("long block") << 0x1233 << 0x0102 << "32010000123401020000" << 0x1234;
}

void TestRequests::headerAdvancesTheReference()
{
    QFETCH(int, before);
    QFETCH(int, parameterLength);
    QFETCH(QString, header);
    QFETCH(int, after);
    unsigned short reference = static_cast<unsigned short>(before);
    const QByteArray packed =
        S7_200_PPIPackLayer7ReadReqHeader(reference, static_cast<unsigned short>(parameterLength));
    QCOMPARE(hex(packed), header);
    QCOMPARE(int(reference), after);
}

void TestRequests::parameterBlock_data()
{
    QTest::addColumn<int>("transportSize");
    QTest::addColumn<int>("count");
    QTest::addColumn<QByteArray>("prefix");
    QTest::addColumn<uint>("address");
    QTest::addColumn<QString>("block");
    const auto row = [](const char *name, int transportSize, int count, const char *prefix, uint address,
                        const char *block) {
        QTest::newRow(name) << transportSize << count << QByteArray(prefix) << address << block;
    };
    row("VB100", 2, 4, "VB", 100u, "0401120a10020004000184000320");
    row("SMB28", 2, 1, "SMB", 28u, "0401120a100200010000050000e0");
    row("AIW0", 4, 1, "AIW", 0u, "0401120a10040001000006000000");
    row("T37", 0x1f, 1, "T", 37u, "0401120a101f000100001f000025");
    row("C5", 0x1e, 1, "C", 5u, "0401120a101e000100001e000005");
    row("HC0", 0x20, 1, "HC", 0u, "0401120a10200001000020000000");
    row("unknown prefix", 2, 1, "DB", 100u, "0401120a10020001000000000320");
    row("V alone is data block 1", 2, 1, "VX", 0u, "0401120a10020001000100000000");
    row("count ffff", 2, 0xffff, "VB", 0u, "0401120a1002ffff000184000000");
    row("last address", 2, 1, "VB", 2097151u, "0401120a10020001000184fffff8");
    row("byte 2^21", 2, 1, "VB", 2097152u, "0401120a10020001000184000000");
    row("byte 2^32 - 1", 2, 1, "VB", 4294967295u, "0401120a10020001000184fffff8");
    row("timer 2^24 + 1", 0x1f, 1, "T", 16777217u, "0401120a101f000100001f000001");
}

void TestRequests::parameterBlock()
{
    QFETCH(int, transportSize);
    QFETCH(int, count);
    QFETCH(QByteArray, prefix);
    QFETCH(uint, address);
    QFETCH(QString, block);
    QCOMPARE(hex(S7_200_PPIPackLayer7ReadReqParamBlock(static_cast<unsigned char>(transportSize),
                                                       static_cast<unsigned short>(count), prefix, address)),
             block);
}

void TestRequests::pduOfElements()
{
    unsigned short reference = 0;
    QCOMPARE(hex(S7_200_PPIPackLayer7ReadBytesReqPDU(reference, "VB", 100, 4)),
             QString("320100000001000e00000401120a10020004000184000320"));
    QCOMPARE(hex(S7_200_PPIPackLayer7ReadWordsReqPDU(reference, "VW", 100, 4)),
             QString("320100000002000e00000401120a10040004000184000320"));
    QCOMPARE(hex(S7_200_PPIPackLayer7ReadDWordsReqPDU(reference, "VD", 100, 4)),
             QString("320100000003000e00000401120a10060004000184000320"));
}

void TestRequests::pduOfObjects_data()
{
    QTest::addColumn<QByteArray>("prefix");
    QTest::addColumn<QString>("pdu");
    QTest::newRow("C") << QByteArray("C") << "320100000001000e00000401120a101e000200001e000005";
    QTest::newRow("T") << QByteArray("T") << "320100000001000e00000401120a101f000200001f000005";
    QTest::newRow("HC") << QByteArray("HC") << "320100000001000e00000401120a10200002000020000005";
    QTest::newRow("any other") << QByteArray("c") << "320100000001000e00000401120a10200002000000000028";
}

void TestRequests::pduOfObjects()
{
    QFETCH(QByteArray, prefix);
    QFETCH(QString, pdu);
    unsigned short reference = 0;
    QCOMPARE(hex(S7_200_PPIPackLayer7ReadObjectsReqPDU(reference, prefix, 5, 2)), pdu);
}

void TestRequests::requestOfBytes_data()
{
    QTest::addColumn<QByteArray>("prefix");
    QTest::addColumn<uint>("address");
    QTest::addColumn<int>("count");
    QTest::addColumn<QByteArray>("frame");
    const FrameVectors frames("exchange/read_requests.frames");
    const auto row = [&](const char *name, const char *prefix, uint address, int count) {
        QTest::newRow(name) << QByteArray(prefix) << address << count << frames.sent(name);
    };
    row("VB100, 4 bytes", "VB", 100u, 4);
    row("VD100, 6 bytes as double words", "VD", 100u, 6);
    row("VW100, 3 bytes as words", "VW", 100u, 3);
    row("AIW16, 2 bytes", "AIW", 16u, 2);
    row("unknown prefix", "vb", 100u, 4);
}

void TestRequests::requestOfBytes()
{
    QFETCH(QByteArray, prefix);
    QFETCH(uint, address);
    QFETCH(int, count);
    QFETCH(QByteArray, frame);
    unsigned short reference = 0;
    QCOMPARE(
        hex(S7_200_PPIPackReadBytesReq(reference, 2, 0, prefix, address, static_cast<unsigned short>(count))),
        hex(frame));
    QCOMPARE(int(reference), 1);
}

void TestRequests::bytesAreCountedInElementsOfThePrefix_data()
{
    QTest::addColumn<QByteArray>("prefix");
    QTest::addColumn<int>("count");
    QTest::addColumn<QString>("elements");
    QTest::newRow("VD, 0 bytes") << QByteArray("VD") << 0 << "060000";
    QTest::newRow("VD, 1 byte") << QByteArray("VD") << 1 << "060001";
    QTest::newRow("VD, 2 bytes") << QByteArray("VD") << 2 << "060001";
    QTest::newRow("VD, 3 bytes") << QByteArray("VD") << 3 << "060001";
    QTest::newRow("VD, 4 bytes") << QByteArray("VD") << 4 << "060001";
    QTest::newRow("VD, 5 bytes") << QByteArray("VD") << 5 << "060002";
    QTest::newRow("VD, 65535 bytes") << QByteArray("VD") << 65535 << "064000";
    QTest::newRow("VW, 0 bytes") << QByteArray("VW") << 0 << "040000";
    QTest::newRow("VW, 1 byte") << QByteArray("VW") << 1 << "040001";
    QTest::newRow("VW, 2 bytes") << QByteArray("VW") << 2 << "040001";
    QTest::newRow("VW, 3 bytes") << QByteArray("VW") << 3 << "040002";
    QTest::newRow("VW, 65535 bytes") << QByteArray("VW") << 65535 << "048000";
    QTest::newRow("VB, 65535 bytes") << QByteArray("VB") << 65535 << "02ffff";
    QTest::newRow("SD is double words") << QByteArray("SD") << 4 << "060001";
    QTest::newRow("SW is words") << QByteArray("SW") << 4 << "040002";
    QTest::newRow("S is bytes") << QByteArray("S") << 4 << "020004";
    QTest::newRow("SM is bytes") << QByteArray("SM") << 4 << "020004";
    QTest::newRow("T is bytes here") << QByteArray("T") << 4 << "020004";
    QTest::newRow("no prefix is bytes") << QByteArray() << 4 << "020004";
}

void TestRequests::bytesAreCountedInElementsOfThePrefix()
{
    QFETCH(QByteArray, prefix);
    QFETCH(int, count);
    QFETCH(QString, elements);
    unsigned short reference = 0;
    const QByteArray frame =
        S7_200_PPIPackReadBytesReq(reference, 2, 0, prefix, 0, static_cast<unsigned short>(count));
    QCOMPARE(hex(frame.mid(22, 3)), elements);
}

void TestRequests::requestOfObjects_data()
{
    QTest::addColumn<QByteArray>("prefix");
    QTest::addColumn<uint>("number");
    QTest::addColumn<QByteArray>("frame");
    const FrameVectors frames("exchange/read_requests.frames");
    const auto row = [&](const char *name, const char *prefix, uint number) {
        QTest::newRow(name) << QByteArray(prefix) << number << frames.sent(name);
    };
    row("T37", "T", 37u);
    row("C5", "C", 5u);
    row("HC0", "HC", 0u);
}

void TestRequests::requestOfObjects()
{
    QFETCH(QByteArray, prefix);
    QFETCH(uint, number);
    QFETCH(QByteArray, frame);
    unsigned short reference = 0;
    QCOMPARE(hex(S7_200_PPIPackReadObjectsReq(reference, 2, 0, prefix, number, 2)), hex(frame));
    QCOMPARE(int(reference), 1);
}

void TestRequests::everyPDUAdvancesTheReferenceOnce()
{
    unsigned short reference = 0xfffc;
    S7_200_PPIPackLayer7ReadBytesReqPDU(reference, "VB", 0, 1);
    QCOMPARE(int(reference), 0xfffd);
    S7_200_PPIPackLayer7ReadObjectsReqPDU(reference, "T", 0, 1);
    QCOMPARE(int(reference), 0xfffe);
    S7_200_PPIPackReadBytesReq(reference, 2, 0, "VB", 0, 1);
    QCOMPARE(int(reference), 0xffff);
    S7_200_PPIPackReadObjectsReq(reference, 2, 0, "T", 0, 1);
    QCOMPARE(int(reference), 0);
}

TEST_CLASS(TestRequests)

#include "test_requests.moc"
