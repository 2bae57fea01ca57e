// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Recordings, read and played: what is asked as it was then is answered as it was then.

#include "simulator/replay/recording.h"
#include "simulator/replay/replay.h"

#include "common/capture.h"
#include "simulator/protocol/hex_text.h"
#include "test_class.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <chrono>
#include <string>
#include <vector>

using namespace sim;
using namespace std::chrono_literals;

namespace {

const char kRequest[] =
    "68 1b 1b 68 02 00 6c 32 01 00 00 00 07 00 0e 00 00 04 01 12 0a 10 02 00 01 00 01 84 00 03 20 92 16";
const char kOther[] =
    "68 1b 1b 68 02 00 6c 32 01 00 00 00 08 00 0e 00 00 04 01 12 0a 10 02 00 01 00 01 84 00 03 28 9b 16";
const char kPoll[] = "10 02 00 5c 5e 16";
const char kGoodAnswer[] =
    "68 16 16 68 00 02 08 32 03 00 00 00 07 00 02 00 05 00 00 04 01 ff 04 00 08 11 6e 16";

// A read of VB100, whose answer was 11, and one of VB101, which got no acknowledgement.
const std::string kTrace = std::string("# a line\n") + "2026-01-31T12:00:00.000Z > " + kRequest + "\n" +
                           "2026-01-31T12:00:00.040Z < e5\n" + "2026-01-31T12:00:00.052Z > " + kPoll +
                           "\r\n" + "2026-01-31T12:00:00.100Z < " + kGoodAnswer + "\n\n" +
                           "2026-01-31T12:00:00.200Z > " + kOther + "\n";

Bytes bytes(const std::string &hex)
{
    return *parseHex(hex);
}

// The request as it is when it is asked with another reference.
std::string withReference(const char *frame, unsigned reference)
{
    Bytes changed = bytes(frame);
    Bytes pdu(changed.begin() + 7, changed.end() - 2);
    pdu[4] = uint8_t(reference >> 8);
    pdu[5] = uint8_t(reference);
    return hexText(sd2(changed[4], changed[5], changed[6], pdu));
}

} // namespace

class TestSimulatorReplay : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void aTraceIsReadWithItsTimes();
    void aCaptureIsReadWithItsTimes();
    void whatIsNoRecordingIsTold_data();
    void whatIsNoRecordingIsTold();
    void aCaptureThatIsCutIsReadUpToThere();
    void answersComeWhenTheyCameThen();
    void answersComeSoonerWithMoreSpeedAndAtOnceWithout();
    void timesThatNobodyWaitsForAreShortened();
    void answersHaveTheReferenceThatIsAskedWith();
    void aDamagedAnswerIsDamagedAgain();
    void whatWasNotAnsweredIsNotAnswered();
    void somethingElseIsToldAndNotAnswered();
    void somethingThatStandsElsewhereIsToldAndAnswered();
    void aFrameThatBreaksOffIsGivenUp();
    void aFrameMayComeInPieces();
    void theRecordingBeginsAnewBehindItsEnd();

private:
    Recording recordingOf(const std::string &content);
    Bytes ask(Replay &replay, const std::string &hex);

    QTemporaryDir directory;
    std::vector<std::string> told;
};

void TestSimulatorReplay::init()
{
    told.clear();
}

Recording TestSimulatorReplay::recordingOf(const std::string &content)
{
    QFile file(directory.filePath("recording"));
    if (!file.open(QIODevice::WriteOnly))
        return {};
    file.write(content.data(), qint64(content.size()));
    file.close();
    return readRecording(file.fileName().toStdString());
}

Bytes TestSimulatorReplay::ask(Replay &replay, const std::string &hex)
{
    replay.setTell([this](const std::string &text) { told.push_back(text); });
    const Bytes frame = bytes(hex);
    return replay.feed(frame.data(), frame.size());
}

void TestSimulatorReplay::aTraceIsReadWithItsTimes()
{
    const std::vector<Recorded> records = recordingOf(kTrace).records;
    QCOMPARE(records.size(), size_t(5));
    QCOMPARE(records[3].place, std::string("line 5"));
    QVERIFY(records[3].time == 1769860800100ms);
    QVERIFY(!records[3].isFromMaster && records[4].isFromMaster);
    QCOMPARE(hexText(records[2].bytes), std::string(kPoll));
}

void TestSimulatorReplay::aCaptureIsReadWithItsTimes()
{
    const Bytes poll = bytes(kPoll);
    const std::string capture =
        common::captureHead("s7ppi", "line") + common::captureComment(1, "silence") +
        common::captureFrame(1769860800000123, common::CaptureDirection::FromMaster,
                             std::string(poll.begin(), poll.end())) +
        common::captureFrame(1769860800000456, common::CaptureDirection::ToMaster, "\xe5") +
        common::captureFrame(4102444800000001, common::CaptureDirection::ToMaster, "\xe5");
    const std::vector<Recorded> records = recordingOf(capture).records;
    QCOMPARE(records.size(), size_t(3));
    QCOMPARE(records[0].place, std::string("packet 2"));
    QVERIFY(records[0].time == 1769860800000123us);
    QVERIFY(records[0].isFromMaster && !records[1].isFromMaster);
    QVERIFY(records[2].time == 4102444800000000us); // the end of 2099: later times cannot be counted
}

