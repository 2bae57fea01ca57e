// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/diagnosis/plugin_description.h"

#include "host/base/filled.h"
#include "host/port/line_settings.h"

#include <QString>

#include <memory>

namespace host {

namespace {

constexpr int kLabelWidth = 20;

// Returns the kinds of port that a set of bits names, "64 (RS-485)".
QString bitsText(int flags)
{
    QStringList bits;
    for (int i = 0; i < 31; ++i)
        if (flags >> i & 1)
            bits << QString::number(1 << i) + (1 << i == kRs485Port ? " (RS-485)" : "");
    return bits.size() == 1 ? bits.first() : filled("%1 = %2", flags, bits.join(" + "));
}

Json lineFields(const LineSettings &line)
{
    return {{"baud", line.baud},
            {"parity", jsonText(parityName(line.parity))},
            {"databits", line.dataBits},
            {"stopbits", line.stopBits}};
}

} // namespace

void Description::add(const char *field, const Json &value, const QString &label, const QString &text)
{
    all[field] = value;
    texts << label.leftJustified(kLabelWidth) + ' ' + text;
}

void Description::add(const char *field, const QString &label, const QString &text)
{
    add(field, jsonText(text), label, text);
}

void Description::add(const char *field, const QString &label, int number, const QString &unit)
{
    add(field, number, label, QString::number(number) + unit);
}

void addIdentity(Description &description, const Plugin &plugin)
{
    DriverInterface &driver = plugin.driver();
    description.add("name", "name", driver.name());
    description.add("vendor", "vendor", driver.vender());
    description.add("version", "version", driver.getVersionNumber());
    description.add("interface", "interface", DRIVER_INTERFACE_ID);
    description.add("plugin", "plug-in", plugin.file());
}

void addDefaults(Description &description, const Plugin &plugin)
{
    const std::unique_ptr<DeviceSetting> device = plugin.serialDefaults();
    const LineSettings line = lineSettings(*device);
    description.add("portKind", device->type, "port kind", bitsText(device->type));
    description.add("portName", "port name", device->string);
    description.add("line", lineFields(line), "serial line", lineText(line));
    description.add("lineText", "serial line as text", plugin.driver().getStringBasedDefaultDriverSetting());

    const std::unique_ptr<DriverSetting> setting = plugin.driverDefaults();
    description.add("timeout", "time-out", setting->timeout, " ms");
    description.add("retries", "retries", setting->retry);
    description.add("station", "station", setting->stationid);
    description.add("delay", "delay", setting->delay, " ms");
}

void addSizes(Description &description, const Plugin &plugin)
{
    DriverInterface &driver = plugin.driver();
    const int flags = driver.supportedCommunicationFlags();
    const bool hasSessions = driver.isSupportSessionCommand();
    description.add("totalSize", "total size", driver.totalSize(), " bytes");
    description.add("blockSize", "block size", driver.getBlockAccessSize(), " bytes");
    description.add("bitBlockSize", "bit block size", driver.getBitBlockAccessSize(), " bits");
    description.add("communication", flags, "communication", bitsText(flags));
    description.add("sessionCommands", hasSessions, "session commands",
                    hasSessions ? "supported" : "not supported");
}

} // namespace host
