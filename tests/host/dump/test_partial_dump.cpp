// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What is kept of a dump that was stopped.

#include "host/dump/partial_dump.h"

#include "hex.h"
#include "host/items/memory_range.h"
#include "test_class.h"
#include "tests/host/support/failure_of.h"

#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>
#include <memory>

using namespace host;

namespace {

const char kHead[] = "s7ppi-dump 1\narea VB0..VB99\nstation 2\n# port /dev/ttyUSB0\n";
const char kFirstLine[] = "VB0  00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00\n";
const char kSecondLine[] = "VB16 11 11 11 11 11 11 11 11 11 11 11 11 11 11 11 11\n";

} // namespace

class TestPartialDump : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void wholeLinesAreInTheFileAtOnce();
    void anEarlierPartGoesOnBehindItsLastWholeLine();
    void aPartGoesOnWithAnotherLastAddress_data();
    void aPartGoesOnWithAnotherLastAddress();
    void aPartThatNamesNoPortGoesOn();
    void anEmptyFileIsBegunAnew();
    void restartForgetsTheEarlierPart();
    void aPartOfAnotherDumpIsRefused_data();
    void aPartOfAnotherDumpIsRefused();
    void removingLeavesNothing();
    void onlyAPartWithoutMemoryIsRemovedAsEmpty();
    void aSecondWriterIsRefused();
    void aFileThatCannotBeWrittenIsTold();

private:
    PartialDump open(bool restart = false, const char *range = "VB0..VB99")
    {
        return {name, {parseRange(range), 2, "/dev/ttyUSB0"}, restart};
    }
    QByteArray content() const;
    void put(const QByteArray &text) const;

    std::unique_ptr<QTemporaryDir> directory;
    QString name;
};

void TestPartialDump::init()
{
    directory = std::make_unique<QTemporaryDir>();
    name = directory->filePath("press.dump.part");
}

QByteArray TestPartialDump::content() const
{
    QFile file(name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no file");
}

void TestPartialDump::put(const QByteArray &text) const
{
    QFile file(name);
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(text) == text.size());
}

void TestPartialDump::wholeLinesAreInTheFileAtOnce()
{
    PartialDump part = open();
    QCOMPARE(content(), QByteArray(kHead));
    part.append(QByteArray(15, '\x00'));
    QCOMPARE(content(), QByteArray(kHead));
    QCOMPARE(part.savedSize(), 0);
    part.append(QByteArray(1, '\x00') + QByteArray(20, '\x11'));
    QCOMPARE(content(), QByteArray(kHead) + kFirstLine + kSecondLine);
    QCOMPARE(part.savedSize(), 32);
    QCOMPARE(int(part.dump().data.size()), 36);
}

void TestPartialDump::anEarlierPartGoesOnBehindItsLastWholeLine()
{
    put(QByteArray(kHead) + kFirstLine + "VB16 11 1");
    PartialDump part = open();
    QCOMPARE(part.savedSize(), 16);
    QCOMPARE(hex(part.dump().data), QString(32, '0'));
    QVERIFY(part.earlierTime().isValid());
    part.append(QByteArray(16, '\x11'));
    QCOMPARE(content(), QByteArray(kHead) + kFirstLine + kSecondLine);
}

void TestPartialDump::aPartGoesOnWithAnotherLastAddress_data()
{
    QTest::addColumn<QByteArray>("range");
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("a longer range") << QByteArray("VB0..VB255")
                                    << QByteArray("VB0   00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00\n"
                                                  "VB16  11 11 11 11 11 11 11 11 11 11 11 11 11 11 11 11\n");
    QTest::newRow("a shorter one") << QByteArray("VB0..VB31")
                                   << QByteArray("VB0  00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00\n"
                                                 "VB16 11 11 11 11 11 11 11 11 11 11 11 11 11 11 11 11\n");
    QTest::newRow("shorter than what was read")
        << QByteArray("VB0..VB17")
        << QByteArray("VB0  00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00\nVB16 11 11\n");
}

