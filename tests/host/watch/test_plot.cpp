// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Curves in characters.

#include "host/watch/plot.h"

#include "test_class.h"

#include <QtTest>

#include <algorithm>
#include <deque>
#include <vector>

using namespace host;

namespace {

using Samples = std::deque<PlotSample>;

PlotSample sample(double time, double value)
{
    return {time, value, value, value, false};
}

QStringList plotted(const Samples &samples, int columns, int rows, PlotGlyphs glyphs = PlotGlyphs::Ascii)
{
    return plotLines({{"VB0", "7", samples}}, 10, 10, columns, rows, glyphs);
}

} // namespace

class TestPlot : public QObject
{
    Q_OBJECT

private slots:
    void aStepIsDrawnInAscii();
    void aStepIsDrawnInDots();
    void aLevelLiesInTheMiddle();
    void aGapIsLeftOpen();
    void whatHeldBeforeTheBeginningIsDrawn();
    void severalCurvesShareTheRows();
    void curvesWithoutRoomAreCounted();
    void valuesAndTimesOnTheAxesAreRound();
    void aBitIsDrawnBetweenItsTwoValues();
    void longNumbersOfTheScaleAreWhole();
    void titlesGiveWayFromTheirEnd();
    void curvesNarrowerThanTenColumnsAreNotDrawn();
    void noSizeIsTooSmallOrTooLarge();
    void historyKeepsTheSpanAndWhatHeldBefore();
    void historyKeepsPeaksOfCrowdedSamples();
    void samplesOfAMillisecondAreOneAndAGap();
    void historyIsFineAsLongAsItIsShort();
    void historyStaysShortWithGapsAndValuesByTurns();
};

void TestPlot::aStepIsDrawnInAscii()
{
    const Samples samples = {sample(0, 0), sample(5, 10)};
    QCOMPARE(plotted(samples, 27, 5).join('\n'), QString("VB0  7   0 to 10\n"
                                                         "        10 |       :'''''''\n"
                                                         "           |       :\n"
                                                         "         0 |.......:\n"
                                                         "            -10 s       now"));
}

void TestPlot::aStepIsDrawnInDots()
{
    const Samples samples = {sample(0, 0), sample(5, 10)};
    const QStringList lines = plotted(samples, 22, 4, PlotGlyphs::Braille);
    QCOMPARE(lines.at(1), QString::fromUtf8("        10 │     ⡏⠉⠉⠉⠉"));
    QCOMPARE(lines.at(2), QString::fromUtf8("         0 │⣀⣀⣀⣀⣀⡇"));
}

void TestPlot::aLevelLiesInTheMiddle()
{
    const QStringList lines = plotted({sample(0, 100)}, 27, 5);
    QCOMPARE(lines.at(0), QString("VB0  7"));
    QCOMPARE(lines.at(1), QString("       110 |"));
    QVERIFY(lines.at(2).endsWith("|...............") || lines.at(2).endsWith("|'''''''''''''''"));
    QCOMPARE(lines.at(3), QString("        90 |"));
}

void TestPlot::aGapIsLeftOpen()
{
    const Samples samples = {sample(0, 1), {2, 0, 0, 0, true}, sample(8, 2)};
    const QStringList lines = plotted(samples, 23, 4);
    QCOMPARE(lines.at(1), QString("         2 |        '''"));
    QCOMPARE(lines.at(2), QString("         1 |..."));
}

void TestPlot::whatHeldBeforeTheBeginningIsDrawn()
{
    const Samples samples = {sample(-500, 99), sample(-50, 3)};
    const QStringList lines = plotted(samples, 23, 5);
    QCOMPARE(lines.at(1), QString("         4 |"));
    QVERIFY(lines.at(2).size() == 23);
}

