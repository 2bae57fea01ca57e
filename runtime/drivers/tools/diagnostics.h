// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
/// @file
/// Helpers for looking at what is going on.

#ifndef TOOLS_DIAGNOSTICS_H
#define TOOLS_DIAGNOSTICS_H

#include <QByteArray>
#include <QList>
#include <QString>
#include <QtGlobal>

/// True when the process exists, be it someone else's. 0 and negative numbers mean process groups, as they
/// do for kill().
Q_DECL_EXPORT bool ProcessIsRunning(long long pid);

/// "(0X1 0Xab ) : " and the bytes as Latin-1 text up to the first zero byte.
Q_DECL_EXPORT QString dumpByteArray(const QByteArray &bytes);

/// An empty list, for operations that take a list of section sizes where none is wanted.
Q_DECL_EXPORT QList<int> EmptyPackageSizeList();

#endif
