// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/commands/commands.h"

#include "host/base/failure.h"
#include "host/cli/command_line.h"
#include "host/cli/completion_script.h"
#include "host/output/sink.h"

#include <QString>

#include <memory>
#include <optional>

namespace host {

namespace {

const char kFooter[] = R"(
  bash   s7ppi completion bash >~/.local/share/bash-completion/completions/s7ppi
  zsh    s7ppi completion zsh >DIRECTORY/_s7ppi, a directory of $fpath
  fish   s7ppi completion fish >~/.config/fish/completions/s7ppi.fish)";

QString scriptFor(const QString &shell, const Completion &completion)
{
    if (shell == "zsh")
        return zshScript(completion);
    return shell == "fish" ? fishScript(completion) : bashScript(completion);
}

int writeScript(const OutputOptions &options, const QString &shell, const Completion &completion)
{
    const std::unique_ptr<OutputSink> sink = sinkFor(options);
    sink->put(scriptFor(shell, completion).toUtf8());
    sink->commit();
    return int(ExitCode::Success);
}

} // namespace

void declareCompletion(CLI::App &app, CommandLine &line)
{
    const auto shell = std::make_shared<std::optional<QString>>();
    CLI::App *completion =
        addCommand(app, line, "completion", "Print a script with which a shell completes command lines",
                   [shell, &app](const Options &options) {
                       return writeScript(options, shell->value(), completionOf(app));
                   });
    require(*addChoice(*completion, "shell", *shell, {"bash", "zsh", "fish"}, "bash, zsh or fish"));
    setFooter(*completion, kFooter);
}

} // namespace host
