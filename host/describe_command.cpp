// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "describe_command.h"

#include "exit_code.h"
#include "line_settings.h"
#include "plugin.h"

#include <QStringList>

#include <cstdio>

namespace host {

namespace {

void describe(const char *label, const QString &text)
{
    std::printf("%-20s %s\n", label, qUtf8Printable(text));
}

QString bitsText(int flags)
{
    QStringList bits;
    for (int i = 0; i < 31; ++i)
        if (flags >> i & 1)
            bits << QString::number(1 << i) + (1 << i == kRs485Port ? " (RS-485)" : "");
    return bits.size() == 1 ? bits.first() : QString("%1 = %2").arg(flags).arg(bits.join(" + "));
}

void describeIdentity(const Plugin &plugin)
{
    DriverInterface &driver = plugin.driver();
    describe("name", driver.name());
    describe("vendor", driver.vender());
    describe("version", driver.getVersionNumber());
    describe("interface", DRIVER_INTERFACE_ID);
    describe("plug-in", plugin.file());
}

void describeDefaults(const Plugin &plugin)
{
    const std::unique_ptr<DeviceSetting> line = plugin.serialDefaults();
    describe("port kind", bitsText(line->type));
    describe("port name", line->string);
    describe("serial line", lineText(lineSettings(*line)));
    describe("serial line as text", plugin.driver().getStringBasedDefaultDriverSetting());

    const std::unique_ptr<DriverSetting> setting = plugin.driverDefaults();
    describe("time-out", QString("%1 ms").arg(setting->timeout));
    describe("retries", QString::number(setting->retry));
    describe("station", QString::number(setting->stationid));
    describe("delay", QString("%1 ms").arg(setting->delay));
}

void describeSizes(DriverInterface &driver)
{
    describe("total size", QString("%1 bytes").arg(driver.totalSize()));
    describe("block size", QString("%1 bytes").arg(driver.getBlockAccessSize()));
    describe("bit block size", QString("%1 bits").arg(driver.getBitBlockAccessSize()));
    describe("communication", bitsText(driver.supportedCommunicationFlags()));
    describe("session commands", driver.isSupportSessionCommand() ? "supported" : "not supported");
}

} // namespace

int describeCommand(const Options &options)
{
    const Plugin plugin(findPlugin(options));
    describeIdentity(plugin);
    describeDefaults(plugin);
    describeSizes(plugin.driver());
    return int(ExitCode::Success);
}

} // namespace host
