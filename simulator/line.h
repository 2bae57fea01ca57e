// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Where the bytes come from and go to. Runs on Qt's event loop.

#ifndef SIMULATOR_LINE_H
#define SIMULATOR_LINE_H

#include "simulator/bytes.h"

#include <QByteArray>
#include <QObject>
#include <QString>

#include <stdexcept>

namespace sim {

// A line that cannot be opened. Its text is for the user to read.
class LineError : public std::runtime_error
{
public:
    explicit LineError(const QString &text) : std::runtime_error(text.toStdString()) {}
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
