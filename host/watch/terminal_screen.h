// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The whole terminal as a screen to draw on, by way of ncurses.

#ifndef HOST_WATCH_TERMINAL_SCREEN_H
#define HOST_WATCH_TERMINAL_SCREEN_H

#include <QStringList>

struct screen; // of ncurses

namespace host {

// Takes the terminal while it lives and gives it back as it was, even when a second signal ends the
// program at once. There can be one at a time. What is typed meanwhile is thrown away; Ctrl-C and Ctrl-Z
// work as ever.
class TerminalScreen
{
public:
    // Whether stdout is a terminal on which text can be placed.
    static bool isAvailable();

    TerminalScreen();
    ~TerminalScreen();

    TerminalScreen(const TerminalScreen &) = delete;
    TerminalScreen &operator=(const TerminalScreen &) = delete;

    int columns() const;
    int rows() const;

    // Follows a change of the terminal's size; false when there was none.
    bool takeResize();

    // Replaces everything. Lines that have no room are left out. Escapes, as \x00, are dim where there are
    // colours.
    void show(const QStringList &lines);

    // Gives the terminal back and prints the lines there, where they stay, with the cursor below them.
    void leave(const QStringList &lines);

private:
    void giveBack();

    ::screen *handle; // null when the terminal has been given back
};

} // namespace host

#endif
