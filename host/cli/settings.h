// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Common options that do not come from the command line. Whatever is said twice is taken from the command
// line first, then from the environment, then from the chosen profile, then from what stands in front of the
// file's first profile; what nobody says, the plug-in's defaults decide.
//
//   environment   S7PPI_BAUD=19200, for every option of more than one letter; an empty one counts as not set
//   file          baud = 19200 on a line of its own; # begins a comment; a flag may stand alone
//   profile       [press] on a line of its own, and the lines behind it up to the next one

#ifndef HOST_CLI_SETTINGS_H
#define HOST_CLI_SETTINGS_H

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>
#include <string>
#include <vector>

namespace host {

// Options' names as the parser has them, without hyphens.
using Names = std::vector<std::string>;

struct Setting
{
    std::string option; // "baud"
    std::string value;
    QString source; // for people: "S7PPI_BAUD" or "/home/me/.config/s7ppi/config:3"
};

std::string variableName(const std::string &option);

// Returns what the environment says of these options.
std::vector<Setting> environmentSettings(const Names &options);

// Returns the variables of the environment that look as if they set an option, and set none of these.
QStringList strangeVariables(const Names &options);

struct FileProfile
{
    QString name;
    QString source; // of its first line
    std::vector<Setting> settings;
};

struct FileSettings
{
    std::vector<Setting> usual; // of no profile
    std::vector<FileProfile> profiles;
};

// Returns what the file says. Fails when it cannot be read, on a line that names none of these options, and
// when a profile stands there twice; all that for profiles that are not chosen, too.
FileSettings fileSettings(const QString &file, const Names &options);

// The same of a text that was read already; its name is for what is wrong with it.
FileSettings parseSettings(const QByteArray &text, const QString &name, const Names &options);

// Returns what the profile says. Fails, and names those that there are, when there is none of this name.
std::vector<Setting> profileSettings(const FileSettings &settings, const QString &profile,
                                     const QString &file);

// Returns the profile to hear: the one that is named here, or else the one that the environment's
// S7PPI_PROFILE names; empty for none.
QString profileName(const std::optional<QString> &named);

// Returns the name of the file to read: the one that is named here, or else the one that the environment's
// S7PPI_CONFIG names, or else the user's own, ~/.config/s7ppi/config, if there is one. It is empty when no
// file shall be read, which S7PPI_CONFIG says by being set but empty.
QString settingsFile(const std::optional<QString> &named);

} // namespace host

#endif
