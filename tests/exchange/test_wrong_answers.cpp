// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Answers whose frame is good and whose header is not, or reports an error; and where the log says that
// a call failed.

#include "answer.h"
#include "commands.h"
#include "faults.h"
#include "hex.h"
#include "log_capture.h"
#include "outcome.h"
#include "sample_rows.h"
#include "scripted_port.h"
#include "simatic_s7_200_ppi/s7_200_ppi.h"
#include "test_class.h"

#include <QtTest>

namespace {

const char kNoMemory[] = "04 01 05 00 00 00";
const char kEmptyMemory[] = "04 01 ff 04 00 00";
const char kNoObject[] = "04 01 05 00 00 00";
const char kEmptyObject[] = "04 01 ff 09 00 00";
const char kNotWritten[] = "05 01 05";

// Items that are refused with a log line, each at a line of its own.
struct LoggedItems
{
    const char *sample;
    const char *one;
    const char *other; // null where there is only one
};

// clang-format off
const LoggedItems kLoggedItems[] = {
    {"read bytes of VB100",         kNoMemory,    kEmptyMemory},
    {"read block of VB100",         kNoMemory,    kEmptyMemory},
    {"read double words of VD100",  kEmptyMemory, nullptr},
    {"read bits of V10.0",          kNoMemory,    nullptr},
    {"read bit block of V10.0",     kNoMemory,    nullptr},
    {"read bytes of T37",           kEmptyObject, nullptr},
    {"read words of T37",           kEmptyObject, nullptr},
    {"read double words of T37",    kEmptyObject, nullptr},
    {"read bits of T37",            kEmptyObject, nullptr},
    {"read bytes of C5",            kEmptyObject, nullptr},
    {"read words of C5",            kEmptyObject, nullptr},
    {"read double words of C5",     kEmptyObject, nullptr},
    {"read bits of C5",             kEmptyObject, nullptr},
    {"read bytes of HC0",           kNoObject,    kEmptyObject},
    {"read words of HC0",           kNoObject,    kEmptyObject},
    {"read double words of HC0",    kNoObject,    kEmptyObject},
    {"read bits of HC0",            kNoMemory,    nullptr},
    {"write bytes of VB100",        kNotWritten,  nullptr},
    {"write bytes of VW100",        kNotWritten,  nullptr},
    {"write bytes of VD100",        kNotWritten,  nullptr},
    {"write block of VB100",        kNotWritten,  nullptr},
    {"write words of VW100",        kNotWritten,  nullptr},
    {"write double words of VD100", kNotWritten,  nullptr},
    {"write bits of V10.3",         kNotWritten,  nullptr},
    {"write bits of V10.6",         kNotWritten,  nullptr},
    {"write bit block of Q0.0",     kNotWritten,  nullptr},
    {"write bytes of T37",          kNotWritten,  nullptr},
    {"write words of T37",          kNotWritten,  nullptr},
    {"write double words of T37",   kNotWritten,  nullptr},
    {"write bytes of C5",           kNotWritten,  nullptr},
    {"write words of C5",           kNotWritten,  nullptr},
    {"write double words of C5",    kNotWritten,  nullptr},
    {"write bits of HC0",           kNotWritten,  nullptr},
    {"write bits of AIW0",          kNotWritten,  nullptr},
};
// clang-format on

// The line numbers in the log when the line carries these.
QList<int> loggedLines(const Sample &call, const char *acknowledgement, const QByteArray &answer)
{
    ScriptedPort port;
    port.expectsRequest().answers(acknowledgement).expectsPoll().answers(answer);
    return outcomeOf(call, port).numbers;
}

// The line numbers of all failure points before the item is decoded.
QList<int> exchangeLines(const Sample &call)
{
    return loggedLines(call, "10 00 02 02 04 16", QByteArray()) + loggedLines(call, "00", QByteArray()) +
           loggedLines(call, "e5", QByteArray()) + loggedLines(call, "e5", Answer(call.item).shortBy(1)) +
           loggedLines(call, "e5", Answer(call.item, 9)) +
           loggedLines(call, "e5", Answer(call.item).withByte(Answer::kErrorClass, 1).sealed());
}

} // namespace

