// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Records of watch, read back, and the page that is made of them.

#include "host/recording/axis.h"
#include "host/recording/recording.h"
#include "host/recording/report_page.h"
#include "host/recording/statistics.h"
#include "host/recording/trend_chart.h"
#include "host/text/number_text.h"

#include "host/base/filled.h"
#include "tests/host/support/failure_of.h"

#include <QDateTime>
#include <QtTest>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <optional>
#include <random>
#include <vector>

using namespace host;

namespace {

const QByteArray kRecord = "2026-01-31T12:00:02.000Z,,VB0,str,0,1,,5,\n";
const QByteArray kHead = "time,name,address,type,index,value,unit,ms,error\n";

Recording parsed(const QByteArray &rows)
{
    return parseRecording("log.csv", kHead + rows);
}

QByteArray pageOf(const QByteArray &rows)
{
    return reportPage(parsed(rows), "log.csv");
}

std::optional<Trend> trendOf(const Samples &samples, qint64 end)
{
    TrendCounter counter;
    for (const RecordedSample &sample : samples)
        counter.add(sample);
    return counter.upTo(end);
}

AnswerCounter counterOf(const std::vector<double> &times)
{
    AnswerCounter counter;
    for (const double time : times)
        counter.add(time);
    return counter;
}

QString textsOf(const std::vector<AxisTick> &ticks)
{
    QStringList texts;
    for (const AxisTick &tick : ticks)
        texts << tick.text;
    return texts.join(' ');
}

QString twoDigits(int number)
{
    return QString::number(number).rightJustified(2, '0');
}

bool isEarlier(const RecordedSample &a, const RecordedSample &b)
{
    return a.time < b.time;
}

} // namespace

class TestRecording : public QObject
{
    Q_OBJECT

private slots:
    void everyValueIsASeries();
    void itemsStandInTheOrderOfTheFile();
    void portsAndStationsAreKnownWhenTheFileHasThem();
    void elementsAreNumberedAndShareOneAnswer();
    void errorsAreCountedByCauseAndLeaveGaps();
    void textsAndHexAreNoNumbers();
    void cellsBetweenQuotesMayHoldAnything();
    void aLastLineThatWasCutIsLeftOut();
    void anErrorWhoseTextMayHaveGoneOnIsLeftOut();
    void aTextThatWasCutBehindItsLineEndIsLeftOut();
    void aLineThatIsTooLongIsRefused();
    void recordingsMayBeAppended_data();
    void recordingsMayBeAppended();
    void whatIsWrongIsToldByItsLine_data();
    void whatIsWrongIsToldByItsLine();
    void meansAreOverTheTimeThatValuesHeld();
    void figuresOfALongRecordingAreThoseOfAllItsValues();
    void aLongRecordingKeepsItsExtremesAndItsGaps();
    void noMoreSamplesAreKeptThanAreWanted();
    void manyValuesShareTheSamples();
    void samplesOfALongRecordingAreEquallyFarApart();
    void aRecordingOfOneMomentBeginsAndEndsThere();
    void samplesOutOfOrderAreDrawnInOrder();
    void percentilesAreOfTheNearestRank();
    void longTimesAreCountedToFourDigits();
    void theDistributionCountsEveryNumberOnce();
    void theDistributionIsWideEnoughForMostNumbers();
    void stepsAreRound_data();
    void stepsAreRound();
    void commonCausesAreFoundAmongThousands();
    void errorsAreCountedOverTheTime();
    void ticksAreRoundNumbers_data();
    void ticksAreRoundNumbers();
    void ticksAreRoundTimes_data();
    void ticksAreRoundTimes();
    void curvesDoNotTouchTheFrame();
    void aSingleSampleIsALineInTheMiddle();
    void theLineIsMadeOfSteps();
    void gapsAreLeftOpen();
    void whatIsNotKnownIsAnArea();
    void barsAreAsHighAsTheirCounts();
    void manySamplesAreThinnedOutAndKeepTheirPeaks();
    void columnsAreEquallyWideAndHoldAllSamples();
    void barsOfADistributionAreAsLongAsTheirCounts();
    void thePageHasLinesAtRoundNumbersAndTimes();
    void thePageEscapesWhatTheFileSays();
    void thePageNeedsNothingElse();
    void thePageTellsErrorsWithAdvice();
    void thePageTellsWhereAndWhen();
    void bitsHaveTwoLevelsAndAShareOfTime();
    void rareErrorsAreCountedTogether();
    void longErrorsAreCut();
};

void TestRecording::everyValueIsASeries()
{
    const Recording recording = parsed("2026-01-31T12:00:00.000+01:00,Boiler,VW100,i16,0,61.5,C,14.2,\n"
                                       "2026-01-31T12:00:01.500+01:00,Boiler,VW100,i16,0,62,C,15,\n"
                                       "2026-01-31T12:00:02.000+01:00,,T37,u16,0,7,,13,\n");
    QCOMPARE(recording.end - recording.begin, qint64(2000));
    QCOMPARE(recording.offset, 3600);
    QCOMPARE(int(recording.series.size()), 2);
    QCOMPARE(recording.series.at(0).label, QString("Boiler"));
    QCOMPARE(recording.series.at(0).unit, QString("C"));
    QCOMPARE(recording.series.at(0).samples.at(1).value, 62.0);
    QCOMPARE(recording.series.at(0).samples.at(1).time - recording.begin, qint64(1500));
    QCOMPARE(recording.series.at(1).label, QString("T37"));
    QCOMPARE(recording.answerTimes.count(), 3);
    QCOMPARE(recording.answerTimes.percentile(0), 13.0);
    QCOMPARE(recording.answerTimes.percentile(50), 14.2);
    QCOMPARE(recording.answerTimes.longest(), 15.0);
    QCOMPARE(recording.errors.count(), 0);
}

