// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Which port to use when the command line names none.

#ifndef HOST_PORT_PORT_CHOICE_H
#define HOST_PORT_PORT_CHOICE_H

#include <QList>
#include <QString>

namespace host {

struct UsbAdapter
{
    QString device;      // /dev/ttyUSB0
    QString description; // what the adapter calls itself
};

QList<UsbAdapter> usbAdapters();

// The device of the only adapter; empty when there is none. Fails, naming all, when there are several.
QString onlyAdapter(const QList<UsbAdapter> &adapters);

} // namespace host

#endif
