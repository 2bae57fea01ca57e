// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Answers to reads whose header is good and whose item is not: the reason of every kind of read side by
// side, and whether it is logged.

#include "answer.h"
#include "commands.h"
#include "faults.h"
#include "hex.h"
#include "outcome.h"
#include "sample_rows.h"
#include "test_class.h"

#include <QtTest>

#include <climits>

namespace {

const char *const kCode = nullptr; // the text of the return code
const char kInvalid[] = "invalid response";
const char kNoData[] = "invalid response2";
const char kUndecoded[] = "invalid PLC response";

struct Reason
{
    const char *text;
    bool isLogged;
};

// What a kind of read makes of an item with another return code than success, of one that is wrong in
// other ways, and of a good one without data.
struct ReadKind
{
    const char *address;
    int count;
    int dataType;
    Reason refused;
    Reason wrong;
    Reason empty;
};

// clang-format off
const ReadKind kMemoryReads[] = {
    //                        return code           wrong item         no data
    {"VB100", 4, kBytes,       {kCode, true},        {kInvalid, true},  {kInvalid, true}},
    {"VB100", 1, kWords,       {kCode, false},       {kInvalid, false}, {kInvalid, false}},
    {"VB100", 1, kDoubleWords, {kCode, false},       {kNoData, true},   {kNoData, true}},
    {"VW100", 4, kBytes,       {kCode, true},        {kInvalid, true},  {kInvalid, true}},
    {"VW100", 1, kWords,       {kCode, false},       {kInvalid, false}, {kInvalid, false}},
    {"VW100", 1, kDoubleWords, {kCode, false},       {kNoData, true},   {kNoData, true}},
    {"VD100", 4, kBytes,       {kCode, true},        {kInvalid, true},  {kInvalid, true}},
    {"VD100", 1, kWords,       {kCode, false},       {kInvalid, false}, {kInvalid, false}},
    {"VD100", 1, kDoubleWords, {kCode, false},       {kNoData, true},   {kNoData, true}},
    {"V10.0", 32, kBits,       {kInvalid, true},     {kInvalid, true},  {kInvalid, true}},
    {"HC0",   32, kBits,       {kInvalid, true},     {kInvalid, true},  {kInvalid, true}},
};

const ReadKind kTimerReads[] = {
    {"T37",   4, kBytes,       {kUndecoded, false}, {kUndecoded, false}, {kInvalid, true}},
    {"T37",   1, kWords,       {kUndecoded, false}, {kUndecoded, false}, {kInvalid, true}},
    {"T37",   1, kDoubleWords, {kUndecoded, false}, {kUndecoded, false}, {kInvalid, true}},
    {"T37",   1, kBits,        {kUndecoded, false}, {kUndecoded, false}, {kInvalid, true}},
};

const ReadKind kCounterReads[] = {
    {"C5",    4, kBytes,       {kUndecoded, false}, {kUndecoded, false}, {kInvalid, true}},
    {"C5",    1, kWords,       {kUndecoded, false}, {kUndecoded, false}, {kInvalid, true}},
    {"C5",    1, kDoubleWords, {kUndecoded, false}, {kUndecoded, false}, {kInvalid, true}},
    {"C5",    1, kBits,        {kUndecoded, false}, {kUndecoded, false}, {kInvalid, true}},
};

const ReadKind kFastCounterReads[] = {
    {"HC0",   4, kBytes,       {kCode, true},        {kInvalid, true},  {kInvalid, true}},
    {"HC0",   1, kWords,       {kCode, true},        {kInvalid, true},  {kInvalid, true}},
    {"HC0",   1, kDoubleWords, {kCode, true},        {kInvalid, true},  {kInvalid, true}},
};

struct Item
{
    const char *what;
    const char *bytes;
};

const Item kWrongMemory[] = {
    {"function 5",       "05 01 ff 04 00 20 11 22 33 44"},
    {"0 items",          "04 00 ff 04 00 20 11 22 33 44"},
    {"2 items",          "04 02 ff 04 00 20 11 22 33 44"},
    {"transport size 3", "04 01 ff 03 00 04 11 22 33 44"},
    {"transport size 9", "04 01 ff 09 00 04 11 22 33 44"},
};

const Item kWrongTimer[] = {
    {"function 5",       "05 01 ff 09 00 05 02 00 00 12 34"},
    {"0 items",          "04 00 ff 09 00 05 02 00 00 12 34"},
    {"2 items",          "04 02 ff 09 00 05 02 00 00 12 34"},
    {"transport size 4", "04 01 ff 04 00 05 02 00 00 12 34"},
    {"bits",             "04 01 ff 04 00 08 02"},
};

const Item kWrongCounter[] = {
    {"function 5",       "05 01 ff 09 00 03 10 12 34"},
    {"0 items",          "04 00 ff 09 00 03 10 12 34"},
    {"2 items",          "04 02 ff 09 00 03 10 12 34"},
    {"transport size 4", "04 01 ff 04 00 03 10 12 34"},
    {"bits",             "04 01 ff 04 00 08 10"},
};

const Item kWrongFastCounter[] = {
    {"function 5",       "05 01 ff 09 00 05 00 01 02 03 04"},
    {"0 items",          "04 00 ff 09 00 05 00 01 02 03 04"},
    {"2 items",          "04 02 ff 09 00 05 00 01 02 03 04"},
    {"transport size 4", "04 01 ff 04 00 05 00 01 02 03 04"},
};

const Item kEmptyItems[] = {
    {"no data",          "04 01 ff 04 00 00"},
    {"7 bits",           "04 01 ff 04 00 07 11"},
};

const Item kEmptyObjects[] = {
    {"no data",          "04 01 ff 09 00 00"},
};
// clang-format on

void addItemColumns()
{
    QTest::addColumn<CommunicatorCommand>("read");
    QTest::addColumn<QString>("item");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("isLogged");
}

void addItem(const CommunicatorCommand &read, const Item &item, const Reason &reason)
{
    QTest::newRow(textOf(read, item.what).constData())
        << read << QString(item.bytes) << QString(reason.text) << reason.isLogged;
}

template <size_t Kinds, size_t Wrong, size_t Empty>
void addItems(const ReadKind (&kinds)[Kinds], const Item (&wrong)[Wrong], const Item (&empty)[Empty])
{
    for (const ReadKind &kind : kinds) {
        const CommunicatorCommand read = command(kind.dataType, kind.address, kind.count);
        for (const Item &item : wrong)
            addItem(read, item, kind.wrong);
        for (const Item &item : empty)
            addItem(read, item, kind.empty);
    }
}

template <size_t Kinds> void addReturnCodes(const ReadKind (&kinds)[Kinds])
{
    for (const ReadKind &kind : kinds) {
        const CommunicatorCommand read = command(kind.dataType, kind.address, kind.count);
        for (const Refusal &refusal : refusals()) {
            const QByteArray code = QByteArray::number(refusal.code, 16).rightJustified(2, '0');
            const QByteArray item = "04 01 " + code + " 00 00 00";
            const Item named = {code.constData(), item.constData()};
            const Reason own = {refusal.text, kind.refused.isLogged};
            addItem(read, named, kind.refused.text == kCode ? own : kind.refused);
        }
    }
}

// Bits of counters are traced before they are decoded.
QStringList logOf(const CommunicatorCommand &read, const QString &text, bool isLogged)
{
    const bool isTraced = read.dataType == kBits && read.address.startsWith('C');
    return QStringList(isTraced ? QStringList(QString("")) : QStringList()) +
           (isLogged ? QStringList(text) : QStringList());
}

} // namespace

