// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/base/files_in_use.h"

#include "host/base/failure.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <optional>
#include <vector>

#include <sys/stat.h>

namespace host {

namespace {

const char kStdout[] = "/dev/stdout";

struct Claim
{
    QString name;
    FileRole role;
};

struct FileState
{
    bool isThere;
    struct stat status;
};

FileState stateOf(const QString &name)
{
    FileState state = {};
    state.isThere = stat(QFile::encodeName(name).constData(), &state.status) == 0;
    return state;
}

QString placeOf(const QString &name)
{
    const QFileInfo file(name);
    return QDir(file.absolutePath()).canonicalPath() + '/' + file.fileName();
}

// A device may have several nodes.
bool areSame(const QString &one, const QString &other)
{
    const FileState first = stateOf(one);
    const FileState second = stateOf(other);
    if (!first.isThere || !second.isThere)
        return first.isThere == second.isThere && placeOf(one) == placeOf(other);
    if (S_ISCHR(first.status.st_mode) && S_ISCHR(second.status.st_mode))
        return first.status.st_rdev == second.status.st_rdev;
    return first.status.st_dev == second.status.st_dev && first.status.st_ino == second.status.st_ino;
}

// A terminal or a pipe holds nothing that could be destroyed.
bool canBeDestroyed(const QString &name)
{
    const FileState state = stateOf(name);
    return !state.isThere || S_ISREG(state.status.st_mode);
}

bool isOutput(const Claim &claim)
{
    return claim.role != FileRole::Input && claim.role != FileRole::Port;
}

bool exclude(const Claim &one, const Claim &other)
{
    if (one.role == other.role || !(isOutput(one) || isOutput(other)) || !areSame(one.name, other.name))
        return false;
    return one.role == FileRole::Port || other.role == FileRole::Port || canBeDestroyed(one.name);
}

Failure failureOf(const Claim &one, const Claim &other)
{
    const Claim &output = isOutput(one) ? one : other;
    const Claim &obstacle = isOutput(one) ? other : one;
    QString text = "%1 would take two outputs of this command";
    if (obstacle.role == FileRole::Input)
        text = "%1 is read by this command and cannot take its output";
    if (obstacle.role == FileRole::Port)
        text = "%1 is the port of this command and cannot take its output";
    return Failure(ExitCode::Usage, text.arg(output.name), "name another file");
}

void checkNamed(const char *option, const std::optional<QString> &name)
{
    if (name && name->isEmpty())
        throw Failure(ExitCode::Usage, QString("no name is given with ") + option,
                      "name one, or leave the option out");
}

bool isStdout(const QString &name)
{
    return name == "-" || areSame(name, kStdout);
}

} // namespace

void claimFile(const QString &name, FileRole role)
{
    static std::vector<Claim> claims;
    const Claim wanted = {name, role};
    for (const Claim &claim : claims)
        if (exclude(claim, wanted))
            throw failureOf(claim, wanted);
    claims.push_back(wanted);
}

void settleFiles(Options &options)
{
    checkNamed("--port", options.port);
    checkNamed("--output", options.output);
    checkNamed("--trace", options.trace);
    checkNamed("--plugin", options.plugin);
    checkNamed("--profile", options.profile);
    if (options.output && isStdout(*options.output))
        options.output.reset();
    claimFile(options.output.value_or(kStdout), FileRole::Data);
    if (options.trace)
        claimFile(*options.trace, FileRole::Trace);
}

} // namespace host
