// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What becomes of the items of a command when some of them fail.

#include "host/commands/item_run.h"

#include "host/base/failure.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <map>
#include <vector>

using namespace host;

namespace {

const Schema kSchema = {"read", 1, "items", {"address", "error"}};

} // namespace

class TestItemRun : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void withoutFailureAllRunAndTheOutputIsWhole();
    void anItemThatFailsHasItsErrorAmongTheDataAndTheNextOneRuns();
    void aLostPortEndsTheRunAndTheOutputIsWhole();
    void aLostOutputEndsTheRunAndLeavesNone();

private:
    int run(const std::map<int, ExitCode> &failures);
    QString written() const;

    QTemporaryDir directory;
    QString file;
    QList<int> ran;
};

void TestItemRun::init()
{
    file = directory.filePath(QString(QTest::currentTestFunction()) + ".csv");
    ran.clear();
}

// Runs four items, of which some fail.
int TestItemRun::run(const std::map<int, ExitCode> &failures)
{
    Options options;
    options.output = file;
    Output output(options, kSchema);
    const std::vector<Tag> tags = {parseItem("VB0"), parseItem("VB1"), parseItem("VB2"), parseItem("VB3")};
    const auto originOf = [](const Tag & /*tag*/) { return Origin{"now", "/dev/ttyUSB0", 2}; };
    return runItems(tags, originOf, output, [&](int index) {
        ran << index;
        const auto failure = failures.find(index);
        if (failure != failures.end())
            throw Failure(failure->second, QString("failure %1").arg(int(failure->second)), "none");
    });
}

// The lines behind the names of the columns; nothing when there is no file.
QString TestItemRun::written() const
{
    QFile data(file);
    return data.open(QIODevice::ReadOnly) ? QString::fromUtf8(data.readAll()) : QString();
}

void TestItemRun::withoutFailureAllRunAndTheOutputIsWhole()
{
    QCOMPARE(run({}), 0);
    QCOMPARE(ran, QList<int>({0, 1, 2, 3}));
    QCOMPARE(written(), QString("address,error\n"));
}

void TestItemRun::anItemThatFailsHasItsErrorAmongTheDataAndTheNextOneRuns()
{
    QCOMPARE(run({{1, ExitCode::NoAnswer}, {3, ExitCode::Refused}}), 4);
    QCOMPARE(ran, QList<int>({0, 1, 2, 3}));
    QCOMPARE(written(), QString("address,error\nVB1,failure 4\nVB3,failure 1\n"));
}

void TestItemRun::aLostPortEndsTheRunAndTheOutputIsWhole()
{
    QCOMPARE(run({{1, ExitCode::PortLost}, {3, ExitCode::Refused}}), 6);
    QCOMPARE(ran, QList<int>({0, 1}));
    QCOMPARE(written(), QString("address,error\nVB1,failure 6\n"));
}

void TestItemRun::aLostOutputEndsTheRunAndLeavesNone()
{
    QCOMPARE(run({{0, ExitCode::Refused}, {1, ExitCode::OutputLost}}), 1);
    QCOMPARE(ran, QList<int>({0, 1}));
    QVERIFY(!QFile::exists(file));
}

QTEST_APPLESS_MAIN(TestItemRun)
#include "test_item_run.moc"
