// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Round numbers along axes.

#include "host/watch/axis.h"

#include "test_class.h"

#include <QtTest>

#include <limits>
#include <vector>

using namespace host;

class TestAxis : public QObject
{
    Q_OBJECT

private slots:
    void endsAndMarksAreRound_data();
    void endsAndMarksAreRound();
    void theEndsHaveAllValuesBetweenThem_data();
    void theEndsHaveAllValuesBetweenThem();
    void timesAreRound_data();
    void timesAreRound();
};

namespace {

QString textsOf(const std::vector<AxisMark> &marks)
{
    QStringList texts;
    for (const AxisMark &mark : marks)
        texts << mark.text;
    return texts.join(' ');
}

} // namespace

void TestAxis::endsAndMarksAreRound_data()
{
    QTest::addColumn<double>("low");
    QTest::addColumn<double>("high");
    QTest::addColumn<bool>("isWhole");
    QTest::addColumn<int>("mostMarks");
    QTest::addColumn<QString>("marks");
    const auto row = [](double low, double high, bool isWhole, int mostMarks, const char *marks) {
        QTest::addRow("%g to %g, %d", low, high, mostMarks)
            << low << high << isWhole << mostMarks << QString(marks);
    };
    row(0, 10, true, 9, "0 2 4 6 8 10");
    row(0, 10, true, 3, "0 5 10"); // five steps cannot be shared by three marks
    row(0, 10, true, 2, "0 10");
    row(58.2, 63.9, false, 9, "58 60 62 64");
    row(58.2, 63.9, false, 3, "58 64");
    row(0, 1, true, 9, "0 1");
    row(0, 1, false, 9, "0.0 0.2 0.4 0.6 0.8 1.0");
    row(0.1, 0.3, false, 9, "0.10 0.15 0.20 0.25 0.30");
    row(-7, 3, true, 9, "-8 -6 -4 -2 0 2 4");
    row(3, 3, true, 9, "2 3 4");
    row(0.05, 0.05, false, 9, "0.045 0.050 0.055");
    row(0, 0, false, 2, "-1.0 1.0");
    row(0, 4294967295.0, true, 9, "0 1000000000 2000000000 3000000000 4000000000 5000000000");
    row(-4e12, 4e12, true, 3, "-4e+12 0 4e+12");
    row(1e10, 1e10 + 10, true, 2, "1e+10 1e+10"); // nine digits do not tell them apart
}

void TestAxis::endsAndMarksAreRound()
{
    QFETCH(double, low);
    QFETCH(double, high);
    QFETCH(bool, isWhole);
    QFETCH(int, mostMarks);
    QTEST(textsOf(valueAxis(low, high, isWhole, mostMarks).marks), "marks");
}

void TestAxis::theEndsHaveAllValuesBetweenThem_data()
{
    QTest::addColumn<double>("low");
    QTest::addColumn<double>("high");
    const double most = std::numeric_limits<double>::max();
    QTest::newRow("huge") << -most << most;
    QTest::newRow("tiny") << 0.0 << std::numeric_limits<double>::denorm_min();
    QTest::newRow("almost one") << 1e15 << 1e15 + 0.125;
    QTest::newRow("a number and the next one") << 1.0 << 1.0 + std::numeric_limits<double>::epsilon();
    QTest::newRow("floats") << -3.4028235e+38 << 3.4028235e+38;
    QTest::newRow("usual") << -12.3 << 99.9;
}

void TestAxis::theEndsHaveAllValuesBetweenThem()
{
    QFETCH(double, low);
    QFETCH(double, high);
    for (const bool isWhole : {false, true}) {
        const ValueAxis axis = valueAxis(low, high, isWhole, 5);
        QVERIFY(axis.bottom <= low && high <= axis.top);
        QCOMPARE(axis.marks.front().place, axis.bottom);
        QCOMPARE(axis.marks.back().place, axis.top);
        for (const AxisMark &mark : axis.marks)
            QVERIFY(mark.text.size() <= 16);
    }
}

void TestAxis::timesAreRound_data()
{
    QTest::addColumn<double>("span");
    QTest::addColumn<int>("mostMarks");
    QTest::addColumn<QString>("texts");
    const auto row = [](double span, int mostMarks, const char *texts) {
        QTest::addRow("%g s, %d", span, mostMarks) << span << mostMarks << QString(texts);
    };
    row(1, 5, "now -1 s");
    row(7.3, 5, "now -2 s -4 s -6 s");
    row(10, 1, "now -10 s");
    row(50, 3, "now -20 s -40 s");
    row(100, 8, "now -20 s -40 s -60 s -80 s -100 s");
    row(300, 5, "now -1 min -2 min -3 min -4 min -5 min");
    row(300, 2, "now -5 min");
    row(3600, 6, "now -10 min -20 min -30 min -40 min -50 min -60 min");
    row(86400, 4, "now -6 h -12 h -18 h -24 h");
    row(86400, 1, "now -12 h -24 h");
    row(9000, 1, "now"); // the first mark of three hours lies outside
    // Each step as the only one.
    for (const char *step : {"1 s", "2 s", "5 s", "10 s", "20 s", "30 s", "1 min", "2 min", "5 min", "10 min",
                             "20 min", "30 min", "1 h", "2 h", "3 h", "6 h", "12 h"}) {
        const QStringList parts = QString(step).split(' ');
        const int unit = parts.at(1) == "s" ? 1 : parts.at(1) == "min" ? 60 : 3600;
        row(parts.at(0).toDouble() * unit, 1, qPrintable(QString("now -%1").arg(step)));
    }
}

void TestAxis::timesAreRound()
{
    QFETCH(double, span);
    QFETCH(int, mostMarks);
    QTEST(textsOf(timeMarks(span, mostMarks)), "texts");
}

TEST_CLASS(TestAxis)
#include "test_axis.moc"
