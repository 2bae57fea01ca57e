// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A question to the user at the terminal.

#ifndef HOST_BASE_QUESTION_H
#define HOST_BASE_QUESTION_H

#include <QString>
#include <QStringList>

namespace host {

// Fails unless there is a terminal to ask on: stderr for the question, stdin for the answer.
void checkTerminal();

// Shows lines, and behind them a question that is answered with y or yes. Returns whether it was: any other
// answer, an empty one and the end of the input are a no. What was typed before the question does not count.
// A signal ends the wait.
bool isConfirmed(const QStringList &lines, const QString &question);

} // namespace host

#endif