void TestPlot::severalCurvesShareTheRows()
{
    const Samples samples = {sample(0, 1)};
    const QStringList lines =
        plotLines({{"A", "1", samples}, {"B", "1", samples}}, 10, 10, 40, 11, PlotGlyphs::Ascii);
    QCOMPARE(int(lines.size()), 11);
    QCOMPARE(lines.at(0), QString("A  1"));
    QCOMPARE(lines.at(5), QString("B  1"));
    QVERIFY(!lines.at(9).contains('+'));
    const QStringList more = plotLines({{"A", "1", samples}}, 10, 10, 40, 12, PlotGlyphs::Ascii);
    QVERIFY(more.at(10).contains("+-"));
}

void TestPlot::curvesWithoutRoomAreCounted()
{
    const Samples samples = {sample(0, 1)};
    const std::vector<PlotCurve> curves(4, {"A", "1", samples});
    const QStringList lines = plotLines(curves, 10, 10, 40, 8, PlotGlyphs::Ascii);
    QCOMPARE(int(lines.size()), 8);
    QCOMPARE(lines.last(), QString("... and 2 more"));
}

void TestPlot::valuesAndTimesOnTheAxesAreRound()
{
    const Samples samples = {sample(0, 12), sample(50, 93)};
    const QStringList lines = plotLines({{"VB0", "93", samples}}, 100, 73, 60, 13, PlotGlyphs::Ascii);
    QCOMPARE(lines, QStringList(
                        {"VB0  93   12 to 93", "       100 |               .................................",
                         "           |               :", "        80 |               :",
                         "           |               :", "        60 |               :",
                         "        40 |               :", "           |               :",
                         "        20 |               :", "           |...............:", "         0 |",
                         "           +--------+------------+------------+------------+",
                         "                  -60 s        -40 s        -20 s        now"}));
}

void TestPlot::aBitIsDrawnBetweenItsTwoValues()
{
    const Samples samples = {sample(0, 1)};
    const PlotCurve bit = {"V0.0", "1", samples, true};
    const QStringList lines = plotLines({bit}, 10, 10, 27, 7, PlotGlyphs::Ascii);
    QCOMPARE(lines.at(1), QString("         1 |'''''''''''''''"));
    QCOMPARE(lines.at(3), QString("           |"));
    QCOMPARE(lines.at(5), QString("         0 |"));
}

void TestPlot::longNumbersOfTheScaleAreWhole()
{
    const Samples samples = {sample(0, -1.5e10), sample(5, 123456789012.5)};
    const QStringList lines = plotted(samples, 40, 5);
    QCOMPARE(lines.at(0), QString("VB0  7   -1.5e+10 to 123456789012.5"));
    QCOMPARE(lines.at(1).section('|', 0, 0), QString("   1.5e+11 "));
    QCOMPARE(lines.at(3).section('|', 0, 0), QString("    -5e+10 "));
    const Samples close = {sample(0, -123456789012), sample(5, -123456789000)};
    QCOMPARE(plotted(close, 60, 5).at(1).section('|', 0, 0), QString("-1.23456789e+11 "));
}

void TestPlot::titlesGiveWayFromTheirEnd()
{
    const Samples samples = {sample(0, 12.25), sample(5, 93.5)};
    const auto titleIn = [&](int columns) {
        return plotLines({{"Line3.Press.Pressure", "93.5 bar", samples}}, 10, 10, columns, 5,
                         PlotGlyphs::Ascii)
            .front();
    };
    QCOMPARE(titleIn(60), QString("Line3.Press.Pressure  93.5 bar   12.25 to 93.5"));
    QCOMPARE(titleIn(45), QString("Line3.Press.Pressure  93.5 bar"));
    QCOMPARE(titleIn(25), QString("Line3....essure  93.5 bar"));
}

void TestPlot::curvesNarrowerThanTenColumnsAreNotDrawn()
{
    const Samples samples = {sample(0, 0), sample(5, 10)};
    QCOMPARE(plotted(samples, 22, 5).at(1), QString("        10 |     :''''"));
    QCOMPARE(plotted(samples, 21, 5), QStringList("no room to draw"));
}