void TestRecording::itemsStandInTheOrderOfTheFile()
{
    const Recording recording = parsed("2026-01-31T12:00:00.000Z,,VB8,u8,,,,,plc no response\n"
                                       "2026-01-31T12:00:00.000Z,,VB4,u8,,,,,plc no response\n"
                                       "2026-01-31T12:00:00.000Z,,VB6,u8,0,1,,5,\n"
                                       "2026-01-31T12:00:01.000Z,,VB8,u8,0,1,,5,\n"
                                       "2026-01-31T12:00:01.000Z,,VB8,u8,1,2,,5,\n");
    QStringList labels;
    for (const RecordedSeries &series : recording.series)
        labels << series.label;
    QCOMPARE(labels, QStringList({"VB8[0]", "VB8[1]", "VB4", "VB6"}));
    QCOMPARE(recording.series.at(1).errors, 1);
    QVERIFY(recording.series.at(1).samples.at(0).isGap);
    QCOMPARE(recording.series.at(2).answers, 0);
    QCOMPARE(recording.series.at(2).errors, 1);
    QCOMPARE(recording.answers, 2);
}

void TestRecording::portsAndStationsAreKnownWhenTheFileHasThem()
{
    const QByteArray head = "time,port,address,type,station,value,error\n";
    const Recording one =
        parseRecording("log.csv", head + "2026-01-31T12:00:00.000Z,/dev/ttyUSB0,VB0,u8,3,1,\n");
    QCOMPARE(one.ports, QStringList("/dev/ttyUSB0"));
    QCOMPARE(one.stations, QStringList("3"));
    QCOMPARE(one.series.at(0).label, QString("VB0"));
    const Recording two = parseRecording("log.csv", head + "2026-01-31T12:00:00.000Z,COM1,VB0,u8,3,1,\n"
                                                           "2026-01-31T12:00:00.000Z,COM1,VB0,u8,4,1,\n");
    QCOMPARE(two.ports, QStringList("COM1"));
    QCOMPARE(two.stations, QStringList({"3", "4"}));
    QCOMPARE(two.items, QStringList({"VB0@3", "VB0@4"}));
    QVERIFY(parsed(kRecord).ports.isEmpty());
}

void TestRecording::elementsAreNumberedAndShareOneAnswer()
{
    const Recording recording = parsed("2026-01-31T12:00:00.000Z,,VB0,u8,0,1,,5,\n"
                                       "2026-01-31T12:00:00.000Z,,VB0,u8,1,2,,5,\n");
    QCOMPARE(recording.series.at(0).label, QString("VB0[0]"));
    QCOMPARE(recording.series.at(1).label, QString("VB0[1]"));
    QCOMPARE(recording.answers, 1);
    QCOMPARE(recording.answerTimes.count(), 1);
    QCOMPARE(recording.answerTimes.longest(), 5.0);
}

void TestRecording::errorsAreCountedByCauseAndLeaveGaps()
{
    const Recording recording = parsed("2026-01-31T12:00:00.000Z,,VB0,u8,0,1,,5,\n"
                                       "2026-01-31T12:00:01.000Z,,VB0,u8,,,,,plc no response\n"
                                       "2026-01-31T12:00:02.000Z,,VB1,u8,,,,,plc no response\n"
                                       "2026-01-31T12:00:03.000Z,,VB1,u8,,,,,checksum error\n");
    QCOMPARE(recording.errors.count(), 3);
    const std::vector<ErrorCause> causes = recording.errors.commonest(10);
    QCOMPARE(int(causes.size()), 2);
    QCOMPARE(causes.at(0).text, QString("plc no response"));
    QCOMPARE(causes.at(0).count, 2);
    QCOMPARE(causes.at(0).items, std::vector<int>({0, 1}));
    QVERIFY(!causes.at(0).hasMoreItems);
    QCOMPARE(recording.items, QStringList({"VB0", "VB1"}));
    QVERIFY(recording.series.at(0).samples.at(1).isGap);
    QCOMPARE(int(recording.series.size()), 2);
    QCOMPARE(recording.series.at(1).answers, 0);
    QCOMPARE(recording.series.at(1).samples.front().time, recording.begin + 2000);
    QCOMPARE(recording.errorTimes.columns(recording.begin, recording.begin + 3999, 4),
             std::vector<int>({0, 1, 1, 1}));
}

void TestRecording::textsAndHexAreNoNumbers()
{
    const Recording recording = parsed("2026-01-31T12:00:00.000Z,,VB0,hex,0,11,,5,\n"
                                       "2026-01-31T12:00:00.000Z,,VB1,str,0,Hello,,5,\n"
                                       "2026-01-31T12:00:00.000Z,,VD4,f32,0,nan,,5,\n");
    QVERIFY(!recording.series.at(0).isNumber);
    QCOMPARE(recording.series.at(1).lastText, QString("Hello"));
    QVERIFY(recording.series.at(2).samples.at(0).isGap);
}

