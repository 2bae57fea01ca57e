// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "device_setting.h"
#include "hex.h"
#include "log_capture.h"

#include <QtTest>

namespace {

DeviceSetting serialDefault()
{
    return DeviceSetting(kRs485Port, "COM2", 9600, 8, 0, 2);
}

DeviceSetting withAddresses(int count)
{
    DeviceSetting setting = serialDefault();
    for (int i = 0; i < count; ++i)
        setting.socketList.append(qMakePair(QString("10.0.0.%1").arg(i), quint16(100 + i)));
    return setting;
}

QByteArray streamed(const DeviceSetting &setting)
{
    QByteArray data;
    QDataStream stream(&data, QIODevice::WriteOnly);
    stream << setting;
    return data;
}

void read(const QByteArray &data, DeviceSetting &setting)
{
    QDataStream stream(data);
    stream >> setting;
}

QString addresses(const DeviceSetting &setting)
{
    QStringList list;
    for (int i = 0; i < setting.socketList.size(); ++i)
        list.append(
            QString("%1:%2").arg(setting.socketList.at(i).first).arg(setting.socketList.at(i).second));
    return list.join(" ");
}

} // namespace

class TestDeviceSetting : public QObject
{
    Q_OBJECT

private slots:
    void theShortConstructorSetsSixFieldsAndDefaults();
    void theLongConstructorSetsTheExtras();
    void withoutAddressesTheCurrentOneIsEmpty();
    void theCurrentIndexOnlyTakesValidOnes();
    void anIndexOutsideTheListReadsAsEmpty();
    void oneHalfOfAnAddressIsReplaced();
    void aSetterOutsideTheListChangesNothing();
    void minusOneOnAnEmptyListChangesNothing();
    void portTextsThatAreNotPortsGiveZero_data();
    void portTextsThatAreNotPortsGiveZero();
    void newSocketDataReplaceTheListAndKeepTheIndex();
    void theDefaultRecordIsFortyEightBytes();
    void aRecordWithAddressesIsStreamedWhole();
    void readingTwiceRestoresTheIndex();
    void theExtraTextIsNotStreamed();
    void unknownKindsOfPortPassThrough();
    void aListCutShortKeepsTheEntriesRead();
    void aListThatEndsAfterItsCountYieldsOneEmptyEntry();
    void anAbsurdCountReservesNothing();
    void dumpIsOneMessage();
    void dumpEscapesNothing();
};

void TestDeviceSetting::theShortConstructorSetsSixFieldsAndDefaults()
{
    const DeviceSetting setting(device_type(7), "ttyS1", 19200, 7, 1, 3);
    QCOMPARE(int(setting.type), 7);
    QCOMPARE(setting.string, QString("ttyS1"));
    QCOMPARE(setting.baudrate, 19200);
    QCOMPARE(setting.databits, 7);
    QCOMPARE(setting.stopbits, 1);
    QCOMPARE(setting.parity, 3);
    QCOMPARE(setting.extraValue, 0);
    QVERIFY(setting.extraText.isEmpty());
    QCOMPARE(setting.linkID, -1);
    QCOMPARE(setting.currentIPIndex, 0);
    QVERIFY(setting.socketList.isEmpty());
}

void TestDeviceSetting::theLongConstructorSetsTheExtras()
{
    const DeviceSetting setting(kRs485Port, "COM2", 9600, 8, 0, 2, 17, "extra");
    QCOMPARE(setting.extraValue, 17);
    QCOMPARE(setting.extraText, QString("extra"));
    QCOMPARE(setting.linkID, -1);
}

void TestDeviceSetting::withoutAddressesTheCurrentOneIsEmpty()
{
    DeviceSetting setting = serialDefault();
    setting.setCurrentIPIndex(0);
    QCOMPARE(setting.currentIPIndex, 0);
    QCOMPARE(setting.socketIP(-1), QString());
    QCOMPARE(int(setting.port(-1)), 0);
}

void TestDeviceSetting::theCurrentIndexOnlyTakesValidOnes()
{
    DeviceSetting setting = withAddresses(3);
    setting.setCurrentIPIndex(2);
    QCOMPARE(setting.currentIPIndex, 2);
    setting.setCurrentIPIndex(3);
    setting.setCurrentIPIndex(-1);
    QCOMPARE(setting.currentIPIndex, 2);
}

void TestDeviceSetting::anIndexOutsideTheListReadsAsEmpty()
{
    const DeviceSetting setting = withAddresses(2);
    QCOMPARE(setting.socketIP(1), QString("10.0.0.1"));
    QCOMPARE(int(setting.port(1)), 101);
    QCOMPARE(setting.socketIP(2), QString());
    QCOMPARE(int(setting.port(2)), 0);
    QCOMPARE(setting.socketIP(-2), QString());
}

void TestDeviceSetting::oneHalfOfAnAddressIsReplaced()
{
    DeviceSetting setting = withAddresses(2);
    setting.setCurrentIPIndex(1);
    setting.setPort(502, -1);
    setting.setSocketIP("192.168.0.1", 0);
    QCOMPARE(addresses(setting), QString("192.168.0.1:100 10.0.0.1:502"));
}

void TestDeviceSetting::aSetterOutsideTheListChangesNothing()
{
    DeviceSetting setting = withAddresses(2);
    setting.setPort(502, 5);
    setting.setPort(502, 2);
    setting.setPort(502, -2);
    setting.setSocketIP("1.2.3.4", 2);
    setting.setSocketIP("1.2.3.4", -7);
    QCOMPARE(addresses(setting), QString("10.0.0.0:100 10.0.0.1:101"));
}

