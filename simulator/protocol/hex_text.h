// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Bytes as hexadecimal text.

#ifndef SIMULATOR_PROTOCOL_HEX_TEXT_H
#define SIMULATOR_PROTOCOL_HEX_TEXT_H

#include "simulator/protocol/bytes.h"

#include <cstdint>
#include <optional>
#include <string>

namespace sim {

// Writes one byte as two digits, in small letters.
std::string hexText(uint8_t byte);

// Writes two digits a byte, in small letters, with the separator between bytes.
std::string hexText(const Bytes &bytes, const char *separator = " ");

// Reads digits in small letters or capitals, two a byte, with or without blanks between bytes. Gives nothing
// when the text is anything else.
std::optional<Bytes> parseHex(const std::string &text);

} // namespace sim

#endif
