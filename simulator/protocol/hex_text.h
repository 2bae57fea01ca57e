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

std::string hexText(uint8_t byte);

// Two small digits a byte, with the separator between bytes.
std::string hexText(const Bytes &bytes, const char *separator = " ");

// Digits of either case, two a byte; blanks between bytes are allowed. Nothing when the text is no such.
std::optional<Bytes> parseHex(const std::string &text);

} // namespace sim

#endif
