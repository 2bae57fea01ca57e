// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The commands of s7ppi; each declares itself to the parser.

#ifndef HOST_COMMANDS_COMMANDS_H
#define HOST_COMMANDS_COMMANDS_H

namespace CLI {
class App;
}

namespace host {

struct CommandLine;

// s7ppi read: the values of some items, once.
void declareRead(CLI::App &app, CommandLine &line);

// s7ppi write: values into the controller's memory.
void declareWrite(CLI::App &app, CommandLine &line);

// s7ppi watch: the values of some items, again and again.
void declareWatch(CLI::App &app, CommandLine &line);

// s7ppi publish: the values of some items for an MQTT broker, and commands from there.
void declarePublish(CLI::App &app, CommandLine &line);

// s7ppi report: what was watched, as a page for a browser.
void declareReport(CLI::App &app, CommandLine &line);

// s7ppi dump: a stretch of memory in a file.
void declareDump(CLI::App &app, CommandLine &line);

// s7ppi load: a file of memory written to a controller.
void declareLoad(CLI::App &app, CommandLine &line);

// s7ppi diff: what two dumps, or a dump and a controller, have differently.
void declareDiff(CLI::App &app, CommandLine &line);

// s7ppi scan: which stations answer on a line.
void declareScan(CLI::App &app, CommandLine &line);

// s7ppi ports: the serial ports of this machine.
void declarePorts(CLI::App &app, CommandLine &line);

// s7ppi doctor: what may be wrong between this machine and a controller.
void declareDoctor(CLI::App &app, CommandLine &line);

// s7ppi check: whether addresses are right, and what would be sent for them.
void declareCheck(CLI::App &app, CommandLine &line);

// s7ppi decode: frames of the line, byte by byte.
void declareDecode(CLI::App &app, CommandLine &line);

// s7ppi describe: what the plug-in says about itself.
void declareDescribe(CLI::App &app, CommandLine &line);

// s7ppi plugin: what a library has of what a panel needs.
void declarePlugin(CLI::App &app, CommandLine &line);

// s7ppi completion: the script that lets a shell complete command lines of s7ppi.
void declareCompletion(CLI::App &app, CommandLine &line);

} // namespace host

#endif
