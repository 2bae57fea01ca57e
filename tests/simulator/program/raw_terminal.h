// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The master's end of a terminal: raw, in hexadecimal, with a time limit for every read.

#ifndef TESTS_SIMULATOR_PROGRAM_RAW_TERMINAL_H
#define TESTS_SIMULATOR_PROGRAM_RAW_TERMINAL_H

#include <QString>

class RawTerminal
{
public:
    // Opens a terminal and sets it to raw mode, or takes over an open one as it is.
    explicit RawTerminal(const QString &name);
    explicit RawTerminal(int terminal_) : terminal(terminal_) {}
    ~RawTerminal();

    RawTerminal(const RawTerminal &) = delete;
    RawTerminal &operator=(const RawTerminal &) = delete;

    bool isOpen() const { return terminal >= 0; }

    // Sends all of it and returns what came back: as many bytes, or fewer when 5 seconds are over.
    QString ask(const QString &hexText, int answerSize);

    // Whether nothing comes for a tenth of a second.
    bool isSilent();

    // Whether the terminal lets nobody else in.
    bool setExclusive();
    bool isExclusive() const;

private:
    QString read(int size, int milliseconds);

    int terminal;
};

#endif
