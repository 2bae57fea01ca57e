// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "liar.h"

namespace {

// Of a request's frame.
const int kFunction = 17;
const int kItemCount = 18;
const int kTransportSize = 22;
const int kElementCount = 23;
const int kShortestRequest = 25;

const int kReturnCode = 2;    // of an item
const int kRoomForData = 234; // bytes in an answer of one item
const int kRoomForCodes = 238;

char sumOf(const QByteArray &bytes)
{
    int sum = 0;
    for (const char byte : bytes)
        sum += byte;
    return char(sum);
}

QByteArray sealed(QByteArray frame)
{
    const int first = 4;
    const int checkSum = first + static_cast<unsigned char>(frame.at(1));
    if (checkSum < frame.size())
        frame[checkSum] = sumOf(frame.mid(first, checkSum - first));
    return frame;
}

int bytesOf(int transportSize)
{
    switch (transportSize) {
    case 0x06:
        return 4;
    case 0x04:
        return 2;
    case 0x1e:
        return 3;
    case 0x1f:
    case 0x20:
        return 5;
    default:
        return 1;
    }
}

} // namespace

Liar::Liar(int itsStation, quint32 seed, int itsHonesty)
    : station(itsStation), honesty(itsHonesty), random(seed)
{
}

QByteArray Liar::replyTo(const QByteArray &frame)
{
    if (frame.startsWith('\x68') && frame.size() >= kShortestRequest) {
        lastRequest = frame;
        return acknowledgement();
    }
    return lastRequest.isEmpty() ? noise() : answer();
}

QByteArray Liar::acknowledgement()
{
    if (!random.oneIn(honesty))
        return "\xe5";
    switch (random.below(6)) {
    case 0:
        return QByteArray();
    case 1:
        return noise();
    case 2:
        return "\xe5" + noise();
    case 3:
        return mutated(negativeFrame());
    default:
        return negativeFrame();
    }
}

// 10 DA SA FC FCS 16, now and then from somebody else, or with its check sum above 255.
QByteArray Liar::negativeFrame()
{
    const int functions[] = {0, 1, 2, 2, 3, 3, 4, 0xff};
    const int sender = random.oneIn(8) ? random.below(0x100) : station;
    const int receiver = random.oneIn(8) ? random.below(0x100) : 0;
    const QByteArray middle = QByteArray(1, char(receiver)) + char(sender) + char(random.oneOf(functions));
    return "\x10" + middle + sumOf(middle) + '\x16';
}

QByteArray Liar::answer()
{
    const int reference = requestWord(kReferencePlace);
    if (!random.oneIn(honesty))
        return answerFrame(station, reference, rightItem());
    switch (random.below(9)) {
    case 0:
        return QByteArray();
    case 1:
        return noise();
    case 2:
        return framedNoise();
    case 3:
        return negativeFrame();
    case 4:
        return answerFrame(station, reference, rightItem(), random.below(0x10000));
    case 5:
        return answerFrame(station, reference, wrongItem());
    case 6:
        return mutated(answerFrame(station, reference, wrongItem()));
    default:
        return mutated(answerFrame(station, reference, rightItem()));
    }
}

QByteArray Liar::noise()
{
    const int favourites[] = {0x00, 0x10, 0x16, 0x68, 0xe5};
    QByteArray bytes = random.bytes(random.below(random.oneIn(4) ? 262 : 12));
    if (random.oneIn(2))
        bytes.prepend(char(random.oneOf(favourites)));
    return bytes;
}

QByteArray Liar::framedNoise()
{
    const QByteArray counted = QByteArray(1, '\0') + char(station) + '\x08' + random.bytes(random.below(253));
    const QByteArray length(2, char(counted.size()));
    return sealed("\x68" + length + "\x68" + counted + '\0' + '\x16');
}

// Whatever was asked, as far as it fits into an answer.
QByteArray Liar::rightItem()
{
    if (request(kFunction) == 5)
        return QByteArray("\5") + char(request(kItemCount)) +
               QByteArray(qMin(request(kItemCount), kRoomForCodes), '\xff');
    return QByteArray("\4\1\xff") + rightData(request(kTransportSize), requestWord(kElementCount));
}

QByteArray Liar::rightData(int transportSize, int count)
{
    const int size = bytesOf(transportSize);
    const QByteArray data = random.bytes(size * qMin(count, kRoomForData / size));
    const bool isMemory = transportSize < 0x1e;
    const int length = int(data.size()) * (isMemory ? 8 : 1);
    return QByteArray(isMemory ? "\4" : "\x09") + char(length >> 8) + char(length) + data;
}

// Wrong on purpose in one field: function, number of items, code, kind of data, length; or without its end.
QByteArray Liar::wrongItem()
{
    const int codes[] = {0x00, 0x01, 0x03, 0x05, 0x06, 0x0a, 0x0b, 0xfe};
    QByteArray item = rightItem();
    const int place = random.below(int(item.size()) + 4);
    if (random.oneIn(3) && item.size() > kReturnCode)
        item[kReturnCode] = char(random.oneOf(codes));
    else if (place < item.size())
        item[place] = char(random.below(0x100));
    return random.oneIn(4) ? item.left(random.below(int(item.size()) + 1)) : item;
}

QByteArray Liar::mutated(QByteArray frame)
{
    for (int i = random.between(1, 3); i > 0; --i) {
        const int limit = random.oneIn(2) ? int(frame.size()) : qMin(25, int(frame.size()));
        frame[random.below(limit)] = char(random.below(0x100));
    }
    if (random.oneIn(4))
        frame.chop(random.below(int(frame.size())));
    return random.oneIn(4) || frame.size() < 2 ? frame : sealed(frame);
}
