// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A plug-in that claims the driver's interface without having it.

#include "interface_id.h"

#include <QObject>
#include <QtPlugin>

class HollowPlugin : public QObject
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID DRIVER_INTERFACE_ID)
};

#include "hollow_plugin.moc"
