// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "driver_setting.h"
#include "hex.h"
#include "log_capture.h"
#include "test_class.h"

#include <QtTest>

#include <climits>

namespace {

QByteArray streamed(const DriverSetting &setting, QDataStream::ByteOrder order = QDataStream::BigEndian)
{
    QByteArray data;
    QDataStream stream(&data, QIODevice::WriteOnly);
    stream.setByteOrder(order);
    stream << setting;
    return data;
}

} // namespace

class TestDriverSetting : public QObject
{
    Q_OBJECT

private slots:
    void theShortConstructorLeavesTextEmptyAndFlagFalse();
    void theSixArgumentConstructorIgnoresItsLastTwo();
    void theLongConstructorKeepsTextAndFlagOnly();
    void copyTakesEverythingButTheFlag();
    void copyLeavesAFlagThatIsSet();
    void theDefaultRecordIsSixteenBytes();
    void theStreamsByteOrderIsKept();
    void readingLeavesTextAndFlag();
    void aShortStreamSetsTheStatus();
    void fieldsBehindTheEndOfTheStreamAreZero_data();
    void fieldsBehindTheEndOfTheStreamAreZero();
    void dumpIsOneMessageWithABlankAtItsEnd();
    void dumpShowsNegativeNumbers();
};

void TestDriverSetting::theShortConstructorLeavesTextEmptyAndFlagFalse()
{
    const DriverSetting setting(500, 3, 2, 10);
    QCOMPARE(setting.timeout, 500);
    QCOMPARE(setting.retry, 3);
    QCOMPARE(setting.stationid, 2);
    QCOMPARE(setting.delay, 10);
    QVERIFY(setting.text.isEmpty());
    QVERIFY(!setting.flag);
}

void TestDriverSetting::theSixArgumentConstructorIgnoresItsLastTwo()
{
    const DriverSetting setting(1, 2, 3, 4, QString("ignored"), 5);
    QCOMPARE(setting.delay, 4);
    QVERIFY(setting.text.isEmpty());
    QVERIFY(!setting.flag);
}

void TestDriverSetting::theLongConstructorKeepsTextAndFlagOnly()
{
    const DriverSetting setting(1, 2, 3, 4, QString("ignored"), 5, QString("kept"), true);
    QCOMPARE(setting.timeout, 1);
    QCOMPARE(setting.retry, 2);
    QCOMPARE(setting.stationid, 3);
    QCOMPARE(setting.delay, 4);
    QCOMPARE(setting.text, QString("kept"));
    QVERIFY(setting.flag);
}

void TestDriverSetting::copyTakesEverythingButTheFlag()
{
    const DriverSetting from(1, 2, 3, 4, QString(), 0, QString("text"), true);
    DriverSetting to(9, 9, 9, 9);
    to.copy(from);
    QCOMPARE(hex(streamed(to)), hex(streamed(from)));
    QCOMPARE(to.text, QString("text"));
    QVERIFY(!to.flag);
}

void TestDriverSetting::copyLeavesAFlagThatIsSet()
{
    DriverSetting to(9, 9, 9, 9, QString(), 0, QString("mine"), true);
    to.copy(DriverSetting(1, 2, 3, 4));
    QCOMPARE(hex(streamed(to)), QString("00000001000000020000000300000004"));
    QVERIFY(to.text.isEmpty());
    QVERIFY(to.flag);
}

void TestDriverSetting::theDefaultRecordIsSixteenBytes()
{
    QCOMPARE(hex(streamed(DriverSetting(500, 3, 2, 0))), QString("000001f4000000030000000200000000"));
}

void TestDriverSetting::theStreamsByteOrderIsKept()
{
    QCOMPARE(hex(streamed(DriverSetting(500, 3, 2, -1), QDataStream::LittleEndian)),
             QString("f40100000300000002000000ffffffff"));
}

void TestDriverSetting::readingLeavesTextAndFlag()
{
    QDataStream stream(bytes("000001f4 00000003 00000002 00000007"));
    DriverSetting setting(0, 0, 0, 0, QString(), 0, QString("mine"), true);
    stream >> setting;
    QCOMPARE(setting.timeout, 500);
    QCOMPARE(setting.retry, 3);
    QCOMPARE(setting.stationid, 2);
    QCOMPARE(setting.delay, 7);
    QCOMPARE(setting.text, QString("mine"));
    QVERIFY(setting.flag);
}

void TestDriverSetting::aShortStreamSetsTheStatus()
{
    QDataStream stream(bytes("000001f4 0000"));
    DriverSetting setting(0, 0, 0, 0);
    stream >> setting;
    QCOMPARE(setting.timeout, 500);
    QCOMPARE(int(stream.status()), int(QDataStream::ReadPastEnd));
}

void TestDriverSetting::fieldsBehindTheEndOfTheStreamAreZero_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<QString>("fields");
    QTest::newRow("nothing") << 0 << "00000000 00000000 00000000 00000000";
    QTest::newRow("within timeout") << 3 << "00000000 00000000 00000000 00000000";
    QTest::newRow("behind timeout") << 4 << "01020304 00000000 00000000 00000000";
    QTest::newRow("within retry") << 7 << "01020304 00000000 00000000 00000000";
    QTest::newRow("within stationid") << 11 << "01020304 05060708 00000000 00000000";
    QTest::newRow("within delay") << 15 << "01020304 05060708 090a0b0c 00000000";
}

void TestDriverSetting::fieldsBehindTheEndOfTheStreamAreZero()
{
    QFETCH(int, size);
    QFETCH(QString, fields);
    QDataStream stream(bytes("01020304 05060708 090a0b0c 0d0e0f10").left(size));
    DriverSetting setting(9, 9, 9, 9, QString(), 0, QString("mine"), true);
    stream >> setting;
    QCOMPARE(hex(streamed(setting)), fields.remove(QLatin1Char(' ')));
    QCOMPARE(setting.text, QString("mine"));
    QVERIFY(setting.flag);
}

void TestDriverSetting::dumpIsOneMessageWithABlankAtItsEnd()
{
    const LogCapture log;
    DriverSetting(500, 3, 2, 0).dump();
    QCOMPARE(log.lines(), QStringList("timeout: 500 retry: 3 stationid: 2 delay: 0 "));
}

void TestDriverSetting::dumpShowsNegativeNumbers()
{
    const LogCapture log;
    DriverSetting(-1, -2, -3, INT_MIN).dump();
    QCOMPARE(log.lines(), QStringList("timeout: -1 retry: -2 stationid: -3 delay: -2147483648 "));
}

TEST_CLASS(TestDriverSetting)
#include "test_driver_setting.moc"