void TestSimulatorReplay::whatIsNoRecordingIsTold_data()
{
    QTest::addColumn<QString>("content");
    QTest::addColumn<QString>("reason");
    const QString record = QString("2026-01-31T12:00:00.000Z > ") + kPoll + '\n';
    QTest::newRow("nothing") << ""
                             << "has no whole frame of a master in it";
    QTest::newRow("only remarks") << "# s7ppi\n"
                                  << "has no whole frame of a master in it";
    QTest::newRow("only answers") << "2026-01-31T12:00:00.000Z < e5\n"
                                  << "has no whole frame of a master in it";
    QTest::newRow("only a cut frame") << "2026-01-31T12:00:00.000Z > 10 02 00\n"
                                      << "has no whole frame of a master in it";
    QTest::newRow("other text") << record + "hello\n"
                                << "line 2 is no record of a trace";
    QTest::newRow("no direction") << record + "2026-01-31T12:00:00.000Z e5\n"
                                  << "line 2 is no record of a trace";
    QTest::newRow("no time") << record + "12:00 > e5\n"
                             << "line 2 is no record of a trace";
    QTest::newRow("a time that cannot be counted") << record + "9999-01-31T12:00:00.000Z > e5\n"
                                                   << "line 2 is no record of a trace";
    QTest::newRow("a time behind all others") << record + "2100-01-01T00:00:00.000Z > e5\n"
                                              << "line 2 is no record of a trace";
    QTest::newRow("a time before all others") << record + "0001-01-31T12:00:00.000Z > e5\n"
                                              << "line 2 is no record of a trace";
    QTest::newRow("no bytes") << record + "2026-01-31T12:00:00.000Z > \n"
                              << "line 2 is no record of a trace";
    QTest::newRow("half a byte") << record + "2026-01-31T12:00:00.000Z > e5 1\n"
                                 << "line 2 is no record of a trace";
    QTest::newRow("a cut line") << record + "2026-01-31T12:00:00.0"
                                << "line 2 is no record of a trace";
    QTest::newRow("a capture of nothing")
        << QString::fromLatin1(QByteArray::fromHex("0a0d0d0a")) << "has no whole frame of a master in it";
}

void TestSimulatorReplay::whatIsNoRecordingIsTold()
{
    QFETCH(QString, content);
    QFETCH(QString, reason);
    try {
        recordingOf(content.toLatin1().toStdString());
        QFAIL("taken as a recording");
    } catch (const RecordingError &error) {
        QVERIFY2(QString::fromStdString(error.what()).endsWith(": " + reason), error.what());
    }
}

void TestSimulatorReplay::aCaptureThatIsCutIsReadUpToThere()
{
    const Bytes poll = bytes(kPoll);
    const std::string capture =
        common::captureHead("s7ppi", "line") +
        common::captureFrame(1, common::CaptureDirection::FromMaster, std::string(poll.begin(), poll.end())) +
        common::captureFrame(2, common::CaptureDirection::ToMaster, "\xe5");
    const Recording recording = recordingOf(capture.substr(0, capture.size() - 1));
    QCOMPARE(recording.records.size(), size_t(1));
    QCOMPARE(recording.damage, std::string("packet 1"));
}

void TestSimulatorReplay::answersComeWhenTheyCameThen()
{
    Replay replay(recordingOf(kTrace).records, 1, 0s);
    QVERIFY(ask(replay, kRequest).empty());
    QVERIFY(replay.nextDue() == Time(40ms));
    QVERIFY(replay.advanceTo(39ms).empty());
    QCOMPARE(hexText(replay.advanceTo(40ms)), std::string("e5"));
    QVERIFY(ask(replay, kPoll).empty());
    QCOMPARE(hexText(replay.advanceTo(88ms)), std::string(kGoodAnswer));
    QVERIFY(told.empty());
    QCOMPARE(replay.differenceCount(), 0);
}

void TestSimulatorReplay::answersComeSoonerWithMoreSpeedAndAtOnceWithout()
{
    Replay fast(recordingOf(kTrace).records, 4, 0s);
    ask(fast, kRequest);
    QVERIFY(fast.nextDue() == Time(10ms));
    Replay instant(recordingOf(kTrace).records, 0, 0s);
    QCOMPARE(hexText(ask(instant, kRequest)), std::string("e5"));
    QCOMPARE(hexText(ask(instant, kPoll)), std::string(kGoodAnswer));
}

