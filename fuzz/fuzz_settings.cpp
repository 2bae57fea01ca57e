// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The settings records from a stream of any bytes, as a damaged project file has them: what was read is
// written, and reads back the same; the addresses are set one by one, inside the list alone.
//
//    input := index(1) stream

#include "fuzzing.h"

#include "device_setting.h"
#include "driver_setting.h"

#include <QDataStream>

using fuzz::require;

namespace {

template <typename Record> QByteArray written(const Record &record)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << record;
    return bytes;
}

template <typename Record> Record readFrom(const QByteArray &bytes, Record record)
{
    QDataStream stream(bytes);
    stream >> record;
    return record;
}

template <typename Record> Record readAndWrite(const QByteArray &bytes, const Record &blank)
{
    const Record record = readFrom(bytes, blank);
    const QByteArray once = written(record);
    require(written(readFrom(once, record)) == once, "what was written reads back the same");
    record.dump();
    return record;
}

void useDriverSetting(const QByteArray &bytes)
{
    const DriverSetting setting = readAndWrite(bytes, DriverSetting(500, 3, 2, 0));
    DriverSetting other(1, 2, 3, 4, QString(), 5, "text", true);
    other.copy(setting);
    require(written(other) == written(setting) && other.text == setting.text && other.flag,
            "everything is copied but the flag");
    require(setting.text.isEmpty() && !DriverSetting(1, 2, 3, 4, QString(), 5).flag,
            "text and flag are not streamed");
}

void useDeviceSetting(const QByteArray &bytes, int index)
{
    DeviceSetting setting =
        readAndWrite(bytes, DeviceSetting(kRs485Port, QString(), 9600, 8, kOneStopBit, kEvenParity));
    require(setting.extraText.isEmpty() && setting.socketList.size() <= bytes.size() + 1,
            "a list is no longer than its stream");
    const int entry = index == -1 ? setting.currentIPIndex : index;
    const bool isThere = entry >= 0 && entry < setting.socketList.size();
    setting.setCurrentIPIndex(index);
    setting.setSocketIP("10.0.0.1", index);
    setting.setPort(102, index);
    require((setting.socketIP(index) == "10.0.0.1") == isThere, "an address inside the list is set");
    require((setting.port(index) == 102) == isThere, "a port inside the list is set");

    DeviceSetting copy(kRs485Port, "COM1", 1, 2, 3, 4, 5, "extra");
    QList<QPair<QString, QString>> texts;
    for (const QPair<QString, quint16> &socket : setting.socketList)
        texts.append(qMakePair(socket.first, QString::number(socket.second)));
    copy.setSocketData(texts);
    require(copy.socketList == setting.socketList, "addresses given as texts are the same");
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int * /*count*/, char *** /*arguments*/)
{
    fuzz::silenceMessages();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    fuzz::Input input(data, size);
    const int index = input.within(0, 10) - 2;
    const QByteArray stream = input.rest();
    useDriverSetting(stream);
    useDeviceSetting(stream, index);
    return 0;
}
