// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "guarded_bytes.h"

#include <cstring>

#include <sys/mman.h>
#include <unistd.h>

GuardedBytes::GuardedBytes(const QByteArray &content)
    : pageSize(static_cast<size_t>(sysconf(_SC_PAGESIZE))), pages(nullptr), begin(nullptr),
      size(static_cast<int>(content.size()))
{
    void *memory = mmap(nullptr, 2 * pageSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED || content.size() > static_cast<int>(pageSize))
        qFatal("GuardedBytes: no room for %d bytes", size);
    pages = static_cast<char *>(memory);
    begin = pages + pageSize - size;
    std::memcpy(begin, content.constData(), static_cast<size_t>(size));
    if (mprotect(pages + pageSize, pageSize, PROT_NONE) != 0)
        qFatal("GuardedBytes: no page to guard with");
}

GuardedBytes::~GuardedBytes()
{
    munmap(pages, 2 * pageSize);
}