void TestRecording::cellsBetweenQuotesMayHoldAnything()
{
    const Recording recording =
        parsed("2026-01-31T12:00:00.000Z,\"a, \"\"b\"\"\",VB0,str,0,\"two\nlines\",,5,\n"
               "2026-01-31T12:00:01.000Z,x,VB1,u8,0,1,,5,\n");
    QCOMPARE(recording.series.at(0).label, QString("a, \"b\""));
    QCOMPARE(recording.series.at(0).lastText, QString("two\nlines"));
    QCOMPARE(int(recording.series.size()), 2);
}

// Only the last cell, which is empty here, is not missed.
void TestRecording::aLastLineThatWasCutIsLeftOut()
{
    const QByteArray good = "2026-01-31T12:00:00.000Z,,VB0,u8,0,1,,5,\n";
    const QByteArray last = "2026-01-31T12:00:01.000Z,,\"VB1\",u8,0,1,,5,";
    for (int length = 1; length < int(last.size()); ++length) {
        const Recording recording = parsed(good + last.left(length));
        QCOMPARE(recording.leftOut, 1);
        QCOMPARE(int(recording.series.size()), 1);
    }
    QCOMPARE(parsed(good + last).leftOut, 0);
    QCOMPARE(parsed(good + QByteArray(512, '\0')).leftOut, 1);
}

void TestRecording::anErrorWhoseTextMayHaveGoneOnIsLeftOut()
{
    const Recording recording = parsed("2026-01-31T12:00:00.000Z,,VB0,u8,0,1,,5,\n"
                                       "2026-01-31T12:00:01.000Z,,VB0,u8,,,,,plc no resp");
    QCOMPARE(recording.leftOut, 1);
    QCOMPARE(recording.errors.count(), 0);
}

void TestRecording::aTextThatWasCutBehindItsLineEndIsLeftOut()
{
    const QByteArray good = "2026-01-31T12:00:00.000Z,,VB0,u8,0,1,,5,\n";
    const Recording recording = parsed(good + "2026-01-31T12:00:01.000Z,\"a,b\",VB1,str,0,\"two\n");
    QCOMPARE(recording.leftOut, 1);
    QCOMPARE(int(recording.series.size()), 1);
}

void TestRecording::aLineThatIsTooLongIsRefused()
{
    QCOMPARE(failureOf([] { parsed(QByteArray(2 << 20, 'x') + '\n'); }).section(" / ", 0, 0),
             QString("2: log.csv:2: the line has more than 1 MiB"));
    const QByteArray lines = QByteArray("x\n").repeated(1 << 20);
    QCOMPARE(
        failureOf([&] { parsed("2026-01-31T12:00:00.000Z,,VB0,str,0,\"" + lines); }).section(" / ", 0, 0),
        QString("2: log.csv:2: a quote is not closed"));
}

void TestRecording::recordingsMayBeAppended_data()
{
    QTest::addColumn<QByteArray>("between");
    QTest::addColumn<int>("leftOut");
    QTest::newRow("one to another") << QByteArray("") + kHead << 1;
    QTest::newRow("the first with its last line cut") << "2026-01-31T12:00:00.500Z,,VB0,u8,0" + kHead << 1;
    QTest::newRow("twice") << kHead + kHead << 2;
}

void TestRecording::recordingsMayBeAppended()
{
    QFETCH(QByteArray, between);
    const Recording recording = parsed("2026-01-31T12:00:00.000Z,,VB0,u8,0,1,,5,\n" + between +
                                       "2026-01-31T12:00:01.000Z,,VB0,u8,0,2,,5,\n");
    QTEST(recording.leftOut, "leftOut");
    QCOMPARE(int(recording.series.size()), 1);
    QCOMPARE(int(recording.series.at(0).samples.size()), 2);
    const Recording other = parsed("2026-01-31T12:00:00.000Z,,VB0,u8,0,1,,5,\n"
                                   "time,address,type,value,error\n2026-01-31T12:00:01.000Z,VB0,u8,2,\n");
    QCOMPARE(other.leftOut, 1);
    QCOMPARE(other.errors.count(), 0);
}

void TestRecording::whatIsWrongIsToldByItsLine_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("complaint");
    const QByteArray good = kHead + "2026-01-31T12:00:00.000Z,,VB0,str,0,\"a\nb\",,5,\n";
    const auto row = [](const char *name, const QByteArray &text, const char *complaint) {
        QTest::newRow(name) << text << QString(complaint);
    };
    row("empty", "", "2: log.csv:1: there is no column \"time\"");
    row("another table", "a,b\n1,2\n", "2: log.csv:1: there is no column \"time\"");
    row("head only", kHead, "2: log.csv:1: there are no records behind the first line");
    row("cells missing", good + "2026-01-31T12:00:00.000Z,VB0\n", "2: log.csv:4: 2 cells instead of 9");
    row("no time", good + "today,,VB0,u8,0,1,,5,\n", "2: log.csv:4: \"today\" is no time");
    row("no number", good + "2026-01-31T12:00:00.000Z,,VB0,u8,0,one,,5,\n",
        "2: log.csv:4: \"one\" is no number");
    row("no answer time", good + "2026-01-31T12:00:00.000Z,,VB0,u8,0,1,,-5,\n",
        "2: log.csv:4: \"-5\" is no answer time");
    row("open quote in a value", good + "2026-01-31T12:00:00.000Z,,VB0,str,0,\"1,,5,\n" + kRecord,
        "2: log.csv:4: a quote is not closed");
    row("open quote", good + "2026-01-31T12:00:00.000Z,,\"VB0,u8,0,1,,5,\nmore\n",
        "2: log.csv:4: a quote is not closed");
}

