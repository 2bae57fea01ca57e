// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The frames as tables: which field follows which, how many bytes it has, what its value means. Whoever reads
// a frame goes along these tables, field by field; nobody else knows at which offset something lies.
//
//   short frame   shortFrameHead  frameTail
//   long frame    longFrameHead  PDU  frameTail
//   PDU           a request or an answer
//   request       headerFields  parameterFields  requestItemFields for each item
//                 and of a write, for each item: writtenDataFields, the data, fillerFields
//   answer        headerFields  errorFields  parameterFields
//                 to a read, for each item: readDataFields, the data, fillerFields
//                 to a write: returnCodeFields for each item

#ifndef HOST_FRAMES_LAYOUT_H
#define HOST_FRAMES_LAYOUT_H

#include "host/frames/wire.h"

#include <QByteArray>
#include <QString>

#include <vector>

namespace host {

// What the fields of a frame said so far, for the fields behind them and for whoever reads the frame. A fact
// that no field has told is 0.
struct FrameFacts
{
    const QByteArray &frame;
    int checkedFrom = 0; // the first byte that the check sum counts
    int offset = 0;      // of the field that is looked at

    int length = 0;
    int lengthAgain = 0;
    int startAgain = 0;
    int destination = 0;
    int source = 0;
    int functionCode = 0;
    int checkSum = 0;
    int end = 0;

    int messageType = 0;
    int reference = 0;
    int parameterLength = 0;
    int errorClass = 0;
    int errorCode = 0;
    int function = 0;
    int itemCount = 0;

    WireItem item = {}; // of a request; each takes the place of the one before

    int returnCode = 0;
    int dataKind = 0; // what the data's length counts
    int dataLength = 0;
};

// What a field's value says to people.
struct FieldMeaning
{
    QString text;
    bool isFault;
};

using MeaningOfValue = FieldMeaning (*)(const FrameFacts &facts, int value);

// One row of a table: a field of a frame.
struct FrameField
{
    const char *name;
    int size; // bytes, most significant first

    // Where the value is kept; both null when nobody asks for it later.
    int FrameFacts::*fact;
    int WireItem::*itemFact;

    MeaningOfValue meaning; // null when the field has a value that never changes, and a text for it
    int always;
    const char *text;
};

using FrameFields = std::vector<FrameField>;

const FrameFields &acknowledgementFields();
const FrameFields &shortFrameHead();
const FrameFields &longFrameHead();
const FrameFields &frameTail();
const FrameFields &headerFields();
const FrameFields &errorFields(); // behind the header of an answer
const FrameFields &parameterFields();
const FrameFields &requestItemFields();
const FrameFields &writtenDataFields(); // before the data of a write
const FrameFields &readDataFields();    // before the data of an answer
const FrameFields &fillerFields();      // behind an odd number of data bytes, when more items follow
const FrameFields &returnCodeFields();

// The value of the field at facts.offset, kept among the facts when the field says so. Its bytes must be
// there.
int readField(const FrameField &field, FrameFacts &facts);

// What the value of a field means, after the facts of the fields before it.
FieldMeaning meaningOf(const FrameField &field, const FrameFacts &facts, int value);

// The address of one element of an item, as a user would write it: "VW102" for the second word from VW100 on.
QString elementAddress(const WireItem &item, int index);

// What each element of an item takes in the data of a frame, in bytes.
struct DataRecord
{
    int size;
    int valueOffset; // before it stands a status byte; 0 without one
};

DataRecord dataRecord(const WireItem &item);

} // namespace host

#endif
