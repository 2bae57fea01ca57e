// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The checks of what the controller sent, one by one.

#include "answer.h"
#include "commands.h"
#include "hex.h"
#include "log_capture.h"
#include "outcome.h"
#include "scripted_port.h"
#include "simatic_s7_200_ppi/s7_200_ppi.h"
#include "test_class.h"

#include <QtTest>

namespace {

const int kReceiveBufferSize = 262;

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

// The checks that stand between a reply and its parameters.
enum Check { kIsRefusal, kAcknowledgement, kRefusal, kHead, kRest, kHeader };

// Where all conditions of the checks hold.
const char kGoodRefusal[] = "10 00 02 02 04 16";
const char kGoodHead[] = "68 19 19 68 00 02 08";
const char kGoodFrame[] = "68 05 05 68 00 02 08 32 03 3f 16"; // as far as layer 2 goes
const char kGoodItem[] = "04 01 ff 04 00 20 11 22 33 44";

QByteArray answerWith(Answer::Offset place, int value)
{
    return Answer(kGoodItem).withByte(place, value).sealed();
}

// What a check says of these bytes when it is told that they are so many; of the rest of an answer the head
// does not count. A refusal and the header are recognised in the middle of an exchange.
QString judgement(Check check, const QByteArray &received, int length)
{
    DriverS7_200_PPI driver;
    const ReceiveBuffer buffer(received);
    ScriptedPort port;
    switch (check) {
    case kIsRefusal:
        port.expectsRequest().answers(received).receiveClaims(1, length);
        return outcomeOfRead(byteCommand("VB100", 4), port).reason;
    case kAcknowledgement:
        driver.checkSC(buffer.data(), length);
        break;
    case kRefusal:
        driver.processSD1NAK(buffer.data(), length, 0, 2);
        break;
    case kHead:
        driver.checkMinSD2Rsp(buffer.data(), length, 0, 2);
        break;
    case kRest:
        driver.checkSD2ReadWriteRsp(buffer.data(), length, received.at(1) - 1);
        break;
    case kHeader:
        return outcomeOfRead(byteCommand("VB100", 4), received).reason;
    }
    return driver.getLastError();
}

} // namespace

class TestLayer2Checks : public QObject
{
    Q_OBJECT

private slots:
    void checkSCJudgesTheFirstByte_data();
    void checkSCJudgesTheFirstByte();
    void processSD1NAKNamesTheReason_data();
    void processSD1NAKNamesTheReason();
    void checkMinSD2RspJudgesTheHead_data();
    void checkMinSD2RspJudgesTheHead();
    void checkSD2ReadWriteRspJudgesTheRest_data();
    void checkSD2ReadWriteRspJudgesTheRest();
    void eachConditionDecidesAlone_data();
    void eachConditionDecidesAlone();
    void passedCheckLeavesTheErrorState();
    void failedCheckWritesNoLogLine();
};

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
    const auto row = [](const char *name, const QByteArray &received, int length, const char *text) {
        QTest::newRow(name) << received << length << text;
    };
    const QByteArray answer = bytes("68 05 05 68 00 02 08 32 03 3f 16");
    const QByteArray largest = bytes("68 ff ff 68") + QByteArray(255, '\x01') + bytes("ff 16");
    row("good", answer, 4, "");
    row("good, more bytes than owed", answer, 5, "");
    row("sum above 255", bytes("68 05 05 68 00 02 08 fb fb 00 16"), 4, "");
    row("length 255", largest, 254, "");
    row("no rest", answer.left(7), 0, "packet loss");
    row("1 byte short, though the frame is whole", answer, 3, "packet loss");
    row("end 00", bytes("68 05 05 68 00 02 08 32 03 3f 00"), 4, "packet loss");
    row("end 14", bytes("68 05 05 68 00 02 08 32 03 3f 14"), 4, "packet loss");
    row("end 15", bytes("68 05 05 68 00 02 08 32 03 3f 15"), 4, "invalid response");
    row("end 17", bytes("68 05 05 68 00 02 08 32 03 3f 17"), 4, "invalid response");
    row("end 80", bytes("68 05 05 68 00 02 08 32 03 3f 80"), 4, "invalid response");
    row("end and check sum wrong", bytes("68 05 05 68 00 02 08 32 03 3e 15"), 4, "invalid response");
    row("check sum wrong", bytes("68 05 05 68 00 02 08 32 03 3e 16"), 4, "checksum error");
    row("destination counts", bytes("68 05 05 68 01 02 08 32 03 3f 16"), 4, "checksum error");
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

