// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What a command reads besides its arguments.

#ifndef HOST_TEXT_INPUT_H
#define HOST_TEXT_INPUT_H

#include <QByteArray>
#include <QString>

namespace host {

// The whole file; "-" is stdin. Fails when it cannot be read.
QByteArray readInput(const QString &fileName);

} // namespace host

#endif
