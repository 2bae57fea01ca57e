// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The addresses behind a host's name.

#ifndef HOST_PORT_HOST_LOOKUP_H
#define HOST_PORT_HOST_LOOKUP_H

#include <QDeadlineTimer>
#include <QHostAddress>
#include <QList>
#include <QString>

namespace host {

// Returns the addresses of a host, those first that are to be tried first; an address is its own. Fails when
// there are none and when the deadline passes. A signal ends it at once.
QList<QHostAddress> addressesOf(const QString &host, const QDeadlineTimer &deadline);

} // namespace host

#endif
