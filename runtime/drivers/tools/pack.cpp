// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "pack.h"

#include <QtEndian>

#include <climits>
#include <cstring>
#include <new>

namespace {

enum Outcome { kFinished, kUnknownLetter, kBadCount };

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

// Walks a format once. An interpreter carries out one item and says whether it knows it.
template <class Interpreter> Outcome interpret(const char *format, Interpreter &interpreter)
{
    for (const char *cursor = format;; ++cursor) {
        while (interpreter.single(*cursor))
            ++cursor;
        if (*cursor == '\0')
            return kFinished;
        if (!isDigit(*cursor))
            return kUnknownLetter;
        const int count = takeCount(cursor);
        if (count < 0 || !interpreter.counted(*cursor, count))
            return kBadCount;
    }
}

// Big-endian elements to host order, or back: both are the same step. Neither side need be aligned.
template <typename Element> void convertElements(unsigned char *to, const unsigned char *from, int count)
{
    for (int i = 0; i < count; ++i) {
        const Element element = qFromBigEndian<Element>(from);
        std::memcpy(to, &element, sizeof element);
        to += sizeof element;
        from += sizeof element;
    }
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
    void skip() { room(1); }

    bool pad(char letter, int count)
    {
        unsigned char *place = room(count);
        if (letter == 'x' && count > 0)
            std::memset(place, 0, static_cast<size_t>(count));
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
    void skip() { *room(1) = 0; }

    bool pad(char, int) { return false; }

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
        array.append(reinterpret_cast<const char *>(gathered), static_cast<int>(next - gathered));
        next = gathered;
    }

    unsigned char gathered[128];
    unsigned char *next;
    QByteArray array;
};

template <class Writer> class Packer
{
public:
    Packer(Writer &destination, Arguments &values) : writer(destination), arguments(values) {}

    bool single(char letter)
    {
        switch (letter) {
        case 'C':
        case 'c':
            *writer.room(1) = static_cast<unsigned char>(arguments.number());
            return true;
        case 'n':
            qToBigEndian(static_cast<quint16>(arguments.number()), writer.room(2));
            return true;
        case 'S':
        case 's':
        case 'v':
            qToLittleEndian(static_cast<quint16>(arguments.number()), writer.room(2));
            return true;
        case 'N':
            qToBigEndian(static_cast<quint32>(arguments.number()), writer.room(4));
            return true;
        case 'I':
        case 'i':
        case 'L':
        case 'l':
        case 'V':
            qToLittleEndian(static_cast<quint32>(arguments.number()), writer.room(4));
            return true;
        case 'x':
            *writer.room(1) = 0;
            return true;
        case 'X':
            writer.skip();
            return true;
        default:
            return false;
        }
    }

    bool counted(char letter, int count)
    {
        if (letter == 'x' || letter == 'X')
            return writer.pad(letter, count);
        if (count == 0)
            return false;
        switch (letter) {
        case 'C':
        case 'c':
            return copy(count);
        case 'n':
            convertElements<quint16>(writer.room(qint64(count) * 2), arguments.pointer(), count);
            return true;
        case 'v':
            return copy(qint64(count) * 2);
        case 'N':
            convertElements<quint32>(writer.room(qint64(count) * 4), arguments.pointer(), count);
            return true;
        case 'V':
            return copy(qint64(count) * 4);
        default:
            return false;
        }
    }

private:
    bool copy(qint64 size)
    {
        std::memcpy(writer.room(size), arguments.pointer(), static_cast<size_t>(size));
        return true;
    }

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

    bool single(char letter)
    {
        switch (letter) {
        case 'C':
        case 'c':
            *arguments.pointer() = *take(1);
            return true;
        case 'n':
            return store(qFromBigEndian<quint16>(take(2)));
        case 'S':
        case 's':
        case 'v':
            return store(qFromLittleEndian<quint16>(take(2)));
        case 'N':
            return store(qFromBigEndian<quint32>(take(4)));
        case 'I':
        case 'i':
        case 'L':
        case 'l':
        case 'V':
            return store(qFromLittleEndian<quint32>(take(4)));
        case 'x':
        case 'X':
            take(1);
            return true;
        default:
            return false;
        }
    }

    bool counted(char letter, int count)
    {
        if (letter == 'x' || letter == 'X') {
            take(count);
            return true;
        }
        if (count == 0)
            return false;
        switch (letter) {
        case 'C':
        case 'c':
            return copy(count);
        case 'n':
            convertElements<quint16>(arguments.pointer(), take(qint64(count) * 2), count);
            return true;
        case 'v':
            return copy(qint64(count) * 2);
        case 'N':
            convertElements<quint32>(arguments.pointer(), take(qint64(count) * 4), count);
            return true;
        case 'V':
            return copy(qint64(count) * 4);
        default:
            return false;
        }
    }

    int consumed() const { return static_cast<int>(next - start); }

private:
    const unsigned char *take(qint64 size)
    {
        const unsigned char *place = next;
        next += size;
        return place;
    }

    template <typename Value> bool store(Value value)
    {
        std::memcpy(arguments.pointer(), &value, sizeof value);
        return true;
    }

    bool copy(qint64 size)
    {
        std::memcpy(arguments.pointer(), take(size), static_cast<size_t>(size));
        return true;
    }

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
    Arguments arguments;
    va_start(arguments.list, format);
    const int written = packInBuffer(buffer, format, arguments);
    va_end(arguments.list);
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
    Arguments arguments;
    va_start(arguments.list, format);
    QByteArray packed = packInArray(format, arguments);
    va_end(arguments.list);
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
    Arguments arguments;
    va_start(arguments.list, format);
    const int consumed = unpackBuffer(buffer, format, arguments);
    va_end(arguments.list);
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
