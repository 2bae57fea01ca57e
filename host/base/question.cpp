// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/base/question.h"

#include "common/terminal_text.h"
#include "host/base/failure.h"
#include "host/base/interruption.h"

#include <QByteArray>

#include <algorithm>
#include <cerrno>
#include <iostream>

#include <termios.h>
#include <unistd.h>

namespace host {

namespace {

// The terminal gives whole lines, and nothing at the end of the input.
QByteArray readLine()
{
    while (true) {
        awaitReadable(STDIN_FILENO);
        char buffer[256];
        const ssize_t count = read(STDIN_FILENO, buffer, sizeof buffer);
        if (count >= 0 || (errno != EINTR && errno != EAGAIN))
            return QByteArray(buffer, int(std::max<ssize_t>(count, 0)));
    }
}

// Ends the line of the question unless the user's Enter has done so.
QByteArray readAnswer()
{
    try {
        QByteArray line = readLine();
        if (!line.endsWith('\n'))
            std::cerr << std::endl;
        return line;
    } catch (const Interrupted &) {
        std::cerr << std::endl;
        throw;
    }
}

} // namespace

void checkTerminal()
{
    if (isatty(STDIN_FILENO) == 0 || isatty(STDERR_FILENO) == 0)
        throw Failure(ExitCode::Usage, "there is no terminal to ask on",
                      "leave stdin and stderr to the terminal, or leave out --confirm");
}

bool isConfirmed(const QStringList &lines, const QString &question)
{
    for (const QString &line : lines)
        std::cerr << qUtf8Printable(common::visibleText(line)) << '\n';
    tcflush(STDIN_FILENO, TCIFLUSH);
    std::cerr << qUtf8Printable(common::visibleText(question)) << " [y/N] " << std::flush;
    const QByteArray answer = readAnswer().trimmed().toLower();
    return answer == "y" || answer == "yes";
}

} // namespace host
