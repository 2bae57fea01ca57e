// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/cli/completion_script.h"

#include "host/base/options.h"

#include <QString>
#include <QStringList>

namespace host {

namespace {

// Between single quotes, as every shell takes them.
QString quoted(QString text)
{
    return '\'' + text.replace('\'', "'\\''") + '\'';
}

QStringList commandNames(const Completion &completion)
{
    QStringList names;
    for (const CompletedCommand &command : completion.commands)
        names << command.name;
    return names;
}

QStringList optionNames(const CompletedCommand &command)
{
    QStringList names;
    for (const CompletedOption &option : command.options)
        names << option.names;
    return names;
}

// Words of a list that a shell splits at blanks. An option of two commands stands in it once.
QString joinedOnce(QStringList names)
{
    names.removeDuplicates();
    return names.join(' ');
}

const char kBashFrame[] = R"(# Completion of s7ppi for bash, made by "s7ppi completion bash".

_s7ppi_words() { mapfile -t COMPREPLY < <(compgen -W "$1" -- "$2"); }
_s7ppi_files() {
    compopt -o filenames 2>/dev/null
    mapfile -t COMPREPLY < <(compgen -W "$1" -- "$2"; compgen -f -- "$2")
    case ${COMPREPLY[*]} in *:) compopt -o nospace 2>/dev/null ;; esac
}

_s7ppi() {
    local word=$2 previous=$3 command='' i
    COMPREPLY=()
    for ((i = 1; i < COMP_CWORD; i++)); do
        case ${COMP_WORDS[i]} in
        %1) ((i++)) ;;
        %2)
            command=${COMP_WORDS[i]}
            break
            ;;
        esac
    done
    case "$command $previous" in
%3    esac
    case $word in
    -*)
        case $command in
%4        esac
        return
        ;;
    esac
    case $command in
    '') _s7ppi_words '%5' "$word" ;;
%6    esac
}

complete -F _s7ppi s7ppi
)";

// What bash runs to complete the value of an option. ":" does nothing: a number or an address cannot be
// guessed, and files must not be offered for it.
QString bashValue(const CompletedOption &option)
{
    switch (option.value) {
    case CompletedValue::Choice:
        return QString("_s7ppi_words %1 \"$word\"").arg(quoted(option.choices.join(' ')));
    case CompletedValue::File:
        return "_s7ppi_files '' \"$word\"";
    case CompletedValue::Device:
        return QString("_s7ppi_files '%1 %2' \"$word\"").arg(kSimulatorPort, kTcpPrefix);
    case CompletedValue::Word:
    case CompletedValue::None:
        break;
    }
    return ":";
}

// The branches of a case over "COMMAND OPTION", one for each option that takes a value. The pattern stands
// for the command: its name in quotes, or * for options that every command has.
QString bashValues(const CompletedCommand &command, const QString &pattern)
{
    QString cases;
    for (const CompletedOption &option : command.options) {
        QStringList patterns;
        for (const QString &name : option.names)
            patterns << QString("%1' %2'").arg(pattern, name);
        if (option.value != CompletedValue::None)
            cases += QString("    %1) %2; return ;;\n").arg(patterns.join(" | "), bashValue(option));
    }
    return cases;
}

// The branch for what is no option. Addresses are left to the user.
QString bashArgument(const CompletedCommand &command)
{
    QString line;
    for (const CompletedOption &argument : command.arguments)
        if (argument.value == CompletedValue::Choice || argument.value == CompletedValue::File)
            line = QString("    %1) %2 ;;\n").arg(command.name, bashValue(argument));
    return line;
}

// bash has to step over their values to find the command among the words.
QStringList optionsWithValue(const Completion &completion)
{
    QStringList names;
    for (const CompletedOption &option : completion.program.options)
        if (option.value != CompletedValue::None)
            names << option.names;
    return names;
}

// _arguments of zsh takes '(-o --output)'{-o,--output}'[what]:name:action'.
QString zshOption(const CompletedOption &option)
{
    QString what = option.what;
    for (const char *special : {"\\", "[", "]", ":"})
        what.replace(special, QString("\\") + special);
    QString value;
    if (option.value == CompletedValue::Choice)
        value = ":word:(" + option.choices.join(' ') + ')';
    else if (option.value == CompletedValue::File || option.value == CompletedValue::Device)
        value = ":file:_files";
    else if (option.value == CompletedValue::Word)
        value = ":value: ";
    const QString rest = quoted('[' + what + ']' + value);
    if (option.names.size() == 1)
        return option.names.first() + rest;
    return quoted('(' + option.names.join(' ') + ')') + '{' + option.names.join(',') + '}' + rest;
}