void TestDeviceSetting::minusOneOnAnEmptyListChangesNothing()
{
    DeviceSetting setting = serialDefault();
    setting.setPort(502, -1);
    setting.setSocketIP("1.2.3.4", -1);
    QVERIFY(setting.socketList.isEmpty());
}

void TestDeviceSetting::portTextsThatAreNotPortsGiveZero_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("port");
    QTest::newRow("a port") << "102" << 102;
    QTest::newRow("the largest") << "65535" << 65535;
    QTest::newRow("letters") << "abc" << 0;
    QTest::newRow("too large") << "70000" << 0;
    QTest::newRow("negative") << "-1" << 0;
    QTest::newRow("hexadecimal") << "0x10" << 0;
    QTest::newRow("empty") << "" << 0;
}

void TestDeviceSetting::portTextsThatAreNotPortsGiveZero()
{
    QFETCH(QString, text);
    QFETCH(int, port);
    DeviceSetting setting = serialDefault();
    setting.setSocketData(QList<QPair<QString, QString>>() << qMakePair(QString("10.0.0.1"), text));
    QCOMPARE(addresses(setting), QString("10.0.0.1:%1").arg(port));
}

void TestDeviceSetting::newSocketDataReplaceTheListAndKeepTheIndex()
{
    DeviceSetting setting = withAddresses(3);
    setting.setCurrentIPIndex(2);
    setting.setSocketData(QList<QPair<QString, QString>>() << qMakePair(QString("a"), QString("1")));
    QCOMPARE(addresses(setting), QString("a:1"));
    QCOMPARE(setting.currentIPIndex, 2);
    QCOMPARE(setting.socketIP(-1), QString());
}

void TestDeviceSetting::theDefaultRecordIsFortyEightBytes()
{
    QCOMPARE(hex(streamed(serialDefault())), QString("00000040"
                                                     "00000008"
                                                     "0043004f004d0032"
                                                     "00002580"
                                                     "00000008"
                                                     "00000000"
                                                     "00000002"
                                                     "00000000"
                                                     "ffffffff"
                                                     "00000000"
                                                     "00000000"));
}

void TestDeviceSetting::aRecordWithAddressesIsStreamedWhole()
{
    DeviceSetting setting(kRs485Port, "", 0, 0, 0, 0);
    setting.socketList.append(qMakePair(QString("a"), quint16(0x0102)));
    QVERIFY(hex(streamed(setting))
                .endsWith("00000001"
                          "000000020061"
                          "0102"));
}

void TestDeviceSetting::readingTwiceRestoresTheIndex()
{
    DeviceSetting from = withAddresses(3);
    from.setCurrentIPIndex(2);
    const QByteArray data = streamed(from);

    DeviceSetting to = serialDefault();
    read(data, to);
    QCOMPARE(addresses(to), addresses(from));
    QCOMPARE(to.currentIPIndex, 0);
    read(data, to);
    QCOMPARE(to.currentIPIndex, 2);
}

void TestDeviceSetting::theExtraTextIsNotStreamed()
{
    DeviceSetting to = serialDefault();
    read(streamed(DeviceSetting(device_type(1), "x", 1, 2, 3, 4, 5, "lost")), to);
    QCOMPARE(to.extraValue, 5);
    QVERIFY(to.extraText.isEmpty());
}

void TestDeviceSetting::unknownKindsOfPortPassThrough()
{
    DeviceSetting to = serialDefault();
    read(streamed(DeviceSetting(device_type(-5), "x", 1, 2, 3, 4)), to);
    QCOMPARE(int(to.type), -5);
}

void TestDeviceSetting::aListCutShortKeepsTheEntriesRead()
{
    const QByteArray whole = streamed(withAddresses(3));
    const int entrySize = 4 + 2 * 8 + 2;
    DeviceSetting to = serialDefault();
    read(whole.left(int(whole.size()) - entrySize), to);
    QCOMPARE(addresses(to), QString("10.0.0.0:100 10.0.0.1:101"));
}

void TestDeviceSetting::aListThatEndsAfterItsCountYieldsOneEmptyEntry()
{
    const QByteArray whole = streamed(withAddresses(2));
    const int entrySize = 4 + 2 * 8 + 2;
    DeviceSetting to = serialDefault();
    read(whole.left(int(whole.size()) - 2 * entrySize), to);
    QCOMPARE(addresses(to), QString(":0"));
}

void TestDeviceSetting::anAbsurdCountReservesNothing()
{
    QByteArray data = streamed(withAddresses(1));
    const int countAt = int(data.size()) - (4 + 2 * 8 + 2) - 4;
    data.replace(countAt, 4, bytes("ffffffff"));
    DeviceSetting to = serialDefault();
    read(data, to);
    QCOMPARE(addresses(to), QString("10.0.0.0:100"));
}

void TestDeviceSetting::dumpIsOneMessage()
{
    const LogCapture log;
    serialDefault().dump();
    QCOMPARE(log.lines(),
             QStringList("type: 64 string: \"COM2\" baudrate: 9600 databits: 8 stopbits: 0 parity: 2 "
                         "linkID: -1 current ip: \"\" current port: 0 "));
}

void TestDeviceSetting::dumpEscapesNothing()
{
    const LogCapture log;
    DeviceSetting setting(kRs485Port, "a\"b\\%1%s", 1, 2, 3, 4);
    setting.socketList.append(qMakePair(QString("10.0.0.1"), quint16(502)));
    setting.dump();
    QCOMPARE(log.lines(), QStringList("type: 64 string: \"a\"b\\%1%s\" baudrate: 1 databits: 2 stopbits: 3 "
                                      "parity: 4 linkID: -1 current ip: \"10.0.0.1\" current port: 502 "));
}

QTEST_APPLESS_MAIN(TestDeviceSetting)
#include "test_device_setting.moc"
