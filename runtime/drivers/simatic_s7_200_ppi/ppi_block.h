// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Blocks of a frame whose bytes could not be had. The toolkit answers a lack of memory with an empty or a
// shorter array; without those bytes a frame would ask for something else, or write something else. Such a
// frame must never be sent: std::bad_alloc fails the attempt instead.

#ifndef PPI_BLOCK_H
#define PPI_BLOCK_H

#include "tools/pack.h"

#include <QByteArray>

#include <new>

// The block, as ByteArrayPack packed it. The driver's formats are all good, so it is empty only when memory
// did not reach.
static inline QByteArray wholeBlock(const QByteArray &packed)
{
    if (packed.isEmpty())
        throw std::bad_alloc();
    return packed;
}

// The array, of which there must be size bytes.
static inline QByteArray wholeArray(const QByteArray &array, qint64 size)
{
    if (array.size() != size)
        throw std::bad_alloc();
    return array;
}

#endif
