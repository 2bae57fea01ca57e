// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/watch/view.h"

#include "host/text/fitted_text.h"
#include "host/text/number_text.h"

#include <QDateTime>

namespace host {

namespace {

constexpr int kMessageRows = 3;

} // namespace

QStringList headLines(const QString &title, const QString &state, const QString &message, int columns)
{
    const QString head = firstThatFits({title + ", Ctrl-C ends" + state, title + state}, columns);
    return QStringList(head) + wrapped(message, columns).mid(0, kMessageRows);
}

QStringList lastHeadLines(const QString &title, const Watch &watch, int columns)
{
    const QString time = QDateTime::currentDateTime().toString("yyyy-MM-dd HH:mm:ss");
    return wrapped(filled("%1, %2 until %3", title, counted(watch.polls(), "poll"), time), columns);
}

} // namespace host
