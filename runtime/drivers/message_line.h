// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// One debug message of labels and values. Composed by hand because QDebug keeps the blank behind the
// last item on Qt 4.8 only, and escapes what stands in strings on Qt 5 and 6.

#ifndef MESSAGE_LINE_H
#define MESSAGE_LINE_H

#include "qt_compat.h"

#include <QString>
#include <QtDebug>

class MessageLine
{
public:
    // Appends the label, a blank, the value and a blank. Strings stand between quotes as they are.
    MessageLine &add(const char *label, int value) { return append(label, QString::number(value)); }
    MessageLine &add(const char *label, const QString &value)
    {
        return append(label, QLatin1Char('"') + value + QLatin1Char('"'));
    }

    void write() const { qDebug("%s", messageText(text).constData()); }

private:
    MessageLine &append(const char *label, const QString &value)
    {
        text += QLatin1String(label) + QLatin1Char(' ') + value + QLatin1Char(' ');
        return *this;
    }

    QString text;
};

#endif
