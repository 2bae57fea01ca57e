// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/commands/commands.h"

#include "host/base/failure.h"
#include "host/cli/command_line.h"
#include "host/diagnosis/plugin_description.h"
#include "host/driver/plugin.h"
#include "host/output/output.h"

#include <memory>

namespace host {

namespace {

int describe(Options options, bool asJson)
{
    if (asJson)
        options.format = "json";
    const Plugin plugin(findPlugin(options));
    Output output(options, {"describe", 1, {}, {}, false});
    Description description;
    addIdentity(description, plugin);
    addDefaults(description, plugin);
    addSizes(description, plugin);
    output.write(description.fields(), description.lines().join('\n'));
    output.finish();
    return int(ExitCode::Success);
}

} // namespace

void declareDescribe(CLI::App &app, CommandLine &line)
{
    const auto asJson = std::make_shared<bool>(false);
    CLI::App *command = addCommand(app, line, "describe", "Show what the plug-in says about itself",
                                   [asJson](const Options &options) { return describe(options, *asJson); });
    addFlag(*command, "--json", *asJson, "The same as --format json");
}

} // namespace host
