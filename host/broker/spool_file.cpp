// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/broker/spool_file.h"

#include "host/base/failure.h"
#include "host/base/filled.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

#include <utility>

namespace host {

namespace {

const QString kConnection = "s7ppi-spool";
const char kSpoolHint[] = "name another file with --spool, or keep the messages in memory with --no-spool";

// The version of the tables, as SQLite's user_version has it.
constexpr int kVersion = 1;

// SQLite's result codes, without what extends them.
enum Result { kBusy = 5, kCorrupt = 11, kNoDatabase = 26, kResultMask = 0xff };

int resultOf(const QSqlError &error)
{
    return error.nativeErrorCode().toInt() & kResultMask;
}

SpoolFault faultOf(const QSqlError &error)
{
    const int result = resultOf(error);
    return {error.databaseText().isEmpty() ? error.text() : error.databaseText(),
            result == kCorrupt || result == kNoDatabase};
}

} // namespace

// The open file. Qt has a list of connections, in which this one is while it lives.
class SpoolFile::Database
{
public:
    explicit Database(const QString &name) : database(QSqlDatabase::addDatabase("QSQLITE", kConnection))
    {
        database.setDatabaseName(name);
        database.setConnectOptions("QSQLITE_BUSY_TIMEOUT=0");
    }
    ~Database()
    {
        database.close();
        database = QSqlDatabase();
        QSqlDatabase::removeDatabase(kConnection);
    }

    Database(const Database &) = delete;
    Database &operator=(const Database &) = delete;

    // Opens the file for this program alone.
    void open(const QString &name)
    {
        if (!database.isValid())
            throw Failure(
                ExitCode::Usage, "Qt's driver for SQLite is not installed",
                "install the package libqt5sql5-sqlite, or keep the messages in memory with --no-spool");
        if (!database.open())
            throw Failure(
                ExitCode::Usage,
                filled("the spool %1 cannot be opened: %2", name, database.lastError().databaseText()),
                kSpoolHint);
        try {
            run("PRAGMA locking_mode=EXCLUSIVE");
            run("PRAGMA journal_mode=WAL");
            run("PRAGMA synchronous=NORMAL");
            run("BEGIN IMMEDIATE");
            run("COMMIT");
        } catch (const SpoolFault &fault) {
            if (isBusy)
                throw Failure(
                    ExitCode::Usage, filled("another program uses the spool %1", name),
                    "is this line published already? give each its own topic, or name another file with "
                    "--spool");
            throw fault.isDamage
                ? fault
                : throw Failure(ExitCode::Usage,
                                filled("the spool %1 cannot be used: %2", name, fault.text()), kSpoolHint);
        }
    }

    QSqlQuery run(const QString &statement)
    {
        QSqlQuery query(database);
        query.setForwardOnly(true);
        if (!query.exec(statement))
            fail(query.lastError());
        return query;
    }

    QSqlQuery prepared(const QString &statement)
    {
        QSqlQuery query(database);
        query.setForwardOnly(true);
        if (!query.prepare(statement))
            fail(query.lastError());
        return query;
    }

    void exec(QSqlQuery &query)
    {
        if (!query.exec())
            fail(query.lastError());
    }

    qint64 number(const QString &statement)
    {
        QSqlQuery query = run(statement);
        return query.next() ? query.value(0).toLongLong() : 0;
    }

    // Runs statements, all of them or none.
    template <typename Statements> void inTransaction(const Statements &statements)
    {
        run("BEGIN IMMEDIATE");
        try {
            statements();
            run("COMMIT");
        } catch (const SpoolFault &) {
            QSqlQuery(database).exec("ROLLBACK");
            throw;
        }
    }

private:
    [[noreturn]] void fail(const QSqlError &error)
    {
        isBusy = resultOf(error) == kBusy;
        throw faultOf(error);
    }