void TestRecording::whatIsWrongIsToldByItsLine()
{
    QFETCH(QByteArray, text);
    QTEST(failureOf([&] { parseRecording("log.csv", text); }).section(" / ", 0, 0), "complaint");
}

void TestRecording::meansAreOverTheTimeThatValuesHeld()
{
    const std::optional<Trend> trend = trendOf({{0, 10, false}, {3000, 20, false}, {4000, 0, true}}, 9000);
    QVERIFY(trend);
    QCOMPARE(trend->mean, 12.5);
    QCOMPARE(trend->least, 10.0);
    QCOMPARE(trend->most, 20.0);
    QCOMPARE(trend->last, 20.0);
    QVERIFY(trend->isWhole);
    QVERIFY(!trendOf({{0, 0.5, false}}, 1)->isWhole);
    QCOMPARE(trendOf({{5, 7, false}}, 5)->mean, 7.0);
    QCOMPARE(trendOf({{0, 1e300, false}, {1000, -1e300, false}}, 2000)->mean, 0.0);
    QVERIFY(!trendOf({{0, 0, true}}, 9000));
}

// The simple computation keeps all the numbers.
void TestRecording::figuresOfALongRecordingAreThoseOfAllItsValues()
{
    constexpr int kRows = 20000;
    std::mt19937 random(1);
    QByteArray rows;
    std::vector<double> times;
    double sum = 0;
    double least = 30000;
    double most = -30000;
    int last = 0;
    for (int i = 0; i < kRows; ++i) {
        last = int(random() % 60001) - 30000;
        times.push_back(double(random() % 20000) / 10);
        sum += last;
        least = std::min(least, double(last));
        most = std::max(most, double(last));
        rows += filled("2026-01-31T%1:%2:%3.000Z,,VW0,i16,0,%4,,%5,\n", twoDigits(i / 3600),
                       twoDigits(i / 60 % 60), twoDigits(i % 60), last, QString::number(times.back(), 'f', 1))
                    .toUtf8();
    }
    const Recording recording = parsed(rows);
    const std::optional<Trend> trend = recording.series.at(0).trend.upTo(recording.end);
    QCOMPARE(trend->least, least);
    QCOMPARE(trend->most, most);
    QCOMPARE(trend->last, double(last));
    QVERIFY(std::abs(trend->mean - (sum - last) / (kRows - 1)) < 1e-6); // the last one held no time
    std::sort(times.begin(), times.end());
    QCOMPARE(recording.answerTimes.count(), kRows);
    QCOMPARE(recording.answerTimes.longest(), times.back());
    for (const int percent : {0, 5, 40, 50})
        QCOMPARE(recording.answerTimes.percentile(percent),
                 times.at(size_t(std::max(kRows * percent / 100, 1) - 1)));
    for (const int percent : {50, 95, 100}) {
        const double right = times.at(size_t(kRows * percent / 100 - 1));
        QVERIFY(std::abs(recording.answerTimes.percentile(percent) - right) <= right / 1000);
    }
}

void TestRecording::aLongRecordingKeepsItsExtremesAndItsGaps()
{
    Samples samples;
    for (int i = 0; i < 100000; ++i) {
        addSample(samples, {i, i == 1234 ? 1000.0 : i == 77777 ? -1000.0 : double(i % 7), false}, 4096);
        if (i == 50000)
            addSample(samples, {i, 0, true}, 4096);
    }
    QVERIFY(samples.size() <= 4096);
    QVERIFY(samples.size() > 1000);
    QVERIFY(std::is_sorted(samples.begin(), samples.end(), isEarlier));
    const auto isAt = [&](qint64 time, double value, bool isGap) {
        return std::any_of(samples.begin(), samples.end(), [&](const RecordedSample &sample) {
            return sample.time == time && sample.value == value && sample.isGap == isGap;
        });
    };
    QVERIFY(isAt(0, 0, false));
    QVERIFY(isAt(1234, 1000, false));
    QVERIFY(isAt(77777, -1000, false));
    QVERIFY(isAt(50000, 0, true));
    QVERIFY(isAt(99999, 99999 % 7, false));
}

void TestRecording::noMoreSamplesAreKeptThanAreWanted()
{
    constexpr size_t kMost = 1000;
    Samples samples;
    for (size_t i = 0; i < kMost; ++i)
        QVERIFY(!addSample(samples, {qint64(i), double(i), false}, kMost));
    QCOMPARE(samples.size(), kMost);
    QVERIFY(addSample(samples, {qint64(kMost), 0, false}, kMost));
    QVERIFY(samples.size() < kMost);
}

void TestRecording::manyValuesShareTheSamples()
{
    constexpr int kItems = 1000;
    constexpr int kRounds = 12;
    QByteArray rows;
    for (int i = 0; i < kItems * kRounds; ++i)
        rows += filled("2026-01-31T12:00:%1.000Z,,VW%2,i16,0,%3,,5,\n", twoDigits(i / kItems), i % kItems, i)
                    .toUtf8();
    const Recording few = parsed(rows);
    QCOMPARE(int(few.series.size()), kItems);
    for (const RecordedSeries &series : few.series)
        QCOMPARE(int(series.samples.size()), kRounds);
    Samples samples;
    for (int i = 0; i < 10000; ++i)
        addSample(samples, {i, double(i), false}, 4096);
    limitSamples(samples, 64);
    QVERIFY(samples.size() <= 64);
    QCOMPARE(samples.front().time, qint64(0));
    QCOMPARE(samples.back().time, qint64(9999));
}

