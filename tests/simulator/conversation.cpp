// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "conversation.h"

#include <QByteArray>

#include <cstdint>
#include <optional>

namespace {

QString number(int value, int bytes)
{
    return QString::number(value, 16).rightJustified(2 * bytes, QLatin1Char('0'));
}

int byteCount(const QString &hexText)
{
    return int(plain(hexText).size()) / 2;
}

QString jobAnswer(const Partner &partner, int function, const QString &items, const QString &data)
{
    const int count = byteCount(items) / 12;
    const QString call = number(function, 1) + number(count, 1);
    const QString pdu =
        "320100000001" + number(2 + byteCount(items), 2) + number(byteCount(data), 2) + call + items + data;
    const QString answer = answerTo(partner, pdu);
    const QString content = answer.mid(28);
    const QString head = "320300000001"
                         "0002" +
                         number(byteCount(content), 2) + "0000" + call;
    return answer.startsWith(head) ? content : answer;
}

} // namespace

QString plain(const QString &hexText)
{
    return QString(hexText).remove(QLatin1Char(' ')).toLower();
}

sim::Bytes frameBytes(const QString &hexText)
{
    const QByteArray decoded = bytes(hexText.toLatin1().constData());
    return sim::Bytes(decoded.begin(), decoded.end());
}

QString hex(const sim::Bytes &frame)
{
    return hex(QByteArray(reinterpret_cast<const char *>(frame.data()), int(frame.size())));
}

QString say(const Partner &partner, const QString &hexText)
{
    return hex(partner.hear(frameBytes(hexText)));
}

QString answerTo(const Partner &partner, const QString &pdu)
{
    const QString acknowledgement = hex(partner.hear(sim::sd2(2, 0, 0x6C, frameBytes(pdu))));
    if (acknowledgement != "e5")
        return "instead of the acknowledgement: " + acknowledgement;
    const QString answer = say(partner, "10 02 00 5c 5e 16");
    sim::FrameReader reader;
    for (const uint8_t byte : frameBytes(answer))
        reader.push(byte);
    const std::optional<sim::Frame> frame = reader.next();
    const bool good = frame && frame->hasPdu && frame->destination == 0 && frame->source == 2 &&
                      frame->function == 0x08 && hex(frame->wire) == answer;
    return good ? hex(frame->pdu) : "instead of the answer: " + answer;
}

QString readItems(const Partner &partner, const QString &items)
{
    return jobAnswer(partner, 0x04, items, QString());
}

QString writeItems(const Partner &partner, const QString &items, const QString &data)
{
    return jobAnswer(partner, 0x05, items, data);
}
