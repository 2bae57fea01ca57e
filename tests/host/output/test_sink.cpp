// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Where the options send a command's data.

#include "host/output/sink.h"

#include "test_class.h"
#include "tests/host/support/failure_of.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

using namespace host;

class TestSink : public QObject
{
    Q_OBJECT

private slots:
    void aFileAppearsWhenItIsWhole();
    void aDirectoryIsRefused();
};

void TestSink::aFileAppearsWhenItIsWhole()
{
    const QTemporaryDir directory;
    OutputOptions options;
    options.output = directory.filePath(QString::fromUtf8("größe.txt"));
    const auto sink = sinkFor(options);
    sink->put("VB0 1\n");
    QVERIFY(!QFile::exists(*options.output));
    sink->commit();
    QFile file(*options.output);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), QByteArray("VB0 1\n"));
}

void TestSink::aDirectoryIsRefused()
{
    const QTemporaryDir directory;
    OutputOptions options;
    options.output = directory.path();
    QCOMPARE(failureOf([&] { sinkFor(options); }),
             "2: " + directory.path() + " is no file / name a file, or send stdout there with >");
}

TEST_CLASS(TestSink)
#include "test_sink.moc"
