// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Writes of words and double words: one handler for both, which fits the data to the count; the address
// decides the width on the line.

#include "answer.h"
#include "commands.h"
#include "hex.h"
#include "log_capture.h"
#include "outcome.h"
#include "scripted_port.h"
#include "simatic_s7_200_ppi/s7_200_ppi.h"

#include <QtTest>

#include <climits>

namespace {

const char kTaken[] = "05 01 ff";
const int kBlockStart = 17;
const int kDataStart = 31;
const int kFrameEnd = 2; // check sum and end delimiter

// Parameter block and data block of a write request.
QString written(const QByteArray &request)
{
    const int end = int(request.size()) - kFrameEnd;
    return hex(request.mid(kBlockStart, kDataStart - kBlockStart)) + " " +
           hex(request.mid(kDataStart, end - kDataStart));
}

// What an attempt of a handler sends.
typedef bool (DriverS7_200_PPI::*Handler)(AbstractDeviceInterface *, const CommunicatorCommand &,
                                          const QByteArray &);

QString writtenBy(Handler handler, const CommunicatorCommand &command, const QByteArray &data)
{
    ScriptedPort port;
    port.serves(Answer(kTaken));
    DriverS7_200_PPI driver;
    const bool taken = (driver.*handler)(&port, command, data);
    return taken && port.scriptIsFinished() ? written(port.frames().at(0)) : QString("not taken");
}

} // namespace

class TestWordWrites : public QObject
{
    Q_OBJECT

private slots:
    void twoWordsToVW10();
    void doubleWordToVD4();
    void dataAreFittedToTheCount_data();
    void dataAreFittedToTheCount();
    void addressDecidesTheWidth_data();
    void addressDecidesTheWidth();
    void timersAndCountersAreFitted_data();
    void timersAndCountersAreFitted();
    void countsBeyond16BitsAreSentWhole_data();
    void countsBeyond16BitsAreSentWhole();
    void countsOf0AndBelowSendNoElements_data();
    void countsOf0AndBelowSendNoElements();
    void writeWordsLeavesOddDataOfOtherTypes();

    void writeDWordsSendsTheDataUnchanged_data();
    void writeDWordsSendsTheDataUnchanged();
    void writeDWordsRefusesWhatCanNotBeWritten_data();
    void writeDWordsRefusesWhatCanNotBeWritten();
    void writeDWordsFailsLikeTheOthers();
};

void TestWordWrites::twoWordsToVW10()
{
    ScriptedPort port;
    port.expects("68 23 23 68 02 00 6c 32 01 00 00 00 01 00 0e 00 08"
                 "05 01 12 0a 10 04 00 02 00 01 84 00 00 50 00 04 00 20 12 34 56 78 fd 16")
        .answers("e5")
        .expects("10 02 00 5c 5e 16")
        .answers("68 12 12 68 00 02 08 32 03 00 00 00 01 00 02 00 01 00 00 05 01 ff 48 16");
    QVERIFY(outcomeOfWrite(wordCommand("VW10", 2), bytes("34 12 78 56"), port).taken);
    QVERIFY(port.scriptIsFinished());
}

void TestWordWrites::doubleWordToVD4()
{
    ScriptedPort port;
    port.expects("68 23 23 68 02 00 6c 32 01 00 00 00 01 00 0e 00 08"
                 "05 01 12 0a 10 06 00 01 00 01 84 00 00 20 00 04 00 20 11 22 33 44 64 16")
        .answers("e5")
        .expects("10 02 00 5c 5e 16")
        .answers("68 12 12 68 00 02 08 32 03 00 00 00 01 00 02 00 01 00 00 05 01 ff 48 16");
    QVERIFY(outcomeOfWrite(doubleWordCommand("VD4", 1), bytes("44 33 22 11"), port).taken);
    QVERIFY(port.scriptIsFinished());
}

