// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
/// @file
/// What differs between Qt 4.8, 5.15 and 6.4, and nothing else.

#ifndef QT_COMPAT_H
#define QT_COMPAT_H

#include <QObject>

#ifndef Q_PLUGIN_METADATA
/// Qt 4 exports its plug-ins by hand instead (plugin_instance_qt4.cpp).
#define Q_PLUGIN_METADATA(x)
#endif

#endif
