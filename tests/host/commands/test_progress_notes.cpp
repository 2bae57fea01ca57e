// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What a connection tells of its port stands above the progress of the work on it.

#include "host/commands/progress_notes.h"

#include "tests/host/support/pseudo_line.h"
#include "tests/host/support/taken_stderr.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

using namespace host;

class TestProgressNotes : public QObject
{
    Q_OBJECT

private slots:
    void aLostPortIsToldAboveTheProgress();
};

void TestProgressNotes::aLostPortIsToldAboveTheProgress()
{
    const QTemporaryDir directory;
    const QString name = directory.filePath("port");
    PseudoLine first;
    const PseudoLine second;
    QVERIFY(QFile::link(first.name(), name));
    Options options;
    options.port = name;
    options.plugin = PLUGIN_FILE;
    options.reconnect = true;
    Connection connection(options);
    Options asLines = options;
    asLines.verbose = true;
    const TakenStderr messages;
    {
        Progress progress(asLines, {"VB0..VB9", "bytes", 10, 0, 0});
        const auto notes = notesAbove(progress, connection);
        QVERIFY(QFile::remove(name));
        QVERIFY(QFile::link(second.name(), name));
        first.hangUp();
        connection.idle(2000);
        progress.finish();
    }
    const QStringList lines = messages.lines();
    QCOMPARE(lines.size(), 3);
    QCOMPARE(lines.at(0), "s7ppi: " + name + " is gone: waiting for it to come back");
    QCOMPARE(lines.at(1), "s7ppi: " + name + " is back");
    QVERIFY(lines.at(2).startsWith("s7ppi: VB0..VB9: 0 bytes in "));
}

QTEST_GUILESS_MAIN(TestProgressNotes)
#include "test_progress_notes.moc"
