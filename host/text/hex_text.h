// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Bytes as people write them in hexadecimal digits.

#ifndef HOST_TEXT_HEX_TEXT_H
#define HOST_TEXT_HEX_TEXT_H

#include <QByteArray>
#include <QString>

namespace host {

// Returns the bytes of a text: "10 02 00 5c", "1002005C", "10:02:00:5c", "0x10, 0x02", in any mixture and
// over any number of lines. What stands on a line before ": " are words, as --verbose and --dry-run print
// them. Fails on anything else, and on a digit without a partner.
QByteArray parseHex(const QString &text);

} // namespace host

#endif
