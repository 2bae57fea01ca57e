// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Where the options send a command's data, and where some of them wait.

#include "host/output/sink.h"
#include "host/output/spool.h"

#include "test_class.h"
#include "tests/host/support/failure_of.h"

#include <QByteArrayList>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

using namespace host;

class TestSink : public QObject
{
    Q_OBJECT

private slots:
    void aFileAppearsWhenItIsWhole();
    void aDirectoryIsRefused();
    void aBatchIsPassedOnInOnePiece();
    void whatIsSpooledComesBackInOrder_data();
    void whatIsSpooledComesBackInOrder();
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

void TestSink::aBatchIsPassedOnInOnePiece()
{
    class Pieces : public OutputSink
    {
    public:
        explicit Pieces(QByteArrayList &taken_) : taken(taken_) {}
        void put(const QByteArray &bytes) override { taken << bytes; }
        void commit() override { taken << "commit"; }

    private:
        QByteArrayList &taken;
    };
    QByteArrayList taken;
    BatchSink batch(std::make_unique<Pieces>(taken));
    batch.put("a");
    batch.put("b");
    QVERIFY(taken.isEmpty());
    batch.flush();
    batch.put("c");
    batch.commit();
    QCOMPARE(taken, QByteArrayList({"ab", "c", "commit"}));
    batch.put(QByteArray(1 << 20, 'd')); // so much is not kept
    QCOMPARE(taken.last().size(), 1 << 20);
}

void TestSink::whatIsSpooledComesBackInOrder_data()
{
    QTest::addColumn<int>("count");
    QTest::newRow("nothing") << 0;
    QTest::newRow("in memory") << 10;
    QTest::newRow("some of it in a file") << 200000;
}

void TestSink::whatIsSpooledComesBackInOrder()
{
    QFETCH(int, count);
    Spool spool;
    QByteArray expected;
    for (int i = 0; i < count; ++i) {
        spool.put(QByteArray::number(i));
        expected += QByteArray::number(i);
    }
    spool.rewind();
    QByteArray read;
    for (QByteArray some = spool.next(); !some.isEmpty(); some = spool.next())
        read += some;
    QVERIFY(read == expected);
}

TEST_CLASS(TestSink)
#include "test_sink.moc"