// Of a value that goes up and down every second of nearly three hours.
void TestRecording::samplesOfALongRecordingAreEquallyFarApart()
{
    QByteArray rows;
    for (int i = 0; i < 10000; ++i)
        rows += filled("2026-01-31T%1:%2:%3.000Z,,VW0,i16,0,%4,,5,\n", twoDigits(i / 3600),
                       twoDigits(i / 60 % 60), twoDigits(i % 60), i % 2)
                    .toUtf8();
    const Recording recording = parsed(rows);
    const Samples &samples = recording.series.at(0).samples;
    const qint64 middle = (recording.begin + recording.end) / 2;
    const auto early = std::count_if(samples.begin(), samples.end(),
                                     [&](const RecordedSample &sample) { return sample.time < middle; });
    const auto late = qint64(samples.size()) - early;
    QVERIFY2(std::abs(early - late) < early / 10,
             qPrintable(filled("%1 and %2", qint64(early), qint64(late))));
    QCOMPARE(recording.series.at(0).answers, 10000);
}

void TestRecording::aRecordingOfOneMomentBeginsAndEndsThere()
{
    const Recording recording = parsed("2026-01-31T12:00:00.250Z,,VB0,u8,0,1,,5,\n");
    QCOMPARE(recording.end, recording.begin);
    QCOMPARE(recording.begin % 1000, qint64(250));
}

void TestRecording::samplesOutOfOrderAreDrawnInOrder()
{
    const Recording recording = parsed("2026-01-31T12:00:02.000Z,,VB0,u8,0,3,,5,\n"
                                       "2026-01-31T12:00:00.000Z,,VB0,u8,0,1,,5,\n"
                                       "2026-01-31T12:00:01.000Z,,VB0,u8,0,2,,5,\n");
    const Samples &samples = recording.series.at(0).samples;
    QVERIFY(std::is_sorted(samples.begin(), samples.end(), isEarlier));
    QCOMPARE(recording.end - recording.begin, qint64(2000));
    Samples bouncing;
    for (int i = 0; i < 20000; ++i)
        addSample(bouncing, {i % 2 ? 20000 - i : i, double(i), false}, 256);
    QVERIFY(bouncing.size() <= 256);
}

void TestRecording::percentilesAreOfTheNearestRank()
{
    const AnswerCounter times = counterOf({50, 15, 20, 40, 35});
    QCOMPARE(times.percentile(30), 20.0);
    QCOMPARE(times.percentile(40), 20.0);
    QCOMPARE(times.percentile(50), 35.0);
    QCOMPARE(times.percentile(100), 50.0);
    QCOMPARE(times.percentile(0), 15.0);
}

void TestRecording::longTimesAreCountedToFourDigits()
{
    const AnswerCounter times = counterOf({999.9, 1000.4, 12344, 1e300});
    QCOMPARE(times.percentile(25), 999.9);
    QCOMPARE(times.percentile(50), 1000.0);
    QCOMPARE(times.percentile(75), 12340.0);
    QCOMPARE(times.longest(), 1e300);
}

void TestRecording::theDistributionCountsEveryNumberOnce()
{
    for (const std::vector<double> &numbers :
         {std::vector<double>({0}), std::vector<double>({1, 2, 3, 4, 5, 6, 7, 8, 9, 1e6}),
          std::vector<double>(1000, 12.5), std::vector<double>({0, 0, 0, 1e300})}) {
        const std::vector<TimeBin> bins = counterOf(numbers).bins();
        const int counted = std::accumulate(bins.begin(), bins.end(), 0,
                                            [](int sum, const TimeBin &bin) { return sum + bin.count; });
        QCOMPARE(counted, int(numbers.size()));
    }
    QVERIFY(AnswerCounter().bins().empty());
}

// 19 of 20 find themselves in a part of nine; the others lie in the tenth, and behind it.
void TestRecording::theDistributionIsWideEnoughForMostNumbers()
{
    std::vector<double> numbers(95, 8.1);
    numbers.insert(numbers.end(), 5, 90.0);
    const std::vector<TimeBin> bins = counterOf(numbers).bins();
    QCOMPARE(int(bins.size()), 11);
    QCOMPARE(bins.at(8).from, 8.0);
    QCOMPARE(bins.at(8).to, 9.0);
    QCOMPARE(bins.at(8).count, 95);
    QCOMPARE(bins.at(10).from, 10.0);
    QCOMPARE(bins.at(10).to, 0.0);
    QCOMPARE(bins.at(10).count, 5);
    const std::vector<TimeBin> wider = counterOf(std::vector<double>(100, 9.5)).bins();
    QCOMPARE(wider.back().from, 8.0);
    QCOMPARE(wider.back().to, 10.0);
    QCOMPARE(wider.back().count, 100);
}

void TestRecording::stepsAreRound_data()
{
    QTest::addColumn<double>("number");
    QTest::addColumn<double>("step");
    QTest::newRow("1") << 1.0 << 1.0;
    QTest::newRow("1.1") << 1.1 << 2.0;
    QTest::newRow("3") << 3.0 << 5.0;
    QTest::newRow("60") << 60.0 << 100.0;
    QTest::newRow("0.03") << 0.03 << 0.05;
}

void TestRecording::stepsAreRound()
{
    QFETCH(double, number);
    QTEST(roundStep(number), "step");
}

