// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Which programs have a port open.

#ifndef HOST_PORT_PORT_HOLDER_H
#define HOST_PORT_PORT_HOLDER_H

#include <QList>
#include <QString>

namespace host {

struct PortHolder
{
    int process;
    QString program;
};

// All programs but this one that have the device open, as far as this user may see. The program at the
// other end of a pseudo-terminal is none of them, though it may keep the port's end open, too.
QList<PortHolder> portHolders(const QString &device);

// "minicom (process 1234)", several with commas between.
QString holderText(const QList<PortHolder> &holders);

} // namespace host

#endif
