// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/cli/settings.h"

#include "host/base/failure.h"
#include "host/base/files.h"
#include "host/base/filled.h"

#include <CLI/CLI.hpp>

#include <QByteArray>
#include <QList>
#include <QProcessEnvironment>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QStringList>

#include <algorithm>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

namespace host {

namespace {

const char kVariableBegin[] = "S7PPI_";
const char kFileVariable[] = "S7PPI_CONFIG";
const char kProfileVariable[] = "S7PPI_PROFILE";

QString joined(const Names &texts)
{
    QStringList list;
    for (const std::string &text : texts)
        list << QString::fromStdString(text);
    return list.join(' ');
}

// Returns what a line that is no setting could be. A # behind a setting counts as part of its value.
QString lineHint(const QByteArray &line, const Names &options)
{
    static const QRegularExpression comment("\\s#.*$");
    const QString text = utf8Text(line).trimmed();
    const QString setting = QString(text).remove(comment).trimmed();
    if (setting != text)
        return "a comment needs a line of its own: write " + setting + " alone";
    if (text.startsWith('['))
        return "a profile begins with its name in brackets, as [press]";
    if (text.section('=', 0, 0).trimmed() == "profile")
        return QString("a profile is chosen with --profile NAME, or ") + kProfileVariable;
    return "a line is OPTION = VALUE; options are " + joined(options);
}

bool isBlank(const QByteArray &line)
{
    const QByteArray text = line.trimmed();
    return text.isEmpty() || text.startsWith('#') || text.startsWith(';');
}

// Returns the value of a line's only item, which the parser takes apart at commas: with them, if it is one
// word.
std::optional<std::string> valueOf(const CLI::ConfigItem &item, const QByteArray &line)
{
    if (item.inputs.size() == 1)
        return item.inputs.front();
    std::string value = CLI::detail::join(item.inputs, ",");
    return !value.empty() && line.trimmed().endsWith(value.c_str()) ? std::optional(value) : std::nullopt;
}

// The parser gets one line at a time, so that an error can name the line.
Setting settingOf(const QByteArray &line, const QString &source, const Names &options)
{
    const auto wrong = [&](const QString &text) {
        return Failure(ExitCode::Usage, source + ": " + text, lineHint(line, options));
    };
    if (line.trimmed().startsWith('['))
        throw wrong(utf8Text(line.trimmed()) + " begins no profile");
    std::istringstream text(line.toStdString());
    const std::vector<CLI::ConfigItem> items = CLI::ConfigINI().from_config(text);
    const std::optional<std::string> value =
        items.size() == 1 && items.front().parents.empty() ? valueOf(items.front(), line) : std::nullopt;
    if (!value)
        throw wrong(utf8Text(line.trimmed()) + " is no setting");
    const CLI::ConfigItem &item = items.front();
    if (std::find(options.begin(), options.end(), item.name) == options.end())
        throw wrong(QString::fromStdString(item.name) + " is not an option");
    if (value->empty())
        throw wrong(QString::fromStdString(item.name) + " has no value");
    return {item.name, *value, source};
}

// Returns the name that the first line of a profile has between its brackets; empty when it has none.
QString profileIn(const QByteArray &line)
{
    static const QRegularExpression form("^\\[\\s*([^\\[\\]]*[^\\[\\]\\s])\\s*\\]$");
    return form.match(utf8Text(line).trimmed()).captured(1);
}

void add(std::vector<FileProfile> &profiles, const FileProfile &profile)
{
    for (const FileProfile &earlier : profiles)
        if (earlier.name == profile.name)
            throw Failure(ExitCode::Usage,
                          profile.source + ": the profile " + profile.name + " stands there already",
                          "see " + earlier.source + ", and make one of the two");
    profiles.push_back(profile);
}

void add(std::vector<Setting> &settings, const Setting &setting)
{
    for (const Setting &earlier : settings)
        if (earlier.option == setting.option)
            throw Failure(ExitCode::Usage,
                          setting.source + ": " + QString::fromStdString(setting.option) + " is set already",
                          "see " + earlier.source + ", and leave one of the two out");
    settings.push_back(setting);
}

} // namespace

std::string variableName(const std::string &option)
{
    const QString name = kVariableBegin + QString::fromStdString(option).toUpper().replace('-', '_');
    return name.toStdString();
}

std::vector<Setting> environmentSettings(const Names &options)
{
    std::vector<Setting> settings;
    for (const std::string &option : options) {
        const std::string variable = variableName(option);
        if (!qEnvironmentVariableIsEmpty(variable.c_str()))
            settings.push_back(
                {option, qgetenv(variable.c_str()).toStdString(), QString::fromStdString(variable)});
    }
    return settings;
}

QStringList strangeVariables(const Names &options)
{
    QStringList variables = QProcessEnvironment::systemEnvironment().keys();
    variables.removeAll(kFileVariable);
    variables.removeAll(kProfileVariable);
    for (const std::string &option : options)
        variables.removeAll(QString::fromStdString(variableName(option)));
    return variables.filter(QRegularExpression('^' + QString(kVariableBegin)));
}

FileSettings fileSettings(const QString &file, const Names &options)
{
    const QByteArray text = readTextFile(
        file, "name another file with --config, or with S7PPI_CONFIG; set that empty for none", kLargestText);
    return parseSettings(text, file, options);
}

FileSettings parseSettings(const QByteArray &text, const QString &name, const Names &options)
{
    FileSettings settings;
    const QList<QByteArray> lines = withoutByteOrderMark(text).split('\n');
    for (int i = 0; i < int(lines.size()); ++i) {
        const QByteArray &line = lines.at(i);
        const QString source = filled("%1:%2", name, i + 1);
        const QString profile = profileIn(line);
        if (!profile.isEmpty())
            add(settings.profiles, {profile, source, {}});
        else if (!isBlank(line))
            add(settings.profiles.empty() ? settings.usual : settings.profiles.back().settings,
                settingOf(line, source, options));
    }
    return settings;
}

std::vector<Setting> profileSettings(const FileSettings &settings, const QString &profile,
                                     const QString &file)
{
    QStringList names;
    for (const FileProfile &candidate : settings.profiles) {
        if (candidate.name == profile)
            return candidate.settings;
        names << candidate.name;
    }
    if (file.isEmpty())
        throw Failure(ExitCode::Usage,
                      "there is no profile " + profile + ", as there is no configuration file",
                      "write one, ~/.config/s7ppi/config or another that --config names, with a line [" +
                          profile + "] and the options behind it");
    throw Failure(ExitCode::Usage, "there is no profile " + profile + " in " + file,
                  names.isEmpty() ? "it has no profiles: begin one with a line [" + profile + ']'
                                  : "it has " + names.join(", "));
}

QString profileName(const std::optional<QString> &named)
{
    return named.value_or(qEnvironmentVariable(kProfileVariable));
}

QString settingsFile(const std::optional<QString> &named)
{
    if (named)
        return *named;
    if (qEnvironmentVariableIsSet(kFileVariable))
        return qEnvironmentVariable(kFileVariable);
    return QStandardPaths::locate(QStandardPaths::GenericConfigLocation, "s7ppi/config");
}

} // namespace host
