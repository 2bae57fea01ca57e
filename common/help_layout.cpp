// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "common/help_layout.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <utility>

namespace common {

namespace {

const char kExamples[] = "Examples:\n";
const char kIndent[] = "  ";

// What an option needs or excludes is told when it is met; what holds without it stands in its own text.
class HelpLayout : public CLI::Formatter
{
public:
    std::string make_option_name(const CLI::Option *option, bool isPositional) const override
    {
        return isPositional ? option->get_type_name() : option->get_name(false, true);
    }

    std::string make_option_opts(const CLI::Option *option) const override
    {
        const bool hasValue = option->get_expected_max() > 0 && !option->get_positional();
        const std::string value = hasValue ? ' ' + option->get_type_name() : std::string();
        return takesMany(*option) && option->get_positional() ? value + "..." : value;
    }

    std::string make_option_usage(const CLI::Option *option) const override
    {
        const std::string name = option->get_type_name() + (takesMany(*option) ? "..." : "");
        return option->get_required() ? name : '[' + name + ']';
    }

    std::string make_help(const CLI::App *app, std::string name, CLI::AppFormatMode mode) const override
    {
        return CLI::detail::find_and_replace(Formatter::make_help(app, std::move(name), mode), "\n\n\n",
                                             "\n\n");
    }
};

} // namespace

bool takesMany(const CLI::Option &option)
{
    return option.get_expected_max() >= CLI::detail::expected_max_vector_size;
}

void setHelpLayout(CLI::App &app, std::size_t column)
{
    const auto layout = std::make_shared<HelpLayout>();
    layout->column_width(column);
    layout->label("Positionals", "Arguments");
    layout->label("SUBCOMMAND", "COMMAND");
    app.formatter(layout);
}

std::string helpFooter(const std::string &text, const std::vector<std::string> &examples,
                       const std::string &lastLine)
{
    std::string footer = text.empty() ? text : text + "\n\n";
    footer += kExamples;
    for (const std::string &example : examples)
        footer += kIndent + example + '\n';
    return footer + '\n' + lastLine;
}

std::string firstExample(const CLI::App &app)
{
    const std::string footer = app.get_footer();
    const std::string begin = std::string(kExamples) + kIndent;
    const std::size_t place = footer.find(begin);
    if (place == std::string::npos)
        return std::string();
    const std::size_t first = place + begin.size();
    return footer.substr(first, footer.find('\n', first) - first);
}

} // namespace common
