// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The settings records from a stream of any bytes, as a damaged project file has them. What was read can be
// written, and reads back the same.

#include "device_setting.h"
#include "driver_setting.h"

#include <QByteArray>
#include <QDataStream>

#include <cstdlib>

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

template <typename Record> void readAndWrite(const QByteArray &bytes, const Record &blank)
{
    const QByteArray once = written(readFrom(bytes, blank));
    if (written(readFrom(once, blank)) != once)
        abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), int(size));
    readAndWrite(bytes, DriverSetting(500, 3, 2, 0));
    readAndWrite(bytes, DeviceSetting(kRs485Port, QString(), 9600, 8, kOneStopBit, kEvenParity));
    return 0;
}
