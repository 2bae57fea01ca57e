// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What writes send for what the host gives: bytes, words and double words of one address side by side,
// and what the handlers do when they are called by themselves.

#include "answer.h"
#include "commands.h"
#include "frame_vectors.h"
#include "hex.h"
#include "log_capture.h"
#include "outcome.h"
#include "request_layout.h"
#include "scripted_port.h"
#include "simatic_s7_200_ppi/s7_200_ppi.h"
#include "test_class.h"

#include <QtTest>

#include <climits>

namespace {

// The parts of the request frame
//
//     68 LE LE 68 02 00 6c  32 01 00 00 00 01 00 0e 00 length
//     05 01 12 0a 10 elements  00 04 payload  sum 16
struct Write
{
    const char *address;
    int count;
    int dataType;
    const char *given;
    const char *lengths;  // LE, and low byte of the length of the data
    const char *elements; // transport size and number, data block and area, address
    const char *payload;  // its length in bits, and its bytes
    const char *sum;
};

// clang-format off
const Write kWrites[] = {
    {"VB10",        3, kBytes,       "11 22 33",          "22 07", "02 00 03  00 01 84  00 00 50", "00 18  11 22 33", "45"},
    {"VB10",        1, kBytes,       "",                  "1f 04", "02 00 00  00 01 84  00 00 50", "00 00",           "c1"},
    {"VB10",        0, kBytes,       "11 22 33",          "22 07", "02 00 03  00 01 84  00 00 50", "00 18  11 22 33", "45"},
    {"VB10",        1, kBytes,       "11 22 33",          "22 07", "02 00 03  00 01 84  00 00 50", "00 18  11 22 33", "45"},
    {"VB10",        4, kBytes,       "11 22 33",          "22 07", "02 00 03  00 01 84  00 00 50", "00 18  11 22 33", "45"},
    {"VB10",       -1, kBytes,       "11 22 33",          "22 07", "02 00 03  00 01 84  00 00 50", "00 18  11 22 33", "45"},
    {"VB10",    65539, kBytes,       "11 22 33",          "22 07", "02 00 03  00 01 84  00 00 50", "00 18  11 22 33", "45"},
    {"VB10",  INT_MAX, kBytes,       "11 22 33",          "22 07", "02 00 03  00 01 84  00 00 50", "00 18  11 22 33", "45"},
    {"VB10",        2, kWords,       "34 12 78 56",       "23 08", "02 00 04  00 01 84  00 00 50", "00 20  34 12 78 56", "fd"},
    {"VB4",         1, kDoubleWords, "44 33 22 11",       "23 08", "02 00 04  00 01 84  00 00 20", "00 20  44 33 22 11", "63"},
    {"VW10",        4, kBytes,       "34 12 78 56",       "23 08", "04 00 02  00 01 84  00 00 50", "00 20  12 34 56 78", "fd"},
    {"VW10",        2, kWords,       "34 12 78 56",       "23 08", "04 00 02  00 01 84  00 00 50", "00 20  12 34 56 78", "fd"},
    {"VW10",        2, kWords,       "34 12 78 56 bc 9a", "23 08", "04 00 02  00 01 84  00 00 50", "00 20  12 34 56 78", "fd"},
    {"VW10",        2, kWords,       "34 12",             "23 08", "04 00 02  00 01 84  00 00 50", "00 20  12 34 00 00", "2f"},
    {"VW10",        2, kWords,       "34 12 78",          "23 08", "04 00 02  00 01 84  00 00 50", "00 20  12 34 00 78", "a7"},
    {"VW10",        1, kWords,       "",                  "21 06", "04 00 01  00 01 84  00 00 50", "00 10  00 00",    "d6"},
    {"VW10",        0, kWords,       "34 12",             "1f 04", "04 00 00  00 01 84  00 00 50", "00 00",           "c3"},
    {"VW10",       -1, kWords,       "34 12",             "1f 04", "04 00 00  00 01 84  00 00 50", "00 00",           "c3"},
    {"VW10",  INT_MIN, kWords,       "34 12",             "1f 04", "04 00 00  00 01 84  00 00 50", "00 00",           "c3"},
    {"VW10",        0, kDoubleWords, "34 12",             "1f 04", "04 00 00  00 01 84  00 00 50", "00 00",           "c3"},
    {"VW10",       -1, kDoubleWords, "34 12",             "1f 04", "04 00 00  00 01 84  00 00 50", "00 00",           "c3"},
    {"VW10",  INT_MIN, kDoubleWords, "34 12",             "1f 04", "04 00 00  00 01 84  00 00 50", "00 00",           "c3"},
    {"VW4",         1, kDoubleWords, "22 11 44 33",       "23 08", "04 00 02  00 01 84  00 00 20", "00 20  11 22 33 44", "63"},
    {"VD10",        4, kBlock,      "44 33 22 11",       "23 08", "06 00 01  00 01 84  00 00 50", "00 20  11 22 33 44", "94"},
    {"VD10",        2, kWords,       "44 33 22 11",       "23 08", "06 00 01  00 01 84  00 00 50", "00 20  11 22 33 44", "94"},
    {"VD10",        1, kWords,       "34 12",             "23 08", "06 00 01  00 01 84  00 00 50", "00 20  00 00 12 34", "30"},
    {"VD10",        3, kWords,       "34 12 78 56 9a bc", "27 0c", "06 00 02  00 01 84  00 00 50", "00 40  56 78 12 34 00 00 bc 9a", "79"},
    {"VD10",        1, kDoubleWords, "44 33 22 11",       "23 08", "06 00 01  00 01 84  00 00 50", "00 20  11 22 33 44", "94"},
    {"VD10",        1, kDoubleWords, "44 33 22 11 88 77", "23 08", "06 00 01  00 01 84  00 00 50", "00 20  11 22 33 44", "94"},
    {"VD10",        1, kDoubleWords, "44 33",             "23 08", "06 00 01  00 01 84  00 00 50", "00 20  00 00 33 44", "61"},
    {"VD10",        2, kDoubleWords, "44 33 22 11",       "27 0c", "06 00 02  00 01 84  00 00 50", "00 40  11 22 33 44 00 00 00 00", "b9"},
    {"AQW2",        2, kBytes,       "34 12",             "21 06", "04 00 01  00 00 07  00 00 10", "00 10  12 34",    "5e"},
    {"T10",         1, kBytes,       "2c",                "24 09", "1f 00 01  00 00 1f  00 00 0a", "00 28  00 00 00 00 2c", "8c"}, // filled to a word
    {"T10",         1, kWords,       "2c 01",             "24 09", "1f 00 01  00 00 1f  00 00 0a", "00 28  00 00 00 01 2c", "8d"},
    {"T10",         1, kWords,       "2c 01 e8 03",       "24 09", "1f 00 01  00 00 1f  00 00 0a", "00 28  00 00 00 01 2c", "8d"},
    {"T10",         1, kWords,       "2c",                "24 09", "1f 00 01  00 00 1f  00 00 0a", "00 28  00 00 00 00 2c", "8c"},
    {"T10",         2, kWords,       "2c 01",             "29 0e", "1f 00 02  00 00 1f  00 00 0a", "00 50  00 00 00 01 2c 00 00 00 00 00", "bb"},
    {"T10",         0, kWords,       "34 12",             "1f 04", "1f 00 00  00 00 1f  00 00 0a", "00 00",           "32"},
    {"T10",        -1, kWords,       "34 12",             "1f 04", "1f 00 00  00 00 1f  00 00 0a", "00 00",           "32"},
    {"T10",   INT_MIN, kWords,       "34 12",             "1f 04", "1f 00 00  00 00 1f  00 00 0a", "00 00",           "32"},
    {"T10",         0, kDoubleWords, "34 12",             "1f 04", "1f 00 00  00 00 1f  00 00 0a", "00 00",           "32"},
    {"T10",        -1, kDoubleWords, "34 12",             "1f 04", "1f 00 00  00 00 1f  00 00 0a", "00 00",           "32"},
    {"T10",   INT_MIN, kDoubleWords, "34 12",             "1f 04", "1f 00 00  00 00 1f  00 00 0a", "00 00",           "32"},
    {"T37",         3, kBytes,       "2c 01 e8",          "29 0e", "1f 00 02  00 00 1f  00 00 25", "00 50  00 00 00 01 2c 00 00 00 00 e8", "be"}, // filled to a word
    {"T37",         1, kBytes,       "",                  "1f 04", "1f 00 00  00 00 1f  00 00 25", "00 00",           "4d"},
    {"T37",         0, kBlock,      "2c 01",             "24 09", "1f 00 01  00 00 1f  00 00 25", "00 28  00 00 00 01 2c", "a8"},
    {"T37",         1, kBlock,      "2c 01",             "24 09", "1f 00 01  00 00 1f  00 00 25", "00 28  00 00 00 01 2c", "a8"},
    {"T37",         4, kBlock,      "2c 01",             "24 09", "1f 00 01  00 00 1f  00 00 25", "00 28  00 00 00 01 2c", "a8"},
    {"T37",        -1, kBlock,      "2c 01",             "24 09", "1f 00 01  00 00 1f  00 00 25", "00 28  00 00 00 01 2c", "a8"},
    {"T37",     65539, kBlock,      "2c 01",             "24 09", "1f 00 01  00 00 1f  00 00 25", "00 28  00 00 00 01 2c", "a8"},
    {"T37",   INT_MAX, kBlock,      "2c 01",             "24 09", "1f 00 01  00 00 1f  00 00 25", "00 28  00 00 00 01 2c", "a8"},
    {"T37",         1, kDoubleWords, "2c 01 e8 03",       "29 0e", "1f 00 02  00 00 1f  00 00 25", "00 50  00 00 00 01 2c 00 00 00 03 e8", "c1"},
    {"T37.2",       2, kBytes,       "2c 01",             "24 09", "1f 00 01  00 00 1f  00 01 74", "00 28  00 00 00 01 2c", "f8"}, // timer 372
    {"C5",          3, kBytes,       "05 00 06",          "25 0a", "1e 00 02  00 00 1e  00 00 05", "00 30  00 00 05 00 00 06", "6e"}, // filled to a word
    {"C5",          4, kBlock,      "05 00 06 01",       "25 0a", "1e 00 02  00 00 1e  00 00 05", "00 30  00 00 05 00 01 06", "6f"},
    {"C5",          1, kWords,       "05 00",             "22 07", "1e 00 01  00 00 1e  00 00 05", "00 18  00 00 05", "4c"},
    {"C5",          2, kWords,       "05 00",             "25 0a", "1e 00 02  00 00 1e  00 00 05", "00 30  00 00 05 00 00 00", "68"},
    {"C5",          1, kDoubleWords, "05 00 06 01 07 00", "25 0a", "1e 00 02  00 00 1e  00 00 05", "00 30  00 00 05 00 01 06", "6f"},
    {"vb10",        1, kBytes,       "11",                "20 05", "02 00 01  00 00 00  00 00 50", "00 08  11",       "57"},
    {"10",          1, kBytes,       "11",                "20 05", "02 00 01  00 00 00  00 00 50", "00 08  11",       "57"},
    {"10",          1, kWords,       "34 12",             "21 06", "02 00 02  00 00 00  00 00 50", "00 10  34 12",    "96"},
    {"",            1, kBytes,       "11",                "20 05", "02 00 01  00 00 00  00 00 00", "00 08  11",       "07"},
};
// clang-format on

QByteArray requestFrame(const Write &row)
{
    const QByteArray le = bytes(row.lengths).left(1);
    return bytes("68") + le + le + bytes("68 02 00 6c 32 01 00 00 00 01 00 0e 00") +
           bytes(row.lengths).mid(1) + bytes("05 01 12 0a 10") + bytes(row.elements) + bytes("00 04") +
           bytes(row.payload) + bytes(row.sum) + bytes("16");
}

const int kDataStart = 31;

typedef bool (DriverS7_200_PPI::*Handler)(AbstractDeviceInterface *, const CommunicatorCommand &,
                                          const QByteArray &);

// Parameter block and data block that an attempt of a handler sends.
QString writtenBy(Handler handler, const CommunicatorCommand &command, const QByteArray &data)
{
    ScriptedPort port;
    port.serves(Answer(kAccepted));
    DriverS7_200_PPI driver;
    if (!(driver.*handler)(&port, command, data) || !port.scriptIsFinished())
        return QString("not taken");
    const QByteArray request = port.frames().at(0);
    const int end = int(request.size()) - kFrameEnd;
    return hex(request.mid(kBlockStart, kDataStart - kBlockStart)) + " " +
           hex(request.mid(kDataStart, end - kDataStart));
}

} // namespace

