// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Faults as people write them.

#include "complaint.h"

#include "simulator/faults/fault.h"
#include "test_class.h"

#include <QtTest>

#include <set>
#include <stdexcept>
#include <string>

namespace {

QString complaint(const QString &text)
{
    return complaintOf<std::invalid_argument>([&] { sim::parseFault(text.toStdString()); });
}

} // namespace

class TestSimulatorFault : public QObject
{
    Q_OBJECT

private slots:
    void everyKindHasItsOwnName();
    void everyKindIsExplainedOnce();
    void textIsRead_data();
    void textIsRead();
    void percentageMayHaveAFraction();
    void badTextIsRefused_data();
    void badTextIsRefused();
    void chanceIsKnown_data();
    void chanceIsKnown();
};

void TestSimulatorFault::everyKindHasItsOwnName()
{
    QCOMPARE(int(sim::faultNames().size()), int(sim::FaultKind::Echo) + 1);
    std::set<sim::FaultKind> kinds;
    for (const sim::FaultName &name : sim::faultNames()) {
        QVERIFY(sim::parseFault(name.name).kind == name.kind);
        kinds.insert(name.kind);
    }
    QCOMPARE(kinds.size(), sim::faultNames().size());
}

void TestSimulatorFault::everyKindIsExplainedOnce()
{
    std::set<std::string> meanings;
    for (const sim::FaultName &name : sim::faultNames()) {
        QVERIFY2(*name.meaning != '\0', name.name);
        QVERIFY2(meanings.insert(name.meaning).second, name.name);
    }
}

void TestSimulatorFault::textIsRead_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("argument"); // -1: none
    QTest::addColumn<int>("request");
    QTest::addColumn<double>("percent");
    QTest::newRow("silent") << int(sim::FaultKind::Silent) << -1 << 0 << 100.0;
    QTest::newRow("stale-reference@3") << int(sim::FaultKind::StaleReference) << -1 << 3 << 100.0;
    QTest::newRow("late") << int(sim::FaultKind::Late) << 1000 << 0 << 100.0;
    QTest::newRow("late=300") << int(sim::FaultKind::Late) << 300 << 0 << 100.0;
    QTest::newRow("late=300@2") << int(sim::FaultKind::Late) << 300 << 2 << 100.0;
    QTest::newRow("late=1.5s@2") << int(sim::FaultKind::Late) << 1500 << 2 << 100.0;
    QTest::newRow("silent@1000000000") << int(sim::FaultKind::Silent) << -1 << 1000000000 << 100.0;
    QTest::newRow("late@2") << int(sim::FaultKind::Late) << 1000 << 2 << 100.0;
    QTest::newRow("late=1") << int(sim::FaultKind::Late) << 1 << 0 << 100.0;
    QTest::newRow("late=10min") << int(sim::FaultKind::Late) << 600000 << 0 << 100.0;
    QTest::newRow("short=260") << int(sim::FaultKind::Short) << 260 << 0 << 100.0;
    QTest::newRow("noise=200") << int(sim::FaultKind::Noise) << 200 << 0 << 100.0;
    QTest::newRow("wrong-source=255") << int(sim::FaultKind::WrongSource) << 255 << 0 << 100.0;
    QTest::newRow("short=1%10") << int(sim::FaultKind::Short) << 1 << 0 << 10.0;
    QTest::newRow("corrupt") << int(sim::FaultKind::Corrupt) << -1 << 0 << 100.0;
    QTest::newRow("corrupt=0") << int(sim::FaultKind::Corrupt) << 0 << 0 << 100.0;
    QTest::newRow("item-refused=0A") << int(sim::FaultKind::ItemRefused) << 10 << 0 << 100.0;
    QTest::newRow("item-refused=fe") << int(sim::FaultKind::ItemRefused) << 254 << 0 << 100.0;
}

void TestSimulatorFault::textIsRead()
{
    QFETCH(int, kind);
    QFETCH(int, argument);
    QFETCH(int, request);
    QFETCH(double, percent);
    const sim::Fault fault = sim::parseFault(QTest::currentDataTag());
    QCOMPARE(int(fault.kind), kind);
    QCOMPARE(fault.argument ? int(*fault.argument) : -1, argument);
    QCOMPARE(int(fault.request), request);
    QCOMPARE(fault.percent, percent);
}

