// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/diagnosis/settings_overview.h"

#include "common/duration.h"
#include "host/base/filled.h"

#include <QHash>
#include <QStringList>

#include <chrono>

namespace host {

namespace {

constexpr int kNameWidth = 11;
constexpr int kValueWidth = 16;

const char kUnknown[] = "unknown";

QString timeText(int milliseconds)
{
    return QString::fromStdString(common::durationText(std::chrono::milliseconds(milliseconds)));
}

QString orUnknown(const QString &text)
{
    return text.isEmpty() ? QString(kUnknown) : text;
}

// What the plug-in proposes for a setting.
QString proposal(const QString &name, const UnsetValues &unset)
{
    QHash<QString, QString> values;
    if (unset.line) {
        values["baud"] = QString::number(unset.line->baud);
        values["parity"] = parityName(unset.line->parity);
        values["databits"] = QString::number(unset.line->dataBits);
        values["stopbits"] = QString::number(unset.line->stopBits);
    }
    if (unset.timing) {
        values["station"] = QString::number(unset.timing->station);
        values["timeout"] = timeText(unset.timing->timeout);
        values["retries"] = QString::number(unset.timing->retries);
        values["delay"] = timeText(unset.timing->delay);
    }
    if (unset.isOtherDriver)
        values["raw-address"] = "true";
    return values.value(name, kUnknown);
}

// What this program takes for a setting; empty when that is the plug-in's to say.
QString ownDefault(const QString &name, const UnsetValues &unset)
{
    const QHash<QString, QString> values = {
        {"plugin", orUnknown(unset.plugin)},
        {"port", unset.port.isEmpty() ? "none" : unset.port},
        {"wait-lock", timeText(0)},
        {"format", "text"},
        {"trace", "none"},
        {"reconnect", "false"},
        {"rs485", "false"},
        {"low-latency", "false"},
        {"gap", "none"},
        {"echo", "false"},
        {"quiet", "false"},
        {"verbose", "false"},
        {"raw-address", unset.isOtherDriver ? QString() : "false"},
    };
    return values.value(name);
}

QString placeText(const UsedSetting &used, const QString &profile)
{
    return used.origin == SettingOrigin::Profile ? filled("%1, [%2]", used.place, profile) : used.place;
}

QString sourceName(SettingOrigin origin)
{
    switch (origin) {
    case SettingOrigin::CommandLine:
        return "command line";
    case SettingOrigin::Environment:
        return "environment";
    case SettingOrigin::Profile:
        return "profile";
    case SettingOrigin::File:
        return "file";
    case SettingOrigin::Nobody:
        break;
    }
    return "default";
}

// Whether it is set at the serial server, and nowhere else.
bool isServers(const QString &name, const UnsetValues &unset)
{
    return unset.isNetwork && QStringList({"baud", "parity", "databits", "stopbits"}).contains(name);
}

} // namespace

QList<SettingInForce> settingsInForce(const Options &options, const UnsetValues &unset)
{
    QList<SettingInForce> settings;
    for (const UsedSetting &used : options.settings) {
        const QString own = ownDefault(used.option, unset);
        if (used.origin != SettingOrigin::Nobody)
            settings << SettingInForce{used.option, used.value, sourceName(used.origin),
                                       placeText(used, options.profile.value_or(QString()))};
        else if (isServers(used.option, unset))
            settings << SettingInForce{used.option, kUnknown, "set at the serial server", {}};
        else if (own.isEmpty())
            settings << SettingInForce{used.option, proposal(used.option, unset), "plug-in", {}};
        else
            settings << SettingInForce{used.option, own, "default", {}};
    }
    return settings;
}

QString settingText(const SettingInForce &setting)
{
    const QString source =
        setting.place.isEmpty() ? setting.source : filled("%1, %2", setting.source, setting.place);
    return filled("  %1 %2 %3", setting.name.leftJustified(kNameWidth),
                  setting.value.leftJustified(kValueWidth), source);
}

} // namespace host