class TestWrittenData : public QObject
{
    Q_OBJECT

private slots:
    void requestHoldsElementsAndData_data();
    void requestHoldsElementsAndData();
    void longDataAreSentInOneRequest();
    void dataUpToTheLimitAreTaken();
    void countsBeyond16BitsAreSentWhole_data();
    void countsBeyond16BitsAreSentWhole();

    void defaultWriteBytesTakesPrefixAndNumber();
    void writeBytesLeavesTheDataOfAllTypes();
    void writeWordsLeavesOddDataOfOtherTypes();
    void writeDWordsSendsTheDataUnchanged_data();
    void writeDWordsSendsTheDataUnchanged();
    void writeDWordsRefusesWhatCanNotBeWritten_data();
    void writeDWordsRefusesWhatCanNotBeWritten();
    void handlersMakeOneAttempt();
};

// Bytes are written as they were given, words and double words are fitted to the count; the address
// decides the width on the line.
void TestWrittenData::requestHoldsElementsAndData_data()
{
    QTest::addColumn<CommunicatorCommand>("write");
    QTest::addColumn<QByteArray>("given");
    QTest::addColumn<QByteArray>("frame");
    for (const Write &row : kWrites) {
        const CommunicatorCommand write = command(row.dataType, row.address, row.count);
        const QByteArray given(*row.given ? row.given : "nothing given");
        QTest::newRow(textOf(write, given).constData()) << write << bytes(row.given) << requestFrame(row);
    }
}

