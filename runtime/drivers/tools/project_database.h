// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
/// @file
/// What a driver can learn from the compiled project, which stands next to the host's program: which link
/// serves a port of the panel, and which controller of a link is the default one.
///
/// The lookups run on a connection that the host has registered with QSqlDatabase under a name, and that
/// belongs to the calling thread; it is opened if need be. Where it is unknown or cannot be opened, its
/// database driver is missing, or a statement fails, no row is found. A text is never taken for a part of the
/// statement.

#ifndef TOOLS_PROJECT_DATABASE_H
#define TOOLS_PROJECT_DATABASE_H

#include <QDir>
#include <QList>
#include <QString>
#include <QtGlobal>

/// The compiled project's directory beside the program: "compile".
extern Q_DECL_EXPORT const QString COMPILE_PATH;

/// The database's directory in it: "database".
extern Q_DECL_EXPORT const QString DATABASE_PATH;

/// A controller of a link.
struct LinkIdStationId
{
    qint32 linkId;     ///< The link, as the table LINK has it.
    quint32 stationId; ///< The controller's station on it, all 32 bits of what the table NODE has.
};

/// The directory COMPILE_PATH beside the program, or the program's own when there is none. Needs the host's
/// QCoreApplication.
Q_DECL_EXPORT QDir GetCompilePath();

/// The absolute path of the file "database" in the directory DATABASE_PATH of GetCompilePath(), or in
/// GetCompilePath() itself when it has no such directory. The file need not exist.
Q_DECL_EXPORT QString GetDatabaseName();

/// The panel's port number for a device string: 2000 when it begins with ETHERNET, in upper or lower case;
/// otherwise its trailing decimal digits, which something else must precede, plus 999: COM2 is 1001. Digits
/// that give no int count as 0.
///
/// Stops the process with a message that names the assertion when there are only digits or none at the end,
/// in release builds, too.
Q_DECL_EXPORT int DevStrToHmiPort(const QString &dev_str);

/// Finds the link that serves a port of the panel, and its default controller. True when there is a row;
/// linkId is its link and stationId the low 8 bits of its station then. False leaves both as they are.
Q_DECL_EXPORT bool GetLinkIdAndDefaultStationId(const QString &connection, int hmiPort, int &linkId,
                                                unsigned char &stationId);

/// Finds the default controllers with this address, ip as the project has it and a socket port, on the links
/// that serve a port of the panel, and appends one record for each row. True when the result has records.
/// Kept: one that it had before counts, too (recordsFromBeforeCount).
Q_DECL_EXPORT bool GetLinkIdAndDefaultStationId(const QString &connection, int hmiPort, const QString &ip,
                                                unsigned short port, QList<LinkIdStationId> &result);

/// Finds the default controllers of a link and appends one record, holding the link given, for each row. True
/// when the result has records. Kept: one that it had before counts, too (recordsFromBeforeCount).
Q_DECL_EXPORT bool GetLinkIdAndDefaultStationId(const QString &connection, int linkId,
                                                QList<LinkIdStationId> &result);

#endif
