// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/frames/layout.h"

#include "host/base/filled.h"
#include "host/base/options.h"
#include "host/text/number_text.h"

namespace host {

namespace {

// Texts for the values of fields. Each says whether the value is wrong in this place; a code that nobody
// knows is told as such and is no fault, for a controller may speak of more than is known here.

FieldMeaning known(const QString &name)
{
    return {name.isEmpty() ? "not known" : name, false};
}

FieldMeaning number(const FrameFacts & /*facts*/, int value)
{
    return {QString::number(value), false};
}

FieldMeaning byteCount(const FrameFacts & /*facts*/, int value)
{
    return {counted(value, "byte"), false};
}

FieldMeaning station(const FrameFacts & /*facts*/, int value)
{
    if (value == kBroadcast)
        return {"all stations", false};
    return {QString("station %1").arg(value), value > kLastStation};
}

FieldMeaning functionCode(const FrameFacts & /*facts*/, int value)
{
    const int nibble = value & kFunctionNibble;
    if (!(value & kRequestBit))
        return known(answerFunctionName(nibble));
    FieldMeaning meaning = known(requestFunctionName(nibble));
    if (value & kSequenceCounts)
        meaning.text += QString("; sequence bit %1").arg((value & kSequenceBit) ? 1 : 0);
    else if (value & kSequenceBit)
        meaning.text += "; begins a sequence";
    return meaning;
}

FieldMeaning frameLength(const FrameFacts & /*facts*/, int value)
{
    if (value < kAddressesSize)
        return {"too short: three bytes at least", true};
    return {counted(value, "byte") + " from the destination to the end of the PDU", false};
}

FieldMeaning lengthAgain(const FrameFacts &facts, int value)
{
    if (value == facts.length)
        return {"the same", false};
    return {"should be the same: " + hexByte(uchar(facts.length)), true};
}

FieldMeaning checkSum(const FrameFacts &facts, int value)
{
    const uchar right = checkByte(facts.frame, facts.checkedFrom, facts.offset);
    if (right == value)
        return {"right", false};
    return {"should be " + hexByte(right), true};
}

FieldMeaning messageType(const FrameFacts & /*facts*/, int value)
{
    return known(messageTypeName(uchar(value)));
}

FieldMeaning dataLength(const FrameFacts &facts, int value)
{
    const int header = facts.messageType == kJob ? kHeaderSize : kHeaderSize + kErrorSize;
    const int behindHeader = facts.length - kAddressesSize - header;
    const int told = facts.parameterLength + value;
    if (told == behindHeader || facts.messageType > kLastAnswerType)
        return {counted(value, "byte"), false};
    return {filled("%1, with the parameters %2, but %3 stand behind the header", counted(value, "byte"), told,
                   behindHeader),
            true};
}

FieldMeaning errorClass(const FrameFacts & /*facts*/, int value)
{
    return known(errorClassName(uchar(value)));
}

FieldMeaning errorCode(const FrameFacts &facts, int value)
{
    if (facts.errorClass == 0 && value == 0)
        return {"no error", false};
    return {"the reason within its class", false};
}

FieldMeaning function(const FrameFacts & /*facts*/, int value)
{
    return known(functionName(uchar(value)));
}

FieldMeaning transportSize(const FrameFacts & /*facts*/, int value)
{
    return known(elementName(uchar(value)));
}

FieldMeaning elementCount(const FrameFacts &facts, int value)
{
    const QString name = elementName(uchar(facts.item.transportSize));
    return {counted(value, name.isEmpty() ? "element" : name), false};
}

FieldMeaning dataBlock(const FrameFacts & /*facts*/, int value)
{
    if (value == 0)
        return {"none", false};
    return {value == kVariableMemoryBlock ? "1, variable memory" : QString::number(value), false};
}

FieldMeaning area(const FrameFacts & /*facts*/, int value)
{
    return known(areaLetters(uchar(value)));
}

FieldMeaning itemAddress(const FrameFacts &facts, int value)
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

FieldMeaning returnCode(const FrameFacts & /*facts*/, int value)
{
    return {returnCodeName(uchar(value)), false};
}

FieldMeaning dataKind(const FrameFacts & /*facts*/, int value)
{
    return known(dataKindName(uchar(value)));
}

// A field that always has the same value, which means always the same.
FrameField fixed(const char *name, int size, int always, const char *text, int FrameFacts::*fact = nullptr)
{
    return {name, size, fact, nullptr, nullptr, always, text};
}

// A field whose value tells something of its own.
FrameField field(const char *name, int size, MeaningOfValue meaning, int FrameFacts::*fact = nullptr)
{
    return {name, size, fact, nullptr, meaning, 0, ""};
}

// A field that says where an item of a request lies.
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

// A short frame asks or refuses: all that it says is in its function code.
const FrameFields &shortFrameHead()
{
    static const FrameFields fields = {
        fixed("start", 1, kShortFrame, "a frame without data"),
        field("destination", 1, station, &FrameFacts::destination),
        field("source", 1, station, &FrameFacts::source),
        field("function code", 1, functionCode, &FrameFacts::functionCode),
    };
    return fields;
}

// The start and the length stand twice, so that a damaged length does not mislead the receiver.
const FrameFields &longFrameHead()
{
    static const FrameFields fields = {
        fixed("start", 1, kLongFrame, "a frame with data"),
        field("length", 1, frameLength, &FrameFacts::length),
        field("length again", 1, lengthAgain, &FrameFacts::lengthAgain),
        fixed("start again", 1, kLongFrame, "", &FrameFacts::startAgain),
        field("destination", 1, station, &FrameFacts::destination),
        field("source", 1, station, &FrameFacts::source),
        field("function code", 1, functionCode, &FrameFacts::functionCode),
    };
    return fields;
}

const FrameFields &frameTail()
{
    static const FrameFields fields = {
        field("check sum", 1, checkSum, &FrameFacts::checkSum),
        fixed("end", 1, kEndOfFrame, "end of the frame", &FrameFacts::end),
    };
    return fields;
}

// The reference is the number of the request; its answer has the same one. Both lengths say how what stands
// behind the header is divided, without which nobody could tell parameters from data.
const FrameFields &headerFields()
{
    static const FrameFields fields = {
        fixed("protocol", 1, kProtocol, "S7"),
        field("message type", 1, messageType, &FrameFacts::messageType),
        fixed("reserved", 2, 0, ""),
        field("reference", 2, number, &FrameFacts::reference),
        field("parameter length", 2, byteCount, &FrameFacts::parameterLength),
        field("data length", 2, dataLength),
    };
    return fields;
}

// A class other than 0 refuses the request as a whole, and nothing need stand behind it.
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

// The address is the number of a bit, counted from the beginning of the area, whatever the elements are; that
// of an object is its number.
const FrameFields &requestItemFields()
{
    static const FrameFields fields = {
        fixed("item kind", 1, kVariableItem, "a variable"),
        fixed("item length", 1, kItemLength, "10 bytes follow"),
        fixed("syntax", 1, kAreaSyntax, "area and address"),
        itemField("transport size", 1, transportSize, &WireItem::transportSize),
        itemField("element count", 2, elementCount, &WireItem::count),
        field("data block", 2, dataBlock),
        itemField("area", 1, area, &WireItem::area),
        itemField("address", 3, itemAddress, &WireItem::address),
    };
    return fields;
}

// Where an answer has its return code, data to be written have a byte that means nothing.
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
        field("return code", 1, returnCode, &FrameFacts::returnCode),
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

// The answer to a write has one return code for every item.
const FrameFields &returnCodeFields()
{
    static const FrameFields fields = {
        field("return code", 1, returnCode, &FrameFacts::returnCode),
    };
    return fields;
}

int readField(const FrameField &field, FrameFacts &facts)
{
    int value = 0;
    for (int i = 0; i < field.size; ++i)
        value = value << 8 | uchar(facts.frame.at(facts.offset + i));
    if (field.fact)
        facts.*field.fact = value;
    if (field.itemFact)
        facts.item.*field.itemFact = value;
    return value;
}

FieldMeaning meaningOf(const FrameField &field, const FrameFacts &facts, int value)
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
        return filled("%1%2.%3", letters, first + bit / 8, bit % 8);
    }
    const int width = dataRecord(item).size;
    const QString widthLetter = width == 4 ? "D" : width == 2 ? "W" : "B";
    return letters + widthLetter + QString::number(first + index * width);
}

// A timer's and a high-speed counter's value has four bytes, a counter's two; a status byte stands before
// each. Everything else is the value alone, and bits come one per byte.
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