void TestWrittenData::requestHoldsElementsAndData()
{
    QFETCH(CommunicatorCommand, write);
    QFETCH(QByteArray, given);
    QFETCH(QByteArray, frame);
    QCOMPARE(hex(requestOf(write, given)), hex(frame));
}

void TestWrittenData::longDataAreSentInOneRequest()
{
    ScriptedPort port;
    port.serves(Answer(kAccepted));
    QCOMPARE(outcomeOfWrite(byteCommand("VB0", 300), QByteArray(300, '\x01'), port).result, QString(kTaken));
    QCOMPARE(int(port.frames().at(0).size()), 337);
    QVERIFY(port.scriptIsFinished());
}

// The fields of the request hold the low 16 bits of count and length, the check sum covers what the
// length byte says.
void TestWrittenData::countsBeyond16BitsAreSentWhole_data()
{
    QTest::addColumn<int>("dataType");
    QTest::addColumn<QString>("address");
    QTest::addColumn<int>("count");
    QTest::addColumn<QByteArray>("front");
    QTest::addColumn<int>("size");
    QTest::addColumn<QString>("end");
    const FrameVectors frames("exchange/write_requests.frames");
    const auto row = [&](const char *name, int dataType, const char *address, int count, int size,
                         const char *end) {
        QTest::newRow(name) << dataType << address << count << frames.sent(name) << size << end;
    };
    row("65536 words", kWords, "VW0", 65536, 131109, "7316");
    row("65537 words", kWords, "VW0", 65537, 131111, "cc16");
    row("65537 double words", kDoubleWords, "VD0", 65537, 262185, "e016");
    row("65537 timers", kWords, "T1", 65537, 327722, "9d16");
    row("65537 counters", kWords, "C1", 65537, 196648, "8916");
}

