// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/frames/field_reader.h"

namespace host {

FieldReader::FieldReader(const QByteArray &frame, int checkedFrom)
    : facts{frame, checkedFrom}, end(int(frame.size()) - kTailSize)
{
}

bool FieldReader::read(const FrameFields &fields)
{
    for (const FrameField &field : fields) {
        if (left() < field.size)
            return false;
        readField(field, facts);
        facts.offset += field.size;
    }
    return true;
}

bool FieldReader::hasSoundTail() const
{
    FieldReader tail = *this;
    tail.facts.offset = end;
    tail.end = end + kTailSize;
    tail.read(frameTail());
    return tail.facts.checkSum == checkByte(facts.frame, facts.checkedFrom, end) &&
           tail.facts.end == kEndOfFrame;
}

bool readHeader(FieldReader &reader)
{
    const FrameFacts &facts = reader.facts;
    return reader.read(longFrameHead()) && reader.read(headerFields()) &&
           (facts.messageType == kJob || reader.read(errorFields())) && facts.lengthAgain == facts.length &&
           facts.startAgain == kLongFrame;
}

} // namespace host
