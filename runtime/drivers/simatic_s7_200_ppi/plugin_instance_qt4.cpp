// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The instance function of Qt 4's plug-in loader. Qt 5 and 6 have moc write the same one.

#include "s7_200_ppi.h"

#include <QPointer>

extern "C" Q_DECL_EXPORT QObject *qt_plugin_instance();

QObject *qt_plugin_instance()
{
    static QPointer<QObject> instance;
    if (!instance)
        instance = new DriverS7_200_PPI;
    return instance;
}
