// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Messages that wait for the broker, in memory and in a spool.

#include "host/broker/message_queue.h"

#include "tests/host/support/failure_of.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>
#include <chrono>
#include <memory>
#include <optional>
#include <vector>

using namespace host;

class TestMessageQueue : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void messagesComeInTheirOrder_data();
    void messagesComeInTheirOrder();
    void whatIsNotRemovedComesAgain_data();
    void whatIsNotRemovedComesAgain();
    void whatWasStoredIsThereTheNextTime();
    void whatTheBrokerTakesAtOnceIsNeverWritten();
    void beyondItsSizeTheOldestIsDropped_data();
    void beyondItsSizeTheOldestIsDropped();
    void beyondItsAgeTheOldestIsDropped_data();
    void beyondItsAgeTheOldestIsDropped();
    void aDamagedSpoolIsSetAside_data();
    void aDamagedSpoolIsSetAside();
    void damageThatNobodyMeetsCostsNothing();
    void aSpoolThatIsDamagedMeanwhileIsSetAside();
    void aSpoolThatCannotBeOpenedIsAFailure();

private:
    void open(qint64 size = 1 << 20);
    void put(int from, int to, bool stores = true);
    QList<int> next(int count);
    void damage() const;
    QString name() const { return directory->filePath("spool"); }

    std::unique_ptr<QTemporaryDir> directory;
    std::unique_ptr<MessageQueue> queue;
    bool hasSpool = true;
    std::vector<qint64> ids; // of what next() returned last
    QStringList told;
    MessageQueue::Time now{std::chrono::hours(500000)};
};

namespace {

void addKinds()
{
    QTest::addColumn<bool>("spool");
    QTest::newRow("in memory") << false;
    QTest::newRow("in a spool") << true;
}

// As long as 100 bytes with what is needed for a message.
Message message(int number)
{
    return {"t", QByteArray::number(number).leftJustified(99 - kMessageOverhead)};
}

} // namespace

void TestMessageQueue::init()
{
    queue.reset();
    directory = std::make_unique<QTemporaryDir>();
    hasSpool = true;
    told.clear();
}

void TestMessageQueue::open(qint64 size)
{
    queue.reset();
    const QueueLimits limits = {size, std::chrono::hours(1)};
    queue = std::make_unique<MessageQueue>(limits, hasSpool ? std::optional(name()) : std::nullopt,
                                           [this](const QString &text) { told << text; });
}

void TestMessageQueue::put(int from, int to, bool stores)
{
    for (int number = from; number < to; ++number)
        queue->put({message(number)}, now);
    if (stores)
        queue->store(now);
}

QList<int> TestMessageQueue::next(int count)
{
    QList<int> numbers;
    ids.clear();
    for (const QueuedMessage &queued : queue->next(count)) {
        numbers << queued.message.payload.trimmed().toInt();
        ids.push_back(queued.id);
    }
    return numbers;
}

// Overwrites the file and its log behind the first page.
void TestMessageQueue::damage() const
{
    for (const char *ending : {"", "-wal"}) {
        QFile file(name() + ending);
        QVERIFY(file.open(QIODevice::ReadWrite) && file.seek(4096));
        file.write(QByteArray(int(std::max<qint64>(file.size() - 4096, 0)), char(0xee)));
    }
}

void TestMessageQueue::messagesComeInTheirOrder_data()
{
    addKinds();
}

void TestMessageQueue::messagesComeInTheirOrder()
{
    QFETCH(bool, spool);
    hasSpool = spool;
    open();
    put(1, 4);
    put(4, 6, false);
    QCOMPARE(next(2), QList<int>({1, 2}));
    QCOMPARE(next(2), QList<int>({3, 4}));
    put(6, 7);
    QCOMPARE(next(9), QList<int>({5, 6}));
    QCOMPARE(next(9), QList<int>());
    QCOMPARE(queue->count(), qint64(6));
}

void TestMessageQueue::whatIsNotRemovedComesAgain_data()
{
    addKinds();
}

void TestMessageQueue::whatIsNotRemovedComesAgain()
{
    QFETCH(bool, spool);
    hasSpool = spool;
    open();
    put(1, 4);
    put(4, 7, false);
    QCOMPARE(next(9).size(), 6);
    queue->remove({ids[0], ids[1], ids[4]});
    queue->rewind();
    QCOMPARE(next(9), QList<int>({3, 4, 6}));
    queue->remove(ids);
    QCOMPARE(queue->count(), qint64(0));
    queue->rewind();
    QCOMPARE(next(9), QList<int>());
    QCOMPARE(queue->dropped(), qint64(0));
}

