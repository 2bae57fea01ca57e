// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The figures that a spool keeps in memory are those of its file, whatever was added and removed.

#include "host/broker/spool_file.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <map>
#include <memory>
#include <vector>

using namespace host;

class TestSpoolFile : public QObject
{
    Q_OBJECT

private slots:
    void countSizeAndLastNumberAreThoseOfTheFile();
    void theFileTellsItsVersion();

private:
    QString name() const { return directory.filePath("queue.spool"); }

    QTemporaryDir directory;
};

void TestSpoolFile::countSizeAndLastNumberAreThoseOfTheFile()
{
    std::map<qint64, WaitingMessage> added;
    for (int id = 1; id <= 9; ++id)
        added[id] = WaitingMessage{{"topic", QByteArray(10 * id, 'x')}, 1000 * id};
    const auto sizeOfThose = [&added](const std::vector<qint64> &ids) {
        qint64 size = 0;
        for (const qint64 id : ids)
            size += sizeOf(added.at(id).message);
        return size;
    };
    auto spool = std::make_unique<SpoolFile>(name());
    const auto holds = [&](const std::vector<qint64> &ids) {
        for (const bool isOpenedAnew : {false, true}) {
            if (isOpenedAnew) {
                spool.reset();
                spool = std::make_unique<SpoolFile>(name());
            }
            std::vector<qint64> found;
            for (const QueuedMessage &queued : spool->read(0, 99))
                found.push_back(queued.id);
            QCOMPARE(found, ids);
            QCOMPARE(spool->count(), qint64(ids.size()));
            QCOMPARE(spool->size(), sizeOfThose(ids));
            QCOMPARE(spool->lastId(), qint64(9));
        }
    };
    spool->append(added);
    holds({1, 2, 3, 4, 5, 6, 7, 8, 9});
    QCOMPARE(sizeOf(added.at(1).message), qint64(5 + 10 + kMessageOverhead));
    spool->remove({2, 3, 5});
    holds({1, 4, 6, 7, 8, 9});
    QCOMPARE(spool->removeOldest(2), 2);
    holds({6, 7, 8, 9});
    QCOMPARE(spool->removeBefore(8000, 1), 1);
    holds({7, 8, 9});
    QCOMPARE(spool->removeBefore(8000, 9), 1);
    holds({8, 9});
    spool->remove({});
    holds({8, 9});
    QCOMPARE(spool->removeBefore(8001, 9), 1);
    holds({9});
}

void TestSpoolFile::theFileTellsItsVersion()
{
    const QString name = directory.filePath("new.spool");
    SpoolFile(name).append({});
    QFile file(name);
    QVERIFY(file.open(QIODevice::ReadOnly));
    constexpr int kUserVersion = 60; // where SQLite has it, four bytes, the highest first
    QCOMPARE(file.readAll().mid(kUserVersion, 4), QByteArray("\0\0\0\1", 4));
}

QTEST_GUILESS_MAIN(TestSpoolFile)

#include "test_spool_file.moc"
