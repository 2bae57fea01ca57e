// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What the driver makes of frames that are missing, short, malformed or foreign.

#include "answer.h"
#include "commands.h"
#include "faults.h"
#include "hex.h"
#include "log_capture.h"
#include "outcome.h"
#include "sample_reads.h"
#include "scripted_port.h"
#include "simatic_s7_200_ppi/s7_200_ppi.h"

#include <QtTest>

#include <climits>

namespace {

const int kReceiveBufferSize = 262;
const char kFourBytes[] = "04 01 ff 04 00 20 11 22 33 44";

// What an answer's check gets: the answer in a buffer that is zero behind it.
class ReceiveBuffer
{
public:
    explicit ReceiveBuffer(const QByteArray &received) : buffer(received)
    {
        buffer.append(QByteArray(kReceiveBufferSize - int(received.size()), '\0'));
    }
    const unsigned char *data() const { return reinterpret_cast<const unsigned char *>(buffer.constData()); }

private:
    QByteArray buffer;
};

} // namespace

class TestLayer2Checks : public QObject
{
    Q_OBJECT

private slots:
    void faultGivesItsReasonAndOneLogLine_data();
    void faultGivesItsReasonAndOneLogLine();
    void everyFaultIsTriedAgain_data();
    void everyFaultIsTriedAgain();
    void nextRequestIsServedAfterAFault_data();
    void nextRequestIsServedAfterAFault();
    void refusalIsReadWith5MoreBytesAndNoPoll();
    void refusalWithACarryInItsSumIsNotTaken();
    void answerOfLength2FromStation8PassesOnlyLayer2();
    void answerOfLength1IsPacketLoss();
    void faultyReceiveResults_data();
    void faultyReceiveResults();
    void claimsOfMoreBytesThanAskedForCountAsAskedFor_data();
    void claimsOfMoreBytesThanAskedForCountAsAskedFor();
    void refusalOfMoreThanSixBytesIsPacketLoss();
    void failedReceiveOfARefusalIsPacketLoss();
    void refusalByteThatThePortDoesNotCountIsNoResponse();
    void claimedHeadOfThreeBytesIsInvalid();

    void checkSCJudgesTheFirstByte_data();
    void checkSCJudgesTheFirstByte();
    void processSD1NAKNamesTheReason_data();
    void processSD1NAKNamesTheReason();
    void checkMinSD2RspJudgesTheHead_data();
    void checkMinSD2RspJudgesTheHead();
    void checkSD2ReadWriteRspJudgesTheRest_data();
    void checkSD2ReadWriteRspJudgesTheRest();
    void passedCheckLeavesTheErrorState();
    void failedCheckWritesNoLogLine();
};

void TestLayer2Checks::faultGivesItsReasonAndOneLogLine_data()
{
    QTest::addColumn<QString>("sample");
    QTest::addColumn<int>("faultIndex");
    const QList<SampleRead> reads = sampleReads();
    for (int i = 0; i < int(reads.size()); ++i) {
        const QList<LineFault> faults = lineFaults(reads.at(i).item, 1);
        for (int j = 0; j < int(faults.size()); ++j)
            QTest::newRow((QByteArray(reads.at(i).name) + ": " + faults.at(j).name).constData())
                << QString(reads.at(i).name) << j;
    }
}

void TestLayer2Checks::faultGivesItsReasonAndOneLogLine()
{
    QFETCH(QString, sample);
    QFETCH(int, faultIndex);
    const SampleRead read = sampleRead(sample);
    const LineFault fault = lineFaults(read.item, 1).at(faultIndex);
    ScriptedPort port;
    addAttempt(port, fault);
    DriverS7_200_PPI driver;
    LogCapture log;
    QCOMPARE(hex(driver.read(&port, read.command())), QString(""));
    QVERIFY(driver.hasError());
    QCOMPARE(driver.getLastError(), fault.text);
    QCOMPARE(log.texts(), QStringList() << fault.text);
    QVERIFY(port.scriptIsFinished());
}

void TestLayer2Checks::everyFaultIsTriedAgain_data()
{
    QTest::addColumn<int>("faultIndex");
    const QList<LineFault> faults = lineFaults(kFourBytes, 1);
    for (int i = 0; i < int(faults.size()); ++i)
        QTest::newRow(faults.at(i).name.constData()) << i;
}

