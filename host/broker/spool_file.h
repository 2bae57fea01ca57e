// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Messages in a file, in their order, until the broker has taken them. The file is an SQLite database with a
// write-ahead log: what append() has written is there after any end of the program, a kill included. One
// program has it at a time.

#ifndef HOST_BROKER_SPOOL_FILE_H
#define HOST_BROKER_SPOOL_FILE_H

#include "host/broker/message.h"

#include <QString>

#include <map>
#include <memory>
#include <stdexcept>
#include <vector>

namespace host {

// The file does not take or give messages.
class SpoolFault : public std::runtime_error
{
public:
    SpoolFault(const QString &reason, bool isDamage_)
        : std::runtime_error(reason.toStdString()), isDamage(isDamage_)
    {
    }

    QString text() const { return QString::fromUtf8(what()); }

    const bool isDamage; // the file is no spool, or not a whole one
};

// A message and when it was made, in milliseconds since the beginning of 1970.
struct WaitingMessage
{
    Message message;
    qint64 time;
};

class SpoolFile
{
public:
    // Opens a file, or makes it. Fails with a Failure when another program has it or it cannot be opened, and
    // with a SpoolFault when it is damaged.
    explicit SpoolFile(const QString &name);
    ~SpoolFile();

    SpoolFile(const SpoolFile &) = delete;
    SpoolFile &operator=(const SpoolFile &) = delete;

    // Appends messages, all of them or none. Their numbers are greater than those before.
    void append(const std::map<qint64, WaitingMessage> &added);

    // The messages behind one of a number, so many at most.
    std::vector<QueuedMessage> read(qint64 after, int count);

    void remove(const std::vector<qint64> &ids);

    // Remove the oldest messages, or those of them that are older than a time, so many at most, and return
    // how many that were.
    int removeOldest(int most);
    int removeBefore(qint64 time, int most);

    qint64 count() const { return messages; }
    qint64 size() const { return bytes; }  // of all messages, with what the file needs for them
    qint64 lastId() const { return last; } // the greatest number; 0 when there is none

private:
    class Database;

    int removeWhere(const QString &condition);

    std::unique_ptr<Database> database;
    qint64 messages = 0;
    qint64 bytes = 0;
    qint64 last = 0;
};

// What a message takes, in the file or in memory, besides its topic and payload; in bytes.
constexpr int kMessageOverhead = 32;

qint64 sizeOf(const Message &message);

// Moves a damaged file out of the way, with its log. Returns its new name.
QString setAside(const QString &name);

} // namespace host

#endif
