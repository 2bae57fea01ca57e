// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "hex_text.h"

#include <cinttypes>
#include <cstdio>
#include <map>

namespace {

const std::map<std::string, std::string> kAreas = {
    {"I", "81"},   {"IB", "81"}, {"IW", "81"},  {"ID", "81"},  {"Q", "82"},   {"QB", "82"},
    {"QW", "82"},  {"QD", "82"}, {"V", "84"},   {"VB", "84"},  {"VW", "84"},  {"VD", "84"},
    {"M", "83"},   {"MB", "83"}, {"MW", "83"},  {"MD", "83"},  {"T", "1f"},   {"C", "1e"},
    {"HC", "20"},  {"SM", "05"}, {"SMB", "05"}, {"SMW", "05"}, {"SMD", "05"}, {"AIW", "06"},
    {"AQW", "07"}, {"S", "04"},  {"SB", "04"},  {"SW", "04"},  {"SD", "04"},
};

std::string areaOf(const std::string &prefix)
{
    const auto found = kAreas.find(prefix);
    return found == kAreas.end() ? "00" : found->second;
}

} // namespace

std::string hextext::field(uint64_t value, int digits)
{
    char text[17];
    std::snprintf(text, sizeof text, "%016" PRIx64, value);
    return std::string(text).substr(size_t(16 - digits));
}

std::string hextext::ofBytes(const QByteArray &bytes)
{
    std::string text;
    for (const char byte : bytes)
        text += field(static_cast<unsigned char>(byte), 2);
    return text;
}

int hextext::sizeOf(const std::string &text)
{
    return int(text.size() / 2);
}

std::string hextext::sumOf(const std::string &text, int bytes)
{
    uint64_t sum = 0;
    for (int i = 0; i < bytes; ++i)
        sum += std::stoul(text.substr(size_t(2 * i), 2), nullptr, 16);
    return field(sum, 2);
}

std::string hextext::longFrame(int da, int sa, int fc, const std::string &pdu)
{
    const std::string counted =
        field(uint64_t(da), 2) + field(uint64_t(sa), 2) + field(uint64_t(fc), 2) + pdu;
    const std::string length = field(uint64_t(sizeOf(counted)), 2);
    return "68" + length + length + "68" + counted + sumOf(counted, sizeOf(counted) % 256) + "16";
}

std::string hextext::shortFrame(int da, int sa, int fc)
{
    const std::string middle = field(uint64_t(da), 2) + field(uint64_t(sa), 2) + field(uint64_t(fc), 2);
    return "10" + middle + sumOf(middle, 3) + "16";
}

std::string hextext::item(const std::string &prefix, int transportSize, int count, uint64_t address)
{
    const std::string dataBlock = prefix.substr(0, 1) == "V" ? "0001" : "0000";
    return "120a10" + field(uint64_t(transportSize), 2) + field(uint64_t(count), 4) + dataBlock +
           areaOf(prefix) + field(address, 6);
}

std::string hextext::job(int reference, const std::string &block, const std::string &data)
{
    return "32010000" + field(uint64_t(reference), 4) + field(uint64_t(sizeOf(block)), 4) +
           field(uint64_t(sizeOf(data)), 4) + block + data;
}
