// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "simulator/protocol/hex_text.h"

#include <cstddef>

namespace sim {

namespace {

int hexDigit(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

} // namespace

std::string hexText(uint8_t byte)
{
    const char *digits = "0123456789abcdef";
    return {digits[byte >> 4], digits[byte & 0xF]};
}

std::string hexText(const Bytes &bytes, const char *separator)
{
    std::string text;
    for (const uint8_t byte : bytes)
        text += (text.empty() ? "" : separator) + hexText(byte);
    return text;
}

std::optional<Bytes> parseHex(const std::string &text)
{
    Bytes bytes;
    for (size_t i = 0; i < text.size(); i += 2) {
        while (i < text.size() && text[i] == ' ')
            ++i;
        if (i == text.size())
            break;
        const int high = hexDigit(text[i]);
        const int low = i + 1 < text.size() ? hexDigit(text[i + 1]) : -1;
        if (high < 0 || low < 0)
            return std::nullopt;
        bytes.push_back(static_cast<uint8_t>(high * 16 + low));
    }
    return bytes;
}

} // namespace sim