void TestMessageQueue::whatWasStoredIsThereTheNextTime()
{
    open();
    put(1, 4);
    next(1);
    queue->remove(ids);
    open();
    QCOMPARE(queue->count(), qint64(2));
    put(4, 5);
    QCOMPARE(next(9), QList<int>({2, 3, 4}));
}

void TestMessageQueue::whatTheBrokerTakesAtOnceIsNeverWritten()
{
    open();
    put(1, 4, false);
    next(9);
    queue->remove(ids);
    queue->store(now);
    put(4, 5, false);
    open();
    QCOMPARE(queue->count(), qint64(0));
}

void TestMessageQueue::beyondItsSizeTheOldestIsDropped_data()
{
    addKinds();
}

void TestMessageQueue::beyondItsSizeTheOldestIsDropped()
{
    QFETCH(bool, spool);
    hasSpool = spool;
    open(1000);
    for (int number = 1; number <= 25; ++number)
        put(number, number + 1);
    const QList<int> rest = next(99);
    QCOMPARE(rest.back(), 25);
    QVERIFY(rest.size() >= 8 && rest.size() <= 10);
    QCOMPARE(rest.back() - rest.front() + 1, int(rest.size()));
    QCOMPARE(queue->dropped(), qint64(25 - rest.size()));
}

void TestMessageQueue::beyondItsAgeTheOldestIsDropped_data()
{
    addKinds();
}

void TestMessageQueue::beyondItsAgeTheOldestIsDropped()
{
    QFETCH(bool, spool);
    hasSpool = spool;
    open();
    put(1, 3);
    now += std::chrono::minutes(59);
    put(3, 4);
    QCOMPARE(queue->count(), qint64(3));
    now += std::chrono::minutes(2);
    put(4, 5);
    QCOMPARE(next(9), QList<int>({3, 4}));
    QCOMPARE(queue->dropped(), qint64(2));
}

void TestMessageQueue::aDamagedSpoolIsSetAside_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("noise") << QByteArray("no database at all").repeated(1000);
    init(); // which QTest calls behind this only
    open();
    put(1, 500);
    queue.reset();
    QFile file(name());
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray whole = file.readAll();
    QTest::newRow("a part") << whole.left(int(whole.size()) / 2);
    QByteArray newer = whole;
    newer[63] = 99; // the lowest byte of SQLite's user_version
    QTest::newRow("of another version") << newer;
    QByteArray overwritten = whole;
    QTest::newRow("with a hole") << overwritten.replace(8000, 12000, QByteArray(12000, char(0xee)));
}

void TestMessageQueue::aDamagedSpoolIsSetAside()
{
    QFETCH(QByteArray, content);
    QFile file(name());
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(content);
    file.close();
    open();
    QCOMPARE(told.size(), 1);
    QVERIFY(told.front().startsWith("the spool " + name() + " is damaged: "));
    QVERIFY(told.front().endsWith("; it is now " + name() + ".damaged-1, and another one is begun"));
    QFile aside(name() + ".damaged-1");
    QVERIFY(aside.open(QIODevice::ReadOnly));
    QCOMPARE(aside.readAll(), content);
    QCOMPARE(queue->dropped(), qint64(0));
    put(1, 3);
    QCOMPARE(next(9), QList<int>({1, 2}));
}

// SQLite has all of it in memory, and needs no page that is damaged.
void TestMessageQueue::damageThatNobodyMeetsCostsNothing()
{
    open();
    put(1, 2000);
    damage();
    put(2000, 2010);
    QCOMPARE(next(9999).size(), 2009);
    QCOMPARE(queue->dropped(), qint64(0));
}

// More than SQLite keeps of a file in memory.
void TestMessageQueue::aSpoolThatIsDamagedMeanwhileIsSetAside()
{
    open(64 << 20);
    for (int number = 0; number < 10000; ++number) {
        queue->put({{"t", QByteArray(1000, 'x')}}, now);
        if (number % 100 == 99)
            queue->store(now);
    }
    damage();
    QCOMPARE(next(99999), QList<int>());
    QCOMPARE(told.size(), 1);
    QVERIFY(told.front().startsWith("the spool " + name() + " is damaged: "));
    QCOMPARE(queue->dropped(), qint64(10000));
    put(0, 10);
    QCOMPARE(next(99).size(), 10);
}

void TestMessageQueue::aSpoolThatCannotBeOpenedIsAFailure()
{
    directory->remove();
    const QString failure = failureOf([this] { open(); });
    QVERIFY2(failure.startsWith("2: the spool " + name() + " cannot be opened: "), qPrintable(failure));
    QVERIFY(failure.endsWith(
        " / name another file with --spool, or keep the messages in memory with --no-spool"));
}

QTEST_GUILESS_MAIN(TestMessageQueue)
#include "test_message_queue.moc"