class TestReadRefusals : public QObject
{
    Q_OBJECT

private slots:
    void refusedItemHasItsReason_data();
    void refusedItemHasItsReason();
    void itemThatDoesNotDecodeHasItsReason_data();
    void itemThatDoesNotDecodeHasItsReason();
    void itemWithLessThanAnElementHasNoData_data();
    void itemWithLessThanAnElementHasNoData();
    void returnCodeIsJudgedWithTheFunction();
    void itemLongerThanItsFrameIsRefused_data();
    void itemLongerThanItsFrameIsRefused();
    void itemCutByTheEndOfItsFrameIsRefused_data();
    void itemCutByTheEndOfItsFrameIsRefused();
    void answerWithoutAnItemIsRefused();
    void hugeCountOfARefusedAnswerFails_data();
    void hugeCountOfARefusedAnswerFails();
    void goodAnswerThatNoArrayHoldsFails_data();
    void goodAnswerThatNoArrayHoldsFails();
};

void TestReadRefusals::refusedItemHasItsReason_data()
{
    addItemColumns();
    addReturnCodes(kMemoryReads);
    addReturnCodes(kTimerReads);
    addReturnCodes(kCounterReads);
    addReturnCodes(kFastCounterReads);
}

void TestReadRefusals::refusedItemHasItsReason()
{
    QFETCH(CommunicatorCommand, read);
    QFETCH(QString, item);
    QFETCH(QString, text);
    QFETCH(bool, isLogged);
    const Outcome outcome = outcomeOfRead(read, Answer(item));
    QCOMPARE(outcome.result, QString(""));
    QVERIFY(outcome.failed);
    QCOMPARE(outcome.reason, text);
    QCOMPARE(outcome.texts, logOf(read, text, isLogged));
}

