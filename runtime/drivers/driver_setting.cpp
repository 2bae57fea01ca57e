// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "driver_setting.h"

#include "message_line.h"

DriverSetting::DriverSetting(int timeout_, int retry_, int stationid_, int delay_)
    : timeout(timeout_), retry(retry_), stationid(stationid_), delay(delay_), flag(false)
{
}

DriverSetting::DriverSetting(int timeout_, int retry_, int stationid_, int delay_, const QString &,
                             unsigned short)
    : timeout(timeout_), retry(retry_), stationid(stationid_), delay(delay_), flag(false)
{
}

DriverSetting::DriverSetting(int timeout_, int retry_, int stationid_, int delay_, const QString &,
                             unsigned short, const QString &text_, bool flag_)
    : timeout(timeout_), retry(retry_), stationid(stationid_), delay(delay_), text(text_), flag(flag_)
{
}

void DriverSetting::copy(const DriverSetting &other)
{
    timeout = other.timeout;
    retry = other.retry;
    stationid = other.stationid;
    delay = other.delay;
    text = other.text;
}

void DriverSetting::dump() const
{
    MessageLine line;
    line.add("timeout:", timeout).add("retry:", retry).add("stationid:", stationid).add("delay:", delay);
    line.write();
}

QDataStream &operator<<(QDataStream &stream, const DriverSetting &setting)
{
    return stream << setting.timeout << setting.retry << setting.stationid << setting.delay;
}

QDataStream &operator>>(QDataStream &stream, DriverSetting &setting)
{
    return stream >> setting.timeout >> setting.retry >> setting.stationid >> setting.delay;
}
