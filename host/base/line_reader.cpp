// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/base/line_reader.h"

namespace host {

LineReader::LineReader(const QString &fileName_, qint64 largest)
    : fileName(fileName_), file(inputNamed(fileName_, largest))
{
}

LineReader::LineReader(const QString &name, const QByteArray &text) : fileName(name), buffer(text) {}

bool LineReader::next()
{
    int searched = position;
    int end = -1;
    while ((end = int(buffer.indexOf('\n', searched))) < 0) {
        const int waiting = int(buffer.size()) - position;
        if (waiting > kLongestLine || !fill())
            break;
        searched = waiting; // the buffer begins with what was waiting now
    }
    hasEnd = end >= 0;
    const int length = (hasEnd ? end : int(buffer.size())) - position;
    if (length == 0 && !hasEnd)
        return false;
    ++count;
    if (length > kLongestLine)
        throw Failure(ExitCode::Usage,
                      fileName + ':' + QString::number(count) + ": the line has more than " +
                          limitText(kLongestLine),
                      "check the name: it may be another file, or a device");
    current = buffer.mid(position, length);
    position += length + (hasEnd ? 1 : 0);
    return true;
}

// Reads more behind what no line has had yet; false at the end.
bool LineReader::fill()
{
    const QByteArray more = file ? file->readSome() : QByteArray();
    buffer = buffer.mid(position) + more;
    position = 0;
    return !more.isEmpty();
}

void checkLines(const QString &name, const QByteArray &text)
{
    LineReader lines(name, text);
    while (lines.next()) {
    }
}

} // namespace host