void TestPlot::noSizeIsTooSmallOrTooLarge()
{
    const Samples samples = {sample(0, -1e300), sample(3, 1e300), {4, 0, 0, 0, true}, sample(9, 1e-300)};
    for (const PlotGlyphs glyphs : {PlotGlyphs::Ascii, PlotGlyphs::Braille})
        for (const int columns : {0, 1, 5, 12, 21, 22, 23, 80, 400})
            for (const int rows : {-2, 0, 1, 2, 3, 4, 5, 24, 200}) {
                const QStringList lines = plotLines({{"VB0", "long value", samples}, {"VB1", "", samples}},
                                                    10, 10, columns, rows, glyphs);
                QVERIFY(int(lines.size()) <= std::max(rows, 0));
                QVERIFY(rows < 1 || !lines.isEmpty());
                for (const QString &line : lines)
                    QVERIFY2(line.size() <= columns, qPrintable(line));
            }
}

void TestPlot::historyKeepsTheSpanAndWhatHeldBefore()
{
    PlotHistory history(10);
    for (int second = 0; second <= 100; ++second)
        history.add(second, second);
    QCOMPARE(history.samples().front().time, 89.0);
    QCOMPARE(history.samples().back().last, 100.0);
}

void TestPlot::historyKeepsPeaksOfCrowdedSamples()
{
    PlotHistory history(100);
    for (int i = 0; i < 100000; ++i)
        history.add(i / 1000.0, i == 50001 ? 9 : 1);
    history.addGap(100);
    QVERIFY(history.samples().size() < 1100);
    double peak = 0;
    for (const PlotSample &sample : history.samples())
        peak = std::max(peak, sample.high);
    QCOMPARE(peak, 9.0);
    QVERIFY(history.samples().back().isGap);
}

void TestPlot::samplesOfAMillisecondAreOneAndAGap()
{
    PlotHistory history(100);
    for (int i = 0; i < 10; ++i) {
        history.add(5.00001 + i * 0.00001, i);
        history.addGap(5.00001 + i * 0.00001);
    }
    QCOMPARE(int(history.samples().size()), 2);
    QCOMPARE(history.samples().front().low, 0.0);
    QCOMPARE(history.samples().front().high, 9.0);
    QCOMPARE(history.samples().front().last, 9.0);
    QVERIFY(history.samples().back().isGap);
    for (int i = 0; i < 10; ++i)
        history.add(6.00001 + i * 0.00001, i);
    QCOMPARE(int(history.samples().size()), 3);
}

void TestPlot::historyIsFineAsLongAsItIsShort()
{
    PlotHistory history(86400);
    for (int i = 0; i < 500; ++i)
        history.add(i * 0.01, i);
    QCOMPARE(int(history.samples().size()), 500);
    for (int i = 500; i < 100000; ++i)
        history.add(i * 0.01, i);
    const auto kept = history.samples().size();
    QVERIFY2(kept >= 400 && kept <= 1000, qPrintable(QString::number(kept)));
    QCOMPARE(history.samples().back().last, 99999.0);
}

void TestPlot::historyStaysShortWithGapsAndValuesByTurns()
{
    PlotHistory history(100);
    for (int i = 0; i < 10000; ++i) {
        history.add(i / 100.0, i);
        history.addGap(i / 100.0);
    }
    QVERIFY(history.samples().size() <= 1000);
    QVERIFY(history.samples().back().isGap);
    for (size_t i = 1; i < history.samples().size(); ++i)
        QVERIFY(history.samples().at(i - 1).time <= history.samples().at(i).time);
    double last = 0;
    for (const PlotSample &sample : history.samples())
        last = sample.isGap ? last : sample.last;
    QCOMPARE(last, 9999.0);
}

TEST_CLASS(TestPlot)

#include "test_plot.moc"
