// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
/// @file
/// What differs between Qt 4.8, 5.15 and 6.4, and nothing else.

#ifndef QT_COMPAT_H
#define QT_COMPAT_H

#include <QObject>
#include <QtEndian>

#ifndef Q_PLUGIN_METADATA
/// Qt 4 exports its plug-ins by hand instead (plugin_instance_qt4.cpp).
#define Q_PLUGIN_METADATA(x)
#endif

/// Copies count elements of kWidth bytes, 2 or 4, each with its bytes in reverse order. from and to may be
/// one place, but may not overlap otherwise; neither need be aligned. Qt has this, quicker than a plain loop,
/// since 5.12.
#if QT_VERSION >= 0x050C00
template <int kWidth> inline void copyReversed(const void *from, int count, void *to)
{
    qbswap<kWidth>(from, count, to);
}
#else
template <int kWidth> inline void copyReversed(const void *from, int count, void *to)
{
    const unsigned char *source = static_cast<const unsigned char *>(from);
    unsigned char *target = static_cast<unsigned char *>(to);
    for (int i = 0; i < count; ++i, source += kWidth, target += kWidth) {
        for (int k = 0; k < kWidth / 2; ++k) {
            const unsigned char first = source[k];
            target[k] = source[kWidth - 1 - k];
            target[kWidth - 1 - k] = first;
        }
    }
}
#endif

#endif
