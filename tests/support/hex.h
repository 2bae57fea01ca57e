// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Bytes as people write them: "10 02 00 5c 5e 16". Blanks are optional.

#ifndef TESTS_HEX_H
#define TESTS_HEX_H

#include <QByteArray>
#include <QString>

inline QByteArray bytes(const char *text)
{
    return QByteArray::fromHex(QByteArray(text));
}

inline QString hex(const QByteArray &data)
{
    return QString::fromLatin1(data.toHex());
}

// The library's decoders take their bytes so.
inline const unsigned char *unsignedBytes(const QByteArray &data)
{
    return reinterpret_cast<const unsigned char *>(data.constData());
}

#endif
