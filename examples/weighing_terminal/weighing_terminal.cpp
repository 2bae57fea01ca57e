// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "weighing_terminal.h"

#include <abstract_device_interface.h>
#include <device_setting.h>
#include <driver_setting.h>
#include <tools/address_text.h>
#include <tools/byte_order.h>
#include <tools/checksum.h>
#include <tools/pack.h>
#include <tools/receive.h>
#include <tools/sizes.h>
#include <tools/timing.h>

#include <algorithm>

namespace {

const int kStart = 0x02;
const char kAnswer = 0x06;
const char kRefusal = 0x15;

const int kRefusalSize = 5;
const int kAnswerSize = 10;
const int kValuePlace = 4; // in an answer

const unsigned char *bytesOf(const QByteArray &bytes)
{
    return reinterpret_cast<const unsigned char *>(bytes.constData());
}

QByteArray withCheck(const QByteArray &frame)
{
    return frame + ByteArrayPack("v", CRC16Calculate(bytesOf(frame), int(frame.size())));
}

bool hasGoodCheck(const QByteArray &frame)
{
    return withCheck(frame.left(frame.size() - 2)) == frame;
}

// N1 is the net weight on scale 1. 0 when there is no such place.
char quantityOf(const QString &address)
{
    const QByteArray prefix = ExtractPrefixSymbol(address);
    return prefix == "G" || prefix == "N" || prefix == "T" ? prefix.at(0) : '\0';
}

int scaleOf(const QString &address)
{
    const int scale = ExtractPLCDeviceAddress(address, 10);
    return scale >= 1 && scale <= 4 ? scale : 0;
}

} // namespace

QByteArray WeighingTerminal::read(AbstractDeviceInterface *dev, const CommunicatorCommand &cmd)
{
    return request(dev, cmd, 'R', QByteArray());
}

int WeighingTerminal::write(AbstractDeviceInterface *dev, const CommunicatorCommand &cmd,
                            const QByteArray &data)
{
    const QByteArray value = toBigEndianULongArray(ToSafeData(cmd, data));
    return request(dev, cmd, 'W', value).isEmpty() ? 0 : 1;
}

// The value that the terminal has afterwards, in host byte order; empty on failure.
QByteArray WeighingTerminal::request(AbstractDeviceInterface *dev, const CommunicatorCommand &cmd,
                                     char command, const QByteArray &value)
{
    const char quantity = quantityOf(cmd.address);
    const int scale = scaleOf(cmd.address);
    if (cmd.dataType != kDoubleWords || cmd.count != 1 || !quantity || !scale)
        return failed("the terminal has one double word each in G1 to G4, N1 to N4 and T1 to T4");

    const QByteArray frame =
        withCheck(ByteArrayPack("CCCCC", kStart, dev->stationId(), command, quantity, scale) + value);
    QByteArray result;
    for (int left = std::max(dev->retry(), 0); left >= 0 && result.isEmpty(); --left) {
        HRSleep(static_cast<unsigned long>(std::max(dev->delay(), 0)));
        result = attempt(dev, frame);
    }
    return result;
}

QByteArray WeighingTerminal::attempt(AbstractDeviceInterface *dev, const QByteArray &frame)
{
    lastError.clear();
    dev->setOption(kClearInput, 0);
    dev->send(bytesOf(frame), int(frame.size()));

    // A refusal is shorter than an answer, and waiting for more than it has would take a whole time-out.
    QByteArray answer = receiveExactly(dev, kRefusalSize).bytes;
    if (answer.isEmpty())
        return failed("the terminal does not answer");
    if (answer.startsWith(kRefusal) && answer.size() == kRefusalSize)
        return failed(hasGoodCheck(answer)
                          ? QString("the terminal refuses, reason %1").arg(bytesOf(answer)[2])
                          : QString("bad check value"));
    if (answer.size() == kRefusalSize)
        answer += receiveExactly(dev, kAnswerSize - kRefusalSize).bytes;
    if (answer.size() < kAnswerSize)
        return failed("the answer ends early");
    if (!hasGoodCheck(answer))
        return failed("bad check value");
    // station, quantity and scale as in the request, which has the command between them
    if (answer[0] != kAnswer || answer[1] != frame[1] || answer.mid(2, 2) != frame.mid(3, 2))
        return failed("an answer to another request");
    return fromBigEndianULongArray(bytesOf(answer) + kValuePlace, 1);
}

QByteArray WeighingTerminal::failed(const QString &reason)
{
    lastError = reason;
    return QByteArray();
}

DeviceSetting *WeighingTerminal::getDefaultSerialDeviceSetting()
{
    return new DeviceSetting(kRs485Port, "COM1", 19200, 8, kOneStopBit, kNoParity);
}

DriverSetting *WeighingTerminal::getDefaultDriverSetting()
{
    return new DriverSetting(300, 2, 5, 0);
}

int WeighingTerminal::supportedCommunicationFlags()
{
    return kRs485Port;
}

DriverInterface *CreateDriver()
{
    return new WeighingTerminal;
}
