// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Every setting, its value, and the place that decides it.

#ifndef HOST_DIAGNOSIS_SETTINGS_OVERVIEW_H
#define HOST_DIAGNOSIS_SETTINGS_OVERVIEW_H

#include "host/base/options.h"
#include "host/port/line_settings.h"
#include "host/port/port.h"

#include <QList>
#include <QString>

#include <optional>

namespace host {

// What holds where nobody has set it; nothing where it is not known, as no plug-in could be loaded.
struct UnsetValues
{
    QString plugin; // the file; empty when none was found
    QString port;   // empty when there is none
    std::optional<LineSettings> line;
    std::optional<Timing> timing;
    bool isOtherDriver = false; // whose items have raw addresses
    bool isNetwork = false;     // a serial server runs the line
};

struct SettingInForce
{
    QString name; // "baud"
    QString value;
    QString source; // "command line", "environment", "profile", "file", "plug-in", "default",
                    // or "set at the serial server"
    QString place;  // of environment, file and profile: "S7PPI_BAUD", "FILE:3", "FILE:7, [press]"
};

QList<SettingInForce> settingsInForce(const Options &options, const UnsetValues &unset);

// "  baud        19200          file, /home/me/.config/s7ppi/config:3"
QString settingText(const SettingInForce &setting);

} // namespace host

#endif