void TestSimulatorFault::percentageMayHaveAFraction()
{
    QCOMPARE(sim::parseFault("silent%0.5").percent, 0.5);
}

void TestSimulatorFault::badTextIsRefused_data()
{
    QTest::addColumn<QString>("error");
    const auto row = [](const char *name, const QString &error) { QTest::newRow(name) << error; };
    row("silemt", "\"silemt\" is no kind of fault; the nearest is silent");
    row("silent ", "\"silent \" is no kind of fault; the nearest is silent");
    row("bad-ends@1", "\"bad-ends\" is no kind of fault; the nearest is bad-end");
    // Nothing is near: all there are.
    row("bad-crc@1",
        "\"bad-crc\" is no kind of fault; there are no-resource, not-active, silent, wrong-ack, late-ack, "
        "noise-ack, no-answer, not-ready, late, truncated, short, corrupt, noise, noise-inside, "
        "bad-checksum, "
        "bad-end, wrong-source, wrong-destination, stale-reference, error-class, hardware-fault, "
        "item-refused, "
        "ignore-writes, echo");
    row("wrong-station", "\"wrong-station\" is no kind of fault; the nearest is wrong-destination");
    row("silent=1", "silent takes no argument, it is given \"1\"");
    row("silent=", "silent takes no argument, it is given \"\"");
    row("late=", "late=TIME: \"\" is not a time from 1ms to 10min, as 500ms, 1s or 2min");
    row("late=0", "late=TIME: \"0\" is not a time from 1ms to 10min, as 500ms, 1s or 2min");
    row("late=-1", "late=TIME: \"-1\" is not a time from 1ms to 10min, as 500ms, 1s or 2min");
    row("late=1t", "late=TIME: \"1t\" is not a time from 1ms to 10min, as 500ms, 1s or 2min");
    row("late=11min", "late=TIME: \"11min\" is not a time from 1ms to 10min, as 500ms, 1s or 2min");
    row("late=600001", "late=TIME: \"600001\" is not a time from 1ms to 10min, as 500ms, 1s or 2min");
    row("truncated=261", "truncated=BYTES: \"261\" is not a number from 1 to 260");
    row("short=261", "short=BYTES: \"261\" is not a number from 1 to 260");
    row("corrupt=261", "corrupt=POSITION: \"261\" is not a number from 0 to 260");
    row("wrong-source=256", "wrong-source=STATION: \"256\" is not a number from 0 to 255");
    row("item-refused=ff", "item-refused=CODE: \"ff\" is not a hexadecimal number from 0 to fe");
    row("noise=99999999999", "noise=BYTES: \"99999999999\" is not a number from 1 to 200");
    for (const char *number : {"", "0", "-1", "x", "1x", "1@2", "1000000001", "99999999999", "1%2"})
        row(qPrintable(QString("silent@") + number),
            QString("@N: \"") + number + "\" is not the number of a request, from 1 on");
    for (const char *number : {"", "0", "-1", "x", "1x", "100.1", "nan", "1e1", "1@2"})
        row(qPrintable(QString("silent%") + number),
            QString("%P: \"") + number + "\" is not a percentage above 0, up to 100");
}

void TestSimulatorFault::badTextIsRefused()
{
    QFETCH(QString, error);
    QCOMPARE(complaint(QTest::currentDataTag()), error);
}

void TestSimulatorFault::chanceIsKnown_data()
{
    QTest::addColumn<bool>("random");
    for (const char *text : {"silent%50", "corrupt", "corrupt=1%50", "noise", "noise-ack", "noise-inside@1"})
        QTest::newRow(text) << true;
    for (const char *text : {"silent", "silent@1", "silent%100", "corrupt=1", "late", "wrong-source"})
        QTest::newRow(text) << false;
}

void TestSimulatorFault::chanceIsKnown()
{
    QFETCH(bool, random);
    QCOMPARE(sim::isRandom(sim::parseFault(QTest::currentDataTag())), random);
}

TEST_CLASS(TestSimulatorFault)
#include "test_fault.moc"
