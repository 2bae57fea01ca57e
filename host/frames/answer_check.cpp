// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/frames/answer_check.h"

#include "host/frames/field_reader.h"
#include "host/frames/words.h"

#include <algorithm>
#include <vector>

namespace host {

namespace {

std::vector<WireItem> itemsOfRead(const QByteArray &frame)
{
    std::vector<WireItem> items;
    FieldReader reader(frame, kLongFrameCounted);
    const FrameFacts &facts = reader.facts;
    if (!readHeader(reader) || facts.messageType != kJob || !reader.read(parameterFields()) ||
        facts.function != kReadVariable)
        return items;
    while (int(items.size()) < facts.itemCount && reader.read(requestItemFields()))
        items.push_back(facts.item);
    return items;
}

bool isAnswerToRead(FieldReader &reader)
{
    const FrameFacts &facts = reader.facts;
    return readHeader(reader) && facts.messageType != kJob && facts.errorClass == 0 && facts.errorCode == 0 &&
           reader.read(parameterFields()) && facts.function == kReadVariable;
}

// The bytes of the item's data that are there whole; its head has been read. Goes on behind them.
int takeData(FieldReader &reader, const WireItem &item)
{
    const auto kind = uchar(reader.facts.dataKind);
    const int length = reader.facts.dataLength;
    const int size = dataSize(kind, length);
    const int whole = item.transportSize == kBitElement ? size : wholeBytes(kind, length);
    const int came = std::min(whole, reader.left());
    reader.facts.offset += std::min(size + size % 2, reader.left());
    return came;
}

} // namespace

void AnswerCheck::sent(const QByteArray &frame)
{
    if (!isLongFrame(frame))
        return;
    asked = itemsOfRead(frame);
    lack.reset();
}

void AnswerCheck::received(const QByteArray &frame)
{
    FieldReader reader(frame, kLongFrameCounted);
    if (!isLongFrame(frame) || !isAnswerToRead(reader))
        return;
    for (const WireItem &item : asked) {
        const bool isThere = reader.read(readDataFields());
        if (isThere && reader.facts.returnCode != kDone)
            continue;
        const int size = item.count * dataRecord(item).size;
        const int came = isThere ? takeData(reader, item) : 0;
        if (came < size && !lack)
            lack = Shortage{came, size};
    }
}

void AnswerCheck::heardNothing(bool /*isOver*/) {}

} // namespace host
