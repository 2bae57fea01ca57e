// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A serial port of this computer: 8 data bits, 1 stop bit.

#ifndef SIMULATOR_LINE_SERIAL_LINE_H
#define SIMULATOR_LINE_SERIAL_LINE_H

#include "simulator/line/line.h"
#include "simulator/protocol/bytes.h"

#include <QSerialPort>
#include <QString>

namespace sim {

class SerialLine : public Line
{
    Q_OBJECT

public:
    // Throws LineError.
    SerialLine(const QString &device, qint32 baudRate, QSerialPort::Parity parity);

    QString name() const override { return device; }
    void send(const Bytes &bytes) override;

private:
    void reportError(QSerialPort::SerialPortError error);

    const QString device;
    QSerialPort port;
};

} // namespace sim

#endif
