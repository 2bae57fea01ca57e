// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A file of records: what is in it at any moment, how it goes on, and how it rotates.

#include "host/output/line_file.h"

#include "test_class.h"
#include "tests/host/support/failure_of.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>
#include <optional>

using namespace host;

namespace {

const QByteArray kHead = "time,value\n";
const QByteArray kRecord = "2026-01-31T12:00:00.000Z,1\n";

LineStyle style()
{
    return {kHead, QRegularExpression("^time,value$"), true};
}

Rotation rotation(qint64 size, std::optional<int> keep = std::nullopt)
{
    Rotation wanted;
    wanted.size = size;
    wanted.keep = keep;
    return wanted;
}

} // namespace

class TestLineFile : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void everyRecordIsInTheFileAtOnce();
    void aFileThatIsThereGoesOn();
    void aRecordThatWasCutIsTakenOut_data();
    void aRecordThatWasCutIsTakenOut();
    void whatIsSomethingElseStaysAsItIs_data();
    void whatIsSomethingElseStaysAsItIs();
    void aNewFileWithoutRecordsGoes();
    void onlyOneWritesAFile();
    void aFullFileMovesToTheNextNumber();
    void aNameWithoutSuffixGetsTheNumberBehindIt();
    void aNewDayBeginsANewFile();
    void theOldestGo();
    void filesOfOthersStay();
    void aLinkStaysWhereItIs();
    void sizesAndDays_data();
    void sizesAndDays();
    void whatIsNoSizeIsRefused_data();
    void whatIsNoSizeIsRefused();

private:
    QString path(const QString &file) const { return directory->filePath(file); }
    QByteArray content(const QString &file) const;
    void write(const QString &file, const QByteArray &text) const;
    QStringList files() const { return QDir(directory->path()).entryList(QDir::Files, QDir::Name); }
    void record(int count, const Rotation &wanted = {}, const QString &file = "log.csv") const;

    std::unique_ptr<QTemporaryDir> directory;
};

void TestLineFile::init()
{
    directory = std::make_unique<QTemporaryDir>();
}

QByteArray TestLineFile::content(const QString &file) const
{
    QFile opened(path(file));
    return opened.open(QIODevice::ReadOnly) ? opened.readAll() : QByteArray("no such file");
}

void TestLineFile::write(const QString &file, const QByteArray &text) const
{
    QFile opened(path(file));
    QVERIFY(opened.open(QIODevice::WriteOnly));
    QCOMPARE(opened.write(text), qint64(text.size()));
}

void TestLineFile::record(int count, const Rotation &wanted, const QString &file) const
{
    LineFile lines(path(file), style(), wanted);
    for (int i = 0; i < count; ++i)
        lines.put(kRecord);
    lines.commit();
}

void TestLineFile::everyRecordIsInTheFileAtOnce()
{
    LineFile lines(path("log.csv"), style(), {});
    lines.putHead(kHead);
    QCOMPARE(content("log.csv"), kHead);
    lines.put(kRecord);
    QCOMPARE(content("log.csv"), kHead + kRecord);
    lines.put(kRecord);
    QCOMPARE(content("log.csv"), kHead + kRecord + kRecord);
}

void TestLineFile::aFileThatIsThereGoesOn()
{
    record(1);
    record(2);
    QCOMPARE(content("log.csv"), kHead + kRecord + kRecord + kRecord);
}

void TestLineFile::aRecordThatWasCutIsTakenOut_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("kept");
    const auto row = [](const char *name, const QByteArray &before, const QByteArray &kept) {
        QTest::newRow(name) << before << kept;
    };
    row("empty", "", kHead);
    row("in the head", kHead.left(3), kHead);
    row("the head without its end", kHead.chopped(1), kHead);
    row("nothing", kHead, kHead);
    row("in a record", kHead + kRecord + kRecord.left(9), kHead + kRecord);
    row("a record without its end", kHead + kRecord + kRecord.chopped(1), kHead + kRecord);
    row("in a text, behind its line end", kHead + kRecord + "2026-01-31T12:00:01.000Z,\"two\n",
        kHead + kRecord);
    row("behind a text of two lines", kHead + "2026-01-31T12:00:01.000Z,\"two\nlines\"\n2026",
        kHead + "2026-01-31T12:00:01.000Z,\"two\nlines\"\n");
    row("zeros of a power cut", kHead + kRecord + QByteArray(512, '\0'), kHead + kRecord);
}

void TestLineFile::aRecordThatWasCutIsTakenOut()
{
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, kept);
    write("log.csv", before);
    record(1);
    QCOMPARE(content("log.csv"), kept + kRecord);
}

void TestLineFile::whatIsSomethingElseStaysAsItIs_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::newRow("a text") << QByteArray("Dear all,\nthe press");
    QTest::newRow("a text without a line end") << QByteArray("timid");
    QTest::newRow("other columns") << QByteArray("time,value,unit\n") + kRecord;
    QTest::newRow("another end of lines") << QByteArray("time,value\r\n");
    QTest::newRow("an open quote in the middle")
        << kHead + "2026-01-31T12:00:00.000Z,\"1\n" + kRecord + kRecord;
}

