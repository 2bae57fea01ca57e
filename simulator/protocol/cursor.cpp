// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "simulator/protocol/cursor.h"

namespace sim {

// Whether so many bytes are left. Once a read has failed all later ones do, or they would read from the wrong
// place.
bool Cursor::claim(size_t size)
{
    complete = complete && size <= left();
    return complete;
}

uint32_t Cursor::take(size_t size)
{
    uint32_t value = 0;
    if (!claim(size))
        return value;
    for (size_t i = 0; i < size; ++i)
        value = value << 8 | source[next++];
    return value;
}

Bytes Cursor::takeBytes(size_t size)
{
    if (!claim(size))
        return {};
    const auto first = source.begin() + static_cast<std::ptrdiff_t>(next);
    next += size;
    return Bytes(first, first + static_cast<std::ptrdiff_t>(size));
}

} // namespace sim