class TestWrongAnswers : public QObject
{
    Q_OBJECT

private slots:
    void answerWithAWrongHeaderIsRefused_data();
    void answerWithAWrongHeaderIsRefused();
    void answerToAnOlderRequestIsRefused();
    void memoryAndObjectsNameAnInvalidHeaderDifferently_data();
    void memoryAndObjectsNameAnInvalidHeaderDifferently();
    void answerThatReportsAnErrorIsRefused_data();
    void answerThatReportsAnErrorIsRefused();
    void headerIsJudgedBeforeItsErrorClass_data();
    void headerIsJudgedBeforeItsErrorClass();
    void errorClassIsJudgedBeforeTheItem_data();
    void errorClassIsJudgedBeforeTheItem();
    void wrongAnswersAreTriedAgain_data();
    void wrongAnswersAreTriedAgain();
    void failurePointsHaveLinesOfTheirOwn_data();
    void failurePointsHaveLinesOfTheirOwn();
    void debugModeDoesNotChangeTheLog_data();
    void debugModeDoesNotChangeTheLog();
};

void TestWrongAnswers::answerWithAWrongHeaderIsRefused_data()
{
    addSampleColumn();
    QTest::addColumn<int>("offset");
    QTest::addColumn<int>("value");
    QTest::addColumn<QString>("text");
    for (const Sample &call : samples()) {
        for (const HeaderFault &fault : headerFaults())
            sampleRow(call, fault.name) << fault.offset << fault.value << call.invalidHeader;
    }
}

void TestWrongAnswers::answerWithAWrongHeaderIsRefused()
{
    QFETCH(QString, sample);
    QFETCH(int, offset);
    QFETCH(int, value);
    QFETCH(QString, text);
    const Sample call = ::sample(sample);
    const Outcome outcome = outcomeOf(call, Answer(call.item).withByte(offset, value).sealed());
    QCOMPARE(outcome.result, QString(""));
    QVERIFY(outcome.failed);
    QCOMPARE(outcome.reason, text);
    QCOMPARE(outcome.texts, QStringList() << text);
}

void TestWrongAnswers::answerToAnOlderRequestIsRefused()
{
    ScriptedPort port;
    port.expects("68 1b 1b 68 02 00 6c 32 01 00 00 00 01 00 0e 00 00"
                 "04 01 12 0a 10 02 00 04 00 01 84 00 03 20 8f 16")
        .answers("e5")
        .expects("10 02 00 5c 5e 16")
        .answers("68 19 19 68 00 02 08 32 03 00 00 00 02 00 02 00 08 00 00"
                 "04 01 ff 04 00 20 11 22 33 44 1d 16");
    const Outcome outcome = outcomeOfRead(byteCommand("VB100", 4), port);
    QCOMPARE(outcome.result, QString(""));
    QCOMPARE(outcome.reason, QString("invalid response"));
    QVERIFY(port.scriptIsFinished());
}

// In reads of double words.
void TestWrongAnswers::memoryAndObjectsNameAnInvalidHeaderDifferently_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("VD100") << "invalid response1";
    QTest::newRow("VW100") << "invalid response1";
    QTest::newRow("VB100") << "invalid response1";
    QTest::newRow("DB100") << "invalid response1";
    QTest::newRow("T37") << "invalid response";
    QTest::newRow("C5") << "invalid response";
    QTest::newRow("HC0") << "invalid response";
}

void TestWrongAnswers::memoryAndObjectsNameAnInvalidHeaderDifferently()
{
    QFETCH(QString, text);
    const CommunicatorCommand read = doubleWordCommand(QTest::currentDataTag(), 1);
    QCOMPARE(outcomeOfRead(read, Answer("04 01 ff 04 00 20 11 22 33 44", 9)).texts, QStringList(text));
}

void TestWrongAnswers::answerThatReportsAnErrorIsRefused_data()
{
    const QString text("invalid request to PLC");
    addSampleColumn();
    QTest::addColumn<int>("offset");
    QTest::addColumn<int>("value");
    QTest::addColumn<QString>("text");
    for (const Sample &call : samples()) {
        sampleRow(call, "error class 85") << int(Answer::kErrorClass) << 0x85 << text;
        sampleRow(call, "error class 01") << int(Answer::kErrorClass) << 1 << text;
        sampleRow(call, "error code 04") << int(Answer::kErrorCode) << 4 << text;
        sampleRow(call, "error code ff") << int(Answer::kErrorCode) << 0xff << text;
    }
}

void TestWrongAnswers::answerThatReportsAnErrorIsRefused()
{
    answerWithAWrongHeaderIsRefused();
}

void TestWrongAnswers::headerIsJudgedBeforeItsErrorClass_data()
{
    addSampleRows();
}

