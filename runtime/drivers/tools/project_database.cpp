// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "project_database.h"

#include <QCoreApplication>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QVariant>

#include <climits>

// The first that exist of the library's load-time data. The order of linking alone does not see to that: an
// optimiser that sees the whole library turns it round.
#define CREATED_FIRST __attribute__((init_priority(1000)))

CREATED_FIRST const QString COMPILE_PATH(QLatin1String("compile"));
CREATED_FIRST const QString DATABASE_PATH(QLatin1String("database"));

namespace {

const int kEthernetPort = 2000;
const int kBelowFirstSerialPort = 999;

const char kDefaultNodeOfPort[] = "SELECT LINK.LINKID, NODE.STATIONID FROM LINK, NODE WHERE LINK.HMIPORT = ? "
                                  "AND NODE.LINKID = LINK.LINKID AND NODE.ISDEFAULT = 1;";
const char kDefaultNodesOfSocket[] =
    "SELECT LINK.LINKID, NODE.STATIONID FROM LINK, NODE WHERE LINK.HMIPORT = ? "
    "AND NODE.LINKID = LINK.LINKID AND NODE.IP = ? AND NODE.PORT = ? AND NODE.ISDEFAULT = 1;";
const char kDefaultNodesOfLink[] =
    "SELECT NODE.STATIONID FROM NODE WHERE NODE.LINKID = ? AND NODE.ISDEFAULT = 1";

// A statement and its values, run on the host's connection. It has no rows when anything goes wrong.
class Lookup
{
public:
    Lookup(const QString &connection, const char *statement, const QVariantList &values)
        : database(QSqlDatabase::database(connection, true)), query(database), hasRun(false)
    {
        if (!database.isOpen() || !query.prepare(QLatin1String(statement)))
            return;
        for (int i = 0; i < static_cast<int>(values.size()); ++i)
            query.addBindValue(values.at(i));
        hasRun = query.exec();
    }

    bool next() { return hasRun && query.next(); }
    int number(int column) const { return query.value(column).toInt(); }
    unsigned int unsignedNumber(int column) const { return query.value(column).toUInt(); }

private:
    QSqlDatabase database;
    QSqlQuery query;
    bool hasRun;
};

// The directory of that name, or parent when it has none.
QDir existingOrParent(const QDir &parent, const QString &name)
{
    QDir directory(parent);
    return directory.cd(name) ? directory : parent;
}

void append(QList<LinkIdStationId> &records, int linkId, unsigned int stationId)
{
    const LinkIdStationId record = {linkId, stationId};
    records.append(record);
}

bool isDigit(QChar character)
{
    return character >= QLatin1Char('0') && character <= QLatin1Char('9');
}

// A null text would be bound as no value, which equals nothing, not even an empty text.
QString notNull(const QString &text)
{
    return text.isNull() ? QLatin1String("") : text;
}

} // namespace

QDir GetCompilePath()
{
    return existingOrParent(QDir(QCoreApplication::applicationDirPath()), COMPILE_PATH);
}

QString GetDatabaseName()
{
    return existingOrParent(GetCompilePath(), DATABASE_PATH).absoluteFilePath(QLatin1String("database"));
}

int DevStrToHmiPort(const QString &dev_str)
{
    if (dev_str.startsWith(QLatin1String("ETHERNET"), Qt::CaseInsensitive))
        return kEthernetPort;
    int i = static_cast<int>(dev_str.size()) - 1;
    while (i >= 0 && isDigit(dev_str.at(i)))
        --i;
    // Not Q_ASSERT, which release builds leave out.
    if (!(i >= 0 && (i + 1) < dev_str.size()))
        qt_assert("i >= 0 && (i+1) < dev_str.size()", __FILE__, __LINE__);
    const int number = dev_str.mid(i + 1).toInt();
    return (number <= INT_MAX - kBelowFirstSerialPort ? number : 0) + kBelowFirstSerialPort;
}

bool GetLinkIdAndDefaultStationId(const QString &connection, int hmiPort, int &linkId,
                                  unsigned char &stationId)
{
    Lookup row(connection, kDefaultNodeOfPort, QVariantList() << hmiPort);
    if (!row.next())
        return false;
    linkId = row.number(0);
    stationId = static_cast<unsigned char>(row.unsignedNumber(1));
    return true;
}

bool GetLinkIdAndDefaultStationId(const QString &connection, int hmiPort, const QString &ip,
                                  unsigned short port, QList<LinkIdStationId> &result)
{
    const QVariantList values = QVariantList() << hmiPort << notNull(ip) << static_cast<int>(port);
    for (Lookup row(connection, kDefaultNodesOfSocket, values); row.next();)
        append(result, row.number(0), row.unsignedNumber(1));
    return !result.isEmpty();
}

bool GetLinkIdAndDefaultStationId(const QString &connection, int linkId, QList<LinkIdStationId> &result)
{
    for (Lookup row(connection, kDefaultNodesOfLink, QVariantList() << linkId); row.next();)
        append(result, linkId, row.unsignedNumber(0));
    return !result.isEmpty();
}