void TestWrittenData::countsBeyond16BitsAreSentWhole()
{
    QFETCH(int, dataType);
    QFETCH(QString, address);
    QFETCH(int, count);
    QFETCH(QByteArray, front);
    QFETCH(int, size);
    QFETCH(QString, end);
    ScriptedPort port;
    port.serves(Answer(kAccepted));
    QCOMPARE(outcomeOfWrite(command(dataType, address, count), bytes("34 12"), port).result, QString(kTaken));
    const QByteArray request = port.frames().at(0);
    QCOMPARE(hex(request.left(int(front.size()))), hex(front));
    QCOMPARE(int(request.size()), size);
    QCOMPARE(hex(request.right(2)), end);
}

void TestWrittenData::defaultWriteBytesTakesPrefixAndNumber()
{
    ScriptedPort port;
    port.expects("68 21 21 68 02 00 6c 32 01 00 00 00 01 00 0e 00 06"
                 "05 01 12 0a 10 04 00 01 00 00 06 00 00 00 00 04 00 10 12 34 4d 16")
        .answers("e5")
        .expectsPoll()
        .answers(Answer(kAccepted));
    DriverS7_200_PPI driver;
    QVERIFY(driver.defaultWriteBytes(&port, "AIW", 0, bytes("34 12")));
    QVERIFY(port.scriptIsFinished());
}

