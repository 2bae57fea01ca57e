// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/frames/words.h"

#include "host/text/number_text.h"

namespace host {

namespace {

constexpr int kPduStart = 7;
constexpr int kAnswerHeaderSize = 12;
constexpr int kItemStart = kPduStart + kHeaderSize + 2; // behind function and number of items
constexpr int kItemSize = 12;
constexpr int kTailSize = 2; // check sum and end

// Function codes of short frames, without the two bits that count frames.
constexpr uchar kFunctionMask = 0x4f;
constexpr uchar kPoll = 0x4c;
constexpr uchar kNoResource = 0x02;
constexpr uchar kNotActive = 0x03;

uchar at(const QByteArray &frame, int index)
{
    return index < frame.size() ? uchar(frame.at(index)) : uchar(0);
}

int word(const QByteArray &frame, int index)
{
    return at(frame, index) << 8 | at(frame, index + 1);
}

// Both lengths are the same, and there is room for the header that the words are of.
bool hasHeader(const QByteArray &frame)
{
    const int headerSize = at(frame, kPduStart + 1) == kJob ? kHeaderSize : kAnswerHeaderSize;
    return at(frame, 2) == at(frame, 1) && at(frame, 3) == kLongFrame &&
           at(frame, 1) + kLongFrameFixed >= kPduStart + headerSize + kTailSize;
}

bool isSound(const QByteArray &frame, int first, int last)
{
    return checkByte(frame, first, last) == at(frame, last) && at(frame, last + 1) == kEndOfFrame;
}

QString shortFrameWords(const QByteArray &frame)
{
    switch (at(frame, 3) & kFunctionMask) {
    case kPoll:
        return QString("poll of station %1").arg(at(frame, 1));
    case kNoResource:
        return QString("refused by station %1: no resource").arg(at(frame, 2));
    case kNotActive:
        return QString("refused by station %1: service not active").arg(at(frame, 2));
    default:
        return "short frame with function code " + hexByte(at(frame, 3));
    }
}

QString orUnknown(const QString &name, const QString &what, uchar code)
{
    return name.isEmpty() ? what + ' ' + hexByte(code) : name;
}

// An item := 12 0A 10 kind count(2) DB(2) area address(3)
QString itemWords(const QByteArray &frame, int start)
{
    const uchar kind = at(frame, start + 3);
    const int count = word(frame, start + 4);
    const uchar area = at(frame, start + 8);
    const int address = at(frame, start + 9) << 16 | word(frame, start + 10);
    const QString element = orUnknown(elementName(kind), "element of kind", kind);
    const QString elements = counted(count, element);
    const QString letters = orUnknown(areaLetters(area), "area", area);
    if (isObjectArea(area))
        return QString("%1 at %2%3").arg(elements, letters).arg(address);
    const QString place = QString("%1 byte %2").arg(letters).arg(address / 8);
    return kind == kBitElement ? QString("%1 at %2 bit %3").arg(elements, place).arg(address % 8)
                               : QString("%1 at %2").arg(elements, place);
}

QString requestWords(const QByteArray &frame)
{
    const uchar function = at(frame, kPduStart + kHeaderSize);
    const int items = at(frame, kPduStart + kHeaderSize + 1);
    QString words = QString("request %1 to station %2: ").arg(word(frame, kPduStart + 4)).arg(at(frame, 4));
    if (function != kReadVariable && function != kWriteVariable)
        return words + "function " + hexByte(function);
    words += function == kReadVariable ? "read " : "write ";
    for (int i = 0; i < items && kItemStart + (i + 1) * kItemSize <= frame.size(); ++i)
        words += (i ? ", " : "") + itemWords(frame, kItemStart + i * kItemSize);
    return words;
}

QString returnCodeWords(uchar code)
{
    return returnCodeName(code) + " (" + hexByte(code) + ')';
}

QString readAnswerWords(const QByteArray &frame, int item)
{
    const uchar code = at(frame, item);
    if (code != kDone)
        return "refused, " + returnCodeWords(code);
    const bool lengthInBits = at(frame, item + 1) == 0x04;
    const int length = word(frame, item + 2);
    return counted(lengthInBits ? length / 8 : length, "byte") + " of data";
}

QString writeAnswerWords(const QByteArray &frame, int item)
{
    QString words;
    for (int i = 0; i < at(frame, item - 1) && item + i + 2 < frame.size(); ++i)
        words += (i ? ", " : "") + returnCodeWords(at(frame, item + i));
    return words;
}

QString answerWords(const QByteArray &frame)
{
    const int parameters = kPduStart + kAnswerHeaderSize;
    const QString words =
        QString("answer to request %1 from station %2: ").arg(word(frame, kPduStart + 4)).arg(at(frame, 5));
    if (const int error = word(frame, kPduStart + 10))
        return words + QString("not taken, error class %1, code %2")
                           .arg(hexByte(uchar(error >> 8)), hexByte(uchar(error)));
    switch (at(frame, parameters)) {
    case kReadVariable:
        return words + readAnswerWords(frame, parameters + 2);
    case kWriteVariable:
        return words + writeAnswerWords(frame, parameters + 2);
    default:
        return words + "function " + hexByte(at(frame, parameters));
    }
}

QString longFrameWords(const QByteArray &frame)
{
    return at(frame, kPduStart + 1) == kJob ? requestWords(frame) : answerWords(frame);
}

} // namespace

int frameSize(const QByteArray &start)
{
    if (start.isEmpty())
        return 0;
    if (at(start, 0) == kShortFrame)
        return kShortFrameSize;
    if (at(start, 0) != kLongFrame)
        return 1;
    return start.size() < 2 ? 0 : at(start, 1) + kLongFrameFixed;
}

QString frameWords(const QByteArray &frame)
{
    const int size = int(frame.size());
    if (size == 1 && at(frame, 0) == kAcknowledgement)
        return "acknowledgement";
    const bool isShort = at(frame, 0) == kShortFrame;
    if (!isShort && at(frame, 0) != kLongFrame)
        return "no frame";
    if (size != frameSize(frame))
        return "incomplete frame";
    if (!isSound(frame, isShort ? 1 : 4, size - kTailSize) || !(isShort || hasHeader(frame)))
        return "damaged frame";
    return isShort ? shortFrameWords(frame) : longFrameWords(frame);
}

QString frameLine(const QByteArray &frame)
{
    return frameWords(frame) + ": " + QString::fromLatin1(frame.toHex(' '));
}

bool isLongFrame(const QByteArray &frame)
{
    return at(frame, 0) == kLongFrame;
}

} // namespace host
