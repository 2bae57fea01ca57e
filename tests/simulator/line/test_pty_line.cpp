// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The pseudo-terminal that a line is on.

#include "simulator/line/precise_timer.h"
#include "simulator/line/pty_line.h"

#include <QDir>
#include <QFileInfo>
#include <QtTest>

namespace {

int openFiles()
{
    return int(
        QDir("/proc/self/fd").entryList(QDir::NoDotAndDotDot | QDir::System | QDir::AllEntries).size());
}

} // namespace

class TestPtyLine : public QObject
{
    Q_OBJECT

private slots:
    void aLineThatIsGoneKeepsNoFileOpen();
};

void TestPtyLine::aLineThatIsGoneKeepsNoFileOpen()
{
    const int before = openFiles();
    QString name;
    {
        const sim::PtyLine line;
        const sim::PreciseTimer timer;
        name = line.name();
        QVERIFY(QFileInfo::exists(name));
        QCOMPARE(openFiles(), before + 4);
    }
    QCOMPARE(openFiles(), before);
}

QTEST_GUILESS_MAIN(TestPtyLine)
#include "test_pty_line.moc"
