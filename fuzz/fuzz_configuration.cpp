// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Configuration files of any bytes: every setting is of an option that there is, once in its section, and
// tells its line; written plainly, the settings read back the same.
//
//    input := configuration file

#include "fuzzing.h"
#include "refusal.h"

#include "host/base/failure.h"
#include "host/cli/settings.h"

#include <QStringList>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

using fuzz::require;
using namespace host;

namespace {

const Names kOptions = {"port",   "baud",        "parity", "station", "timeout",
                        "plugin", "low-latency", "rs485",  "format"};

bool isPlain(const std::string &value)
{
    return value.find_first_not_of("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789/._:-") ==
           std::string::npos;
}

FileSettings read(const std::string &text)
{
    return parseSettings(QByteArray::fromStdString(text), "config", kOptions);
}

// Checks a section's settings, and appends them to a text as people would write them.
bool checkAndWrite(const std::vector<Setting> &settings, int lines, std::string &text)
{
    std::set<std::string> names;
    bool isWritable = true;
    for (const Setting &setting : settings) {
        require(std::count(kOptions.begin(), kOptions.end(), setting.option) == 1,
                "a setting is of an option");
        require(names.insert(setting.option).second, "an option is set once in a section");
        require(!setting.value.empty(), "a setting has a value");
        const int line = setting.source.section(':', -1).toInt();
        require(line >= 1 && line <= lines, "a setting tells its line");
        isWritable = isWritable && isPlain(setting.value);
        text += setting.option + " = " + setting.value + '\n';
    }
    return isWritable;
}

bool isSame(const std::vector<Setting> &one, const std::vector<Setting> &other)
{
    return std::equal(
        one.begin(), one.end(), other.begin(), other.end(),
        [](const Setting &a, const Setting &b) { return a.option == b.option && a.value == b.value; });
}

void checkSettings(const FileSettings &settings, int lines)
{
    std::string text;
    bool isWritable = checkAndWrite(settings.usual, lines, text);
    for (const FileProfile &profile : settings.profiles) {
        text += '[' + profile.name.toStdString() + "]\n";
        isWritable = checkAndWrite(profile.settings, lines, text) && isWritable;
        require(isSame(profileSettings(settings, profile.name, "file"), profile.settings),
                "a profile is found by its name");
    }
    if (!isWritable)
        return;
    const FileSettings again = read(text);
    require(isSame(again.usual, settings.usual) && again.profiles.size() == settings.profiles.size(),
            "settings read back the same");
    for (size_t i = 0; i < settings.profiles.size(); ++i)
        require(again.profiles[i].name == settings.profiles[i].name &&
                    isSame(again.profiles[i].settings, settings.profiles[i].settings),
                "profiles read back the same");
}

void lookUp(const FileSettings &settings, const QString &file)
{
    try {
        profileSettings(settings, "no such profile", file);
        require(file.isEmpty() || !settings.profiles.empty(), "a profile that is not there is not found");
    } catch (const Failure &failure) {
        fuzz::requireReason(failure);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const std::string text(reinterpret_cast<const char *>(data), size);
    FileSettings settings;
    try {
        settings = read(text);
    } catch (const Failure &failure) {
        fuzz::requireReason(failure);
        return 0;
    }
    checkSettings(settings, int(std::count(text.begin(), text.end(), '\n')) + 1);
    lookUp(settings, "file");
    lookUp(settings, QString());
    return 0;
}
