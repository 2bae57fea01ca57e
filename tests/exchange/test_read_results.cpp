// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What good answers become: bytes, words, double words and bits of one area side by side.

#include "answer.h"
#include "commands.h"
#include "hex.h"
#include "outcome.h"
#include "samples.h"
#include "test_class.h"

#include <QtTest>

#include <climits>

namespace {

const char kOneByte[] = "04 01 ff 04 00 08 a5";
const char kEightBytes[] = "04 01 ff 04 00 40 11 22 33 44 55 66 77 88";
const char kOneTimer[] = "04 01 ff 09 00 05 02 00 00 12 34";
const char kTwoTimers[] = "04 01 ff 09 00 0a 02 00 00 12 34 00 00 00 56 78";
const char kFourTimers[] = "04 01 ff 09 00 14 00 00 00 00 01 00 00 00 00 02 00 00 00 00 03 00 00 00 00 04";
const char kTimerBits[] = "04 01 ff 09 00 0a 02 00 00 00 00 10 ff ff ff ff";
const char kOneCounter[] = "04 01 ff 09 00 03 10 12 34";
const char kTwoCounters[] = "04 01 ff 09 00 06 10 12 34 00 56 78";
const char kCounterBits[] = "04 01 ff 09 00 09 10 00 00 02 ff ff ff 00 00";
const char kOneFast[] = "04 01 ff 09 00 05 00 01 02 03 04";
const char kTwoFast[] = "04 01 ff 09 00 0a 00 01 02 03 04 00 05 06 07 08";

struct Result
{
    const char *address;
    int count;
    int dataType;
    const char *item;
    const char *data;
    const char *note;
};

// clang-format off
const Result kMemory[] = {
    {"VB100",   3, kBytes,       kFourBytes,    "112233",     "longer is cut"},
    {"VB100",   1, kBytes,       kFourBytes,    "11",         "much longer is cut"},
    {"VB100",   0, kBytes,       kFourBytes,    "",           "longer is cut to nothing"},
    {"VB100",   6, kBytes,       kFourBytes,    "112233440000", "shorter is extended"},
    {"VB100",   2, kBytes,       "04 01 ff 04 00 14 11 22 33", "1122",       "20 bits are 2 bytes"},
    {"VB100",   3, kBytes,       "04 01 ff 04 00 17 11 22 33", "112200",     "7 bits more do not count"},
    {"VB100",   2, kWords,       kFourBytes,    "11223344",   "bytes stay in the controller's order"},
    {"VB100",   2, kDoubleWords, kEightBytes,   "1122334455667788", "bytes stay in the controller's order"},
    {"VW100",   3, kBytes,       kFourBytes,    "221144",     "words are cut in their host order"},
    {"VW100",   2, kWords,       kFourBytes,    "22114433",   "words are swapped"},
    {"VW100",   1, kWords,       kFourBytes,    "2211",       "longer is cut"},
    {"VW100",   3, kWords,       kFourBytes,    "221144330000", "shorter is extended"},
    {"VW100",   0, kWords,       kFourBytes,    "",           "no words"},
    {"VW100",   3, kWords,       "04 01 ff 04 00 30 11 22 33 44 55 66", "221144336655", "48 bits are 3 words"},
    {"VW100",   3, kWords,       "04 01 ff 04 00 28 11 22 33 44 55", "221144330000", "40 bits are 2 words"},
    {"VW100",   2, kDoubleWords, kEightBytes,   "2211443366558877", "words are swapped"},
    {"VW10.0", 16, kBits,        "04 01 ff 04 00 10 01 00", "01000000000000000000000000000000", "not swapped"},
    {"VD100",   2, kBytes,       kFourBytes,    "4433",       "double words are cut in their host order"},
    {"VD100",   5, kBytes,       kFourBytes,    "4433221100", "double words are extended"},
    {"VD100",   2, kWords,       kFourBytes,    "44332211",   "double words are reversed"},
    {"VD100",   1, kWords,       kFourBytes,    "4433",       "a word of a double word is its low word"},
    {"VD100",   2, kDoubleWords, kEightBytes,   "4433221188776655", "double words are reversed"},
    {"VD100",   1, kDoubleWords, kEightBytes,   "44332211",   "longer is cut"},
    {"VD100",   3, kDoubleWords, kEightBytes,   "443322118877665500000000", "shorter is extended"},
    {"VD100",   0, kDoubleWords, kEightBytes,   "",           "no double words"},
    {"VD100",   2, kDoubleWords, "04 01 ff 04 00 30 11 22 33 44 55 66", "4433221100000000", "48 bits are 1 double word"},
    {"V10.0",   8, kBits,        kOneByte,      "0100010000010001", "lowest bit first"},
    {"V10.0",   3, kBits,        kOneByte,      "010001",     "fewer bits than the byte"},
    {"V10.2",   3, kBits,        "04 01 ff 04 00 08 24", "010000",     "from bit 2"},
    {"V10.6",   2, kBits,        "04 01 ff 04 00 08 80", "0001",       "to the last bit"},
    {"V10.7",   1, kBits,        "04 01 ff 04 00 08 80", "01",         "only the last bit"},
    {"V10.0",   1, kBits,        "04 01 ff 04 00 08 fe", "00",         "all but the first bit set"},
    {"V10.0",   9, kBits,        "04 01 ff 04 00 10 01 01", "010000000000000001", ""},
    {"V10.7",   9, kBits,        "04 01 ff 04 00 10 80 55", "010100010001000100", ""},
    {"V10.0",  16, kBits,        "04 01 ff 04 00 10 0f f0", "01010101000000000000000001010101", ""},
    {"V10.0",   8, kBits,        "04 01 ff 04 00 09 a5 00", "0100010000010001", "9 data bits are 1 byte"},
    {"V10.0",   8, kBits,        "04 01 ff 04 00 0f a5 00", "0100010000010001", "15 data bits are 1 byte"},
    {"V10.0",   0, kBits,        "04 01 ff 04 00 00", "",           "no bits are no error"},
    {"V10.2",   3, kBitBlock,   "04 01 ff 04 00 08 24", "010000",     "a bit block is read as bits"},
};

const Result kObjects[] = {
    {"T37",     3, kBytes,       kTwoTimers,   "341278",             "timers are cut"},
    {"T37",     3, kBytes,       kOneTimer,    "341200",             "timers are extended"},
    {"T37",     2, kWords,       kTwoTimers,   "34127856",           "as many timers"},
    {"T37",     1, kWords,       kTwoTimers,   "34127856",           "more timers than asked for"},
    {"T37",     3, kWords,       kTwoTimers,   "34127856",           "fewer timers than asked for"},
    {"T37",     1, kWords,       "04 01 ff 09 00 05 00 99 88 12 34", "3412",               "upper half of a timer is dropped"},
    {"T37",     2, kDoubleWords, kFourTimers,  "0100020003000400",   "as many timers"},
    {"T37",     1, kDoubleWords, kFourTimers,  "0100020003000400",   "more timers than asked for"},
    {"T37",     2, kDoubleWords, kTwoTimers,   "34127856",           "fewer timers than asked for"},
    {"T37",     2, kBits,        kTimerBits,   "0100",               ""},
    {"T37",     1, kBits,        kTimerBits,   "0100",               "more timers than asked for"},
    {"T37",     9, kBits,        kTimerBits,   "0100",               "fewer timers than asked for"},
    {"C5",      1, kBytes,       kOneCounter,  "34",                 "counters are cut"},
    {"C5",      4, kBytes,       kOneCounter,  "34120000",           "counters are extended"},
    {"C5",      1, kWords,       kTwoCounters, "34127856",           "more counters than asked for"},
    {"C5",      3, kWords,       kTwoCounters, "34127856",           "fewer counters than asked for"},
    {"C5",      2, kDoubleWords, kTwoCounters, "34127856",           "fewer counters than asked for"},
    {"C5",      3, kBits,        kCounterBits, "010001",             ""},
    {"C5",      1, kBits,        kCounterBits, "010001",             "more counters than asked for"},
    {"C5",      9, kBits,        kCounterBits, "010001",             "fewer counters than asked for"},
    {"HC0",     5, kBytes,       kTwoFast,     "0403020108",         "high-speed counters are cut"},
    {"HC0",     5, kBytes,       kOneFast,     "0403020100",         "high-speed counters are extended"},
    {"HC0",     3, kWords,       kTwoFast,     "040302010807",       "high-speed counters are cut"},
    {"HC0",     3, kWords,       kOneFast,     "040302010000",       "high-speed counters are extended"},
    {"HC0",     1, kDoubleWords, kTwoFast,     "0403020108070605",   "more high-speed counters"},
    {"HC0",     3, kDoubleWords, kTwoFast,     "0403020108070605",   "fewer high-speed counters"},
    {"HC0",     8, kBits,        kOneByte,     "0100010000010001",   "as memory"},
};
// clang-format on

void addResult(const Result &row)
{
    const CommunicatorCommand read = command(row.dataType, row.address, row.count);
    const QByteArray note(row.note);
    QTest::newRow((textOf(read) + " from " + row.item + (note.isEmpty() ? note : ": " + note)).constData())
        << read << QString(row.item) << QString(row.data);
}

} // namespace