void TestWordWrites::dataAreFittedToTheCount_data()
{
    QTest::addColumn<int>("dataType");
    QTest::addColumn<QString>("address");
    QTest::addColumn<int>("count");
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<QString>("sent");
    QTest::newRow("2 words of 4 bytes")
        << int(kWord) << "VW10" << 2 << bytes("34127856") << "0501120a10040002000184000050 0004002012345678";
    QTest::newRow("2 words of 6 bytes") << int(kWord) << "VW10" << 2 << bytes("34127856bc9a")
                                        << "0501120a10040002000184000050 0004002012345678";
    QTest::newRow("2 words of 2 bytes")
        << int(kWord) << "VW10" << 2 << bytes("3412") << "0501120a10040002000184000050 0004002012340000";
    QTest::newRow("2 words of 3 bytes")
        << int(kWord) << "VW10" << 2 << bytes("341278") << "0501120a10040002000184000050 0004002012340078";
    QTest::newRow("1 word of nothing")
        << int(kWord) << "VW10" << 1 << QByteArray() << "0501120a10040001000184000050 000400100000";
    QTest::newRow("1 double word of 4 bytes") << int(kDoubleWord) << "VD10" << 1 << bytes("44332211")
                                              << "0501120a10060001000184000050 0004002011223344";
    QTest::newRow("1 double word of 6 bytes") << int(kDoubleWord) << "VD10" << 1 << bytes("443322118877")
                                              << "0501120a10060001000184000050 0004002011223344";
    QTest::newRow("1 double word of 2 bytes") << int(kDoubleWord) << "VD10" << 1 << bytes("4433")
                                              << "0501120a10060001000184000050 0004002000003344";
    QTest::newRow("2 double words of 4 bytes") << int(kDoubleWord) << "VD10" << 2 << bytes("44332211")
                                               << "0501120a10060002000184000050 000400401122334400000000";
}

void TestWordWrites::dataAreFittedToTheCount()
{
    QFETCH(int, dataType);
    QFETCH(QString, address);
    QFETCH(int, count);
    QFETCH(QByteArray, data);
    QFETCH(QString, sent);
    QCOMPARE(written(requestOf(command(dataType, address, count), data)), sent);
}

void TestWordWrites::addressDecidesTheWidth_data()
{
    QTest::addColumn<int>("dataType");
    QTest::addColumn<QString>("address");
    QTest::addColumn<int>("count");
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<QString>("sent");
    QTest::newRow("double word as words") << int(kDoubleWord) << "VW4" << 1 << bytes("22114433")
                                          << "0501120a10040002000184000020 0004002011223344";
    QTest::newRow("double word as bytes") << int(kDoubleWord) << "VB4" << 1 << bytes("44332211")
                                          << "0501120a10020004000184000020 0004002044332211";
    QTest::newRow("words as bytes") << int(kWord) << "VB10" << 2 << bytes("34127856")
                                    << "0501120a10020004000184000050 0004002034127856";
    QTest::newRow("2 words as a double word")
        << int(kWord) << "VD10" << 2 << bytes("44332211") << "0501120a10060001000184000050 0004002011223344";
    QTest::newRow("1 word as a double word")
        << int(kWord) << "VD10" << 1 << bytes("3412") << "0501120a10060001000184000050 0004002000001234";
    QTest::newRow("3 words as 2 double words") << int(kWord) << "VD10" << 3 << bytes("341278569abc")
                                               << "0501120a10060002000184000050 00040040567812340000bc9a";
    QTest::newRow("word without a prefix")
        << int(kWord) << "10" << 1 << bytes("3412") << "0501120a10020002000000000050 000400103412";
}

void TestWordWrites::addressDecidesTheWidth()
{
    dataAreFittedToTheCount();
}

