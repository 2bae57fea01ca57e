// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
/// @file
/// Sizing arrays whose length comes from outside: sizes in 64 bits, and no exception when memory is short.

#ifndef TOOLS_ARRAY_SIZE_H
#define TOOLS_ARRAY_SIZE_H

#include <QByteArray>

#include <climits>
#include <cstring>
#include <new>

/// Cuts the array, or fills it with zero bytes, to size bytes; a negative size counts as 0. False, and the
/// array as it was, when no array can be so long or memory does not reach.
static inline bool resizeWithZeros(QByteArray &array, qint64 size)
{
    if (size > INT_MAX)
        return false;
    const int before = static_cast<int>(array.size());
    const int after = size > 0 ? static_cast<int>(size) : 0;
    try {
        array.resize(after);
        if (after > before)
            std::memset(array.data() + before, 0, static_cast<size_t>(after - before));
    } catch (const std::bad_alloc &) {
        return false;
    }
    return true;
}

/// An array of size bytes that have no values yet; empty for a size below 1, and when no array can be so long
/// or memory does not reach.
static inline QByteArray arrayWithoutValues(qint64 size)
{
    try {
        if (size > 0 && size <= INT_MAX)
            return QByteArray(static_cast<int>(size), Qt::Uninitialized);
    } catch (const std::bad_alloc &) {
    }
    return QByteArray();
}

#endif
