// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/frames/layout.h"

#include "host/text/number_text.h"

namespace host {

namespace {

constexpr int kStationMax = 126;
constexpr int kBroadcast = 127;
constexpr int kErrorSize = 2;
constexpr int kAddressesSize = 3; // destination, source, function code

// Function codes: bit 6 tells requests from answers.
constexpr int kRequestBit = 0x40;
constexpr int kSequenceBit = 0x20;
constexpr int kSequenceCounts = 0x10;
constexpr int kFunctionNibble = 0x0f;

struct Named
{
    int code;
    const char *name;
};

const Named kRequestFunctions[] = {
    {0x3, "data, to be acknowledged"},
    {0x4, "data, not acknowledged"},
    {0x5, "data with priority, to be acknowledged"},
    {0x6, "data with priority, not acknowledged"},
    {0x9, "question for the station's state"},
    {0xc, "data or poll, to be answered"},
    {0xd, "data or poll with priority, to be answered"},
    {0xe, "question for the station's identity"},
    {0xf, "question for the station's services"},
};

const Named kAnswerFunctions[] = {
    {0x0, "taken"},
    {0x1, "refused: user error"},
    {0x2, "refused: no resource"},
    {0x3, "refused: service not active"},
    {0x8, "answer with data"},
    {0x9, "no data to answer with"},
    {0xa, "answer with data of high priority"},
    {0xc, "answer with data, no resource"},
    {0xd, "answer with data of high priority, no resource"},
};

const Named kMessageTypes[] = {
    {0x01, "job: a request"},
    {0x02, "acknowledgement: an answer"},
    {0x03, "acknowledgement with data: an answer"},
    {0x07, "user data"},
};

const Named kFunctions[] = {
    {0x04, "read variables"},
    {0x05, "write variables"},
    {0xf0, "set up communication"},
    {0x1a, "request download"},
    {0x1d, "start upload"},
    {0x28, "start, or another control"},
    {0x29, "stop"},
};

const Named kErrorClasses[] = {
    {0x00, "no error"},
    {0x81, "the request does not fit the relationship"},
    {0x82, "the object's definition"},
    {0x83, "no resources"},
    {0x84, "the service failed"},
    {0x85, "the PDU is wrong"},
    {0x87, "no access"},
};

const Named kDataKinds[] = {
    {0x00, "no data"},         {0x03, "length in bits, one bit each"},
    {0x04, "length in bits"},  {0x05, "length in bits"},
    {0x06, "length in bytes"}, {0x07, "length in bytes"},
    {0x09, "length in bytes"},
};

template <size_t Size> Meaning named(const Named (&names)[Size], int code)
{
    for (const Named &entry : names)
        if (entry.code == code)
            return {entry.name, false};
    return {"not known", false};
}

Meaning number(const FrameFacts & /*facts*/, int value)
{
    return {QString::number(value), false};
}

Meaning byteCount(const FrameFacts & /*facts*/, int value)
{
    return {counted(value, "byte"), false};
}

Meaning station(const FrameFacts & /*facts*/, int value)
{
    if (value == kBroadcast)
        return {"all stations", false};
    return {QString("station %1").arg(value), value > kStationMax};
}

Meaning functionCode(const FrameFacts & /*facts*/, int value)
{
    const int nibble = value & kFunctionNibble;
    if (!(value & kRequestBit))
        return named(kAnswerFunctions, nibble);
    Meaning meaning = named(kRequestFunctions, nibble);
    if (value & kSequenceCounts)
        meaning.text += QString("; sequence bit %1").arg((value & kSequenceBit) ? 1 : 0);
    else if (value & kSequenceBit)
        meaning.text += "; begins a sequence";
    return meaning;
}

Meaning frameLength(const FrameFacts & /*facts*/, int value)
{
    if (value < kAddressesSize)
        return {"too short: three bytes at least", true};
    return {counted(value, "byte") + " from the destination to the end of the PDU", false};
}

Meaning lengthAgain(const FrameFacts &facts, int value)
{
    if (value == facts.length)
        return {"the same", false};
    return {"should be the same: " + hexByte(uchar(facts.length)), true};
}

Meaning checkSum(const FrameFacts &facts, int value)
{
    const uchar right = checkByte(facts.frame, facts.checkedFrom, facts.offset);
    if (right == value)
        return {"right", false};
    return {"should be " + hexByte(right), true};
}

Meaning messageType(const FrameFacts & /*facts*/, int value)
{
    return named(kMessageTypes, value);
}

Meaning dataLength(const FrameFacts &facts, int value)
{
    const int header = facts.messageType == kJob ? kHeaderSize : kHeaderSize + kErrorSize;
    const int behindHeader = facts.length - kAddressesSize - header;
    const int told = facts.parameterLength + value;
    if (told == behindHeader || facts.messageType > 0x03)
        return {counted(value, "byte"), false};
    return {QString("%1, with the parameters %2, but %3 stand behind the header")
                .arg(counted(value, "byte"))
                .arg(told)
                .arg(behindHeader),
            true};
}

Meaning errorClass(const FrameFacts & /*facts*/, int value)
{
    return named(kErrorClasses, value);
}

Meaning errorCode(const FrameFacts &facts, int value)
{
    if (facts.errorClass == 0 && value == 0)
        return {"no error", false};
    return {"the reason within its class", false};
}

Meaning function(const FrameFacts & /*facts*/, int value)
{
    return named(kFunctions, value);
}

Meaning transportSize(const FrameFacts & /*facts*/, int value)
{
    const QString name = elementName(uchar(value));
    return {name.isEmpty() ? "not known" : name, false};
}

Meaning elementCount(const FrameFacts &facts, int value)
{
    const QString name = elementName(uchar(facts.item.transportSize));
    return {counted(value, name.isEmpty() ? "element" : name), false};
}

Meaning dataBlock(const FrameFacts & /*facts*/, int value)
{
    if (value == 0)
        return {"none", false};
    return {value == 1 ? "1, variable memory" : QString::number(value), false};
}

Meaning area(const FrameFacts & /*facts*/, int value)
{
    const QString letters = areaLetters(uchar(value));
    return {letters.isEmpty() ? "not known" : letters, false};
}

Meaning itemAddress(const FrameFacts &facts, int value)
{
    WireItem item = facts.item;
    item.address = value;
    QString text = elementAddress(item, 0);
    if (item.count > 1)
        text += " to " + elementAddress(item, item.count - 1);
    const bool isWhole = item.transportSize == kBitElement || isObjectArea(uchar(item.area));
    if (!isWhole && value % 8)
        text += QString(", from bit %1 on").arg(value % 8);
    return {text, false};
}

Meaning returnCode(const FrameFacts & /*facts*/, int value)
{
    return {returnCodeName(uchar(value)), false};
}

Meaning dataKind(const FrameFacts & /*facts*/, int value)
{
    return named(kDataKinds, value);
}

// A field that always has the same value.
FrameField fixed(const char *name, int size, int always, const char *text)
{
    return {name, size, nullptr, nullptr, nullptr, always, text};
}

FrameField field(const char *name, int size, MeaningOfValue meaning, int FrameFacts::*fact = nullptr)
{
    return {name, size, fact, nullptr, meaning, 0, ""};
}

FrameField itemField(const char *name, int size, MeaningOfValue meaning, int WireItem::*fact)
{
    return {name, size, nullptr, fact, meaning, 0, ""};
}

} // namespace

const FrameFields &acknowledgementFields()
{
    static const FrameFields fields = {
        fixed("acknowledgement", 1, kAcknowledgement, "taken: ask for the answer"),
    };
    return fields;
}

const FrameFields &shortFrameFields()
{
    static const FrameFields fields = {
        fixed("start", 1, kShortFrame, "a frame without data"),
        field("destination", 1, station),
        field("source", 1, station),
        field("function code", 1, functionCode),
        field("check sum", 1, checkSum),
        fixed("end", 1, kEndOfFrame, "end of the frame"),
    };
    return fields;
}

const FrameFields &longFrameHead()
{
    static const FrameFields fields = {
        fixed("start", 1, kLongFrame, "a frame with data"),
        field("length", 1, frameLength, &FrameFacts::length),
        field("length again", 1, lengthAgain),
        fixed("start again", 1, kLongFrame, ""),
        field("destination", 1, station),
        field("source", 1, station),
        field("function code", 1, functionCode),
    };
    return fields;
}

const FrameFields &longFrameTail()
{
    static const FrameFields fields = {
        field("check sum", 1, checkSum),
        fixed("end", 1, kEndOfFrame, "end of the frame"),
    };
    return fields;
}

const FrameFields &headerFields()
{
    static const FrameFields fields = {
        fixed("protocol", 1, 0x32, "S7"),
        field("message type", 1, messageType, &FrameFacts::messageType),
        fixed("reserved", 2, 0, ""),
        field("reference", 2, number, &FrameFacts::reference),
        field("parameter length", 2, byteCount, &FrameFacts::parameterLength),
        field("data length", 2, dataLength),
    };
    return fields;
}

const FrameFields &errorFields()
{
    static const FrameFields fields = {
        field("error class", 1, errorClass, &FrameFacts::errorClass),
        field("error code", 1, errorCode, &FrameFacts::errorCode),
    };
    return fields;
}

const FrameFields &parameterFields()
{
    static const FrameFields fields = {
        field("function", 1, function, &FrameFacts::function),
        field("item count", 1, number, &FrameFacts::itemCount),
    };
    return fields;
}

const FrameFields &requestItemFields()
{
    static const FrameFields fields = {
        fixed("item kind", 1, 0x12, "a variable"),
        fixed("item length", 1, 0x0a, "10 bytes follow"),
        fixed("syntax", 1, 0x10, "area and address"),
        itemField("transport size", 1, transportSize, &WireItem::transportSize),
        itemField("element count", 2, elementCount, &WireItem::count),
        field("data block", 2, dataBlock),
        itemField("area", 1, area, &WireItem::area),
        itemField("address", 3, itemAddress, &WireItem::address),
    };
    return fields;
}

const FrameFields &writtenDataFields()
{
    static const FrameFields fields = {
        fixed("reserved", 1, 0, ""),
        field("data kind", 1, dataKind, &FrameFacts::dataKind),
        field("data length", 2, number, &FrameFacts::dataLength),
    };
    return fields;
}

const FrameFields &readDataFields()
{
    static const FrameFields fields = {
        field("return code", 1, returnCode),
        field("data kind", 1, dataKind, &FrameFacts::dataKind),
        field("data length", 2, number, &FrameFacts::dataLength),
    };
    return fields;
}

const FrameFields &fillerFields()
{
    static const FrameFields fields = {
        fixed("filler", 1, 0, "to an even number of bytes"),
    };
    return fields;
}

const FrameFields &returnCodeFields()
{
    static const FrameFields fields = {
        field("return code", 1, returnCode),
    };
    return fields;
}

Meaning meaningOf(const FrameField &field, const FrameFacts &facts, int value)
{
    if (field.meaning)
        return field.meaning(facts, value);
    if (value == field.always)
        return {field.text, false};
    return {"should be " + QString::number(field.always, 16).rightJustified(2 * field.size, '0').toUpper(),
            true};
}

QString elementAddress(const WireItem &item, int index)
{
    const QString known = areaLetters(uchar(item.area));
    const QString letters = known.isEmpty() ? "area " + hexByte(uchar(item.area)) + ' ' : known;
    if (isObjectArea(uchar(item.area)))
        return letters + QString::number(item.address + index);
    const int first = item.address / 8;
    if (item.transportSize == kBitElement) {
        const int bit = item.address % 8 + index;
        return QString("%1%2.%3").arg(letters).arg(first + bit / 8).arg(bit % 8);
    }
    const int width = dataRecord(item).size;
    const QString widthLetter = width == 4 ? "D" : width == 2 ? "W" : "B";
    return letters + widthLetter + QString::number(first + index * width);
}

DataRecord dataRecord(const WireItem &item)
{
    switch (item.transportSize) {
    case kWordElement:
        return {2, 0};
    case kDoubleWordElement:
        return {4, 0};
    case kTimerArea:
    case kHighSpeedCounterArea:
        return {5, 1};
    case kCounterArea:
        return {3, 1};
    default:
        return {1, 0};
    }
}

} // namespace host
