// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "pack.h"

#include <QtEndian>

#include <algorithm>
#include <climits>
#include <cstring>
#include <new>

namespace {

enum Order { kLowestFirst, kHighestFirst, kZero, kGap };

// What a letter of a format stands for: an element of some bytes on the line, or a byte of padding.
struct Field
{
    char letter;
    int width; // of one element, in bytes
    Order order;
    bool isCountable; // a count may stand in front of it

    bool isPadding() const { return order == kZero || order == kGap; }
};

// Searched from the top, so what stands in most formats comes first. The last row ends the search.
// clang-format off
const Field kFields[] = {
    {'C',  1, kLowestFirst,  true},
    {'n',  2, kHighestFirst, true},
    {'x',  1, kZero,         true},
    {'N',  4, kHighestFirst, true},
    {'c',  1, kLowestFirst,  true},
    {'v',  2, kLowestFirst,  true},
    {'V',  4, kLowestFirst,  true},
    {'X',  1, kGap,          true},
    {'S',  2, kLowestFirst,  false},
    {'s',  2, kLowestFirst,  false},
    {'I',  4, kLowestFirst,  false},
    {'i',  4, kLowestFirst,  false},
    {'L',  4, kLowestFirst,  false},
    {'l',  4, kLowestFirst,  false},
    {'\0', 0, kGap,          false},
};
// clang-format on

// Null for a letter that stands for nothing.
inline const Field *fieldOf(char letter)
{
    const Field *field = kFields;
    while (field->letter != letter && field->letter != '\0')
        ++field;
    return field->letter != '\0' ? field : nullptr;
}

bool isDigit(char letter)
{
    return letter >= '0' && letter <= '9';
}

// Reads the digits at the cursor and leaves it behind them; -1 for a number that is no int.
int takeCount(const char *&cursor)
{
    qint64 count = 0;
    for (; isDigit(*cursor); ++cursor) {
        if (count <= INT_MAX)
            count = count * 10 + (*cursor - '0');
    }
    return count <= INT_MAX ? static_cast<int>(count) : -1;
}

bool mayRepeat(const Field &field, int count)
{
    return field.isCountable && (field.isPadding() ? count >= 0 : count > 0);
}

enum Outcome { kFinished, kUnknownLetter, kBadCount };

// Walks a format once. An interpreter carries out one field, or several of a kind if it knows how.
template <class Interpreter> Outcome interpret(const char *format, Interpreter &interpreter)
{
    for (const char *cursor = format; *cursor != '\0'; ++cursor) {
        if (const Field *field = fieldOf(*cursor)) {
            interpreter.single(*field);
            continue;
        }
        if (!isDigit(*cursor))
            return kUnknownLetter;
        const int count = takeCount(cursor);
        const Field *field = fieldOf(*cursor);
        if (!field || !mayRepeat(*field, count) || !interpreter.several(*field, count))
            return kBadCount;
    }
    return kFinished;
}

template <typename Element> inline void copyAs(unsigned char *to, const unsigned char *from, bool isReversed)
{
    Element element;
    std::memcpy(&element, from, sizeof element);
    if (isReversed)
        element = qbswap(element);
    std::memcpy(to, &element, sizeof element);
}

// From the line to the host or back. The host has the lowest byte first. Neither side need be aligned.
inline void copyElement(const Field &field, unsigned char *to, const unsigned char *from)
{
    const bool isReversed = field.order == kHighestFirst;
    if (field.width == 1)
        *to = *from;
    else if (field.width == 2)
        copyAs<quint16>(to, from, isReversed);
    else
        copyAs<quint32>(to, from, isReversed);
}

void copyElements(const Field &field, unsigned char *to, const unsigned char *from, int count)
{
    if (field.order == kLowestFirst) {
        std::memcpy(to, from, static_cast<size_t>(count) * static_cast<size_t>(field.width));
        return;
    }
    for (int i = 0; i < count; ++i, to += field.width, from += field.width)
        copyElement(field, to, from);
}

// The arguments of a call. A struct, because a va_list cannot be handed down by reference everywhere.
// Whoever starts the list ends it.
struct Arguments
{
    va_list list;

    int number() { return va_arg(list, int); }
    unsigned char *pointer() { return static_cast<unsigned char *>(va_arg(list, void *)); }
};

// Packed bytes in the caller's buffer.
class BufferWriter
{
public:
    explicit BufferWriter(unsigned char *buffer) : start(buffer), next(buffer) {}

    // The place of the next bytes.
    unsigned char *room(qint64 size)
    {
        unsigned char *place = next;
        next += size;
        return place;
    }

    void pad(const Field &field) { padSeveral(field, 1); }
    bool padSeveral(const Field &field, int count)
    {
        unsigned char *place = room(count);
        if (field.order == kZero)
            std::fill_n(place, count, static_cast<unsigned char>(0));
        return true;
    }

    int written() const { return static_cast<int>(next - start); }

private:
    unsigned char *const start;
    unsigned char *next;
};

// Packed bytes for a new array. They gather on the stack, so that a short result costs one allocation.
class ArrayWriter
{
public:
    ArrayWriter() : next(gathered) {}

