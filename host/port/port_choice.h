// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Which port to use when the command line names none.

#ifndef HOST_PORT_PORT_CHOICE_H
#define HOST_PORT_PORT_CHOICE_H

#include "host/base/options.h"

#include <QList>
#include <QString>

namespace host {

struct UsbAdapter
{
    QString device;      // /dev/ttyUSB0
    QString description; // what the adapter calls itself
};

QList<UsbAdapter> usbAdapters();

// Returns the device of the only adapter, or an empty name when there is none. Fails, naming all, when there
// are several.
QString onlyAdapter(const QList<UsbAdapter> &adapters);

// Returns the port that is used when the user names none: the only adapter. Fails when there is none, or when
// there are several. The embedded simulator is never taken unasked: its values would look like a machine's.
QString usualPort(const QList<UsbAdapter> &adapters);

// Returns the port that the options name, or else the usual one of this machine.
QString choosePort(const PortOptions &options);

} // namespace host

#endif
