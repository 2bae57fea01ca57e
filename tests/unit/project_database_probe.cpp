// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Asks the toolkit in a process of its own, whose directory a test can choose and which may be stopped:
//
//   project_database_probe compile-path | database-name | hmi-port TEXT
//
// Prints the answer.

#include "tools/project_database.h"

#include <QCoreApplication>
#include <QStringList>

#include <cstdio>

#include <sys/resource.h>

namespace {

QString answerTo(const QStringList &question)
{
    if (question.value(1) == QLatin1String("compile-path"))
        return GetCompilePath().absolutePath();
    if (question.value(1) == QLatin1String("database-name"))
        return GetDatabaseName();
    return QString::number(DevStrToHmiPort(question.value(2)));
}

} // namespace

int main(int argc, char *argv[])
{
    const struct rlimit noCoreFile = {0, 0};
    setrlimit(RLIMIT_CORE, &noCoreFile);
    const QCoreApplication application(argc, argv);
    std::printf("%s\n", answerTo(QCoreApplication::arguments()).toLocal8Bit().constData());
    return 0;
}
