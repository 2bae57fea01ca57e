// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Lengths and counts that say other than what there is: in the frame, in its item, in the command. No byte
// outside the frame is ever used.

#include "hex.h"
#include "samples.h"
#include "short_memory.h"

#include <QtTest>

#include <climits>

class TestFaultLengths : public QObject
{
    Q_OBJECT

private slots:
    void everyLengthByte_data() { addAnsweredRows(); }
    void everyLengthByte();
    void everyLengthByteOfAFrameThatLong_data() { addAnsweredRows(); }
    void everyLengthByteOfAFrameThatLong();
    void everyCheckSumBehindAPduCutShort_data() { addAnsweredRows(); }
    void everyCheckSumBehindAPduCutShort();
    void everyLengthOfTheItem_data() { addGoodReadRows(); }
    void everyLengthOfTheItem();
    void everyNumberOfItems_data() { addAnsweredRows(); }
    void everyNumberOfItems();
    void everyNumberOfReturnCodes();
    void everyCountOfTheCommand_data() { addSampleRows(); }
    void everyCountOfTheCommand();
    void everyLengthOfTheDataToWrite_data() { addWriteRows(); }
    void everyLengthOfTheDataToWrite();
    void countsBeyondTheMemoryAreErrors_data();
    void countsBeyondTheMemoryAreErrors();
};

namespace {

const int kPlaceOfLength = 1;
const int kPlaceOfDataLength = 16; // its low byte
const int kUncounted = 6;          // bytes of an answer that its length byte does not count
const int kItemHeadSize = 6;

// Around which lengths of an item the driver could go wrong: ends of the frame, in bytes and in bits, and of
// numbers.
const int kLengths[] = {0x0010, 0x0030, 0x0050, 0x0070, 0x0090, 0x00b0, 0x00d0,
                        0x00f0, 0x0110, 0x0750, 0x0760, 0x07c0, 0x07f8, 0x0800,
                        0x1000, 0x2000, 0x4000, 0x7ff0, 0x8000, 0xff00, 0xfff0};
const int kAround = 9;

// clang-format off
const int kCounts[] = {
    INT_MIN, INT_MIN / 2, -65537, -65536, -9, -8, -7, -2, -1, 0, 1, 2, 3, 4, 5, 7, 8, 9, 10, 11, 12, 13, 14,
    15, 16, 17, 32, 33, 255, 256, 257, 32767, 32768, 65535, 65536, 65537, 65540, 131072,
    INT_MAX / 8 - 1, INT_MAX / 8, INT_MAX / 8 + 1, INT_MAX / 4, INT_MAX};
// clang-format on

const char kFill = '\xff'; // ones, and good return codes

// A command with a larger result gets no answer here.
const qint64 kLargestResult = 1000000;

QList<LineFault> repeated(int times, const LineFault &fault)
{
    QList<LineFault> faults;
    for (int i = 0; i < times; ++i)
        faults += fault;
    return faults;
}

// What is wrong with the outcome of a scene of one request, played behind a large answer that leaves its
// bytes in memory, where the model has zeros. Empty when nothing is.
QString complaint(const Scene &scene)
{
    const Reply large = {bytes("04 01 ff 04 06 e0") + QByteArray(220, kFill), 0, 0};
    Scene filled = scene;
    filled.requests.prepend(sample("bytes").request());
    filled.replies.prepend(large);
    filled.disturbed = 1;
    const Comparison comparison = compared(filled);
    if (!comparison.driver.outcomes.at(0).isReadAs(QByteArray(4, kFill)))
        return QLatin1String("the first request is not undisturbed\n");
    return comparison.difference;
}

// Both copies of the length byte, and the check sum where they say.
QList<LineFault> withLengthByte(int value)
{
    return QList<LineFault>() << lineFault(2, kCorrupt, kPlaceOfLength, value)
                              << lineFault(2, kCorrupt, kPlaceOfLength + 1, value) << lineFault(2, kSeal);
}

// An item with that length and so many bytes of data.
QByteArray itemOf(const Sample &sample, int length, int size)
{
    QByteArray item = bytes(sample.item);
    while (item.size() < kItemHeadSize + size)
        item += char(0x80 + item.size());
    item[4] = char(length >> 8);
    item[5] = char(length);
    return item;
}

QString complaintAboutItem(const Sample &sample, const QByteArray &item)
{
    Scene scene = sample.scene();
    scene.replies[0].item = item;
    return complaint(scene);
}

bool hasLargeResult(const Sample &sample, int count)
{
    const qint64 size = sample.dataType == kDoubleWords ? 4 : sample.dataType == kWords ? 2 : 1;
    return size * count > kLargestResult;
}

} // namespace

void TestFaultLengths::everyLengthByte()
{
    for (int value = 0; value <= 0xff; ++value) {
        Scene scene = currentSample().scene();
        scene.lineFaults = withLengthByte(value);
        const QString sealed = complaint(scene);
        QVERIFY2(sealed.isEmpty(), qPrintable(sealed));
        scene.lineFaults.removeLast();
        const QString unsealed = complaint(scene);
        QVERIFY2(unsealed.isEmpty(), qPrintable(unsealed));
    }
}