class TestReadResults : public QObject
{
    Q_OBJECT

private slots:
    void memoryBecomesTheResult_data();
    void memoryBecomesTheResult();
    void objectsBecomeTheResult_data();
    void objectsBecomeTheResult();
    void resultMayBeLongerThan65535Bytes();
    void largestAnswerIsRead();
    void negativeCountGivesNoData_data();
    void negativeCountGivesNoData();
};

// Fitted to the count, but for bits, which are as many as were asked for.
void TestReadResults::memoryBecomesTheResult_data()
{
    QTest::addColumn<CommunicatorCommand>("read");
    QTest::addColumn<QString>("item");
    QTest::addColumn<QString>("data");
    for (const Result &row : kMemory)
        addResult(row);
}

void TestReadResults::memoryBecomesTheResult()
{
    QFETCH(CommunicatorCommand, read);
    QFETCH(QString, item);
    QFETCH(QString, data);
    const Outcome outcome = outcomeOfRead(read, Answer(item));
    QCOMPARE(outcome.result, data);
    QVERIFY(!outcome.failed);
}

// Fitted to the count in reads of bytes, and high-speed counters in reads of words.
void TestReadResults::objectsBecomeTheResult_data()
{
    QTest::addColumn<CommunicatorCommand>("read");
    QTest::addColumn<QString>("item");
    QTest::addColumn<QString>("data");
    for (const Result &row : kObjects)
        addResult(row);
}

