// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
/// @file
/// What differs between Qt 4.8, 5.15 and 6.4, and nothing else.

#ifndef QT_COMPAT_H
#define QT_COMPAT_H

#include <QByteArray>
#include <QString>

#ifndef Q_PLUGIN_METADATA
/// Qt 4 exports its plug-ins by hand instead (plugin_instance_qt4.cpp).
#define Q_PLUGIN_METADATA(x)
#endif

/// The 8-bit form of a text that a "%s" of Qt's message functions expects.
inline QByteArray messageText(const QString &text)
{
#if QT_VERSION >= 0x050000
    return text.toUtf8();
#else
    return text.toLatin1();
#endif
}

#endif
