// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/watch/terminal_screen.h"

#include "common/terminal_text.h"
#include "host/base/colour.h"
#include "host/base/failure.h"
#include "host/base/interruption.h"
#include "host/base/messages.h"

#include <QByteArray>
#include <QRegularExpression>
#include <QString>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <utility>

#define NCURSES_NOMACROS
#include <curses.h>
#include <term.h>
// The header term.h makes macros of these words.
#undef columns
#undef lines

#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

namespace host {

namespace {

constexpr int kOutput = STDOUT_FILENO;

// What a signal handler needs to give the terminal back without ncurses, which it may not call. It is all
// filled in before the handler is set.
termios stateBefore;
char leaveText[128];
size_t leaveLength;

void leaveAtOnce()
{
    if (write(kOutput, leaveText, leaveLength) >= 0)
        tcsetattr(kOutput, TCSANOW, &stateBefore);
}

// A capability's text without the pauses that only terminals of old need.
QByteArray capability(const char *name)
{
    static const QRegularExpression pause("\\$<[^>]*>");
    const char *text = tigetstr(name);
    const bool isThere = text && reinterpret_cast<std::intptr_t>(text) != -1;
    return isThere ? QString::fromLatin1(text).remove(pause).toLatin1() : QByteArray();
}

void prepareLastResort()
{
    const QByteArray text = capability("cnorm") + capability("rmcup");
    leaveLength = std::min(size_t(text.size()), sizeof leaveText);
    std::copy_n(text.constData(), leaveLength, leaveText);
    setLastResort(leaveAtOnce);
}

} // namespace

bool TerminalScreen::isAvailable()
{
    int error = 0;
    if (!isatty(kOutput) || setupterm(nullptr, kOutput, &error) != OK)
        return false;
    const bool canPlaceText = !capability("cup").isEmpty();
    del_curterm(cur_term);
    return canPlaceText;
}

// The signals are this program's own already; ncurses takes over none of them but those for the size and
// for Ctrl-Z.
TerminalScreen::TerminalScreen()
{
    tcgetattr(kOutput, &stateBefore);
    handle = newterm(nullptr, stdout, stdin);
    prepareLastResort();
    curs_set(0);
}

TerminalScreen::~TerminalScreen()
{
    giveBack();
}

void TerminalScreen::giveBack()
{
    if (!handle)
        return;
    flushinp();
    endwin();
    setLastResort(nullptr);
    delscreen(std::exchange(handle, nullptr));
}

// A terminal without a second screen would show the picture twice.
void TerminalScreen::leave(const QStringList &lines)
{
    if (capability("rmcup").isEmpty())
        show({});
    giveBack();
    try {
        printText(lines.join('\n') + '\n');
    } catch (const Failure &) { // a terminal that is gone shows nothing any more, and has shown it all
    } catch (const Interrupted &) {
    }
}

int TerminalScreen::columns() const
{
    return getmaxx(stdscr);
}

int TerminalScreen::rows() const
{
    return getmaxy(stdscr);
}

bool TerminalScreen::takeResize()
{
    winsize size = {};
    if (ioctl(kOutput, TIOCGWINSZ, &size) != 0 || size.ws_row == 0 || size.ws_col == 0 ||
        !is_term_resized(size.ws_row, size.ws_col))
        return false;
    return resizeterm(size.ws_row, size.ws_col) == OK;
}

void TerminalScreen::show(const QStringList &lines)
{
    const bool hasColour = wantsColour(kOutput);
    werase(stdscr);
    const int count = std::min(int(lines.size()), rows());
    for (int row = 0; row < count; ++row) {
        const QString line = common::visibleText(lines.at(row)).left(columns());
        wmove(stdscr, row, 0);
        for (const TextPart &part : partsOf(line)) {
            wattrset(stdscr, part.isEscape && hasColour ? A_DIM : A_NORMAL);
            waddnstr(stdscr, part.text.toLocal8Bit().constData(), -1);
        }
    }
    wattrset(stdscr, A_NORMAL);
    wrefresh(stdscr);
}

} // namespace host
