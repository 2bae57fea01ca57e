// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The frames as tables: which field follows which, how many bytes it has, what its value means.

#ifndef HOST_FRAMES_LAYOUT_H
#define HOST_FRAMES_LAYOUT_H

#include "host/frames/wire.h"

#include <QByteArray>
#include <QString>

#include <vector>

namespace host {

// What the fields of a frame said so far.
struct FrameFacts
{
    const QByteArray &frame;
    int checkedFrom = 0; // the first byte that the check sum counts
    int offset = 0;      // of the field that is looked at

    int length = 0;
    int messageType = 0;
    int reference = 0;
    int parameterLength = 0;
    int errorClass = 0;
    int errorCode = 0;
    int function = 0;
    int itemCount = 0;

    WireItem item = {};

    int dataKind = 0; // what the data's length counts
    int dataLength = 0;
};

struct Meaning
{
    QString text;
    bool isFault;
};

using MeaningOfValue = Meaning (*)(const FrameFacts &facts, int value);

struct FrameField
{
    const char *name;
    int size; // bytes, most significant first

    // Where the value is kept for the fields behind; null where they do not need it.
    int FrameFacts::*fact;
    int WireItem::*itemFact;

    MeaningOfValue meaning; // null when the field has a value that never changes, and a text for it
    int always;
    const char *text;
};

using FrameFields = std::vector<FrameField>;

const FrameFields &acknowledgementFields();
const FrameFields &shortFrameFields();
const FrameFields &longFrameHead();
const FrameFields &longFrameTail();
const FrameFields &headerFields();
const FrameFields &errorFields(); // behind the header of an answer
const FrameFields &parameterFields();
const FrameFields &requestItemFields();
const FrameFields &writtenDataFields(); // before the data of a write
const FrameFields &readDataFields();    // before the data of an answer
const FrameFields &fillerFields();      // behind an odd number of data bytes, when more items follow
const FrameFields &returnCodeFields();

Meaning meaningOf(const FrameField &field, const FrameFacts &facts, int value);

// "VW102" for the second word from VW100 on.
QString elementAddress(const WireItem &item, int index);

// How the data of an item repeat.
struct DataRecord
{
    int size;
    int valueOffset; // before it stands a status byte; 0 without one
};

DataRecord dataRecord(const WireItem &item);

} // namespace host

#endif
