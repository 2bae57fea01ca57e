// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Records of watch, read back, and the page that is made of them.

#include "host/recording/recording.h"
#include "host/recording/report_page.h"
#include "host/recording/statistics.h"
#include "host/recording/trend_chart.h"

#include "tests/host/support/failure_of.h"

#include <QtTest>

#include <numeric>
#include <optional>
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

} // namespace

class TestRecording : public QObject
{
    Q_OBJECT

private slots:
    void everyValueIsASeries();
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
    void percentilesAreOfTheNearestRank();
    void theDistributionCountsEveryNumberOnce();
    void stepsAreRound_data();
    void stepsAreRound();
    void theLineIsMadeOfSteps();
    void gapsAreLeftOpen();
    void manySamplesAreThinnedOutAndKeepTheirPeaks();
    void thePageEscapesWhatTheFileSays();
    void thePageNeedsNothingElse();
    void thePageTellsErrorsWithAdvice();
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
    QCOMPARE(recording.answerTimes, std::vector<double>({14.2, 15, 13}));
    QCOMPARE(recording.errorCount, 0);
}

void TestRecording::elementsAreNumberedAndShareOneAnswer()
{
    const Recording recording = parsed("2026-01-31T12:00:00.000Z,,VB0,u8,0,1,,5,\n"
                                       "2026-01-31T12:00:00.000Z,,VB0,u8,1,2,,5,\n");
    QCOMPARE(recording.series.at(0).label, QString("VB0[0]"));
    QCOMPARE(recording.series.at(1).label, QString("VB0[1]"));
    QCOMPARE(recording.answerTimes, std::vector<double>({5}));
}

void TestRecording::errorsAreCountedByCauseAndLeaveGaps()
{
    const Recording recording = parsed("2026-01-31T12:00:00.000Z,,VB0,u8,0,1,,5,\n"
                                       "2026-01-31T12:00:01.000Z,,VB0,u8,,,,,plc no response\n"
                                       "2026-01-31T12:00:02.000Z,,VB1,u8,,,,,plc no response\n"
                                       "2026-01-31T12:00:03.000Z,,VB1,u8,,,,,checksum error\n");
    QCOMPARE(recording.errorCount, 3);
    QCOMPARE(int(recording.errors.size()), 2);
    QCOMPARE(recording.errors.at(0).cause, QString("plc no response"));
    QCOMPARE(recording.errors.at(0).count, 2);
    QCOMPARE(recording.errors.at(0).labels, QStringList({"VB0", "VB1"}));
    QVERIFY(recording.series.at(0).samples.at(1).isGap);
    QCOMPARE(int(recording.series.size()), 1);
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
    QCOMPARE(recording.errorCount, 0);
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
    QCOMPARE(other.errorCount, 0);
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
    QCOMPARE(trendOf({{5, 7, false}}, 5)->mean, 7.0);
    QVERIFY(!trendOf({{0, 0, true}}, 9000));
}

void TestRecording::percentilesAreOfTheNearestRank()
{
    const std::vector<double> numbers = {15, 20, 35, 40, 50};
    QCOMPARE(percentile(numbers, 30), 20.0);
    QCOMPARE(percentile(numbers, 40), 20.0);
    QCOMPARE(percentile(numbers, 50), 35.0);
    QCOMPARE(percentile(numbers, 100), 50.0);
    QCOMPARE(percentile(numbers, 0), 15.0);
}

void TestRecording::theDistributionCountsEveryNumberOnce()
{
    for (const std::vector<double> &numbers :
         {std::vector<double>({0}), std::vector<double>({1, 2, 3, 4, 5, 6, 7, 8, 9, 1e6}),
          std::vector<double>(1000, 12.5), std::vector<double>({0, 0, 0, 1e300})}) {
        const std::vector<TimeBin> bins = distributionOf(numbers);
        const int counted = std::accumulate(bins.begin(), bins.end(), 0,
                                            [](int sum, const TimeBin &bin) { return sum + bin.count; });
        QCOMPARE(counted, int(numbers.size()));
    }
    QVERIFY(distributionOf({}).empty());
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

void TestRecording::manySamplesAreThinnedOutAndKeepTheirPeaks()
{
    std::vector<RecordedSample> samples;
    for (int i = 0; i < 100000; ++i)
        samples.push_back({i, i == 54321 ? 10.0 : 5.0, false});
    const QString path = trendPath(samples, {0, 100000, 0, 10, 1000, 50});
    QVERIFY(path.size() < 40000);
    QVERIFY(path.contains("V0H"));
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
    QVERIFY(page.contains("<b>plc no response</b> <span class=\"bad\">2 times</span>"));
    QVERIFY(page.contains("check cable, power, --station and --baud"));
    QVERIFY(!pageOf("2026-01-31T12:00:00.000Z,,VB0,u8,0,1,,5,\n").contains("plc no response"));
}

QTEST_APPLESS_MAIN(TestRecording)

#include "test_recording.moc"
