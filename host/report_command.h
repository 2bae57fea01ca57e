// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// s7ppi report: what was watched, as a page for a browser.

#ifndef HOST_REPORT_COMMAND_H
#define HOST_REPORT_COMMAND_H

namespace CLI {
class App;
}

namespace host {

struct CommandLine;

void declareReport(CLI::App &app, CommandLine &line);

} // namespace host

#endif