void TestPartialDump::aPartGoesOnWithAnotherLastAddress()
{
    QFETCH(QByteArray, range);
    QFETCH(QByteArray, text);
    put(QByteArray(kHead) + kFirstLine + kSecondLine);
    const PartialDump part = open(false, range.constData());
    QCOMPARE(content(), QByteArray(kHead).replace("VB0..VB99", range) + text);
    QCOMPARE(rangeText(part.dump().range).toLatin1(), range);
    QCOMPARE(part.savedSize(), std::min(part.dump().range.size(), 32));
}

void TestPartialDump::aPartThatNamesNoPortGoesOn()
{
    put(QByteArray(kHead).replace("# port /dev/ttyUSB0\n", "") + kFirstLine);
    const PartialDump part = open();
    QCOMPARE(content(), QByteArray(kHead) + kFirstLine);
}

void TestPartialDump::anEmptyFileIsBegunAnew()
{
    put("");
    const PartialDump part = open();
    QCOMPARE(content(), QByteArray(kHead));
    QVERIFY(!part.earlierTime().isValid());
}

void TestPartialDump::restartForgetsTheEarlierPart()
{
    put(QByteArray(kHead) + kFirstLine);
    const PartialDump part = open(true);
    QCOMPARE(part.savedSize(), 0);
    QCOMPARE(content(), QByteArray(kHead));
}

void TestPartialDump::aPartOfAnotherDumpIsRefused_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("complaint");
    QTest::newRow("another range") << QByteArray("s7ppi-dump 1\narea VB1..VB9\nstation 2\n")
                                   << QString("is a part of another dump, VB1..VB9 of station 2");
    QTest::newRow("other elements") << QByteArray("s7ppi-dump 1\narea VW0..VW98\nstation 2\n")
                                    << QString("is a part of another dump, VW0..VW98 of station 2");
    QTest::newRow("another port")
        << QByteArray("s7ppi-dump 1\narea VB0..VB99\nstation 2\n# port /dev/ttyUSB1\n")
        << QString("is a part of another dump, VB0..VB99 of station 2 on /dev/ttyUSB1");
    QTest::newRow("another station") << QByteArray("s7ppi-dump 1\narea VB0..VB99\nstation 3\n")
                                     << QString("is a part of another dump, VB0..VB99 of station 3");
    QTest::newRow("no dump") << QByteArray("hello\n") << QString("this is no dump");
    QTest::newRow("nothing yet") << QByteArray("s7ppi-dump 1\nar")
                                 << QString("the file ends before its first line of data");
}

void TestPartialDump::aPartOfAnotherDumpIsRefused()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, complaint);
    put(text);
    const QString failure = failureOf([this] { open(); });
    QVERIFY2(failure.startsWith("2: " + name) && failure.contains(complaint), qPrintable(failure));
    QVERIFY(failure.endsWith("--restart begins anew and forgets it; or name another file with -o"));
    QCOMPARE(content(), text);
}

void TestPartialDump::removingLeavesNothing()
{
    PartialDump part = open();
    part.remove();
    QCOMPARE(content(), QByteArray("no file"));
}

void TestPartialDump::onlyAPartWithoutMemoryIsRemovedAsEmpty()
{
    PartialDump part = open();
    part.append(QByteArray(16, '\x00'));
    part.removeIfEmpty();
    QCOMPARE(content(), QByteArray(kHead) + kFirstLine);
    part.remove();
    PartialDump empty = open();
    empty.removeIfEmpty();
    QCOMPARE(content(), QByteArray("no file"));
}

void TestPartialDump::aSecondWriterIsRefused()
{
    put(QByteArray(kHead) + kFirstLine);
    {
        const PartialDump part = open();
        for (const bool restart : {false, true})
            QCOMPARE(failureOf([&] { open(restart); }),
                     "74: " + name + " is being written by another s7ppi" +
                         " / wait for its end, or name another file with -o");
    }
    QCOMPARE(content(), QByteArray(kHead) + kFirstLine);
    open();
}

void TestPartialDump::aFileThatCannotBeWrittenIsTold()
{
    name = directory->filePath("missing/press.dump.part");
    QVERIFY(failureOf([this] { open(); }).startsWith("74: " + name + " cannot be written: "));
}

TEST_CLASS(TestPartialDump)
#include "test_partial_dump.moc"