// The times of a damaged capture may be any.
void TestSimulatorReplay::timesThatNobodyWaitsForAreShortened()
{
    const Bytes poll = bytes(kPoll);
    const std::string capture =
        common::captureHead("s7ppi", "line") +
        common::captureFrame(0, common::CaptureDirection::FromMaster, std::string(poll.begin(), poll.end())) +
        common::captureFrame(UINT64_MAX, common::CaptureDirection::ToMaster, "\xe5");
    Replay replay(recordingOf(capture).records, 0.001, 1769860800s);
    QVERIFY(ask(replay, kPoll).empty());
    QVERIFY(replay.nextDue() == Time(1769860800s + 1000h));
}

void TestSimulatorReplay::answersHaveTheReferenceThatIsAskedWith()
{
    for (const unsigned reference : {0x42U, 0x1234U}) {
        Replay replay(recordingOf(kTrace).records, 0, 0s);
        ask(replay, withReference(kRequest, reference));
        QCOMPARE(hexText(ask(replay, kPoll)), withReference(kGoodAnswer, reference));
        QVERIFY(told.empty());
    }
}

void TestSimulatorReplay::aDamagedAnswerIsDamagedAgain()
{
    std::string trace = kTrace;
    const std::string damaged = std::string(kGoodAnswer).replace(0, 2, "69");
    trace.replace(trace.find(kGoodAnswer), damaged.size(), damaged);
    Replay replay(recordingOf(trace).records, 0, 0s);
    ask(replay, withReference(kRequest, 0x42));
    QCOMPARE(hexText(ask(replay, kPoll)), damaged);
}

void TestSimulatorReplay::whatWasNotAnsweredIsNotAnswered()
{
    Replay replay(recordingOf(kTrace).records, 0, 0s);
    ask(replay, kRequest);
    ask(replay, kPoll);
    QVERIFY(ask(replay, kOther).empty());
    QVERIFY(!replay.nextDue());
    QCOMPARE(replay.differenceCount(), 0);
}

void TestSimulatorReplay::somethingElseIsToldAndNotAnswered()
{
    Replay replay(recordingOf(kTrace).records, 0, 0s);
    QVERIFY(ask(replay, "10 03 00 5c 5f 16").empty());
    QVERIFY(ask(replay, "10 03 00 5c 5f 16").empty());
    QCOMPARE(told.size(), size_t(1));
    QCOMPARE(
        told[0],
        std::string("0 to 3: poll: at line 2 of the recording stands 0 to 2: request 7: read V100 (1 bytes); "
                    "it is nowhere in the recording, and not answered"));
    QCOMPARE(replay.differenceCount(), 2);
    QVERIFY(ask(replay, "10 04 00 5c 60 16").empty());
    QCOMPARE(told.size(), size_t(2));
    QCOMPARE(hexText(ask(replay, kRequest)), std::string("e5"));
}

void TestSimulatorReplay::somethingThatStandsElsewhereIsToldAndAnswered()
{
    Replay replay(recordingOf(kTrace).records, 0, 0s);
    QCOMPARE(hexText(ask(replay, kPoll)), std::string(kGoodAnswer));
    QCOMPARE(told.size(), size_t(1));
    QVERIFY(QString::fromStdString(told[0]).endsWith("; going on at line 4"));
    QVERIFY(ask(replay, kOther).empty());
    QCOMPARE(replay.differenceCount(), 1);
}

// The request behind it would be taken for its rest.
void TestSimulatorReplay::aFrameThatBreaksOffIsGivenUp()
{
    Replay replay(recordingOf(kTrace).records, 0, 0s);
    ask(replay, "68 1b 1b 68 02");
    QVERIFY(replay.nextDue().has_value());
    replay.advanceTo(*replay.nextDue());
    QVERIFY(!replay.nextDue());
    QCOMPARE(hexText(ask(replay, kRequest)), std::string("e5"));
    QCOMPARE(replay.differenceCount(), 0);
}

void TestSimulatorReplay::aFrameMayComeInPieces()
{
    Replay replay(recordingOf(kTrace).records, 0, Time());
    const Bytes frame = bytes(kRequest);
    Bytes answer;
    for (const uint8_t &byte : frame)
        answer = replay.feed(&byte, 1);
    QCOMPARE(hexText(answer), std::string("e5"));
}

void TestSimulatorReplay::theRecordingBeginsAnewBehindItsEnd()
{
    Replay replay(recordingOf(kTrace).records, 0, 0s);
    ask(replay, kRequest);
    ask(replay, kPoll);
    ask(replay, kOther);
    QCOMPARE(told.size(), size_t(1));
    QCOMPARE(told[0], std::string("the recording has come to its end, and begins anew"));
    QCOMPARE(hexText(ask(replay, kRequest)), std::string("e5"));
    QCOMPARE(replay.differenceCount(), 0);
}

TEST_CLASS(TestSimulatorReplay)
#include "test_replay.moc"
