// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Prints frames as lines for people: direction, meaning, bytes.
//
//   -> poll of station 2: 10 02 00 5c 5e 16
//   <- acknowledgement: e5
//   <- silence

#ifndef HOST_FRAMES_TRACE_PRINTER_H
#define HOST_FRAMES_TRACE_PRINTER_H

#include "host/frames/listener.h"

#include <QByteArray>
#include <QString>

#include <functional>

namespace host {

class TracePrinter : public FrameListener
{
public:
    using WriteLine = std::function<void(const QString &)>;

    // Frames of a protocol that is not known have their bytes alone: "-> 02 05 52 4e 01 2c bd".
    explicit TracePrinter(const WriteLine &writeLine, bool isProtocolKnown = true);

    void sent(const QByteArray &frame) override;
    void received(const QByteArray &frame) override;
    void heardNothing(bool isOver) override;

private:
    QString textOf(const QByteArray &frame) const;

    WriteLine writeLine;
    bool isProtocolKnown;
};

} // namespace host

#endif
