// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/frames/wire.h"

#include <QHash>

namespace host {

namespace {

// What the length of an item's data counts.
enum class LengthUnit { Bits, Bytes };

struct DataKind
{
    QString name;
    LengthUnit unit;
};

DataKind dataKind(uchar kind)
{
    static const QHash<uchar, DataKind> kinds = {
        {0x00, {"no data", LengthUnit::Bytes}},
        {0x03, {"length in bits, one bit each", LengthUnit::Bits}},
        {0x04, {"length in bits", LengthUnit::Bits}},
        {0x05, {"length in bits", LengthUnit::Bits}},
        {0x06, {"length in bytes", LengthUnit::Bytes}},
        {0x07, {"length in bytes", LengthUnit::Bytes}},
        {0x09, {"length in bytes", LengthUnit::Bytes}},
    };
    return kinds.value(kind, {QString(), LengthUnit::Bytes});
}

} // namespace

uchar checkByte(const QByteArray &frame, int first, int last)
{
    uint sum = 0;
    for (int i = first; i < last; ++i)
        sum += uchar(frame.at(i));
    return uchar(sum & 0xff);
}

QString hexByte(uchar byte)
{
    static const char digits[] = "0123456789ABCDEF";
    const QChar text[] = {QLatin1Char(digits[byte >> 4]), QLatin1Char(digits[byte & 0xf])};
    return QString(text, 2);
}

int dataSize(uchar kind, int length)
{
    return dataKind(kind).unit == LengthUnit::Bits ? (length + 7) / 8 : length;
}

int wholeBytes(uchar kind, int length)
{
    return dataKind(kind).unit == LengthUnit::Bits ? length / 8 : length;
}

QString requestFunctionName(int nibble)
{
    static const QHash<int, QString> names = {
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
    return names.value(nibble);
}

QString answerFunctionName(int nibble)
{
    static const QHash<int, QString> names = {
        {0x0, "taken"},
        {0x1, "refused: user error"},
        {kNoResource, "refused: no resource"},
        {kNotActive, "refused: service not active"},
        {0x8, "answer with data"},
        {0x9, "no data to answer with"},
        {0xa, "answer with data of high priority"},
        {0xc, "answer with data, no resource"},
        {0xd, "answer with data of high priority, no resource"},
    };
    return names.value(nibble);
}

QString messageTypeName(uchar type)
{
    static const QHash<uchar, QString> names = {
        {kJob, "job: a request"},
        {0x02, "acknowledgement: an answer"},
        {kLastAnswerType, "acknowledgement with data: an answer"},
        {0x07, "user data"},
    };
    return names.value(type);
}

QString functionName(uchar function)
{
    static const QHash<uchar, QString> names = {
        {kReadVariable, "read variables"},
        {kWriteVariable, "write variables"},
        {0xf0, "set up communication"},
        {0x1a, "request download"},
        {0x1d, "start upload"},
        {0x28, "start, or another control"},
        {0x29, "stop"},
    };
    return names.value(function);
}

QString errorClassName(uchar errorClass)
{
    static const QHash<uchar, QString> names = {
        {0x00, "no error"},
        {0x81, "the request does not fit the relationship"},
        {0x82, "the object's definition"},
        {0x83, "no resources"},
        {0x84, "the service failed"},
        {0x85, "the PDU is wrong"},
        {0x87, "no access"},
    };
    return names.value(errorClass);
}

QString dataKindName(uchar kind)
{
    return dataKind(kind).name;
}

QString elementName(uchar transportSize)
{
    static const QHash<uchar, QString> names = {{kBitElement, "bit"},
                                                {kByteElement, "byte"},
                                                {kWordElement, "word"},
                                                {kDoubleWordElement, "dword"},
                                                {kCounterArea, "counter"},
                                                {kTimerArea, "timer"},
                                                {kHighSpeedCounterArea, "high-speed counter"}};
    return names.value(transportSize);
}

QString areaLetters(uchar code)
{
    static const QHash<uchar, QString> letters = {{0x81, "I"},
                                                  {0x82, "Q"},
                                                  {0x83, "M"},
                                                  {0x84, "V"},
                                                  {0x04, "S"},
                                                  {0x05, "SM"},
                                                  {0x06, "AI"},
                                                  {0x07, "AQ"},
                                                  {kCounterArea, "C"},
                                                  {kTimerArea, "T"},
                                                  {kHighSpeedCounterArea, "HC"}};
    return letters.value(code);
}

bool isObjectArea(uchar code)
{
    return code == kCounterArea || code == kTimerArea || code == kHighSpeedCounterArea;
}

QString returnCodeName(uchar code)
{
    static const QHash<uchar, QString> names = {{0x01, "hardware fault"},
                                                {0x03, "access not allowed"},
                                                {0x05, "no such address"},
                                                {0x06, "type not supported"},
                                                {0x0a, "no such object, or wrong length"},
                                                {kDone, "done"}};
    return names.value(code, "unknown reason");
}

} // namespace host