void TestWordWrites::timersAndCountersAreFitted_data()
{
    QTest::addColumn<int>("dataType");
    QTest::addColumn<QString>("address");
    QTest::addColumn<int>("count");
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<QString>("sent");
    QTest::newRow("1 timer") << int(kWord) << "T10" << 1 << bytes("2c01")
                             << "0501120a101f000100001f00000a 00040028000000012c";
    QTest::newRow("1 timer of 4 bytes")
        << int(kWord) << "T10" << 1 << bytes("2c01e803") << "0501120a101f000100001f00000a 00040028000000012c";
    QTest::newRow("1 timer of 1 byte")
        << int(kWord) << "T10" << 1 << bytes("2c") << "0501120a101f000100001f00000a 00040028000000002c";
    QTest::newRow("2 timers of 2 bytes") << int(kWord) << "T10" << 2 << bytes("2c01")
                                         << "0501120a101f000200001f00000a 00040050000000012c0000000000";
    QTest::newRow("double word of timers") << int(kDoubleWord) << "T37" << 1 << bytes("2c01e803")
                                           << "0501120a101f000200001f000025 00040050000000012c00000003e8";
    QTest::newRow("1 counter") << int(kWord) << "C5" << 1 << bytes("0500")
                               << "0501120a101e000100001e000005 00040018000005";
    QTest::newRow("2 counters of 2 bytes")
        << int(kWord) << "C5" << 2 << bytes("0500") << "0501120a101e000200001e000005 00040030000005000000";
    QTest::newRow("double word of counters of 6 bytes")
        << int(kDoubleWord) << "C5" << 1 << bytes("050006010700")
        << "0501120a101e000200001e000005 00040030000005000106";
}

void TestWordWrites::timersAndCountersAreFitted()
{
    dataAreFittedToTheCount();
}

// The fields of the request hold the low 16 bits of count and length, the check sum covers what the
// length byte says.
void TestWordWrites::countsBeyond16BitsAreSentWhole_data()
{
    QTest::addColumn<int>("dataType");
    QTest::addColumn<QString>("address");
    QTest::addColumn<int>("count");
    QTest::addColumn<QByteArray>("front");
    QTest::addColumn<int>("size");
    QTest::addColumn<QString>("end");
    QTest::newRow("65536 words") << int(kWord) << "VW0" << 65536
                                 << bytes("68 1f 1f 68 02 00 6c 32 01 00 00 00 01 00 0e 00 04"
                                          "05 01 12 0a 10 04 00 00 00 01 84 00 00 00 00 04 00 00 12 34")
                                 << 131109 << "7316";
    QTest::newRow("65537 words") << int(kWord) << "VW0" << 65537
                                 << bytes("68 21 21 68 02 00 6c 32 01 00 00 00 01 00 0e 00 06"
                                          "05 01 12 0a 10 04 00 01 00 01 84 00 00 00 00 04 00 10 12 34")
                                 << 131111 << "cc16";
    QTest::newRow("65537 double words")
        << int(kDoubleWord) << "VD0" << 65537
        << bytes("68 23 23 68 02 00 6c 32 01 00 00 00 01 00 0e 00 08"
                 "05 01 12 0a 10 06 00 01 00 01 84 00 00 00 00 04 00 20 00 00 12 34")
        << 262185 << "e016";
    QTest::newRow("65537 timers") << int(kWord) << "T1" << 65537
                                  << bytes("68 24 24 68 02 00 6c 32 01 00 00 00 01 00 0e 00 09"
                                           "05 01 12 0a 10 1f 00 01 00 00 1f 00 00 01 00 04 00 28"
                                           "00 00 00 12 34")
                                  << 327722 << "9d16";
    QTest::newRow("65537 counters") << int(kWord) << "C1" << 65537
                                    << bytes("68 22 22 68 02 00 6c 32 01 00 00 00 01 00 0e 00 07"
                                             "05 01 12 0a 10 1e 00 01 00 00 1e 00 00 01 00 04 00 18 00 12 34")
                                    << 196648 << "8916";
}

void TestWordWrites::countsBeyond16BitsAreSentWhole()
{
    QFETCH(int, dataType);
    QFETCH(QString, address);
    QFETCH(int, count);
    QFETCH(QByteArray, front);
    QFETCH(int, size);
    QFETCH(QString, end);
    ScriptedPort port;
    port.serves(Answer(kTaken));
    QVERIFY(outcomeOfWrite(command(dataType, address, count), bytes("34 12"), port).taken);
    const QByteArray request = port.frames().at(0);
    QCOMPARE(hex(request.left(int(front.size()))), hex(front));
    QCOMPARE(int(request.size()), size);
    QCOMPARE(hex(request.right(2)), end);
}

void TestWordWrites::countsOf0AndBelowSendNoElements_data()
{
    QTest::addColumn<int>("dataType");
    QTest::addColumn<int>("count");
    QTest::newRow("no words") << int(kWord) << 0;
    QTest::newRow("-1 words") << int(kWord) << -1;
    QTest::newRow("INT_MIN words") << int(kWord) << INT_MIN;
    QTest::newRow("no double words") << int(kDoubleWord) << 0;
    QTest::newRow("-1 double words") << int(kDoubleWord) << -1;
    QTest::newRow("INT_MIN double words") << int(kDoubleWord) << INT_MIN;
}

