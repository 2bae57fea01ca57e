// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Frames as text, the second way to compute them: fields are written with printf and joined, the check sum
// is read back from the digits.

#ifndef TESTS_PROPERTY_HEX_TEXT_H
#define TESTS_PROPERTY_HEX_TEXT_H

#include <QByteArray>

#include <cstdint>
#include <string>

namespace hextext {

// The low digits of value.
std::string field(uint64_t value, int digits);

std::string ofBytes(const QByteArray &bytes);

// Bytes in the text.
int sizeOf(const std::string &text);

// Sum of the first bytes of the text, modulo 256, two digits.
std::string sumOf(const std::string &text, int bytes);

// 68 LE LE 68 da sa fc pdu FCS 16, the length byte wrapping and the check sum covering what it says.
std::string longFrame(int da, int sa, int fc, const std::string &pdu);

// 10 da sa fc FCS 16
std::string shortFrame(int da, int sa, int fc);

// One item of a job: 12 0a 10 transport size, count, data block, area, address.
std::string item(const std::string &prefix, int transportSize, int count, uint64_t address);

// 32 01 0000 reference, lengths of block and data, block, data.
std::string job(int reference, const std::string &block, const std::string &data);

} // namespace hextext

#endif
