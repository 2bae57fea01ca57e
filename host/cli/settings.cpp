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
#include <sstream>
#include <string>
#include <vector>

namespace host {

namespace {

const char kVariableBegin[] = "S7PPI_";
const char kFileVariable[] = "S7PPI_CONFIG";

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
    return "a line is OPTION = VALUE; options are " + joined(options);
}

bool isBlank(const QByteArray &line)
{
    const QByteArray text = line.trimmed();
    return text.isEmpty() || text.startsWith('#') || text.startsWith(';');
}

// The parser gets one line at a time, so that an error can name the line.
Setting settingOf(const QByteArray &line, const QString &source, const Names &options)
{
    const auto wrong = [&](const QString &text) {
        return Failure(ExitCode::Usage, source + ": " + text, lineHint(line, options));
    };
    std::istringstream text(line.toStdString());
    const std::vector<CLI::ConfigItem> items = CLI::ConfigINI().from_config(text);
    if (items.size() != 1 || !items.front().parents.empty() || items.front().inputs.size() != 1)
        throw wrong(utf8Text(line.trimmed()) + " is no setting");
    const CLI::ConfigItem &item = items.front();
    if (std::find(options.begin(), options.end(), item.name) == options.end())
        throw wrong(QString::fromStdString(item.name) + " is not an option");
    if (item.inputs.front().empty())
        throw wrong(QString::fromStdString(item.name) + " has no value");
    return {item.name, item.inputs.front(), source};
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
    for (const std::string &option : options)
        variables.removeAll(QString::fromStdString(variableName(option)));
    return variables.filter(QRegularExpression('^' + QString(kVariableBegin)));
}

std::vector<Setting> fileSettings(const QString &name, const Names &options)
{
    const QByteArray text = readTextFile(
        name, "name another file with --config, or with S7PPI_CONFIG; set that empty for none", kLargestText);
    std::vector<Setting> settings;
    const QList<QByteArray> lines = withoutByteOrderMark(text).split('\n');
    for (int i = 0; i < int(lines.size()); ++i)
        if (!isBlank(lines.at(i)))
            add(settings, settingOf(lines.at(i), filled("%1:%2", name, i + 1), options));
    return settings;
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