void TestReadRefusals::itemThatDoesNotDecodeHasItsReason_data()
{
    addItemColumns();
    addItems(kMemoryReads, kWrongMemory, kEmptyItems);
    addItems(kTimerReads, kWrongTimer, kEmptyObjects);
    addItems(kCounterReads, kWrongCounter, kEmptyObjects);
    addItems(kFastCounterReads, kWrongFastCounter, kEmptyObjects);
}

void TestReadRefusals::itemThatDoesNotDecodeHasItsReason()
{
    refusedItemHasItsReason();
}

void TestReadRefusals::itemWithLessThanAnElementHasNoData_data()
{
    const Item oneByte = {"8 bits", "04 01 ff 04 00 08 11"};
    const Item threeBytes = {"24 bits", "04 01 ff 04 00 18 11 22 33"};
    const Reason logged = {kInvalid, true};
    const Reason notLogged = {kInvalid, false};
    const Reason noData = {kNoData, true};
    addItemColumns();
    addItem(byteCommand("VW100", 4), oneByte, logged);
    addItem(wordCommand("VW100", 1), oneByte, notLogged);
    addItem(doubleWordCommand("VW100", 1), oneByte, noData);
    addItem(byteCommand("VD100", 4), threeBytes, logged);
    addItem(wordCommand("VD100", 1), threeBytes, notLogged);
    addItem(doubleWordCommand("VD100", 1), threeBytes, noData);
}

void TestReadRefusals::itemWithLessThanAnElementHasNoData()
{
    refusedItemHasItsReason();
}

void TestReadRefusals::returnCodeIsJudgedWithTheFunction()
{
    const Outcome outcome = outcomeOfRead(byteCommand("VB100", 4), Answer("05 01 0a 04 00 00"));
    QCOMPARE(outcome.reason, QString("Object does not exist or length error"));
    QCOMPARE(outcome.texts, QStringList() << "Object does not exist or length error");
}

void TestReadRefusals::itemLongerThanItsFrameIsRefused_data()
{
    addSampleColumn();
    QTest::addColumn<int>("length");
    for (const Sample &read : samples()) {
        if (read.operation == kWrite)
            continue;
        const QByteArray item = bytes(read.item);
        const int unit = item.at(3) == 4 ? 8 : 1;
        const bool areBits = read.dataType == kBits || read.dataType == kBitBlock;
        const char width = areBits ? 'B' : QByteArray(read.address).left(2).at(1);
        const int element = width == 'D' ? 4 : width == 'W' ? 2 : 1;
        const int oneElementMore = (int(item.size()) - 6 + element) * unit;
        sampleRow(read, "1 element longer") << oneElementMore;
        sampleRow(read, "65528") << 65528;
    }
}

void TestReadRefusals::itemLongerThanItsFrameIsRefused()
{
    QFETCH(QString, sample);
    QFETCH(int, length);
    const Sample read = ::sample(sample);
    const Answer answer = Answer(read.item).withWord(Answer::kItemLength, length).sealed();
    const Outcome outcome = outcomeOf(read, answer);
    QCOMPARE(outcome.result, QString(""));
    QCOMPARE(outcome.reason, QString(kInvalid));
    QCOMPARE(outcome.texts.value(outcome.texts.size() - 1), QString(kInvalid));
}