void TestWordWrites::countsOf0AndBelowSendNoElements()
{
    QFETCH(int, dataType);
    QFETCH(int, count);
    QCOMPARE(hex(requestOf(command(dataType, "VW10", count), bytes("34 12"))),
             hex(bytes("68 1f 1f 68 02 00 6c 32 01 00 00 00 01 00 0e 00 04"
                       "05 01 12 0a 10 04 00 00 00 01 84 00 00 50 00 04 00 00 c3 16")));
    QCOMPARE(hex(requestOf(command(dataType, "T10", count), bytes("34 12"))),
             hex(bytes("68 1f 1f 68 02 00 6c 32 01 00 00 00 01 00 0e 00 04"
                       "05 01 12 0a 10 1f 00 00 00 00 1f 00 00 0a 00 04 00 00 32 16")));
}

void TestWordWrites::writeWordsLeavesOddDataOfOtherTypes()
{
    QCOMPARE(writtenBy(&DriverS7_200_PPI::writeWords, byteCommand("T10", 1), bytes("2c 01 e8")),
             QString("0501120a101f000100001f00000a 00040050000000012c00000000e8"));
}

void TestWordWrites::writeDWordsSendsTheDataUnchanged_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<QString>("sent");
    QTest::newRow("2 double words") << "VD10" << bytes("4433221188776655")
                                    << "0501120a10060002000184000050 000400401122334455667788";
    QTest::newRow("half a double word")
        << "VD10" << bytes("3412") << "0501120a10060001000184000050 0004002000001234";
    QTest::newRow("words") << "VW10" << bytes("34127856") << "0501120a10040002000184000050 0004002012345678";
    QTest::newRow("bytes") << "VB10" << bytes("112233") << "0501120a10020003000184000050 00040018112233";
    QTest::newRow("timers") << "T37" << bytes("2c01e803")
                            << "0501120a101f000200001f000025 00040050000000012c00000003e8";
    QTest::newRow("timers, 3 bytes") << "T37" << bytes("2c01e8")
                                     << "0501120a101f000100001f000025 00040050000000012c00000000e8";
    QTest::newRow("counters, 3 bytes")
        << "C5" << bytes("050006") << "0501120a101e000100001e000005 00040030000005000006";
}

void TestWordWrites::writeDWordsSendsTheDataUnchanged()
{
    QFETCH(QString, address);
    QFETCH(QByteArray, data);
    QFETCH(QString, sent);
    QCOMPARE(writtenBy(&DriverS7_200_PPI::writeDWords, doubleWordCommand(address, 1), data), sent);
}

void TestWordWrites::writeDWordsRefusesWhatCanNotBeWritten_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("HC0") << "can not write data to HC0";
    QTest::newRow("AIW4") << "can not write data to AIW4";
}

void TestWordWrites::writeDWordsRefusesWhatCanNotBeWritten()
{
    QFETCH(QString, text);
    ScriptedPort port;
    DriverS7_200_PPI driver;
    LogCapture log;
    QVERIFY(!driver.writeDWords(&port, doubleWordCommand(QTest::currentDataTag(), 1), bytes("44332211")));
    QVERIFY(driver.hasError());
    QCOMPARE(driver.getLastError(), text);
    QCOMPARE(log.lines(), QStringList());
    QVERIFY(port.scriptIsFinished());
}

void TestWordWrites::writeDWordsFailsLikeTheOthers()
{
    ScriptedPort port;
    port.retries(3).serves(Answer("05 01 05"));
    DriverS7_200_PPI driver;
    LogCapture log;
    QVERIFY(!driver.writeDWords(&port, doubleWordCommand("VD10", 1), bytes("44332211")));
    QCOMPARE(log.texts(), QStringList() << "Invalid address (incorrect variable address)");
    QVERIFY(port.scriptIsFinished());
}

QTEST_APPLESS_MAIN(TestWordWrites)

#include "test_word_writes.moc"