// Of each check a row in which all its conditions hold, and for each condition one in which it alone does
// not, or, of those that say "or", alone does; so each of them changes the judgement by itself.
void TestLayer2Checks::eachConditionDecidesAlone_data()
{
    QTest::addColumn<int>("check");
    QTest::addColumn<QByteArray>("received");
    QTest::addColumn<int>("length");
    QTest::addColumn<QString>("text");
    const auto row = [](Check check, const char *name, const QByteArray &received, int length,
                        const char *text) {
        QTest::newRow(name) << int(check) << received << length << text;
    };

    row(kIsRefusal, "a refusal: all hold", bytes(kGoodRefusal), 1, "no resource");
    row(kIsRefusal, "a refusal: a byte was received", bytes(kGoodRefusal), 0, "plc no response");
    row(kIsRefusal, "a refusal: the byte is 10", bytes("11 00 02 02 04 16"), 1, "invalid response");

    row(kAcknowledgement, "acknowledgement: all hold", bytes("e5"), 1, "");
    row(kAcknowledgement, "acknowledgement: a byte was received", bytes("e5"), 0, "plc no response");
    row(kAcknowledgement, "acknowledgement: the byte is e5", bytes("e4"), 1, "invalid response");

    const char loss[] = "first NAK packet loss";
    const char wrong[] = "invalid response9";
    row(kRefusal, "refusal: all hold", bytes(kGoodRefusal), 6, "no resource");
    row(kRefusal, "refusal: 6 bytes were received", bytes(kGoodRefusal), 5, loss);
    row(kRefusal, "refusal: start 10", bytes("68 00 02 02 04 16"), 6, wrong);
    row(kRefusal, "refusal: end 16", bytes("10 00 02 02 04 17"), 6, wrong);
    row(kRefusal, "refusal: sum", bytes("10 00 02 02 05 16"), 6, wrong);
    row(kRefusal, "refusal: to this master", bytes("10 01 02 02 05 16"), 6, wrong);
    row(kRefusal, "refusal: from this station", bytes("10 00 03 02 05 16"), 6, wrong);
    row(kRefusal, "refusal: function 02 or 03, the other", bytes("10 00 02 03 05 16"), 6,
        "no service actived");
    row(kRefusal, "refusal: function 02 or 03, neither", bytes("10 00 02 01 03 16"), 6, "unknown error");

    const char tooShort[] = "packet length < minimum second response";
    const char invalid[] = "invalid response";
    row(kHead, "head: all hold", bytes(kGoodHead), 7, "");
    row(kHead, "head: 7 bytes were received", bytes(kGoodHead), 6, tooShort);
    row(kHead, "head: start 68", bytes("69 19 19 68 00 02 08"), 7, invalid);
    row(kHead, "head: second start 68", bytes("68 19 19 69 00 02 08"), 7, invalid);
    row(kHead, "head: length above 0", bytes("68 00 00 68 00 02 08"), 7, invalid);
    row(kHead, "head: both lengths alike", bytes("68 19 1a 68 00 02 08"), 7, invalid);
    row(kHead, "head: to this master", bytes("68 19 19 68 01 02 08"), 7, invalid);
    row(kHead, "head: from this station", bytes("68 19 19 68 00 03 08"), 7, invalid);
    row(kHead, "head: function 08", bytes("68 19 19 68 00 02 09"), 7, invalid);

    row(kRest, "rest: all hold", bytes(kGoodFrame), 4, "");
    row(kRest, "rest: all bytes were received", bytes(kGoodFrame), 3, "packet loss");
    row(kRest, "rest: end above 14", bytes("68 05 05 68 00 02 08 32 03 3f 14"), 4, "packet loss");
    row(kRest, "rest: end 16", bytes("68 05 05 68 00 02 08 32 03 3f 15"), 4, invalid);
    row(kRest, "rest: sum", bytes("68 05 05 68 00 02 08 32 03 40 16"), 4, "checksum error");

    const char refused[] = "invalid request to PLC";
    const int low = 1; // of two bytes
    const auto header = [&row](const char *name, int place, int value, const char *text) {
        row(kHeader, name, answerWith(Answer::Offset(place), value), 0, text);
    };
    row(kHeader, "header: all hold", Answer(kGoodItem), 0, "");
    header("header: protocol 32", Answer::kProtocol, 0x33, invalid);
    header("header: message 02 or 03, the other", Answer::kMessageType, 0x02, "");
    header("header: message 02 or 03, neither", Answer::kMessageType, 0x01, invalid);
    header("header: reserved 0", Answer::kReserved + low, 0x01, invalid);
    header("header: parameter length 2 or 0, the other", Answer::kParameterLength + low, 0x00, "");
    header("header: parameter length 2 or 0, neither", Answer::kParameterLength + low, 0x03, invalid);
    header("header: reference of the request", Answer::kReference + low, 0x02, invalid);
    header("header: error class 0", Answer::kErrorClass, 0x01, refused);
    header("header: error code 0", Answer::kErrorCode, 0x01, refused);
}

void TestLayer2Checks::eachConditionDecidesAlone()
{
    QFETCH(int, check);
    QFETCH(QByteArray, received);
    QFETCH(int, length);
    QFETCH(QString, text);
    QCOMPARE(judgement(Check(check), received, length), text);
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

TEST_CLASS(TestLayer2Checks)

#include "test_layer2_checks.moc"