void TestLayer2Checks::everyFaultIsTriedAgain()
{
    QFETCH(int, faultIndex);
    const SampleRead read = sampleRead("bytes of VB100");
    ScriptedPort port;
    port.retries(2);
    for (int reference = 1; reference <= 3; ++reference)
        addAttempt(port, lineFaults(read.item, reference).at(faultIndex));
    DriverS7_200_PPI driver;
    LogCapture log;
    driver.read(&port, read.command());
    QCOMPARE(port.requestsSent(), 3);
    QCOMPARE(log.texts(), copies(lineFaults(read.item, 1).at(faultIndex).text, 3));
    QVERIFY(port.scriptIsFinished());
}

void TestLayer2Checks::nextRequestIsServedAfterAFault_data()
{
    everyFaultIsTriedAgain_data();
}

void TestLayer2Checks::nextRequestIsServedAfterAFault()
{
    QFETCH(int, faultIndex);
    const SampleRead read = sampleRead("bytes of VB100");
    ScriptedPort port;
    addAttempt(port, lineFaults(read.item, 1).at(faultIndex));
    port.serves(Answer(kFourBytes, 2));
    DriverS7_200_PPI driver;
    LogCapture log;
    driver.read(&port, read.command());
    QCOMPARE(hex(driver.read(&port, read.command())), QString("11223344"));
    QVERIFY(!driver.hasError());
    QCOMPARE(driver.getLastError(), QString(""));
    QVERIFY(port.scriptIsFinished());
}

void TestLayer2Checks::refusalIsReadWith5MoreBytesAndNoPoll()
{
    ScriptedPort port;
    port.expectsRequest().answers("10 00 02 02 04 16");
    DriverS7_200_PPI driver;
    LogCapture log;
    driver.read(&port, byteCommand("VB100", 4));
    QCOMPARE(QStringList(port.events().mid(4)), QStringList() << "receive(1) -> 1"
                                                              << "receive(5) -> 5"
                                                              << "retry");
    QVERIFY(port.scriptIsFinished());
}

// 00 + fe + 02 is 100, which the check sum can not hold.
void TestLayer2Checks::refusalWithACarryInItsSumIsNotTaken()
{
    ScriptedPort port(254);
    port.expectsRequest().answers("10 00 fe 02 00 16");
    DriverS7_200_PPI driver;
    LogCapture log;
    driver.read(&port, byteCommand("VB100", 4));
    QCOMPARE(driver.getLastError(), QString("invalid response9"));
}

// Of such a frame the function code 08 is the check sum, too.
void TestLayer2Checks::answerOfLength2FromStation8PassesOnlyLayer2()
{
    ScriptedPort port(8);
    port.expectsRequest().answers("e5").expectsPoll().answers("68 02 02 68 00 08 08 16");
    DriverS7_200_PPI driver;
    LogCapture log;
    driver.read(&port, byteCommand("VB100", 4));
    QCOMPARE(log.texts(), QStringList() << "invalid response");
}

void TestLayer2Checks::answerOfLength1IsPacketLoss()
{
    ScriptedPort port;
    port.expectsRequest().answers("e5").expectsPoll().answers("68 01 01 68 00 02 08");
    DriverS7_200_PPI driver;
    LogCapture log;
    driver.read(&port, byteCommand("VB100", 4));
    QCOMPARE(log.texts(), QStringList() << "packet loss");
}

void TestLayer2Checks::faultyReceiveResults_data()
{
    const QString tooShort("packet length < minimum second response");
    QTest::addColumn<int>("call");
    QTest::addColumn<int>("result");
    QTest::addColumn<QString>("text");
    QTest::newRow("acknowledgement, -1") << 1 << -1 << "plc no response";
    QTest::newRow("acknowledgement, -1000") << 1 << -1000 << "plc no response";
    QTest::newRow("acknowledgement, 0") << 1 << 0 << "plc no response";
    QTest::newRow("head, -1") << 2 << -1 << tooShort;
    QTest::newRow("head, 0") << 2 << 0 << tooShort;
    QTest::newRow("head, 6") << 2 << 6 << tooShort;
    QTest::newRow("rest, -1") << 3 << -1 << "packet loss";
    QTest::newRow("rest, 0") << 3 << 0 << "packet loss";
    QTest::newRow("rest, 23") << 3 << 23 << "packet loss";
}