    unsigned char *room(qint64 size)
    {
        if (size > gathered + sizeof gathered - next)
            return roomInArray(size);
        unsigned char *place = next;
        next += size;
        return place;
    }

    void pad(const Field &) { *room(1) = 0; }
    bool padSeveral(const Field &, int) { return false; }

    QByteArray take()
    {
        flush();
        return array;
    }

private:
    ArrayWriter(const ArrayWriter &);
    ArrayWriter &operator=(const ArrayWriter &);

    unsigned char *roomInArray(qint64 size)
    {
        flush();
        const qint64 before = array.size();
        if (before + size > INT_MAX)
            throw std::bad_alloc();
        array.resize(static_cast<int>(before + size));
        return reinterpret_cast<unsigned char *>(array.data()) + before;
    }

    void flush()
    {
        const int length = static_cast<int>(next - gathered);
        if (array.isEmpty() && length > 0)
            array.reserve(length + kRoomBehind);
        array.append(reinterpret_cast<const char *>(gathered), length);
        next = gathered;
    }

    // Bytes that the caller can append to a short result without another allocation: a block of a frame.
    enum { kRoomBehind = 32 };

    unsigned char gathered[128];
    unsigned char *next;
    QByteArray array;
};

template <class Writer> class Packer
{
public:
    Packer(Writer &destination, Arguments &values) : writer(destination), arguments(values) {}

    void single(const Field &field)
    {
        if (field.isPadding()) {
            writer.pad(field);
            return;
        }
        const int value = arguments.number();
        copyElement(field, writer.room(field.width), reinterpret_cast<const unsigned char *>(&value));
    }

    bool several(const Field &field, int count)
    {
        if (field.isPadding())
            return writer.padSeveral(field, count);
        copyElements(field, writer.room(qint64(count) * field.width), arguments.pointer(), count);
        return true;
    }

private:
    Writer &writer;
    Arguments &arguments;
};

class Unpacker
{
public:
    Unpacker(const unsigned char *buffer, Arguments &destinations)
        : start(buffer), next(buffer), arguments(destinations)
    {
    }

    void single(const Field &field)
    {
        if (!field.isPadding())
            copyElement(field, arguments.pointer(), next);
        next += field.width;
    }

    bool several(const Field &field, int count)
    {
        if (!field.isPadding())
            copyElements(field, arguments.pointer(), next, count);
        next += qint64(count) * field.width;
        return true;
    }

    int consumed() const { return static_cast<int>(next - start); }

private:
    const unsigned char *const start;
    const unsigned char *next;
    Arguments &arguments;
};

int packInBuffer(unsigned char *buffer, const char *format, Arguments &arguments)
{
    BufferWriter writer(buffer);
    Packer<BufferWriter> packer(writer, arguments);
    switch (interpret(format, packer)) {
    case kFinished:
        return writer.written();
    case kUnknownLetter:
        return 0;
    case kBadCount:
        break;
    }
    return -1;
}

QByteArray packInArray(const char *format, Arguments &arguments)
{
    try {
        ArrayWriter writer;
        Packer<ArrayWriter> packer(writer, arguments);
        return interpret(format, packer) == kFinished ? writer.take() : QByteArray();
    } catch (const std::bad_alloc &) {
        return QByteArray();
    }
}

int unpackBuffer(const unsigned char *buffer, const char *format, Arguments &arguments)
{
    Unpacker unpacker(buffer, arguments);
    return interpret(format, unpacker) == kFinished ? unpacker.consumed() : -1;
}

} // namespace

int DataPack(unsigned char *buffer, const char *format, ...)
{
    va_list values;
    va_start(values, format);
    const int written = VDataPack(buffer, format, values);
    va_end(values);
    return written;
}

int VDataPack(unsigned char *buffer, const char *format, va_list values)
{
    Arguments arguments;
    va_copy(arguments.list, values);
    const int written = packInBuffer(buffer, format, arguments);
    va_end(arguments.list);
    return written;
}

QByteArray ByteArrayPack(const char *format, ...)
{
    va_list values;
    va_start(values, format);
    QByteArray packed = VByteArrayPack(format, values);
    va_end(values);
    return packed;
}

QByteArray VByteArrayPack(const char *format, va_list values)
{
    Arguments arguments;
    va_copy(arguments.list, values);
    QByteArray packed = packInArray(format, arguments);
    va_end(arguments.list);
    return packed;
}

int DataUnpack(const unsigned char *buffer, const char *format, ...)
{
    va_list destinations;
    va_start(destinations, format);
    const int consumed = VDataUnpack(buffer, format, destinations);
    va_end(destinations);
    return consumed;
}

int VDataUnpack(const unsigned char *buffer, const char *format, va_list destinations)
{
    Arguments arguments;
    va_copy(arguments.list, destinations);
    const int consumed = unpackBuffer(buffer, format, arguments);
    va_end(arguments.list);
    return consumed;
}
