// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The lines of a file, one after the other, so that a long file takes no more memory than its longest line.

#ifndef HOST_BASE_LINE_READER_H
#define HOST_BASE_LINE_READER_H

#include "host/base/input_file.h"

#include <QByteArray>
#include <QString>

#include <memory>

namespace host {

// The longest line that is read, in bytes: many times what any command writes.
constexpr qint64 kLongestLine = 1 << 20;

class LineReader
{
public:
    // Reads a file that the user names, or stdin for "-". Fails when it cannot be read, or has more bytes
    // than the limit.
    LineReader(const QString &fileName, qint64 largest);

    // Takes a text that was read already; its name is for what is wrong with it.
    LineReader(const QString &name, const QByteArray &text);

    // Goes to the next line; false when there is none. Fails when the line is too long.
    bool next();

    const QByteArray &line() const { return current; } // without the character that ends it
    int number() const { return count; }               // of the line, from 1 on

    // Whether the line has an end of its own: the last one of a file may have been cut.
    bool isWhole() const { return hasEnd; }

    QString name() const { return fileName; }

private:
    bool fill();

    QString fileName;
    std::unique_ptr<InputFile> file;
    QByteArray buffer;
    int position = 0; // in the buffer, of what no line has had
    QByteArray current;
    int count = 0;
    bool hasEnd = false;
};

// Fails when a line of the text is too long.
void checkLines(const QString &name, const QByteArray &text);

} // namespace host

#endif