void TestWrongAnswers::headerIsJudgedBeforeItsErrorClass()
{
    QFETCH(QString, sample);
    const Sample call = ::sample(sample);
    const Answer answer = Answer(call.item, 9).withByte(Answer::kErrorClass, 0x85).sealed();
    QCOMPARE(outcomeOf(call, answer).reason, QString(call.invalidHeader));
}

void TestWrongAnswers::errorClassIsJudgedBeforeTheItem_data()
{
    addSampleRows();
}

void TestWrongAnswers::errorClassIsJudgedBeforeTheItem()
{
    QFETCH(QString, sample);
    const Sample call = ::sample(sample);
    const QString refused(call.operation == kRead ? kNoMemory : kNotWritten);
    const Answer answer = Answer(refused).withByte(Answer::kErrorClass, 0x85).sealed();
    QCOMPARE(outcomeOf(call, answer).reason, QString("invalid request to PLC"));
}

void TestWrongAnswers::wrongAnswersAreTriedAgain_data()
{
    addSampleColumn();
    QTest::addColumn<QByteArray>("answer");
    for (const Sample &call : samples()) {
        const Answer withError = Answer(call.item).withByte(Answer::kErrorClass, 0x85).sealed();
        const QString refused(call.operation == kRead ? kNoMemory : kNotWritten);
        sampleRow(call, "another reference") << QByteArray(Answer(call.item, 9));
        sampleRow(call, "error class") << QByteArray(withError);
        sampleRow(call, "refused item") << QByteArray(Answer(refused));
    }
    sampleRow(sample("read bytes of VB100"), "no data") << QByteArray(Answer(kEmptyMemory));
    sampleRow(sample("write bytes of VB100"), "null text") << QByteArray(Answer("04 01 ff"));
    sampleRow(sample("write bits of V10.6"), "refused bit") << QByteArray(Answer("05 03 ff 0a ff"));
    sampleRow(sample("write bits of V10.6"), "no return codes") << QByteArray(Answer("05 00"));
}

void TestWrongAnswers::wrongAnswersAreTriedAgain()
{
    QFETCH(QString, sample);
    QFETCH(QByteArray, answer);
    const Sample call = ::sample(sample);
    ScriptedPort port;
    port.retries(1).serves(answer).serves(Answer(call.item, 2));
    const Outcome outcome = outcomeOf(call, port);
    QCOMPARE(outcome.result, QString(call.result));
    QVERIFY(!outcome.failed);
    QVERIFY(!outcome.reason.isNull());
    QCOMPARE(outcome.reason, QString(""));
    QVERIFY(port.scriptIsFinished());
}

void TestWrongAnswers::failurePointsHaveLinesOfTheirOwn_data()
{
    addSampleColumn();
    QTest::addColumn<QStringList>("items");
    for (const LoggedItems &row : kLoggedItems)
        sampleRow(sample(row.sample))
            << (row.other ? QStringList() << row.one << row.other : QStringList() << row.one);
    sampleRow(sample("read words of VW100")) << QStringList();
}

// The trace line of counters' bits is one more.
void TestWrongAnswers::failurePointsHaveLinesOfTheirOwn()
{
    QFETCH(QString, sample);
    QFETCH(QStringList, items);
    const Sample call = ::sample(sample);
    QList<int> lines = exchangeLines(call);
    for (int i = 0; i < int(items.size()); ++i)
        lines += loggedLines(call, "e5", Answer(items.at(i)));
    const int points = 6 + int(items.size()) + (call.isTraced ? 1 : 0);
    QVERIFY(!lines.contains(0));
    QCOMPARE(int(lines.size()), points);
    QCOMPARE(distinct(lines), points);
}

void TestWrongAnswers::debugModeDoesNotChangeTheLog_data()
{
    addSampleColumn();
    QTest::addColumn<bool>("isOn");
    for (const Sample &call : samples()) {
        sampleRow(call, "on") << true;
        sampleRow(call, "off") << false;
    }
}

void TestWrongAnswers::debugModeDoesNotChangeTheLog()
{
    QFETCH(QString, sample);
    QFETCH(bool, isOn);
    ScriptedPort port;
    port.expectsRequest();
    DriverS7_200_PPI driver;
    driver.setDebugMode(isOn);
    LogCapture log;
    resultOf(driver, port, ::sample(sample));
    QCOMPARE(log.texts(), QStringList() << "plc no response");
}

TEST_CLASS(TestWrongAnswers)

#include "test_wrong_answers.moc"