// The PDU loses its end, or is filled up with bytes that look like good return codes.
void TestFaultLengths::everyLengthByteOfAFrameThatLong()
{
    const Sample sample = currentSample();
    const int good = int(sample.replyBytes(2).size()) - kUncounted;
    for (int value = 0; value <= 0xff; ++value) {
        Scene scene = sample.scene();
        scene.lineFaults << repeated(good - value, lineFault(2, kLose, value + 4))
                         << repeated(value - good, lineFault(2, kInsert, good + 4, 0xff))
                         << withLengthByte(value);
        const QString text = complaint(scene);
        QVERIFY2(text.isEmpty(), qPrintable(text));
    }
}

// Where the item is cut short, the check sum and the end stand where its next bytes would be. The length of
// the data in the header, which nothing looks at, makes the check sum anything.
void TestFaultLengths::everyCheckSumBehindAPduCutShort()
{
    const Sample sample = currentSample();
    for (int size = 0; size < int(bytes(sample.item).size()); ++size) {
        for (int value = 0; value <= 0xff; ++value) {
            Scene scene = sample.scene();
            scene.replies[0].item = bytes(sample.item).left(size);
            scene.lineFaults << lineFault(2, kCorrupt, kPlaceOfDataLength, value) << lineFault(2, kSeal);
            const Comparison comparison = compared(scene);
            QVERIFY2(comparison.difference.isEmpty(), qPrintable(comparison.difference));
        }
    }
}

void TestFaultLengths::everyLengthOfTheItem()
{
    const Sample sample = currentSample();
    const int sizes[] = {0, 1, 10, 234};
    for (int middle : kLengths) {
        for (int length = middle - kAround; length < middle + kAround; ++length) {
            for (int size : sizes) {
                const QString text = complaintAboutItem(sample, itemOf(sample, length, size));
                QVERIFY2(text.isEmpty(), qPrintable(text));
            }
        }
    }
}

void TestFaultLengths::everyNumberOfItems()
{
    const Sample sample = currentSample();
    QByteArray item = bytes(sample.item);
    for (int number = 0; number <= 0xff; ++number) {
        item[1] = char(number);
        const QString text = complaintAboutItem(sample, item);
        QVERIFY2(text.isEmpty(), qPrintable(text));
    }
}

// In frames that hold as many codes as they say, and in frames that do not.
void TestFaultLengths::everyNumberOfReturnCodes()
{
    const Sample sample = ::sample("bit write");
    const int sizes[] = {0, 1, 2, 3, 31, 32, 33, 100, 200, 236, 237, 238};
    for (int number = 0; number <= 0xff; ++number) {
        for (int size : sizes) {
            const QByteArray item = bytes("05") + char(number) + QByteArray(size, '\xff');
            const QString text = complaintAboutItem(sample, item);
            QVERIFY2(text.isEmpty(), qPrintable(text));
        }
    }
}

void TestFaultLengths::everyCountOfTheCommand()
{
    const Sample sample = currentSample();
    for (int count : kCounts) {
        Scene scene = sample.scene();
        scene.requests[0].command.count = count;
        if (hasLargeResult(sample, count))
            scene.lineFaults << lineFault(2, kCut);
        if (hasLargeResult(sample, count) && sample.isWrite)
            continue;
        const QString text = complaint(scene);
        QVERIFY2(text.isEmpty(), qPrintable(text));
    }
}

void TestFaultLengths::everyLengthOfTheDataToWrite()
{
    Scene scene = currentSample().scene();
    for (int length = 1; length <= 300; ++length) {
        scene.requests[0].data = QByteArray(length, '\x91');
        const QString text = complaint(scene);
        QVERIFY2(text.isEmpty(), qPrintable(text));
    }
    const int lengths[] = {511, 512, 513, 8190, 8191, 8192, 8193, 65535, 65536, 65537};
    for (int length : lengths) {
        scene.requests[0].data = QByteArray(length, '\x91');
        const QString text = complaint(scene);
        QVERIFY2(text.isEmpty(), qPrintable(text));
    }
}

void TestFaultLengths::countsBeyondTheMemoryAreErrors_data()
{
    const char *const names[] = {"bytes", "words", "double words", "counters", "word write", "timer write"};
    QTest::addColumn<QString>("name");
    for (const char *name : names)
        QTest::newRow(name) << QString::fromLatin1(name);
}

// The request was answered well, but no array can hold what the command counts.
void TestFaultLengths::countsBeyondTheMemoryAreErrors()
{
    const Sample sample = currentSample();
    const int counts[] = {100000000, INT_MAX / 8, INT_MAX / 4, INT_MAX / 2, INT_MAX};
    Scene scene = sample.sceneOfTwo();
    for (int count : counts) {
        scene.requests[0].command.count = count;
        CannedController controller(scene.port.station, scene.replies);
        const ShortMemory shortMemory;
        const Record record = playToDriver(scene, controller);
        const Outcome &outcome = record.outcomes.at(0);
        QVERIFY2(outcome.failed && outcome.data.isEmpty() && !outcome.isWritten,
                 qPrintable(toString(outcome)));
        QCOMPARE(outcome.reason, QString("invalid request to PLC"));
        QCOMPARE(outcome.log, QStringList(outcome.reason));
        QVERIFY(outcome.sends <= 2);
        QVERIFY2(sample.isMetBy(record.outcomes.at(1)), qPrintable(toString(record.outcomes.at(1))));
    }
}

QTEST_APPLESS_MAIN(TestFaultLengths)

#include "test_fault_lengths.moc"