// The check sum reads as the item's transport size here, and the end byte as the high byte of its length.
void TestReadRefusals::itemCutByTheEndOfItsFrameIsRefused_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QByteArray>("answer");
    const QByteArray memory =
        bytes("68 12 12 68 00 02 08 32 03 00 00 00 01 00 02 bd 01 00 00 04 01 ff 04 16");
    const QByteArray object =
        bytes("68 12 12 68 00 02 08 32 03 00 00 00 01 00 02 c2 01 00 00 04 01 ff 09 16");
    QTest::newRow("VB") << "VB100" << memory;
    QTest::newRow("T") << "T37" << object;
    QTest::newRow("C") << "C5" << object;
    QTest::newRow("HC") << "HC0" << object;
}

void TestReadRefusals::itemCutByTheEndOfItsFrameIsRefused()
{
    QFETCH(QString, address);
    QFETCH(QByteArray, answer);
    const Outcome outcome = outcomeOfRead(byteCommand(address, 4), answer);
    QCOMPARE(outcome.result, QString(""));
    QCOMPARE(outcome.texts, QStringList() << kInvalid);
}

// Behind a PDU of nothing but the header lie check sum, end and zero bytes, so the return code reads 00.
void TestReadRefusals::answerWithoutAnItemIsRefused()
{
    const Outcome outcome = outcomeOfRead(byteCommand("VB100", 4), Answer(""));
    QCOMPARE(outcome.result, QString(""));
    QCOMPARE(outcome.reason, QString("unknow error"));
}

void TestReadRefusals::hugeCountOfARefusedAnswerFails_data()
{
    QTest::addColumn<CommunicatorCommand>("read");
    QTest::addColumn<QString>("item");
    const QString noMemory("04 01 05 00 00 00");
    const QString noObject("04 01 0a 09 00 00");
    QTest::newRow("bytes") << byteCommand("VB0", INT_MAX) << noMemory;
    QTest::newRow("bytes of timers") << byteCommand("T0", INT_MAX) << noObject;
    QTest::newRow("bytes of counters") << byteCommand("C0", INT_MAX) << noObject;
    QTest::newRow("bytes of high-speed counters") << byteCommand("HC0", INT_MAX) << noObject;
    QTest::newRow("words") << wordCommand("VW0", INT_MAX) << noMemory;
    QTest::newRow("words of high-speed counters") << wordCommand("HC0", INT_MAX) << noObject;
    QTest::newRow("double words") << doubleWordCommand("VD0", INT_MAX) << noMemory;
    QTest::newRow("double words of timers") << doubleWordCommand("T0", INT_MAX) << noObject;
    QTest::newRow("bits") << bitCommand("V0.7", INT_MAX) << noMemory;
    QTest::newRow("bits of one byte") << bitCommand("V0.7", INT_MAX) << QString("04 01 ff 04 00 08 ff");
    QTest::newRow("bits of counters") << bitCommand("C0", INT_MAX) << noObject;
}

void TestReadRefusals::hugeCountOfARefusedAnswerFails()
{
    QFETCH(CommunicatorCommand, read);
    QFETCH(QString, item);
    const Outcome outcome = outcomeOfRead(read, Answer(item));
    QCOMPARE(outcome.result, QString(""));
    QVERIFY(outcome.failed);
}

void TestReadRefusals::goodAnswerThatNoArrayHoldsFails_data()
{
    QTest::addColumn<CommunicatorCommand>("read");
    QTest::addColumn<QString>("item");
    const QString memory("04 01 ff 04 00 20 11 22 33 44");
    QTest::newRow("2^31 bytes of words") << wordCommand("VW0", 0x40000000) << memory;
    QTest::newRow("2^32 bytes of double words") << doubleWordCommand("VD0", 0x40000000) << memory;
    QTest::newRow("2^31 bytes of words of high-speed counters")
        << wordCommand("HC0", 0x40000000) << QString("04 01 ff 09 00 05 00 01 02 03 04");
}

// What came is not handed out as the whole of what was asked for.
void TestReadRefusals::goodAnswerThatNoArrayHoldsFails()
{
    QFETCH(CommunicatorCommand, read);
    QFETCH(QString, item);
    const Outcome outcome = outcomeOfRead(read, Answer(item));
    QCOMPARE(outcome.result, QString(""));
    QVERIFY(outcome.failed);
    QCOMPARE(outcome.reason, QString("invalid request to PLC"));
}

TEST_CLASS(TestReadRefusals)

#include "test_read_refusals.moc"