void TestLayer2Checks::faultyReceiveResults()
{
    QFETCH(int, call);
    QFETCH(int, result);
    QFETCH(QString, text);
    ScriptedPort port;
    port.expectsRequest().answers("e5");
    if (call > 1)
        port.expectsPoll().answers(Answer(kFourBytes));
    port.receiveClaims(call, result);
    DriverS7_200_PPI driver;
    LogCapture log;
    QCOMPARE(hex(driver.read(&port, byteCommand("VB100", 4))), QString(""));
    QCOMPARE(driver.getLastError(), text);
    QCOMPARE(log.texts(), QStringList() << text);
    QVERIFY(port.scriptIsFinished());
}

void TestLayer2Checks::claimsOfMoreBytesThanAskedForCountAsAskedFor_data()
{
    QTest::addColumn<int>("call");
    QTest::addColumn<int>("result");
    QTest::newRow("acknowledgement, 2") << 1 << 2;
    QTest::newRow("acknowledgement, INT_MAX") << 1 << 0x7fffffff;
    QTest::newRow("head, 8") << 2 << 8;
    QTest::newRow("head, INT_MAX") << 2 << 0x7fffffff;
    QTest::newRow("rest, 25") << 3 << 25;
    QTest::newRow("rest, INT_MAX") << 3 << 0x7fffffff;
}

void TestLayer2Checks::claimsOfMoreBytesThanAskedForCountAsAskedFor()
{
    QFETCH(int, call);
    QFETCH(int, result);
    ScriptedPort port;
    port.serves(Answer(kFourBytes)).receiveClaims(call, result);
    DriverS7_200_PPI driver;
    QCOMPARE(hex(driver.read(&port, byteCommand("VB100", 4))), QString("11223344"));
    QVERIFY(port.scriptIsFinished());
}

void TestLayer2Checks::refusalOfMoreThanSixBytesIsPacketLoss()
{
    ScriptedPort port;
    port.expectsRequest().answers("10 00 02 02 04 16").receiveClaims(2, INT_MAX);
    DriverS7_200_PPI driver;
    LogCapture log;
    driver.read(&port, byteCommand("VB100", 4));
    QCOMPARE(driver.getLastError(), QString("first NAK packet loss"));
}

void TestLayer2Checks::failedReceiveOfARefusalIsPacketLoss()
{
    ScriptedPort port;
    port.expectsRequest().answers("10 00 02 02 04 16").receiveClaims(2, -1);
    DriverS7_200_PPI driver;
    LogCapture log;
    driver.read(&port, byteCommand("VB100", 4));
    QCOMPARE(driver.getLastError(), QString("first NAK packet loss"));
}

void TestLayer2Checks::refusalByteThatThePortDoesNotCountIsNoResponse()
{
    ScriptedPort port;
    port.expectsRequest().answers("10").receiveClaims(1, 0);
    DriverS7_200_PPI driver;
    LogCapture log;
    driver.read(&port, byteCommand("VB100", 4));
    QCOMPARE(driver.getLastError(), QString("plc no response"));
}

void TestLayer2Checks::claimedHeadOfThreeBytesIsInvalid()
{
    ScriptedPort port;
    port.expectsRequest().answers("e5").expectsPoll().answers("68 19 19").receiveClaims(2, 100);
    DriverS7_200_PPI driver;
    LogCapture log;
    driver.read(&port, byteCommand("VB100", 4));
    QCOMPARE(driver.getLastError(), QString("invalid response"));
}

void TestLayer2Checks::checkSCJudgesTheFirstByte_data()
{
    QTest::addColumn<QByteArray>("received");
    QTest::addColumn<bool>("passes");
    QTest::addColumn<QString>("text");
    QTest::newRow("nothing") << QByteArray() << false << "plc no response";
    QTest::newRow("e5") << bytes("e5") << true << "";
    QTest::newRow("00") << bytes("00") << false << "invalid response";
    QTest::newRow("65") << bytes("65") << false << "invalid response";
    QTest::newRow("ff") << bytes("ff") << false << "invalid response";
}

