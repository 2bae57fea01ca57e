// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/broker/credentials.h"

#include "host/base/failure.h"
#include "host/base/files.h"
#include "host/base/filled.h"

#include <QFile>
#include <QStringList>

namespace host {

namespace {

constexpr char kUserVariable[] = "S7PPI_MQTT_USER";
constexpr char kPasswordVariable[] = "S7PPI_MQTT_PASSWORD";
constexpr char kServiceVariable[] = "CREDENTIALS_DIRECTORY";
constexpr char kServiceFile[] = "/mqtt";
const char kFileHint[] = "the file has two lines, user = NAME and password = TEXT";

std::optional<Credentials> credentialsOfEnvironment()
{
    const QString user = qEnvironmentVariable(kUserVariable);
    const QString password = qEnvironmentVariable(kPasswordVariable);
    if (user.isEmpty() && password.isEmpty())
        return std::nullopt;
    if (user.isEmpty())
        throw Failure(ExitCode::Usage, filled("%1 is set, and %2 is not", kPasswordVariable, kUserVariable),
                      filled("set %1, too", kUserVariable));
    return Credentials{user, password, filled("%1 and %2", kUserVariable, kPasswordVariable)};
}

// Of all lines; user and password are empty where none of them names one.
Credentials parseLines(const QString &fileName, const QString &text)
{
    Credentials credentials{QString(), QString(), "user and password in " + fileName};
    const QStringList lines = text.split('\n');
    for (int i = 0; i < int(lines.size()); ++i) {
        const QString line = lines.at(i).trimmed();
        if (line.isEmpty() || line.startsWith('#'))
            continue;
        const QString key = line.section('=', 0, 0).trimmed();
        const bool isUser = key == "user";
        if (!line.contains('=') || (!isUser && key != "password"))
            throw Failure(ExitCode::Usage, filled("%1:%2 names neither user nor password", fileName, i + 1),
                          kFileHint);
        (isUser ? credentials.user : credentials.password) = line.section('=', 1).trimmed();
    }
    return credentials;
}

Credentials checked(const QString &fileName, const Credentials &credentials)
{
    if (credentials.user.isEmpty())
        throw Failure(ExitCode::Usage, fileName + " names no user", kFileHint);
    return credentials;
}

QString textOf(const QString &fileName)
{
    return utf8Text(readTextFile(fileName, kFileHint, kLargestText));
}

// A service for which nothing is set has a file without user and password. What it is given is a copy, and
// the administrator knows the original.
std::optional<Credentials> credentialsOfService()
{
    const QString directory = qEnvironmentVariable(kServiceVariable);
    const QString fileName = directory + kServiceFile;
    if (directory.isEmpty() || !QFile::exists(fileName))
        return std::nullopt;
    Credentials credentials = parseLines(fileName, textOf(fileName));
    if (credentials.user.isEmpty() && credentials.password.isEmpty())
        return std::nullopt;
    credentials.origin =
        "user and password in the file that the service loads as its credential mqtt, usually "
        "below /etc/s7ppi/credentials";
    return checked(fileName, credentials);
}

} // namespace

QString credentialsHint(const std::optional<Credentials> &credentials)
{
    if (credentials)
        return "check " + credentials->origin;
    return filled("give user and password, in %1 and %2 or in the file of --credentials", kUserVariable,
                  kPasswordVariable);
}

Credentials parseCredentials(const QString &fileName, const QString &text)
{
    return checked(fileName, parseLines(fileName, text));
}

std::optional<Credentials> findCredentials(const std::optional<QString> &fileName)
{
    if (fileName)
        return parseCredentials(*fileName, textOf(*fileName));
    const std::optional<Credentials> credentials = credentialsOfEnvironment();
    return credentials ? credentials : credentialsOfService();
}

} // namespace host
