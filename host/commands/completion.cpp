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

const char kCompletionFooter[] = "The script for zsh is a file _s7ppi in a directory of $fpath.";

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
    require(*addChoice(*completion, "SHELL", *shell, {"bash", "zsh", "fish"}, "SHELL", "The shell"));
    setFooter(*completion, kCompletionFooter,
              {"s7ppi completion bash >~/.local/share/bash-completion/completions/s7ppi",
               "s7ppi completion zsh >~/.zsh/completions/_s7ppi",
               "s7ppi completion fish >~/.config/fish/completions/s7ppi.fish"});
}

} // namespace host
