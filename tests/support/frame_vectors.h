// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Frames of a text file, where many bytes would stand between the lines of a test. Under a name stand the
// frames that belong to it, one a line, in hexadecimal; a long one goes on in lines that begin further to the
// right:
//
//     # What the panel sends (>) and hears (<).
//
//     4 bytes of VB100
//       > 10 02 00 5c 5e 16      # '#' begins a comment
//       < 68 1b 1b 68 02 00 6c  32 01 00 00 00 01 00 0e 00 00
//           04 01 12 0a 10 02 00 04 00 01 84 00 03 20  8f 16
//
// A file that cannot be read, a line that is none of these and a name that is missing end the test.

#ifndef TESTS_SUPPORT_FRAME_VECTORS_H
#define TESTS_SUPPORT_FRAME_VECTORS_H

#include <QByteArray>
#include <QList>
#include <QMap>

class FrameVectors
{
public:
    // The file's path from tests/ on.
    explicit FrameVectors(const char *fileName);

    // In the order of the file.
    QList<QByteArray> names() const { return allNames; }

    // The only frame of that name, whichever way it goes.
    QByteArray frame(const QByteArray &name) const;

    // The frame of that name that goes this way, or one of several, counted from 0.
    QByteArray sent(const QByteArray &name, int number = 0) const;
    QByteArray received(const QByteArray &name, int number = 0) const;

private:
    typedef QMap<QByteArray, QList<QByteArray>> Frames;

    void addLine(const QByteArray &line);
    QByteArray frameOf(const Frames &frames, const QByteArray &name, int number) const;

    QByteArray file;
    QList<QByteArray> allNames;
    Frames sentFrames;
    Frames receivedFrames;
    Frames *last; // what a line that goes on belongs to
};

#endif
