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
#include <utility>
#include <vector>

namespace host {

namespace {

// Returns the options that environment and file can set. Help, the version, the name of the file itself and
// the place of one command's output are nobody's habit.
Names settableOptions(const CLI::App &app)
{
    Names names;
    for (const CLI::Option *option : app.get_options())
        if (!option->get_lnames().empty())
            names.push_back(option->get_lnames().front());
    for (const char *name : {"help", "version", "config", "output"})
        names.erase(std::remove(names.begin(), names.end(), name), names.end());
    return names;
}

class Applier
{
public:
    Applier(CLI::App &app_, Options &options_) : app(app_), options(options_) {}

    // Applies all settings of one place; places that come first are applied first.
    void apply(const std::vector<Setting> &settings);
    void tell() const;

private:
    bool isTaken(const Setting &setting);
    bool isExcluded(const CLI::Option &option, const Setting &setting) const;

    CLI::App &app;
    Options &options;
    std::vector<Setting> earlier; // of places that are heard before this one
    std::vector<Setting> taken;
};

void Applier::apply(const std::vector<Setting> &settings)
{
    earlier.insert(earlier.end(), taken.begin(), taken.end());
    taken.clear();
    for (const Setting &setting : settings)
        if (isTaken(setting))
            taken.push_back(setting);
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
        if (isFlag && option->as<bool>() && isExcluded(*option, setting)) {
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
    const std::vector<Setting> ofFile = file.isEmpty() ? std::vector<Setting>() : fileSettings(file, names);
    Applier applier(app, options);
    applier.apply(environmentSettings(names));
    applier.apply(ofFile);
    if (!options.verbose)
        return;
    applier.tell();
    for (const QString &variable : strangeVariables(names))
        reportNote(variable + " is set, and is no option");
}

} // namespace host
