// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "controller.h"

namespace {

const char kAcknowledgement = '\xe5';
const char kEnd = '\x16';

char sumOf(const QByteArray &bytes)
{
    int sum = 0;
    for (int i = 0; i < int(bytes.size()); ++i)
        sum += bytes.at(i);
    return char(sum);
}

QByteArray word(int value)
{
    return QByteArray(1, char(value >> 8)) + char(value);
}

// A negative frame, or a poll.
QByteArray shortFrame(int destination, int source, int functionCode)
{
    const QByteArray middle = QByteArray(1, char(destination)) + char(source) + char(functionCode);
    return "\x10" + middle + sumOf(middle) + kEnd;
}

QByteArray longFrame(const QByteArray &counted)
{
    const QByteArray length(2, char(counted.size()));
    return "\x68" + length + "\x68" + counted + sumOf(counted) + kEnd;
}

} // namespace

QByteArray answerFrame(int station, int reference, const QByteArray &item, int errors)
{
    const QByteArray front = QByteArray(1, '\0') + char(station) + '\x08' + "\x32\x03" + word(0);
    const int dataLength = int(item.size()) - 2;
    return longFrame(front + word(reference) + word(2) + word(dataLength) + word(errors) + item);
}

CannedController::CannedController(int itsStation, const QList<Reply> &itsReplies)
    : station(itsStation), replies(itsReplies), current(-1)
{
}

QByteArray CannedController::replyTo(const QByteArray &frame)
{
    if (frame.startsWith('\x10') && frame == shortFrame(station, 0, 0x5c)) {
        const QByteArray answer = owed;
        owed.clear();
        return answer;
    }
    const int headSize = 7;
    const QByteArray counted = frame.mid(4, int(frame.size()) - 6);
    const bool isWhole = frame.size() > headSize && frame == longFrame(counted);
    return isWhole && counted.at(0) == char(station) ? replyToRequest(frame) : QByteArray();
}

QByteArray CannedController::replyToRequest(const QByteArray &frame)
{
    const Reply &reply = replies.at(current);
    owed.clear();
    if (reply.refusal != 0)
        return shortFrame(0, station, reply.refusal);
    const int high = static_cast<unsigned char>(frame.at(kReferencePlace));
    const int low = static_cast<unsigned char>(frame.at(kReferencePlace + 1));
    owed = answerFrame(station, high * 256 + low, reply.item, reply.errors);
    return QByteArray(1, kAcknowledgement);
}
