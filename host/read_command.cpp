// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "read_command.h"

#include "connection.h"
#include "outcome.h"
#include "read_plan.h"
#include "text_output.h"

namespace host {

namespace {

void readAndPrint(const Item &item, Connection &connection, const TextOutput &output)
{
    const ReadFunction read = [&](const CommunicatorCommand &command) { return connection.read(command); };
    output.write(item, decodeValues(item, readItem(item, read)));
}

} // namespace

int readCommand(const Options &options, const std::vector<std::string> &texts)
{
    Outcome outcome;
    const std::vector<Item> items = outcome.parseAll(texts, parseItem);
    if (!outcome.isSuccess())
        return outcome.exitCode();

    Connection connection(options);
    const TextOutput output(items);
    for (const Item &item : items) {
        const auto failure =
            outcome.attempt(item.address.text(), [&] { readAndPrint(item, connection, output); });
        if (failure && failure->code() == ExitCode::PortLost)
            break;
    }
    return outcome.exitCode();
}

} // namespace host
