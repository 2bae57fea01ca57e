// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Reads the fields of a frame one behind the other.

#ifndef HOST_FRAMES_FIELD_READER_H
#define HOST_FRAMES_FIELD_READER_H

#include "host/frames/layout.h"

#include <QByteArray>

namespace host {

// Goes along a frame, field by field, and keeps what the fields say.
class FieldReader
{
public:
    // The frame must outlive the reader. checkedFrom: the first byte that the check sum counts.
    FieldReader(const QByteArray &frame, int checkedFrom);

    FrameFacts facts;

    // Bytes before the tail that no field has read yet.
    int left() const { return end - facts.offset; }

    // False when the fields need more bytes than are left; those that find theirs have been read then.
    bool read(const FrameFields &fields);

    // Whether the frame ends with the right check sum and the byte that ends frames.
    bool hasSoundTail() const;

private:
    int end; // nothing is read from here on
};

// Reads a long frame up to its parameters. False when the head's lengths and starts are not the same, or the
// header is cut.
bool readHeader(FieldReader &reader);

} // namespace host

#endif