void TestLayer2Checks::checkSCJudgesTheFirstByte()
{
    QFETCH(QByteArray, received);
    QFETCH(bool, passes);
    QFETCH(QString, text);
    DriverS7_200_PPI driver;
    QCOMPARE(driver.checkSC(ReceiveBuffer(received).data(), int(received.size())), passes);
    QCOMPARE(driver.hasError(), !passes);
    QCOMPARE(driver.getLastError(), text);
}

void TestLayer2Checks::processSD1NAKNamesTheReason_data()
{
    QTest::addColumn<QByteArray>("received");
    QTest::addColumn<int>("station");
    QTest::addColumn<QString>("text");
    QTest::newRow("nothing") << QByteArray() << 2 << "first NAK packet loss";
    QTest::newRow("5 bytes") << bytes("10 00 02 02 04") << 2 << "first NAK packet loss";
    QTest::newRow("7 bytes") << bytes("10 00 02 02 04 16 00") << 2 << "first NAK packet loss";
    QTest::newRow("function code 2") << bytes("10 00 02 02 04 16") << 2 << "no resource";
    QTest::newRow("function code 3") << bytes("10 00 02 03 05 16") << 2 << "no service actived";
    QTest::newRow("function code 1") << bytes("10 00 02 01 03 16") << 2 << "unknown error";
    QTest::newRow("function code fd, sum 255") << bytes("10 00 02 fd ff 16") << 2 << "unknown error";
    QTest::newRow("function code fe, sum 256") << bytes("10 00 02 fe 00 16") << 2 << "invalid response9";
    QTest::newRow("station 253") << bytes("10 00 fd 02 ff 16") << 253 << "no resource";
    QTest::newRow("station 254, sum 256") << bytes("10 00 fe 02 00 16") << 254 << "invalid response9";
    QTest::newRow("another start") << bytes("68 00 02 02 04 16") << 2 << "invalid response9";
    QTest::newRow("another end") << bytes("10 00 02 02 04 15") << 2 << "invalid response9";
    QTest::newRow("another master") << bytes("10 03 02 02 07 16") << 2 << "invalid response9";
    QTest::newRow("another station") << bytes("10 00 03 02 05 16") << 2 << "invalid response9";
}

void TestLayer2Checks::processSD1NAKNamesTheReason()
{
    QFETCH(QByteArray, received);
    QFETCH(int, station);
    QFETCH(QString, text);
    DriverS7_200_PPI driver;
    driver.processSD1NAK(ReceiveBuffer(received).data(), int(received.size()), 0,
                         static_cast<unsigned char>(station));
    QVERIFY(driver.hasError());
    QCOMPARE(driver.getLastError(), text);
}

void TestLayer2Checks::checkMinSD2RspJudgesTheHead_data()
{
    QTest::addColumn<QByteArray>("received");
    QTest::addColumn<QString>("text");
    QTest::newRow("good") << bytes("68 19 19 68 00 02 08") << "";
    QTest::newRow("good and more bytes") << bytes("68 19 19 68 00 02 08 32") << "";
    QTest::newRow("length 255") << bytes("68 ff ff 68 00 02 08") << "";
    QTest::newRow("nothing") << QByteArray() << "packet length < minimum second response";
    QTest::newRow("6 bytes") << bytes("68 19 19 68 00 02") << "packet length < minimum second response";
    QTest::newRow("start e8") << bytes("e8 19 19 68 00 02 08") << "invalid response";
    QTest::newRow("second start 00") << bytes("68 19 19 00 00 02 08") << "invalid response";
    QTest::newRow("length 0") << bytes("68 00 00 68 00 02 08") << "invalid response";
    QTest::newRow("lengths differ") << bytes("68 19 18 68 00 02 08") << "invalid response";
    QTest::newRow("another master") << bytes("68 19 19 68 01 02 08") << "invalid response";
    QTest::newRow("another station") << bytes("68 19 19 68 00 01 08") << "invalid response";
    QTest::newRow("function code 18") << bytes("68 19 19 68 00 02 18") << "invalid response";
    QTest::newRow("function code 6c") << bytes("68 19 19 68 00 02 6c") << "invalid response";
    QTest::newRow("function code 88") << bytes("68 19 19 68 00 02 88") << "invalid response";
}

