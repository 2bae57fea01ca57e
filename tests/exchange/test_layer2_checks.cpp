// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The checks of what the controller sent, one by one.

#include "hex.h"
#include "log_capture.h"
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