void TestLineFile::whatIsSomethingElseStaysAsItIs()
{
    QFETCH(QByteArray, before);
    write("log.csv", before);
    const QString failure = failureOf([&] { record(1); });
    QVERIFY2(failure.startsWith("2: " + path("log.csv")), qPrintable(failure));
    QVERIFY(failure.endsWith(" / name another file with -o, or move this one away"));
    QCOMPARE(content("log.csv"), before);
}

void TestLineFile::aNewFileWithoutRecordsGoes()
{
    {
        const LineFile lines(path("log.csv"), style(), {});
        QVERIFY(QFile::exists(path("log.csv")));
    }
    QVERIFY(!QFile::exists(path("log.csv")));
    record(0); // it was finished
    QCOMPARE(content("log.csv"), kHead);
    {
        const LineFile lines(path("log.csv"), style(), {});
    }
    QCOMPARE(content("log.csv"), kHead);
}

void TestLineFile::onlyOneWritesAFile()
{
    const LineFile lines(path("log.csv"), style(), {});
    QCOMPARE(failureOf([&] { record(1); }), "74: " + path("log.csv") +
                                                " is being written by another s7ppi / wait for its end, or "
                                                "name another file with -o");
}

void TestLineFile::aFullFileMovesToTheNextNumber()
{
    write("log.7.csv", "what somebody else wrote");
    record(5, rotation(kHead.size() + 2 * kRecord.size()));
    QCOMPARE(files(), QStringList({"log.7.csv", "log.8.csv", "log.9.csv", "log.csv"}));
    QCOMPARE(content("log.8.csv"), kHead + kRecord + kRecord);
    QCOMPARE(content("log.9.csv"), kHead + kRecord + kRecord);
    QCOMPARE(content("log.csv"), kHead + kRecord);
    record(1, rotation(1024));
    QCOMPARE(content("log.csv"), kHead + kRecord + kRecord);
}

void TestLineFile::aNameWithoutSuffixGetsTheNumberBehindIt()
{
    record(2, rotation(1), "log");
    QCOMPARE(files(), QStringList({"log", "log.1"}));
}

void TestLineFile::aNewDayBeginsANewFile()
{
    Rotation daily;
    daily.daily = true;
    record(1, daily);
    record(1, daily);
    QCOMPARE(files(), QStringList({"log.csv"}));
    QFile file(path("log.csv"));
    QVERIFY(file.open(QIODevice::ReadWrite));
    QVERIFY(file.setFileTime(QDateTime::currentDateTime().addDays(-1), QFileDevice::FileModificationTime));
    file.close();
    record(1, daily);
    QCOMPARE(content("log.1.csv"), kHead + kRecord + kRecord);
    QCOMPARE(content("log.csv"), kHead + kRecord);
}

void TestLineFile::theOldestGo()
{
    record(13, rotation(1, 3));
    QCOMPARE(files(), QStringList({"log.10.csv", "log.11.csv", "log.12.csv", "log.csv"}));
}

void TestLineFile::filesOfOthersStay()
{
    write("log.1.csv", "what somebody else wrote");
    write("log.02.csv", kHead);
    write("log.x.csv", kHead);
    record(4, rotation(1, 1));
    QCOMPARE(files(), QStringList({"log.02.csv", "log.1.csv", "log.4.csv", "log.csv", "log.x.csv"}));
}

void TestLineFile::aLinkStaysWhereItIs()
{
    QVERIFY(QDir(directory->path()).mkdir("disk"));
    record(1, {}, "disk/log.csv");
    QVERIFY(QFile::link(path("disk/log.csv"), path("link.csv")));
    record(1, rotation(1), "link.csv");
    QCOMPARE(content("disk/log.1.csv"), kHead + kRecord);
    QCOMPARE(content("link.csv"), kHead + kRecord);
    QCOMPARE(files(), QStringList({"link.csv"}));
}

void TestLineFile::sizesAndDays_data()
{
    QTest::addColumn<qint64>("size");
    QTest::newRow("day") << qint64(0);
    QTest::newRow("1024") << qint64(1024);
    QTest::newRow("500k") << qint64(500 * 1024);
    QTest::newRow("10M") << qint64(10 << 20);
    QTest::newRow("4G") << qint64(4) * (1 << 30);
}

void TestLineFile::sizesAndDays()
{
    QFETCH(qint64, size);
    const Rotation parsed = parseRotation(QTest::currentDataTag());
    QCOMPARE(parsed.size.value_or(0), size);
    QCOMPARE(parsed.daily, size == 0);
}

void TestLineFile::whatIsNoSizeIsRefused_data()
{
    QTest::addColumn<QString>("text");
    for (const char *text :
         {"", "0", "1", "1023", "-1k", "10 M", "10m", "10X", "M", "1.5M", "Day", "9999999999"})
        QTest::newRow(text) << QString(text);
}

void TestLineFile::whatIsNoSizeIsRefused()
{
    QFETCH(QString, text);
    QCOMPARE(failureOf([&] { parseRotation(text); }),
             "2: \"" + text +
                 "\" is no size of a file / give a size from 1k on, as 500k, 10M or 1G, or the word day");
}

TEST_CLASS(TestLineFile)
#include "test_line_file.moc"
