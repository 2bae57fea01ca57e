// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Bytes that end where the memory ends: reading or writing behind them ends the program.

#ifndef TESTS_GUARDED_BYTES_H
#define TESTS_GUARDED_BYTES_H

#include <QByteArray>

#include <cstddef>

class GuardedBytes
{
public:
    // Of at most one page of memory.
    explicit GuardedBytes(const QByteArray &content);
    ~GuardedBytes();

    const char *text() const { return begin; }
    const unsigned char *bytes() const { return reinterpret_cast<const unsigned char *>(begin); }

    // The bytes themselves as an array, not a copy with a zero byte behind them.
    QByteArray array() const { return QByteArray::fromRawData(begin, size); }

private:
    GuardedBytes(const GuardedBytes &);
    GuardedBytes &operator=(const GuardedBytes &);

    size_t pageSize;
    char *pages; // the second one cannot be used
    char *begin;
    int size;
};

#endif
