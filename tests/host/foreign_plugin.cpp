// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A good Qt plug-in that is no driver: it has an interface of its own.

#include <QObject>
#include <QtPlugin>

class ForeignPlugin : public QObject
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "org.example.Foreign/1.0")
};

#include "foreign_plugin.moc"