// 30,000 texts that come once, and two that come again and again, one of them from the middle on.
void TestRecording::commonCausesAreFoundAmongThousands()
{
    ErrorCauses causes;
    for (int i = 0; i < 30000; ++i) {
        causes.add(filled("error number %1", i), i);
        if (i % 10 == 0)
            causes.add("plc no response", i % 50);
        if (i > 15000 && i % 20 == 0)
            causes.add("checksum error", 7);
    }
    QCOMPARE(causes.count(), 33749);
    const std::vector<ErrorCause> common = causes.commonest(2);
    QCOMPARE(common.at(0).text, QString("plc no response"));
    QCOMPARE(common.at(0).count, 3000);
    QCOMPARE(common.at(0).items, std::vector<int>({0, 10, 20, 30, 40}));
    QCOMPARE(common.at(1).text, QString("checksum error"));
    QCOMPARE(common.at(1).count, 749);
    QVERIFY(causes.commonest(100000).size() < 1000);
    ErrorCauses everywhere;
    for (int item = 0; item < 100; ++item)
        everywhere.add(QString(2 << 20, 'x'), item);
    QVERIFY(everywhere.commonest(1).at(0).hasMoreItems);
    QCOMPARE(int(everywhere.commonest(1).at(0).items.size()), 20);
    QVERIFY(everywhere.commonest(1).at(0).text.size() < 1000);
}

void TestRecording::errorsAreCountedOverTheTime()
{
    TimeCounter few;
    for (const qint64 time : {1000, 1000, 1999, 3500})
        few.add(time);
    QCOMPARE(few.columns(1000, 4999, 4), std::vector<int>({3, 0, 1, 0}));
    TimeCounter ten;
    for (qint64 time = 0; time < 10; ++time)
        ten.add(time);
    QCOMPARE(ten.columns(0, 9, 3), std::vector<int>({4, 3, 3}));
    TimeCounter many;
    constexpr qint64 kMinute = 60000;
    for (qint64 i = -100000; i < 100000; ++i)
        many.add(i * kMinute);
    const std::vector<int> columns = many.columns(-100000 * kMinute, 100000 * kMinute - 1, 10);
    QCOMPARE(std::accumulate(columns.begin(), columns.end(), 0), 200000);
    for (const int count : columns)
        QVERIFY2(count > 19900 && count < 20100, qPrintable(QString::number(count)));
}

void TestRecording::ticksAreRoundNumbers_data()
{
    QTest::addColumn<double>("bottom");
    QTest::addColumn<double>("top");
    QTest::addColumn<bool>("isWhole");
    QTest::addColumn<QString>("ticks");
    QTest::newRow("a bit") << -0.08 << 1.08 << true << "0 1";
    QTest::newRow("small counts") << 0.0 << 2.2 << true << "0 1 2";
    QTest::newRow("not whole") << 0.9 << 2.1 << false << "1.0 1.5 2.0";
    QTest::newRow("below 0") << -12.0 << 7.0 << true << "-10 -5 0 5";
    QTest::newRow("thousandths") << 0.0101 << 0.0142 << false << "0.011 0.012 0.013 0.014";
    QTest::newRow("near each other") << 1234567890.0 << 1234567910.0 << true
                                     << "1234567890 1234567895 1234567900 1234567905 1234567910";
    QTest::newRow("huge") << -1e300 << 1e300 << false << "-1e+300 -5e+299 0 5e+299 1e+300";
}

void TestRecording::ticksAreRoundNumbers()
{
    QFETCH(double, bottom);
    QFETCH(double, top);
    QFETCH(bool, isWhole);
    const std::vector<AxisTick> ticks = numberTicks(bottom, top, isWhole);
    QTEST(textsOf(ticks), "ticks");
    for (const AxisTick &tick : ticks)
        QVERIFY(tick.place >= 0 && tick.place <= 1);
}

void TestRecording::ticksAreRoundTimes_data()
{
    QTest::addColumn<QString>("begin");
    QTest::addColumn<qint64>("span");
    QTest::addColumn<QString>("ticks");
    const qint64 day = 86400000;
    QTest::newRow("a moment") << "2026-01-31T12:00:07.000+01:00" << qint64(0) << "";
    QTest::newRow("a second") << "2026-01-31T12:00:07.100+01:00" << qint64(1000) << "00:07.500 00:08.000";
    QTest::newRow("a minute") << "2026-01-31T12:00:07.000+01:00" << qint64(60000)
                              << "12:00:20 12:00:40 12:01:00";
    QTest::newRow("ten minutes") << "2026-01-31T12:00:07.000+01:00" << qint64(600000)
                                 << "12:02 12:04 12:06 12:08 12:10";
    QTest::newRow("over midnight") << "2026-01-31T22:50:00.000+01:00" << qint64(7200000)
                                   << "23:00 23:30 02-01 00:30";
    QTest::newRow("half hours off") << "2026-01-31T12:10:00.000+05:30" << qint64(7200000)
                                    << "12:30 13:00 13:30 14:00";
    QTest::newRow("days") << "2026-01-31T12:00:00.000+01:00" << 9 * day << "02-02 02-04 02-06 02-08";
    QTest::newRow("years") << "2026-01-31T12:00:00.000+01:00" << 1500 * day
                           << "2027-01 2028-01 2029-01 2030-01";
}

void TestRecording::ticksAreRoundTimes()
{
    QFETCH(QString, begin);
    QFETCH(qint64, span);
    const QDateTime time = QDateTime::fromString(begin, Qt::ISODateWithMs);
    const qint64 first = time.toMSecsSinceEpoch();
    QTEST(textsOf(timeTicks(first, first + span, time.offsetFromUtc())), "ticks");
}

