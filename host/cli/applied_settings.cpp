// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/cli/applied_settings.h"

#include "host/base/failure.h"
#include "host/base/messages.h"
#include "host/cli/settings.h"

#include <CLI/CLI.hpp>

#include <QString>

#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace host {

namespace {

// Returns the options that environment and file can set. Help, the version, the name of the file itself, the
// choice of what is heard of it and the place of one command's output are nobody's habit, and the form of the
// data has another name.
Names settableOptions(const CLI::App &app)
{
    Names names;
    for (const CLI::Option *option : app.get_options())
        if (!option->get_lnames().empty())
            names.push_back(option->get_lnames().front());
    for (const char *name : {"help", "version", "config", "profile", "output", "json"})
        names.erase(std::remove(names.begin(), names.end(), name), names.end());
    return names;
}

class Applier
{
public:
    // Notes what the command line has set of these options.
    Applier(CLI::App &app, Options &options, const Names &names);

    // Applies all settings of one place; places that come first are applied first.
    void apply(const std::vector<Setting> &settings, SettingOrigin origin);
    void tell() const;

private:
    bool isTaken(const Setting &setting);
    bool isExcluded(const CLI::Option &option, const Setting &setting) const;
    void note(const Setting &setting, SettingOrigin origin);

    CLI::App &app;
    Options &options;
    std::vector<Setting> earlier; // of places that are heard before this one
    std::vector<Setting> taken;
};

Applier::Applier(CLI::App &app_, Options &options_, const Names &names) : app(app_), options(options_)
{
    for (const std::string &name : names)
        options.settings.push_back({QString::fromStdString(name), {}, SettingOrigin::Nobody, {}});
    for (const std::string &name : names)
        if (const CLI::Option *option = app.get_option("--" + name); option->count() > 0)
            note({name, option->results().back(), QString()}, SettingOrigin::CommandLine);
    if (options.json)
        note({"format", "json", QString()}, SettingOrigin::CommandLine);
}

void Applier::note(const Setting &setting, SettingOrigin origin)
{
    const QString name = QString::fromStdString(setting.option);
    const auto used = std::find_if(options.settings.begin(), options.settings.end(),
                                   [&name](const UsedSetting &one) { return one.option == name; });
    *used = {name, QString::fromStdString(setting.value), origin, setting.source};
}

void Applier::apply(const std::vector<Setting> &settings, SettingOrigin origin)
{
    earlier.insert(earlier.end(), taken.begin(), taken.end());
    taken.clear();
    for (const Setting &setting : settings)
        if (isTaken(setting)) {
            taken.push_back(setting);
            if (setting.option != "format" || !options.json)
                note(setting, origin);
        }
}

// Sets the option and returns true, unless an earlier place has set it, or one that excludes it.
bool Applier::isTaken(const Setting &setting)
{
    CLI::Option *option = app.get_option("--" + setting.option);
    if (option->count() > 0)
        return false;
    try {
        const bool isFlag = option->get_expected_min() == 0;
        option->add_result(isFlag ? option->get_flag_value(setting.option, setting.value) : setting.value);
        if (isFlag && !option->get_excludes().empty() && option->as<bool>() && isExcluded(*option, setting)) {
            option->clear();
            return false;
        }
        option->run_callback();
    } catch (const CLI::ParseError &error) {
        throw Failure(ExitCode::Usage, setting.source + ": " + error.what(),
                      "s7ppi --help lists the options and what they take");
    }
    if (setting.option == "format")
        options.usualFormat = std::exchange(options.format, std::nullopt);
    if (setting.option == "port")
        options.isUsualPort = true;
    return true;
}

// Only flags exclude each other.
bool Applier::isExcluded(const CLI::Option &option, const Setting &setting) const
{
    for (const CLI::Option *rival : option.get_excludes()) {
        if (rival->count() == 0 || !rival->as<bool>())
            continue;
        for (const Setting &other : taken)
            if (rival->check_lname(other.option))
                throw Failure(ExitCode::Usage,
                              QString("%1: %2 excludes %3")
                                  .arg(setting.source, QString::fromStdString(setting.option),
                                       QString::fromStdString(other.option)),
                              "see " + other.source + ", and leave one of the two out");
        return true;
    }
    return false;
}

void Applier::tell() const
{
    for (const std::vector<Setting> &settings : {earlier, taken})
        for (const Setting &setting : settings)
            reportNote(QString("--%1 %2, as %3 says")
                           .arg(QString::fromStdString(setting.option), QString::fromStdString(setting.value),
                                setting.source));
}

} // namespace

void applySettings(CLI::App &app, Options &options)
{
    const Names names = settableOptions(app);
    const QString file = settingsFile(options.config);
    const QString profile = profileName(options.profile);
    const FileSettings ofFile = file.isEmpty() ? FileSettings() : fileSettings(file, names);
    Applier applier(app, options, names);
    applier.apply(environmentSettings(names), SettingOrigin::Environment);
    if (!profile.isEmpty())
        applier.apply(profileSettings(ofFile, profile, file), SettingOrigin::Profile);
    applier.apply(ofFile.usual, SettingOrigin::File);
    if (!file.isEmpty())
        options.config = file;
    if (!profile.isEmpty())
        options.profile = profile;
    if (!options.verbose)
        return;
    applier.tell();
    for (const QString &variable : strangeVariables(names))
        reportNote(variable + " is set, and is no option");
}

} // namespace host
