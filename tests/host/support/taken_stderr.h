// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What this program tells while the object lives, instead of on stderr.

#ifndef TESTS_HOST_SUPPORT_TAKEN_STDERR_H
#define TESTS_HOST_SUPPORT_TAKEN_STDERR_H

#include <QString>
#include <QStringList>
#include <QtGlobal>

#include <iostream>
#include <sstream>

class TakenStderr
{
public:
    TakenStderr() : before(std::cerr.rdbuf(text.rdbuf())) {}
    ~TakenStderr() { std::cerr.rdbuf(before); }

    QStringList lines() const { return QString::fromStdString(text.str()).split('\n', Qt::SkipEmptyParts); }

private:
    Q_DISABLE_COPY(TakenStderr)

    std::ostringstream text;
    std::streambuf *before;
};

#endif
