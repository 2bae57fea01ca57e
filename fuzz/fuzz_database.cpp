// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Rows of the project database with any texts and numbers, looked up by any port, address and link: what is
// found stands in the rows.
//
//    input := link(1) { node } 00 hmiPort(1) isUsual(1) [port(2)] text foreign(1)
//    node  := link(1) hmiPort(1) kind(1) isDefault(1) station
//
// A link of 0 ends the nodes. Texts and stations are a byte that counts the following.

#include "fuzzing.h"

#include "tools/project_database.h"

#include <QCoreApplication>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QStringList>
#include <QVariant>

using fuzz::require;

namespace {

const char kConnection[] = "fuzz";

QSqlQuery run(const char *statement, const QVariantList &values = QVariantList())
{
    QSqlQuery query(QSqlDatabase::database(kConnection));
    query.prepare(QLatin1String(statement));
    for (const QVariant &value : values)
        query.addBindValue(value);
    require(query.exec(), "a statement of the fuzzer runs");
    return query;
}

// A number, a text of any characters, or nothing.
QVariant stationFrom(int kind, const QByteArray &bytes)
{
    switch (kind) {
    case 0:
        return bytes.isEmpty() ? 0 : fuzz::at(bytes, 0);
    case 1:
        return QString::fromUtf8(bytes);
    case 2:
        return QVariant();
    default:
        return qlonglong(qHash(bytes)) << 8;
    }
}

// Returns how many rows of a link are defaults.
int fill(fuzz::Input &input, int link)
{
    int defaults = 0;
    run("DELETE FROM LINK");
    run("DELETE FROM NODE");
    for (int row = 0; row < 16; ++row) {
        const int number = input.byte();
        if (number == 0)
            break;
        run("INSERT INTO LINK VALUES (?, ?)", {number, input.byte() + 999});
        const int kind = input.within(0, 3);
        const bool isDefault = input.flag();
        run("INSERT INTO NODE VALUES (?, ?, '10.0.0.1', 102, ?)",
            {number, stationFrom(kind, input.counted()), int(isDefault)});
        defaults += number == link && isDefault ? 1 : 0;
    }
    return defaults;
}

void lookUp(fuzz::Input &input, int hmiPort, const QString &text, int port)
{
    int link = -99;
    unsigned char station = 0xee;
    const bool isFound = GetLinkIdAndDefaultStationId(kConnection, hmiPort, link, station);
    require(isFound || (link == -99 && station == 0xee), "what is not found leaves the numbers as they were");
    QSqlQuery rows =
        run("SELECT COUNT(*) FROM LINK, NODE WHERE LINK.HMIPORT = ? AND NODE.LINKID = LINK.LINKID "
            "AND NODE.ISDEFAULT = 1",
            {hmiPort});
    require(rows.next() && isFound == (rows.value(0).toInt() > 0), "a default node of the port is found");

    QList<LinkIdStationId> nodes;
    const bool hasNodes =
        GetLinkIdAndDefaultStationId(kConnection, hmiPort, text, static_cast<unsigned short>(port), nodes);
    require(hasNodes == !nodes.isEmpty(), "nodes are found or there are none");
    require(nodes.isEmpty() || (isFound && text == "10.0.0.1"), "a node has the address that was asked for");
    if (input.flag())
        require(text == kConnection || !GetLinkIdAndDefaultStationId(text, hmiPort, link, station),
                "no database has no node");
}

void readPort(const QString &text)
{
    const bool isEthernet = text.startsWith(QLatin1String("ETHERNET"), Qt::CaseInsensitive);
    int digits = 0;
    while (digits < text.size() && text.at(int(text.size()) - 1 - digits) >= QLatin1Char('0') &&
           text.at(int(text.size()) - 1 - digits) <= QLatin1Char('9'))
        ++digits;
    if (!isEthernet && (digits == 0 || digits == text.size()))
        return; // stops the process, as an assertion does
    const int port = DevStrToHmiPort(text);
    require(isEthernet ? port == 2000 : port >= 999, "serial ports count from 1000 on");
    const int number = text.right(digits).toInt();
    require(isEthernet || number > 2147483647 - 999 || port == number + 999,
            "the digits are the port's number");
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *count, char ***arguments)
{
    static QCoreApplication application(*count, *arguments);
    fuzz::silenceMessages();
    QSqlDatabase database = QSqlDatabase::addDatabase("QSQLITE", kConnection);
    database.setDatabaseName(":memory:");
    require(database.open(), "a database can be opened");
    run("PRAGMA synchronous = OFF");
    run("CREATE TABLE LINK (LINKID INTEGER, HMIPORT INTEGER)");
    run("CREATE TABLE NODE (LINKID INTEGER, STATIONID, IP TEXT, PORT INTEGER, ISDEFAULT INTEGER)");
    require(GetDatabaseName().endsWith("database") && GetCompilePath().exists(), "the database has a place");
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    fuzz::Input input(data, size);
    const int link = input.byte();
    const int defaults = fill(input, link);
    const int hmiPort = input.byte() + 999;
    const int port = input.flag() ? 102 : input.word();
    const QString text = QString::fromUtf8(input.counted());
    lookUp(input, hmiPort, text, port);
    QList<LinkIdStationId> nodes;
    const bool isFound = GetLinkIdAndDefaultStationId(kConnection, link, nodes);
    require(nodes.size() == defaults && isFound == (defaults > 0), "all default nodes of a link are found");
    readPort(text);
    return 0;
}
