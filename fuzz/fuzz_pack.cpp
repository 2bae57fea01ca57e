// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Formats of the pack language with any letters and counts: buffer and array get the same bytes, as many as
// the format says; what was packed is unpacked again; what stands in front of an error is packed.
//
//    input := { letter | digit } 00 values

#include "fuzzing.h"

#include "tools/pack.h"

#include <array>
#include <cctype>
#include <climits>
#include <cstring>
#include <vector>

using fuzz::require;

namespace {

constexpr size_t kMostArguments = 4;
constexpr int kMostElements = 64;

// What a format says, read once more.
struct Field
{
    int width;
    bool isPadding;
    bool isCounted;
    int count;
};

struct Format
{
    QByteArray text;
    std::vector<Field> fields; // up to an error
    bool isBadCount = false;
    bool isUnknownLetter = false;

    bool isGood() const { return !isBadCount && !isUnknownLetter; }
    int size() const
    {
        int size = 0;
        for (const Field &field : fields)
            size += field.count * field.width;
        return size;
    }
};

int widthOf(char letter)
{
    if (strchr("CcxX", letter))
        return 1;
    if (strchr("nvSs", letter))
        return 2;
    return strchr("NVIiLl", letter) ? 4 : 0;
}

// Reads a count and its letter; false for what is an error.
bool readCounted(const char *&cursor, std::vector<Field> &fields)
{
    long long count = 0;
    for (; isdigit(uint8_t(*cursor)); ++cursor)
        count = std::min(count * 10 + (*cursor - '0'), 1LL << 40);
    const char letter = *cursor;
    const bool isPadding = letter == 'x' || letter == 'X';
    const bool isCountable = letter != '\0' && strchr("CcnvNVxX", letter);
    if (!isCountable || count > INT_MAX || (count == 0 && !isPadding))
        return false;
    fields.push_back({widthOf(letter), isPadding, true, int(count)});
    return true;
}

Format formatOf(const QByteArray &text)
{
    Format format;
    format.text = text;
    for (const char *cursor = text.constData(); *cursor != '\0'; ++cursor) {
        if (isdigit(uint8_t(*cursor))) {
            if (!readCounted(cursor, format.fields)) {
                format.isBadCount = true;
                break;
            }
        } else if (widthOf(*cursor) > 0) {
            format.fields.push_back({widthOf(*cursor), *cursor == 'x' || *cursor == 'X', false, 1});
        } else {
            format.isUnknownLetter = true;
            break;
        }
    }
    return format;
}

// An argument for each field that takes one: the elements of a counted field, or a number; and room for what
// is unpacked.
struct Argument
{
    bool isCounted;
    std::array<uint8_t, kMostElements * 4> packed;
    std::array<uint8_t, kMostElements * 4> unpacked;
    int size;

    int number() const
    {
        int value = 0;
        memcpy(&value, packed.data(), sizeof value);
        return value;
    }
};
using Arguments = std::vector<Argument>;

// Calls with the arguments, each an int or a pointer as its field wants it.
template <typename Call, typename... Values>
auto callPacking(const Call &call, const Arguments &arguments, Values... values) -> decltype(call(0))
{
    if constexpr (sizeof...(Values) < kMostArguments) {
        if (sizeof...(Values) < arguments.size()) {
            const Argument &next = arguments[sizeof...(Values)];
            const void *elements = next.packed.data();
            return next.isCounted ? callPacking(call, arguments, values..., elements)
                                  : callPacking(call, arguments, values..., next.number());
        }
    }
    return call(values...);
}

template <typename Call, typename... Values>
int callUnpacking(const Call &call, Arguments &arguments, Values... values)
{
    if constexpr (sizeof...(Values) < kMostArguments) {
        if (sizeof...(Values) < arguments.size()) {
            void *place = arguments[sizeof...(Values)].unpacked.data();
            return callUnpacking(call, arguments, values..., place);
        }
    }
    return call(values...);
}

bool hasCountedPadding(const Format &format)
{
    for (const Field &field : format.fields)
        if (field.isPadding && field.isCounted)
            return true;
    return false;
}

void pack(const Format &format, Arguments &arguments)
{
    const char *text = format.text.constData();
    QByteArray zeros(format.size() + 1, '\0'); // one more, as an array of nothing has no address
    auto *buffer = reinterpret_cast<unsigned char *>(zeros.data());
    const auto packInBuffer = [&](auto... values) { return DataPack(buffer, text, values...); };
    const int written = callPacking(packInBuffer, arguments);
    require(written == (format.isBadCount        ? -1
                        : format.isUnknownLetter ? 0
                                                 : format.size()),
            "as many bytes are written as the format says");
    require(zeros.at(format.size()) == '\0', "nothing is written behind them");

    const auto packInArray = [&](auto... values) { return ByteArrayPack(text, values...); };
    const QByteArray array = callPacking(packInArray, arguments);
    const bool isGood = format.isGood() && !hasCountedPadding(format);
    require(array == (isGood ? zeros.left(format.size()) : QByteArray()),
            "array and buffer get the same bytes");

    const auto unpack = [&](auto... places) { return DataUnpack(buffer, text, places...); };
    require(callUnpacking(unpack, arguments) == (format.isGood() ? format.size() : -1),
            "as many are unpacked");
    for (const Argument &argument : arguments)
        require(std::equal(argument.packed.begin(), argument.packed.begin() + argument.size,
                           argument.unpacked.begin()),
                "what was packed is unpacked");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes = fuzz::arrayOf(data, size);
    const int end = int(bytes.indexOf('\0'));
    const Format format = formatOf(bytes.left(end < 0 ? int(bytes.size()) : end));
    const QByteArray values = end < 0 ? QByteArray() : bytes.mid(end + 1);
    fuzz::Input input(reinterpret_cast<const uint8_t *>(values.constData()), size_t(values.size()));
    Arguments arguments;
    for (const Field &field : format.fields) {
        if (field.count > kMostElements)
            return -1; // would only take time
        if (field.isPadding)
            continue;
        Argument argument = {field.isCounted, {}, {}, field.count * field.width};
        for (int i = 0; i < argument.size; ++i)
            argument.packed[size_t(i)] = input.byte();
        arguments.push_back(argument);
    }
    if (arguments.size() > kMostArguments)
        return -1;
    pack(format, arguments);
    return 0;
}
