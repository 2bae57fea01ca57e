// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/frames/words.h"

#include "host/base/filled.h"
#include "host/frames/field_reader.h"
#include "host/frames/layout.h"
#include "host/text/number_text.h"

namespace host {

namespace {

const char kDamaged[] = "damaged frame";

QString shortFrameWords(const FrameFacts &facts)
{
    switch (facts.functionCode & (kRequestBit | kFunctionNibble)) {
    case kPoll:
        return QString("poll of station %1").arg(facts.destination);
    case kNoResource:
        return QString("refused by station %1: no resource").arg(facts.source);
    case kNotActive:
        return QString("refused by station %1: service not active").arg(facts.source);
    default:
        return "short frame with function code " + hexByte(uchar(facts.functionCode));
    }
}

QString orUnknown(const QString &name, const QString &what, uchar code)
{
    return name.isEmpty() ? what + ' ' + hexByte(code) : name;
}

QString itemWords(const WireItem &item)
{
    const auto size = uchar(item.transportSize);
    const auto area = uchar(item.area);
    const QString elements = counted(item.count, orUnknown(elementName(size), "element of kind", size));
    const QString letters = orUnknown(areaLetters(area), "area", area);
    if (isObjectArea(area))
        return filled("%1 at %2%3", elements, letters, item.address);
    const QString place = filled("%1 byte %2", letters, item.address / 8);
    return size == kBitElement ? filled("%1 at %2 bit %3", elements, place, item.address % 8)
                               : QString("%1 at %2").arg(elements, place);
}

QString functionWords(const FrameFacts &facts)
{
    return "function " + hexByte(uchar(facts.function));
}

QString requestWords(FieldReader &reader)
{
    const FrameFacts &facts = reader.facts;
    QString words = filled("request %1 to station %2: ", facts.reference, facts.destination);
    if (reader.left() == 0)
        return words + "without a function";
    reader.read(parameterFields());
    if (facts.function != kReadVariable && facts.function != kWriteVariable)
        return words + functionWords(facts);
    words += facts.function == kReadVariable ? "read " : "write ";
    for (int i = 0; i < facts.itemCount && reader.read(requestItemFields()); ++i)
        words += (i ? ", " : "") + itemWords(facts.item);
    return words;
}

QString returnCodeWords(const FrameFacts &facts)
{
    const auto code = uchar(facts.returnCode);
    return returnCodeName(code) + " (" + hexByte(code) + ')';
}

// The words speak of the first item alone: the driver never asks for more.
QString readAnswerWords(FieldReader &reader)
{
    const FrameFacts &facts = reader.facts;
    if (reader.left() == 0)
        return "without data";
    reader.read(readDataFields());
    if (facts.returnCode != kDone)
        return "refused, " + returnCodeWords(facts);
    return counted(dataSize(uchar(facts.dataKind), facts.dataLength), "byte") + " of data";
}

QString writeAnswerWords(FieldReader &reader)
{
    QString words;
    for (int i = 0; i < reader.facts.itemCount && reader.read(returnCodeFields()); ++i)
        words += (i ? ", " : "") + returnCodeWords(reader.facts);
    return words;
}

QString answerWords(FieldReader &reader)
{
    const FrameFacts &facts = reader.facts;
    const QString words = filled("answer to request %1 from station %2: ", facts.reference, facts.source);
    if (facts.errorClass != 0 || facts.errorCode != 0)
        return words + QString("not taken, error class %1, code %2")
                           .arg(hexByte(uchar(facts.errorClass)), hexByte(uchar(facts.errorCode)));
    if (reader.left() == 0)
        return words + "without a function";
    reader.read(parameterFields());
    switch (facts.function) {
    case kReadVariable:
        return words + readAnswerWords(reader);
    case kWriteVariable:
        return words + writeAnswerWords(reader);
    default:
        return words + functionWords(facts);
    }
}

QString shortFrameWords(const QByteArray &frame)
{
    FieldReader reader(frame, kShortFrameCounted);
    reader.read(shortFrameHead());
    return reader.hasSoundTail() ? shortFrameWords(reader.facts) : kDamaged;
}

QString longFrameWords(const QByteArray &frame)
{
    FieldReader reader(frame, kLongFrameCounted);
    if (!readHeader(reader) || !reader.hasSoundTail())
        return kDamaged;
    return reader.facts.messageType == kJob ? requestWords(reader) : answerWords(reader);
}

} // namespace

int frameSize(const QByteArray &start)
{
    if (start.isEmpty())
        return 0;
    if (uchar(start.at(0)) == kShortFrame)
        return kShortFrameSize;
    if (uchar(start.at(0)) != kLongFrame)
        return 1;
    return start.size() < 2 ? 0 : uchar(start.at(1)) + kLongFrameFixed;
}

QString frameWords(const QByteArray &frame)
{
    const uchar start = frame.isEmpty() ? uchar(0) : uchar(frame.at(0));
    if (start == kAcknowledgement && frame.size() == 1)
        return "acknowledgement";
    if (start != kShortFrame && start != kLongFrame)
        return "no frame";
    if (frame.size() != frameSize(frame))
        return "incomplete frame";
    return start == kShortFrame ? shortFrameWords(frame) : longFrameWords(frame);
}

QString frameLine(const QByteArray &frame)
{
    return frameWords(frame) + ": " + QString::fromLatin1(frame.toHex(' '));
}

QString telegramTitle(const QByteArray &telegram)
{
    FieldReader reader(telegram, kLongFrameCounted);
    if (!isLongFrame(telegram) || !readHeader(reader))
        return frameWords(telegram);
    return reader.facts.messageType == kJob ? filled("request to station %1", reader.facts.destination)
                                            : filled("answer from station %1", reader.facts.source);
}

bool isSoundTelegram(const QByteArray &frame)
{
    if (frame.isEmpty() || frame.size() != frameSize(frame))
        return false;
    if (uchar(frame.at(0)) == kShortFrame)
        return FieldReader(frame, kShortFrameCounted).hasSoundTail();
    FieldReader reader(frame, kLongFrameCounted);
    return isLongFrame(frame) && reader.read(longFrameHead()) && reader.hasSoundTail();
}

bool isLongFrame(const QByteArray &frame)
{
    return !frame.isEmpty() && uchar(frame.at(0)) == kLongFrame;
}

} // namespace host
