// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Texts from outside - of a controller, a file, a USB adapter - on their way to a terminal, which would take
// some of their characters for commands.

#ifndef COMMON_TERMINAL_TEXT_H
#define COMMON_TERMINAL_TEXT_H

#include <QString>

namespace common {

// The text with each character that a terminal does not show as a character of its own written out, \x1b or
// \u202e: control characters, those that turn the direction of writing, and those that end lines. The
// characters of `kept` stay.
QString visibleText(const QString &text, const QString &kept = QString());

// The text of a message, on one line, in which quoted texts beyond 80 characters, and all of it beyond 1,000,
// lose their middle.
QString messageText(const QString &text);

} // namespace common

#endif
