// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Explains frames of the line byte by byte, damaged and cut ones included.
//
//    4  02    destination       station 2
//    5  00    source            station 0
//   31  8e !  check sum         should be 8F

#ifndef HOST_FRAMES_EXPLANATION_H
#define HOST_FRAMES_EXPLANATION_H

#include "host/frames/wire.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

#include <vector>

namespace host {

struct ExplainedByte
{
    int offset;
    uchar byte;
    QString field;
    QString meaning; // with the first byte of a field; empty with the others
    bool isFault;
};

struct ExplainedFrame
{
    std::vector<ExplainedByte> bytes; // all of them
    QStringList faults;               // empty for a whole, sound frame
    QString missing;                  // the one of them that no byte has, when bytes are missing
};

// Splits bytes into the frames that stand in them one behind the other. Bytes that begin no frame stay
// together.
QList<QByteArray> splitFrames(const QByteArray &bytes);

class FrameExplainer
{
public:
    // Takes any bytes. Frames must come in the order in which they passed: the data of an answer get their
    // addresses from the request with the same reference.
    ExplainedFrame explain(const QByteArray &frame);

private:
    QHash<int, QList<WireItem>> asked; // the items of requests by their reference
};

} // namespace host

#endif