void TestReadResults::objectsBecomeTheResult()
{
    memoryBecomesTheResult();
}

void TestReadResults::resultMayBeLongerThan65535Bytes()
{
    const QString fourBytesAndZeros = QString("11223344") + QString(2 * 99996, QLatin1Char('0'));
    QCOMPARE(outcomeOfRead(byteCommand("VB100", 100000), Answer(kFourBytes)).result, fourBytesAndZeros);
}

void TestReadResults::largestAnswerIsRead()
{
    const QByteArray data(234, '\x5a');
    const Answer answer("04 01 ff 04 07 50" + hex(data));
    QCOMPARE(hex(QByteArray(answer).mid(1, 2)), QString("ffff"));
    QCOMPARE(outcomeOfRead(byteCommand("VB0", 234), answer).result, hex(data));
}

void TestReadResults::negativeCountGivesNoData_data()
{
    QTest::addColumn<CommunicatorCommand>("read");
    QTest::addColumn<QString>("item");
    const char *const fitted[] = {"bytes of VB100", "bytes of T37",          "bytes of HC0", "words of VW100",
                                  "words of HC0",   "double words of VD100", "bits of V10.0"};
    const int counts[] = {-1, INT_MIN};
    for (const char *name : fitted) {
        const Sample read = sample(QString("read ") + name);
        for (int count : counts) {
            const CommunicatorCommand negative = command(read.dataType, read.address, count);
            QTest::newRow(textOf(negative).constData()) << negative << QString(read.item);
        }
    }
}

void TestReadResults::negativeCountGivesNoData()
{
    QFETCH(CommunicatorCommand, read);
    QFETCH(QString, item);
    QCOMPARE(outcomeOfRead(read, Answer(item)).result, QString(""));
}

TEST_CLASS(TestReadResults)

#include "test_read_results.moc"