// "*:" lets the argument come as often as the user likes.
QString zshArgument(const CompletedOption &argument)
{
    if (argument.value == CompletedValue::Choice)
        return quoted("*:word:(" + argument.choices.join(' ') + ')');
    return quoted(argument.value == CompletedValue::File ? "*:file:_files" : "*:value: ");
}

// The branch of a command. --help is among the common ones, and zsh refuses an option that comes twice.
QString zshCommand(const CompletedCommand &command)
{
    QStringList parts = {"_arguments $common"};
    for (const CompletedOption &option : command.options)
        if (!option.names.contains("--help"))
            parts << zshOption(option);
    for (const CompletedOption &argument : command.arguments)
        parts << zshArgument(argument);
    return QString("        %1) %2 ;;\n").arg(command.name, parts.join(" \\\n            "));
}

const char kZshFrame[] = R"(#compdef s7ppi
# Completion of s7ppi for zsh, made by "s7ppi completion zsh".

_s7ppi() {
    local context state state_descr line
    local -a commands common
    commands=(
%1    )
    common=(
%2    )
    _arguments -C $common '1:command:->command' '*::argument:->argument'
    case $state in
    command) _describe command commands ;;
    argument)
        case $words[1] in
%3        esac
        ;;
    esac
}

# The first completion loads this file as the function's body.
if [ "$funcstack[1]" = _s7ppi ]; then
    _s7ppi "$@"
else
    compdef _s7ppi s7ppi
fi
)";

// -r: a value has to follow; -x: and it is no file; -F: files are offered although the option says -r.
QString fishValue(const CompletedOption &option)
{
    switch (option.value) {
    case CompletedValue::Choice:
        return " -x -a " + quoted(option.choices.join(' '));
    case CompletedValue::File:
        return " -r -F";
    case CompletedValue::Device:
        return QString(" -r -F -a '%1 %2'").arg(kSimulatorPort, kTcpPrefix);
    case CompletedValue::Word:
        return " -x";
    case CompletedValue::None:
        break;
    }
    return QString();
}

// fish wants the names without their hyphens, -l for long ones and -s for letters.
QString fishNames(const QStringList &names)
{
    QString text;
    for (const QString &name : names)
        text += name.startsWith("--") ? " -l " + name.mid(2) : " -s " + name.mid(1);
    return text;
}

QString fishLines(const CompletedCommand &command, const QString &condition)
{
    QString lines;
    for (const CompletedOption &option : command.options)
        lines += QString("complete -c s7ppi%1%2%3 -d %4\n")
                     .arg(condition, fishNames(option.names), fishValue(option), quoted(option.what));
    for (const CompletedOption &argument : command.arguments)
        if (argument.value == CompletedValue::Choice || argument.value == CompletedValue::File)
            lines += QString("complete -c s7ppi%1%2\n").arg(condition, fishValue(argument));
    return lines;
}

} // namespace

QString bashScript(const Completion &completion)
{
    QString values;
    QString options;
    QString arguments;
    const QStringList common = optionNames(completion.program);
    for (const CompletedCommand &command : completion.commands) {
        values += bashValues(command, command.name);
        options += QString("        %1) _s7ppi_words %2 \"$word\" ;;\n")
                       .arg(command.name, quoted(joinedOnce(optionNames(command) + common)));
        arguments += bashArgument(command);
    }
    values += bashValues(completion.program, "*");
    options += QString("        *) _s7ppi_words %1 \"$word\" ;;\n").arg(quoted(joinedOnce(common)));
    const QStringList names = commandNames(completion);
    return QString(kBashFrame)
        .arg(optionsWithValue(completion).join(" | "), names.join(" | "), values, options, names.join(' '),
             arguments);
}

QString zshScript(const Completion &completion)
{
    QString names;
    QString common;
    QString commands;
    for (const CompletedCommand &command : completion.commands) {
        QString what = command.what;
        names += "        " + quoted(command.name + ':' + what.replace(':', "\\:")) + '\n';
        commands += zshCommand(command);
    }
    for (const CompletedOption &option : completion.program.options)
        common += "        " + zshOption(option) + '\n';
    return QString(kZshFrame).arg(names, common, commands);
}

QString fishScript(const Completion &completion)
{
    QString script = "# Completion of s7ppi for fish, made by \"s7ppi completion fish\".\n\n"
                     "complete -c s7ppi -f\n";
    for (const CompletedCommand &command : completion.commands)
        script += QString("complete -c s7ppi -n __fish_use_subcommand -a %1 -d %2\n")
                      .arg(command.name, quoted(command.what));
    script += fishLines(completion.program, QString());
    for (const CompletedCommand &command : completion.commands)
        script += fishLines(command, QString(" -n '__fish_seen_subcommand_from %1'").arg(command.name));
    return script;
}

} // namespace host
