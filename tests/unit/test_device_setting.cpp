// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "device_setting.h"
#include "hex.h"
#include "log_capture.h"
#include "test_class.h"

#include <QtTest>

#include <climits>
#include <cstring>
#include <new>

namespace {

DeviceSetting serialDefault()
{
    return DeviceSetting(kRs485Port, "COM2", 9600, 8, kOneStopBit, kEvenParity);
}

DeviceSetting withAddresses(int count)
{
    DeviceSetting setting = serialDefault();
    for (int i = 0; i < count; ++i)
        setting.socketList.append(qMakePair(QString("10.0.0.%1").arg(i), quint16(100 + i)));
    return setting;
}

// Every field has a value, and another one than the streams that are read into it.
DeviceSetting filled()
{
    DeviceSetting setting(device_type(9), "COM9", 9, 9, 9, 9, 9, "mine");
    setting.linkID = 9;
    setting.socketList = withAddresses(3).socketList;
    setting.currentIPIndex = 2;
    return setting;
}

QByteArray streamed(const DeviceSetting &setting, QDataStream::ByteOrder order = QDataStream::BigEndian)
{
    QByteArray data;
    QDataStream stream(&data, QIODevice::WriteOnly);
    stream.setByteOrder(order);
    stream << setting;
    return data;
}

void read(const QByteArray &data, DeviceSetting &setting,
          QDataStream::ByteOrder order = QDataStream::BigEndian)
{
    QDataStream stream(data);
    stream.setByteOrder(order);
    stream >> setting;
}

// The first nine fields of the stream.
QString fields(const DeviceSetting &setting)
{
    const int numbers[] = {setting.baudrate,   setting.databits, setting.stopbits,      setting.parity,
                           setting.extraValue, setting.linkID,   setting.currentIPIndex};
    QString text = QString("%1 \"%2\"").arg(int(setting.type)).arg(setting.string);
    for (int number : numbers)
        text += QString(" %1").arg(number);
    return text;
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
    void theLongConstructorStartsAtTheFirstAddress();
    void withoutAddressesTheCurrentOneIsEmpty();
    void theCurrentIndexOnlyTakesValidOnes();
    void anIndexOutsideTheListReadsAsEmpty();
    void minusOneReadsTheCurrentAddress();
    void oneHalfOfAnAddressIsReplaced();
    void minusOneReplacesTheIpOfTheCurrentAddress();
    void aSetterOutsideTheListChangesNothing();
    void minusOneOnAnEmptyListChangesNothing();
    void minusOneBehindAShortenedListChangesNothing();
    void portTextsThatAreNotPortsGiveZero_data();
    void portTextsThatAreNotPortsGiveZero();
    void newSocketDataReplaceTheListAndKeepTheIndex();
    void newSocketDataKeepTheirOrderAndTheirIps();
    void emptySocketDataEmptyTheList();
    void theDefaultRecordIsFortyEightBytes();
    void aRecordWithAddressesIsStreamedWhole();
    void theStreamsByteOrderIsKept();
    void aNullTextStaysNull();
    void readingTwiceRestoresTheIndex();
    void anIndexOutsideTheOldListIsDropped_data();
    void anIndexOutsideTheOldListIsDropped();
    void anIndexOutsideTheListReadStays();
    void theExtraTextIsNotStreamed();
    void unknownKindsOfPortPassThrough();
    void fieldsBehindTheEndOfTheStreamAreEmpty_data();
    void fieldsBehindTheEndOfTheStreamAreEmpty();
    void aStreamWithoutADeviceReadsAsEmpty();
    void aListCutShortKeepsTheEntriesRead();
    void aListThatEndsAfterItsCountYieldsOneEmptyEntry();
    void anAbsurdCountReservesNothing();
    void dumpIsOneMessage();
    void dumpEscapesNothing();
    void dumpShowsTheCurrentAddress();
    void dumpShowsOtherLettersThanAscii();
    void dumpShowsNegativeNumbers();
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
    const DeviceSetting setting(kRs485Port, "COM2", 9600, 8, kOneStopBit, kEvenParity, 17, "extra");
    QCOMPARE(setting.extraValue, 17);
    QCOMPARE(setting.extraText, QString("extra"));
    QCOMPARE(setting.linkID, -1);
}

// In memory that was used before, where a field that is not set is not 0.
void TestDeviceSetting::theLongConstructorStartsAtTheFirstAddress()
{
    alignas(DeviceSetting) unsigned char memory[sizeof(DeviceSetting)];
    std::memset(memory, 0x55, sizeof memory);
    DeviceSetting *setting =
        new (memory) DeviceSetting(kRs485Port, "COM2", 9600, 8, kOneStopBit, kEvenParity, 17, "extra");
    const int index = setting->currentIPIndex;
    setting->~DeviceSetting();
    QCOMPARE(index, 0);
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
    QCOMPARE(int(setting.port(-2)), 0);
}

void TestDeviceSetting::minusOneReadsTheCurrentAddress()
{
    DeviceSetting setting = withAddresses(3);
    setting.setCurrentIPIndex(2);
    QCOMPARE(setting.socketIP(-1), QString("10.0.0.2"));
    QCOMPARE(int(setting.port(-1)), 102);
}

void TestDeviceSetting::oneHalfOfAnAddressIsReplaced()
{
    DeviceSetting setting = withAddresses(2);
    setting.setCurrentIPIndex(1);
    setting.setPort(502, -1);
    setting.setSocketIP("192.168.0.1", 0);
    QCOMPARE(addresses(setting), QString("192.168.0.1:100 10.0.0.1:502"));
}

void TestDeviceSetting::minusOneReplacesTheIpOfTheCurrentAddress()
{
    DeviceSetting setting = withAddresses(3);
    setting.setCurrentIPIndex(2);
    setting.setSocketIP("1.2.3.4", -1);
    QCOMPARE(addresses(setting), QString("10.0.0.0:100 10.0.0.1:101 1.2.3.4:102"));
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

void TestDeviceSetting::minusOneBehindAShortenedListChangesNothing()
{
    DeviceSetting setting = withAddresses(3);
    setting.setCurrentIPIndex(2);
    setting.socketList.removeLast();
    setting.setPort(502, -1);
    setting.setSocketIP("1.2.3.4", -1);
    QCOMPARE(addresses(setting), QString("10.0.0.0:100 10.0.0.1:101"));
}

void TestDeviceSetting::portTextsThatAreNotPortsGiveZero_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("port");
    QTest::newRow("a port") << "102" << 102;
    QTest::newRow("the largest") << "65535" << 65535;
    QTest::newRow("plus sign") << "+102" << 102;
    QTest::newRow("leading zero, not octal") << "0102" << 102;
    QTest::newRow("separator of thousands") << "1,024" << 0;
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

void TestDeviceSetting::newSocketDataKeepTheirOrderAndTheirIps()
{
    DeviceSetting setting = withAddresses(1);
    setting.setSocketData(QList<QPair<QString, QString>>() << qMakePair(QString("plc.example"), QString("3"))
                                                           << qMakePair(QString(" 10.0.0.1"), QString("1"))
                                                           << qMakePair(QString(), QString("2"))
                                                           << qMakePair(QString(" 10.0.0.1"), QString("1")));
    QCOMPARE(addresses(setting), QString("plc.example:3  10.0.0.1:1 :2  10.0.0.1:1"));
}

void TestDeviceSetting::emptySocketDataEmptyTheList()
{
    DeviceSetting setting = withAddresses(3);
    setting.setCurrentIPIndex(2);
    setting.setSocketData(QList<QPair<QString, QString>>());
    QVERIFY(setting.socketList.isEmpty());
    QCOMPARE(setting.currentIPIndex, 2);
    QCOMPARE(int(setting.port(-1)), 0);
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

void TestDeviceSetting::theStreamsByteOrderIsKept()
{
    DeviceSetting from = serialDefault();
    from.socketList.append(qMakePair(QString("a"), quint16(0x0102)));
    const QByteArray data = streamed(from, QDataStream::LittleEndian);
    QCOMPARE(hex(data), QString("40000000"
                                "08000000"
                                "43004f004d003200"
                                "80250000"
                                "08000000"
                                "00000000"
                                "02000000"
                                "00000000"
                                "ffffffff"
                                "00000000"
                                "01000000"
                                "020000006100"
                                "0201"));
    DeviceSetting to = filled();
    read(data, to, QDataStream::LittleEndian);
    QCOMPARE(fields(to), QString("64 \"COM2\" 9600 8 0 2 0 -1 0"));
    QCOMPARE(addresses(to), QString("a:258"));
}

void TestDeviceSetting::aNullTextStaysNull()
{
    DeviceSetting from(kRs485Port, QString(), 0, 0, 0, 0);
    from.socketList.append(qMakePair(QString(), quint16(1)));
    const QByteArray data = streamed(from);
    QCOMPARE(hex(data.mid(4, 4)), QString("ffffffff"));
    QCOMPARE(hex(data.right(6)), QString("ffffffff0001"));
    DeviceSetting to = filled();
    read(data, to);
    QVERIFY(to.string.isNull());
    QCOMPARE(int(to.socketList.size()), 1);
    QVERIFY(to.socketList.at(0).first.isNull());
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

void TestDeviceSetting::anIndexOutsideTheOldListIsDropped_data()
{
    QTest::addColumn<int>("index");
    QTest::newRow("one more") << 3;
    QTest::newRow("-1") << -1;
    QTest::newRow("highest") << INT_MAX;
    QTest::newRow("lowest") << INT_MIN;
}

void TestDeviceSetting::anIndexOutsideTheOldListIsDropped()
{
    QFETCH(int, index);
    DeviceSetting from = withAddresses(5);
    from.currentIPIndex = index;
    DeviceSetting to = withAddresses(3);
    to.setCurrentIPIndex(1);
    read(streamed(from), to);
    QCOMPARE(to.currentIPIndex, 1);
    QCOMPARE(int(to.socketList.size()), 5);
}

void TestDeviceSetting::anIndexOutsideTheListReadStays()
{
    DeviceSetting from = withAddresses(1);
    from.currentIPIndex = 2;
    DeviceSetting to = withAddresses(3);
    read(streamed(from), to);
    QCOMPARE(addresses(to), QString("10.0.0.0:100"));
    QCOMPARE(to.currentIPIndex, 2);
    QCOMPARE(to.socketIP(-1), QString());
    QCOMPARE(int(to.port(-1)), 0);
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

// The old list takes the index 0 that a short stream gives.
void TestDeviceSetting::fieldsBehindTheEndOfTheStreamAreEmpty_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<QString>("kept");
    QTest::newRow("nothing") << 0 << "0 \"\" 0 0 0 0 0 0 0";
    QTest::newRow("within type") << 3 << "0 \"\" 0 0 0 0 0 0 0";
    QTest::newRow("within the size of the name") << 7 << "64 \"\" 0 0 0 0 0 0 0";
    QTest::newRow("within the name") << 14 << "64 \"\" 0 0 0 0 0 0 0";
    QTest::newRow("within a character of the name") << 15 << "64 \"\" 0 0 0 0 0 0 0";
    QTest::newRow("within baudrate") << 19 << "64 \"COM1\" 0 0 0 0 0 0 0";
    QTest::newRow("within databits") << 23 << "64 \"COM1\" 19200 0 0 0 0 0 0";
    QTest::newRow("within stopbits") << 27 << "64 \"COM1\" 19200 7 0 0 0 0 0";
    QTest::newRow("within parity") << 31 << "64 \"COM1\" 19200 7 1 0 0 0 0";
    QTest::newRow("within extraValue") << 35 << "64 \"COM1\" 19200 7 1 3 0 0 0";
    QTest::newRow("within linkID") << 39 << "64 \"COM1\" 19200 7 1 3 5 0 0";
    QTest::newRow("within currentIPIndex") << 43 << "64 \"COM1\" 19200 7 1 3 5 4 0";
    QTest::newRow("within the count") << 47 << "64 \"COM1\" 19200 7 1 3 5 4 1";
}

void TestDeviceSetting::fieldsBehindTheEndOfTheStreamAreEmpty()
{
    QFETCH(int, size);
    QFETCH(QString, kept);
    DeviceSetting from(kRs485Port, "COM1", 19200, 7, 1, 3, 5, QString());
    from.linkID = 4;
    from.currentIPIndex = 1;
    from.socketList = withAddresses(2).socketList;
    QDataStream stream(streamed(from).left(size));
    DeviceSetting to = filled();
    stream >> to;
    QCOMPARE(fields(to), kept);
    QVERIFY(to.socketList.isEmpty());
    QCOMPARE(to.extraText, QString("mine"));
    QCOMPARE(int(stream.status()), int(QDataStream::ReadPastEnd));
}

void TestDeviceSetting::aStreamWithoutADeviceReadsAsEmpty()
{
    const LogCapture warnings;
    QDataStream stream;
    DeviceSetting to = filled();
    stream >> to;
    QCOMPARE(fields(to), QString("0 \"\" 0 0 0 0 0 0 0"));
    QVERIFY(to.socketList.isEmpty());
    QCOMPARE(to.extraText, QString("mine"));
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

void TestDeviceSetting::dumpShowsTheCurrentAddress()
{
    const LogCapture log;
    DeviceSetting setting = serialDefault();
    setting.socketList.append(qMakePair(QString("10.0.0.1"), quint16(502)));
    setting.socketList.append(qMakePair(QString("10.0.0.2"), quint16(503)));
    setting.setCurrentIPIndex(1);
    setting.dump();
    QVERIFY(log.lines().value(0).endsWith("current ip: \"10.0.0.2\" current port: 503 "));
}

void TestDeviceSetting::dumpShowsOtherLettersThanAscii()
{
    const LogCapture log;
    const QString name = QString::fromUtf8("B\xC3\xBCro");
    DeviceSetting(kRs485Port, name, 1, 2, 3, 4).dump();
    QCOMPARE(log.lines(), QStringList("type: 64 string: \"" + name +
                                      "\" baudrate: 1 databits: 2 stopbits: 3 parity: 4 linkID: -1 "
                                      "current ip: \"\" current port: 0 "));
}

void TestDeviceSetting::dumpShowsNegativeNumbers()
{
    const LogCapture log;
    DeviceSetting setting(device_type(-5), "x", -1, -2, -3, INT_MIN);
    setting.linkID = -4;
    setting.dump();
    QCOMPARE(log.lines(), QStringList("type: -5 string: \"x\" baudrate: -1 databits: -2 stopbits: -3 "
                                      "parity: -2147483648 linkID: -4 current ip: \"\" current port: 0 "));
}

TEST_CLASS(TestDeviceSetting)
#include "test_device_setting.moc"