    QSqlDatabase database;
    bool isBusy = false;
};

SpoolFile::SpoolFile(const QString &name) : database(std::make_unique<Database>(name))
{
    database->open(name);
    QSqlQuery check = database->run("PRAGMA quick_check(1)");
    if (!check.next() || check.value(0).toString() != "ok")
        throw SpoolFault(check.value(0).toString(), true);
    check.finish();
    const qint64 version = database->number("PRAGMA user_version");
    if (version != 0 && version != kVersion)
        throw SpoolFault(filled("it is of version %1", version), true);
    database->inTransaction([this] {
        database->run("CREATE TABLE IF NOT EXISTS messages (id INTEGER PRIMARY KEY, time INTEGER NOT NULL, "
                      "topic BLOB NOT NULL, payload BLOB NOT NULL)");
        database->run(filled("PRAGMA user_version=%1", kVersion));
    });
    messages = database->number("SELECT count(*) FROM messages");
    bytes = database->number(
        filled("SELECT total(length(topic) + length(payload) + %1) FROM messages", kMessageOverhead));
    last = database->number("SELECT max(id) FROM messages");
}

SpoolFile::~SpoolFile() = default;

void SpoolFile::append(const std::map<qint64, WaitingMessage> &added)
{
    database->inTransaction([&] {
        QSqlQuery query =
            database->prepared("INSERT INTO messages (id, time, topic, payload) VALUES (?, ?, ?, ?)");
        for (const auto &[id, waiting] : added) {
            query.bindValue(0, id);
            query.bindValue(1, waiting.time);
            query.bindValue(2, waiting.message.topic);
            query.bindValue(3, waiting.message.payload);
            database->exec(query);
        }
    });
    for (const auto &[id, waiting] : added)
        bytes += sizeOf(waiting.message);
    messages += qint64(added.size());
    if (!added.empty())
        last = added.rbegin()->first;
}

std::vector<QueuedMessage> SpoolFile::read(qint64 after, int count)
{
    QSqlQuery query =
        database->prepared("SELECT id, topic, payload FROM messages WHERE id > ? ORDER BY id LIMIT ?");
    query.bindValue(0, after);
    query.bindValue(1, count);
    database->exec(query);
    std::vector<QueuedMessage> found;
    while (query.next())
        found.push_back(
            {query.value(0).toLongLong(), {query.value(1).toByteArray(), query.value(2).toByteArray()}});
    if (query.lastError().isValid())
        throw faultOf(query.lastError());
    return found;
}

// The broker takes messages in their order, so that their numbers make few ranges.
void SpoolFile::remove(const std::vector<qint64> &ids)
{
    qint64 removed = 0;
    qint64 freed = 0;
    database->inTransaction([&] {
        QSqlQuery query = database->prepared(filled(
            "DELETE FROM messages WHERE id BETWEEN ? AND ? RETURNING length(topic) + length(payload) + %1",
            kMessageOverhead));
        for (auto first = ids.begin(); first != ids.end();) {
            auto end = first + 1;
            while (end != ids.end() && *end == *(end - 1) + 1)
                ++end;
            query.bindValue(0, *first);
            query.bindValue(1, *(end - 1));
            database->exec(query);
            for (; query.next(); ++removed)
                freed += query.value(0).toLongLong();
            query.finish();
            first = end;
        }
    });
    messages -= removed;
    bytes -= freed;
}

int SpoolFile::removeWhere(const QString &condition)
{
    int removed = 0;
    qint64 freed = 0;
    database->inTransaction([&] {
        QSqlQuery query = database->run(
            filled("DELETE FROM messages WHERE %1 RETURNING length(topic) + length(payload) + %2", condition,
                   kMessageOverhead));
        for (; query.next(); ++removed)
            freed += query.value(0).toLongLong();
    });
    messages -= removed;
    bytes -= freed;
    return removed;
}

int SpoolFile::removeOldest(int most)
{
    return removeWhere(filled("id IN (SELECT id FROM messages ORDER BY id LIMIT %1)", most));
}

// Looks at the oldest only, however many there are.
int SpoolFile::removeBefore(qint64 time, int most)
{
    return removeWhere(
        filled("id IN (SELECT id FROM messages ORDER BY id LIMIT %1) AND time < %2", most, time));
}

qint64 sizeOf(const Message &message)
{
    return message.topic.size() + message.payload.size() + kMessageOverhead;
}

QString setAside(const QString &name)
{
    const QFileInfo file(name);
    int number = 1;
    QString aside;
    do
        aside = filled("%1.damaged-%2", name, number++);
    while (QFileInfo::exists(aside));
    if (!QFile::rename(name, aside))
        throw Failure(ExitCode::Usage, filled("the damaged spool %1 cannot be renamed", name), kSpoolHint);
    for (const char *log : {"-wal", "-shm"})
        if (QFileInfo::exists(name + log))
            QFile::rename(name + log, aside + log);
    return aside;
}

} // namespace host