void TestRecording::curvesDoNotTouchTheFrame()
{
    const Recording recording = parsed("2026-01-31T12:00:00.000Z,,VB0,u8,0,0,,5,\n"
                                       "2026-01-31T12:00:10.000Z,,VB0,u8,0,100,,5,\n");
    const ChartFrame frame = chartFrame(recording, *recording.series.at(0).trend.upTo(recording.end), false);
    QVERIFY(xOf(recording.begin, frame) > 0);
    QVERIFY(xOf(recording.end, frame) < frame.width);
    QVERIFY(yOf(100, frame) > 0);
    QVERIFY(yOf(0, frame) < frame.height);
}

void TestRecording::aSingleSampleIsALineInTheMiddle()
{
    const Recording recording = parsed("2026-01-31T12:00:00.000Z,,VB0,u8,0,0,,5,\n");
    const RecordedSeries &series = recording.series.at(0);
    const ChartFrame frame = chartFrame(recording, *series.trend.upTo(recording.end), false);
    QCOMPARE(trendPath(series.samples, frame), QString("M15 120H985"));
    QCOMPARE(textsOf(numberTicks(frame.bottom, frame.top, true)), QString("0"));
}

void TestRecording::theLineIsMadeOfSteps()
{
    const ChartFrame frame = {0, 1000, 0, 10, 100, 50};
    QCOMPARE(trendPath({{0, 0, false}, {500, 10, false}}, frame), QString("M0 50H50V0H100"));
}

void TestRecording::gapsAreLeftOpen()
{
    const ChartFrame frame = {0, 1000, 0, 10, 100, 50};
    QCOMPARE(trendPath({{0, 5, false}, {200, 0, true}, {500, 10, false}, {900, 0, true}}, frame),
             QString("M0 25H20M50 0H90"));
    QCOMPARE(trendPath({{0, 0, true}}, frame), QString());
}

void TestRecording::whatIsNotKnownIsAnArea()
{
    const ChartFrame frame = {0, 1000, 0, 10, 100, 50};
    QCOMPARE(gapPath({{0, 5, false}, {200, 0, true}, {500, 10, false}, {900, 0, true}}, frame),
             QString("M20 0H50V50H20ZM90 0H100V50H90Z"));
    QCOMPARE(gapPath({{0, 5, false}}, frame), QString());
}

void TestRecording::barsAreAsHighAsTheirCounts()
{
    const ChartFrame frame = {0, 1000, 0, 10, 100, 50};
    QCOMPARE(barPath({0, 10, 0, 5}, frame), QString("M25 0H45V50H25ZM75 25H95V50H75Z"));
    const ChartFrame narrower = {0, 1000, 0, 10, 100, 50, 10};
    QCOMPARE(barPath({0, 10, 0, 5}, narrower), QString("M30 0H46V50H30ZM70 25H86V50H70Z"));
}

void TestRecording::manySamplesAreThinnedOutAndKeepTheirPeaks()
{
    std::vector<RecordedSample> samples;
    for (int i = 0; i < 100000; ++i)
        samples.push_back({i, i == 54321 ? 10.0 : 5.0, false});
    const QString path = trendPath(samples, {0, 100000, 0, 10, 1000, 50});
    QVERIFY(path.size() < 40000);
    QVERIFY(path.contains("V0H"));
}

// Of a ramp each column keeps its first and last sample.
void TestRecording::columnsAreEquallyWideAndHoldAllSamples()
{
    Samples ramp;
    for (int i = 0; i < 100; ++i)
        ramp.push_back({1000 + i, double(i), false});
    QStringList kept;
    for (const RecordedSample &sample : thinnedOut(ramp, 1000, 1099, 10))
        kept << QString::number(sample.time);
    QStringList expected;
    for (int column = 0; column < 10; ++column)
        expected << QString::number(1000 + 10 * column) << QString::number(1009 + 10 * column);
    QCOMPARE(kept, expected);
    const Samples thinned = thinnedOut(ramp, 1000, 1099, 7);
    QVERIFY(!limitSamples(ramp, 100));
    QVERIFY(limitSamples(ramp, 56)); // 8 of a column
    QVERIFY(std::equal(ramp.begin(), ramp.end(), thinned.begin(), thinned.end(),
                       [](const RecordedSample &a, const RecordedSample &b) { return a.time == b.time; }));
}

// Three answers within a millisecond to one of two.
void TestRecording::barsOfADistributionAreAsLongAsTheirCounts()
{
    QByteArray rows;
    for (const char *time : {"0.5", "0.5", "0.5", "1.5"})
        rows += filled("2026-01-31T12:00:0%1.000Z,,VB0,u8,0,1,,%2,\n", int(rows.count('\n')), time).toUtf8();
    const QByteArray page = pageOf(rows);
    QVERIFY(page.contains("style=\"width:100.0%\""));
    QVERIFY(page.contains("style=\"width:33.3%\""));
}

// Of the 1000 that the picture is wide 15 are free on each side: 15 of 46 seconds are 316.3. The last line is
// too near to the edge for a text.
void TestRecording::thePageHasLinesAtRoundNumbersAndTimes()
{
    const QByteArray page = pageOf("2026-01-31T12:00:00.000Z,,VB0,u8,0,1,,5,\n"
                                   "2026-01-31T12:00:46.000Z,,VB0,u8,0,9,,5,\n");
    QVERIFY(page.contains("viewBox=\"0 0 1000 240\""));
    QVERIFY(page.contains("<path class=\"grid\" d=\"M0 197.6H1000M0 145.9H1000M0 94.1H1000M0 42.4H1000"
                          "M15.0 0V240M331.3 0V240M647.6 0V240M963.9 0V240\"/>"));
    QVERIFY(page.contains("<div class=\"times\"><span style=\"left:33.13%\">12:00:15</span>"
                          "<span style=\"left:64.76%\">12:00:30</span></div>"));
}