void TestWrittenData::writeBytesLeavesTheDataOfAllTypes()
{
    QCOMPARE(writtenBy(&DriverS7_200_PPI::writeBytes, wordCommand("VB10", 1), bytes("11 22 33")),
             QString("0501120a10020003000184000050 00040018112233"));
}

void TestWrittenData::writeWordsLeavesOddDataOfOtherTypes()
{
    QCOMPARE(writtenBy(&DriverS7_200_PPI::writeWords, byteCommand("T10", 1), bytes("2c 01 e8")),
             QString("0501120a101f000100001f00000a 00040050000000012c00000000e8"));
}

void TestWrittenData::writeDWordsSendsTheDataUnchanged_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<QString>("sent");
    const auto row = [](const char *name, const char *address, const char *data, const char *sent) {
        QTest::newRow(name) << address << bytes(data) << sent;
    };
    row("2 double words", "VD10", "4433221188776655",
        "0501120a10060002000184000050 000400401122334455667788");
    row("half a double word", "VD10", "3412", "0501120a10060001000184000050 0004002000001234");
    row("words", "VW10", "34127856", "0501120a10040002000184000050 0004002012345678");
    row("bytes", "VB10", "112233", "0501120a10020003000184000050 00040018112233");
    row("timers", "T37", "2c01e803", "0501120a101f000200001f000025 00040050000000012c00000003e8");
    row("timers, 3 bytes", "T37", "2c01e8", "0501120a101f000100001f000025 00040050000000012c00000000e8");
    row("counters, 3 bytes", "C5", "050006", "0501120a101e000100001e000005 00040030000005000006");
}

void TestWrittenData::writeDWordsSendsTheDataUnchanged()
{
    QFETCH(QString, address);
    QFETCH(QByteArray, data);
    QFETCH(QString, sent);
    QCOMPARE(writtenBy(&DriverS7_200_PPI::writeDWords, doubleWordCommand(address, 1), data), sent);
}

void TestWrittenData::writeDWordsRefusesWhatCanNotBeWritten_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("HC0") << "can not write data to HC0";
    QTest::newRow("AIW4") << "can not write data to AIW4";
}

void TestWrittenData::writeDWordsRefusesWhatCanNotBeWritten()
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

void TestWrittenData::handlersMakeOneAttempt()
{
    const Handler handlers[] = {&DriverS7_200_PPI::writeBits, &DriverS7_200_PPI::writeBytes,
                                &DriverS7_200_PPI::writeWords, &DriverS7_200_PPI::writeDWords};
    for (Handler handler : handlers) {
        ScriptedPort port;
        port.retries(3).delays(30).serves(Answer("05 01 05"));
        DriverS7_200_PPI driver;
        LogCapture log;
        QVERIFY(!(driver.*handler)(&port, byteCommand("VD10", 1), bytes("44332211")));
        QCOMPARE(log.texts(), QStringList() << "Invalid address (incorrect variable address)");
        QVERIFY(!port.events().contains("delay"));
        QVERIFY(port.scriptIsFinished());
    }
}

// What is behind the count is left out, as long as an array can hold all frames of so many bytes.
void TestWrittenData::dataUpToTheLimitAreTaken()
{
    const int limit = INT_MAX / 32;
    const Answer taken("05 01 ff");
    QCOMPARE(outcomeOfWrite(byteCommand("VB0", 1), QByteArray(limit, '\1'), taken).result, QString(kTaken));
    ScriptedPort port;
    const Outcome outcome = outcomeOfWrite(byteCommand("VB0", 1), QByteArray(limit + 1, '\1'), port);
    QCOMPARE(outcome.reason, QString("invalid request to PLC"));
}

TEST_CLASS(TestWrittenData)

#include "test_written_data.moc"
