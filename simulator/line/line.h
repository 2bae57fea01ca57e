// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Lines: where the bytes come from and go to. They run on Qt's event loop.

#ifndef SIMULATOR_LINE_LINE_H
#define SIMULATOR_LINE_LINE_H

#include "simulator/protocol/bytes.h"
#include "simulator/text/user_error.h"

#include <QByteArray>
#include <QObject>
#include <QString>

namespace sim {

// It is thrown when a line cannot be opened.
class LineError : public UserError
{
public:
    LineError(const QString &text, const QString &hint) : UserError(text.toStdString(), hint.toStdString()) {}
};

class Line : public QObject
{
    Q_OBJECT

public:
    // Returns the name that a master opens.
    virtual QString name() const = 0;

    // Never blocks. Bytes that nobody takes are lost, as on a real line.
    virtual void send(const Bytes &bytes) = 0;

Q_SIGNALS:
    void received(const QByteArray &bytes);

    // The line is gone for good. Emitted once.
    void lost();
};

} // namespace sim

#endif