void TestLayer2Checks::checkMinSD2RspJudgesTheHead()
{
    QFETCH(QByteArray, received);
    QFETCH(QString, text);
    DriverS7_200_PPI driver;
    const bool passes = driver.checkMinSD2Rsp(ReceiveBuffer(received).data(), int(received.size()), 0, 2);
    QCOMPARE(passes, text.isEmpty());
    QCOMPARE(driver.hasError(), !passes);
    QCOMPARE(driver.getLastError(), text);
}

void TestLayer2Checks::checkSD2ReadWriteRspJudgesTheRest_data()
{
    QTest::addColumn<QByteArray>("received");
    QTest::addColumn<int>("length");
    QTest::addColumn<QString>("text");
    const QByteArray answer = bytes("68 05 05 68 00 02 08 32 03 3f 16");
    const QByteArray largest = bytes("68 ff ff 68") + QByteArray(255, '\x01') + bytes("ff 16");
    QTest::newRow("good") << answer << 4 << "";
    QTest::newRow("good, more bytes than owed") << answer << 5 << "";
    QTest::newRow("sum above 255") << bytes("68 05 05 68 00 02 08 fb fb 00 16") << 4 << "";
    QTest::newRow("length 255") << largest << 254 << "";
    QTest::newRow("no rest") << answer.left(7) << 0 << "packet loss";
    QTest::newRow("1 byte short, though the frame is whole") << answer << 3 << "packet loss";
    QTest::newRow("end 00") << bytes("68 05 05 68 00 02 08 32 03 3f 00") << 4 << "packet loss";
    QTest::newRow("end 14") << bytes("68 05 05 68 00 02 08 32 03 3f 14") << 4 << "packet loss";
    QTest::newRow("end 15") << bytes("68 05 05 68 00 02 08 32 03 3f 15") << 4 << "invalid response";
    QTest::newRow("end 17") << bytes("68 05 05 68 00 02 08 32 03 3f 17") << 4 << "invalid response";
    QTest::newRow("end 80") << bytes("68 05 05 68 00 02 08 32 03 3f 80") << 4 << "invalid response";
    QTest::newRow("end and check sum wrong")
        << bytes("68 05 05 68 00 02 08 32 03 3e 15") << 4 << "invalid response";
    QTest::newRow("check sum wrong") << bytes("68 05 05 68 00 02 08 32 03 3e 16") << 4 << "checksum error";
    QTest::newRow("destination counts") << bytes("68 05 05 68 01 02 08 32 03 3f 16") << 4 << "checksum error";
}

void TestLayer2Checks::checkSD2ReadWriteRspJudgesTheRest()
{
    QFETCH(QByteArray, received);
    QFETCH(int, length);
    QFETCH(QString, text);
    DriverS7_200_PPI driver;
    const int owed = static_cast<unsigned char>(received.at(1)) - 1;
    const bool passes = driver.checkSD2ReadWriteRsp(ReceiveBuffer(received).data(), length, owed);
    QCOMPARE(passes, text.isEmpty());
    QCOMPARE(driver.hasError(), !passes);
    QCOMPARE(driver.getLastError(), text);
}

void TestLayer2Checks::passedCheckLeavesTheErrorState()
{
    DriverS7_200_PPI driver;
    driver.setCommError("earlier");
    QVERIFY(driver.checkSC(ReceiveBuffer(bytes("e5")).data(), 1));
    QVERIFY(driver.checkMinSD2Rsp(ReceiveBuffer(bytes("68 19 19 68 00 02 08")).data(), 7, 0, 2));
    QVERIFY(
        driver.checkSD2ReadWriteRsp(ReceiveBuffer(bytes("68 05 05 68 00 02 08 32 03 3f 16")).data(), 4, 4));
    QVERIFY(driver.hasError());
    QCOMPARE(driver.getLastError(), QString("earlier"));
}

void TestLayer2Checks::failedCheckWritesNoLogLine()
{
    DriverS7_200_PPI driver;
    LogCapture log;
    const ReceiveBuffer empty((QByteArray()));
    driver.checkSC(empty.data(), 0);
    driver.processSD1NAK(empty.data(), 0, 0, 2);
    driver.checkMinSD2Rsp(empty.data(), 0, 0, 2);
    driver.checkSD2ReadWriteRsp(empty.data(), 0, 1);
    QCOMPARE(log.lines(), QStringList());
}

QTEST_APPLESS_MAIN(TestLayer2Checks)

#include "test_layer2_checks.moc"
