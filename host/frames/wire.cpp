// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/frames/wire.h"

#include <QHash>

namespace host {

uchar checkByte(const QByteArray &frame, int first, int last)
{
    uint sum = 0;
    for (int i = first; i < last; ++i)
        sum += uchar(frame.at(i));
    return uchar(sum & 0xff);
}

QString hexByte(uchar byte)
{
    return QString("%1").arg(uint(byte), 2, 16, QChar('0')).toUpper();
}

QString elementName(uchar transportSize)
{
    static const QHash<uchar, QString> names = {{kBitElement, "bit"},
                                                {0x02, "byte"},
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
