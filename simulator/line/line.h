// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Where the bytes come from and go to. Runs on Qt's event loop.

#ifndef SIMULATOR_LINE_LINE_H
#define SIMULATOR_LINE_LINE_H

#include "simulator/protocol/bytes.h"
#include "simulator/text/user_error.h"

#include <QByteArray>
#include <QObject>
#include <QString>

namespace sim {

// A line that cannot be opened.
class LineError : public UserError
{
public:
    LineError(const QString &text, const QString &hint) : UserError(text.toStdString(), hint.toStdString()) {}
};

class Line : public QObject
{
    Q_OBJECT

public:
    // What a master opens.
    virtual QString name() const = 0;

    // Bytes that nobody takes are lost, as on a real line; never blocks.
    virtual void send(const Bytes &bytes) = 0;

Q_SIGNALS:
    void received(const QByteArray &bytes);

    // The line is gone for good. Said once.
    void lost();
};

} // namespace sim

#endif
