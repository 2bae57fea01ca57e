// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
/// @file
/// One debug message of labels and values. Composed by hand because QDebug keeps the blank behind the
/// last item on Qt 4.8 only, and escapes what stands in strings on Qt 5 and 6.

#ifndef MESSAGE_LINE_H
#define MESSAGE_LINE_H

#include <QString>
#include <QtDebug>

/// Gathers one message; write() sends it.
class MessageLine
{
public:
    /// Appends the label, a blank, the value and a blank. Texts stand between quotes as they are.
    MessageLine &add(const char *label, int value) { return append(label, QString::number(value)); }

    /// The same for a text.
    MessageLine &add(const char *label, const QString &value)
    {
        return append(label, QLatin1Char('"') + value + QLatin1Char('"'));
    }

    /// Writes the line as one message of the debug level.
    void write() const { qDebug("%s", text.toUtf8().constData()); }

private:
    MessageLine &append(const char *label, const QString &value)
    {
        text += QLatin1String(label) + QLatin1Char(' ') + value + QLatin1Char(' ');
        return *this;
    }

    QString text;
};

#endif