void TestRecording::thePageEscapesWhatTheFileSays()
{
    const QByteArray page = pageOf("2026-01-31T12:00:00.000Z,<script>alert(1)</script>,VB0,u8,0,1,<b>,5,\n"
                                   "2026-01-31T12:00:00.000Z,t,VB0,str,0,<i>&,,5,\n"
                                   "2026-01-31T12:00:01.000Z,\"\"\"><img>\",VB0,u8,,,,,<u>odd\n");
    for (const char *markup : {"<script", "<b>,", "<i>", "<img", "<u>"})
        QVERIFY2(!page.contains(markup), markup);
    QVERIFY(page.contains("&lt;script&gt;alert(1)&lt;/script&gt;"));
    QVERIFY(page.contains("&lt;i&gt;&amp;"));
}

void TestRecording::thePageNeedsNothingElse()
{
    const QByteArray page = pageOf("2026-01-31T12:00:00.000Z,,VB0,u8,0,1,,5,\n");
    for (const char *link : {"http:", "https:", "src=", "href=", "url(", "@import", "<script"})
        QVERIFY2(!page.contains(link), link);
    QVERIFY(page.startsWith("<!DOCTYPE html>"));
    QVERIFY(page.endsWith("</html>\n"));
}

void TestRecording::thePageTellsErrorsWithAdvice()
{
    const QByteArray page = pageOf("2026-01-31T12:00:00.000Z,,VB0,u8,,,,,plc no response\n"
                                   "2026-01-31T12:00:01.000Z,,VB0,u8,,,,,plc no response\n");
    QVERIFY(page.contains("<b>plc no response</b> <span class=\"bad\">2 times, 100 %</span>"));
    QVERIFY(page.contains("check cable, power, --station and --baud"));
    QVERIFY(!pageOf("2026-01-31T12:00:00.000Z,,VB0,u8,0,1,,5,\n").contains("plc no response"));
}

void TestRecording::thePageTellsWhereAndWhen()
{
    const QByteArray page = reportPage(
        parseRecording("log.csv", "time,port,address,type,station,value,error\n"
                                  "2026-01-31T23:59:00.000+01:00,/dev/ttyUSB0,VB0,u8,3,1,\n"
                                  "2026-02-01T00:01:00.000+01:00,/dev/ttyUSB0,VB0,u8,3,,plc no response\n"),
        "log.csv");
    QVERIFY(page.contains("<dt>Port</dt><dd>/dev/ttyUSB0</dd>"));
    QVERIFY(page.contains("<dt>Station</dt><dd>3</dd>"));
    QVERIFY(page.contains("<dt>Period</dt><dd>2026-01-31 23:59:00 to 2026-02-01 00:01:00</dd>"));
    QVERIFY(page.contains("<dt>Times</dt><dd>local time, UTC+01:00</dd>"));
    QVERIFY(page.contains(">2 min</b><span>watched</span>"));
    QVERIFY(page.contains("error, 50 % of the readings"));
    QVERIFY(!page.contains(">None.<"));
    QVERIFY(page.contains("1 sample, <span class=\"bad\">1 error (50 %)</span>"));
    const QByteArray other = pageOf(kRecord);
    QVERIFY(other.contains(">None.<"));
    QVERIFY(!other.contains("<dt>Port") && !other.contains("<dt>Station"));
    QVERIFY(other.contains("<dt>Times</dt><dd>UTC</dd>"));
    QVERIFY(other.contains("<dt>Period</dt><dd>2026-01-31 12:00:02 to 12:00:02</dd>"));
}

void TestRecording::bitsHaveTwoLevelsAndAShareOfTime()
{
    const QByteArray page = pageOf("2026-01-31T12:00:00.000Z,,V0.0,bool,0,0,,5,\n"
                                   "2026-01-31T12:00:30.000Z,,V0.0,bool,0,1,,5,\n"
                                   "2026-01-31T12:00:40.000Z,,V0.0,bool,0,0,,5,\n");
    QVERIFY(page.contains(">1</span>"));
    QVERIFY(page.contains(">0</span>"));
    QVERIFY(!page.contains(">0.5</span>"));
    QVERIFY(page.contains("<dt>on</dt><dd>25.0 % of the time</dd>"));
}

void TestRecording::rareErrorsAreCountedTogether()
{
    QByteArray rows;
    for (int i = 0; i < 5000; ++i)
        rows += filled("2026-01-31T12:00:00.000Z,,VB0,u8,,,,,error number %1\n", i).toUtf8();
    const QByteArray page = pageOf(rows);
    QCOMPARE(page.count("<li class=\"card\"><b>"), 20);
    QVERIFY(page.contains("And 4980 errors of other causes."));
    QVERIFY(page.contains("<b class=\"bad\">5000</b>"));
}

void TestRecording::longErrorsAreCut()
{
    QCOMPARE(shortened(QString(500, 'x')), QString(500, 'x'));
    QCOMPARE(shortened(QString(501, 'x')), QString(500, 'x') + " ...");
}

QTEST_APPLESS_MAIN(TestRecording)

#include "test_recording.moc"
