// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "model_request.h"

namespace {

// The low bytes of value, most significant first.
QByteArray bigEndian(quint64 value, int size)
{
    QByteArray field(size, '\0');
    for (int i = size; i > 0; value >>= 8)
        field[--i] = char(value);
    return field;
}

QByteArray byteField(int value)
{
    return bigEndian(quint64(value), 1);
}

char sumOf(const QByteArray &frame, int first, int count)
{
    unsigned int sum = 0;
    for (int i = first; i < first + count; ++i)
        sum += static_cast<unsigned char>(frame.at(i));
    return char(sum);
}

// The length byte wraps, and the check sum covers only as many bytes as it says.
QByteArray framed(int station, const QByteArray &pdu)
{
    const int length = (int(pdu.size()) + 3) % 256;
    const QByteArray lengthField = byteField(length);
    QByteArray frame =
        "\x68" + lengthField + lengthField + "\x68" + byteField(station) + byteField(0) + "\x6c";
    frame += pdu;
    return frame + sumOf(frame, 4, length) + '\x16';
}

QByteArray job(const ModelRequestHead &head, const QByteArray &block, const QByteArray &data)
{
    const QByteArray pdu = bigEndian(0x32010000, 4) + bigEndian(quint64(head.reference), 2) +
                           bigEndian(quint64(block.size()), 2) + bigEndian(quint64(data.size()), 2) + block +
                           data;
    return framed(head.station, pdu);
}

QByteArray item(const ModelAddress &address, int transportSize, qint64 count, quint32 wireAddress)
{
    return bigEndian(0x120a10, 3) + byteField(transportSize) + bigEndian(quint64(count), 2) +
           bigEndian(quint64(address.dataBlock), 2) + byteField(address.area) + bigEndian(wireAddress, 3);
}

// Whole elements, each turned round; the last one filled with zero bytes.
QByteArray turned(const QByteArray &data, int width)
{
    QByteArray result;
    for (int first = 0; first < int(data.size()); first += width) {
        for (int i = first + width - 1; i >= first; --i)
            result += i < int(data.size()) ? data.at(i) : '\0';
    }
    return result;
}

QByteArray dataBlock(const QByteArray &payload)
{
    return bigEndian(0x0004, 2) + bigEndian(quint64(payload.size()) * 8, 2) + payload;
}

QByteArray writeFrame(const ModelRequestHead &head, const QByteArray &itemField, const QByteArray &payload)
{
    return job(head, bigEndian(0x0501, 2) + itemField, dataBlock(payload));
}

} // namespace

QByteArray modelPoll(int station)
{
    const QByteArray middle = byteField(station) + byteField(0) + "\x5c";
    return "\x10" + middle + sumOf(middle, 0, 3) + '\x16';
}

int modelTransportSize(const ModelAddress &address)
{
    if (address.isObject())
        return address.area;
    return address.width == 4 ? 6 : address.width == 2 ? 4 : 2;
}

QByteArray modelReadFrame(const ModelRequestHead &head, const ModelAddress &address, int transportSize,
                          qint64 count, quint32 place)
{
    return job(head, bigEndian(0x0401, 2) + item(address, transportSize, count, address.wire(place)),
               QByteArray());
}

QByteArray modelMemoryWriteFrame(const ModelRequestHead &head, const ModelAddress &address,
                                 const QByteArray &data)
{
    const QByteArray payload = turned(data, address.width);
    const int count = int(payload.size()) / address.width;
    return writeFrame(head, item(address, modelTransportSize(address), count, address.wire(address.number)),
                      payload);
}

QByteArray modelObjectWriteFrame(const ModelRequestHead &head, const ModelAddress &address,
                                 const QByteArray &data)
{
    const QByteArray front(address.prefix == "T" ? 3 : 1, '\0');
    const QByteArray values = turned(data, 2);
    QByteArray payload;
    for (int i = 0; i < int(values.size()); i += 2)
        payload += front + values.mid(i, 2);
    const int count = int(data.size()) / 2;
    return writeFrame(head, item(address, modelTransportSize(address), count, address.number), payload);
}

QByteArray modelBitWriteFrame(const ModelRequestHead &head, const ModelAddress &address,
                              const QByteArray &data)
{
    const int items = int(data.size()) % 256;
    QByteArray block = bigEndian(5, 1) + byteField(items);
    quint32 byte = address.byte;
    quint32 bit = address.bit;
    for (int i = 0; i < items; ++i) {
        block += item(address, 1, 1, byte * 8 + bit);
        ++bit;
        byte += bit > 7 ? 1 : 0;
        bit = bit > 7 ? 0 : bit;
    }
    QByteArray values;
    for (int i = 0; i < int(data.size()); ++i)
        values += (i ? QByteArray(1, '\0') : QByteArray()) + bigEndian(0x00030001, 4) + data.at(i);
    return job(head, block, values);
}
