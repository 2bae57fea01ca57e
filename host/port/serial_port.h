// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A serial port as a driver uses it: blocking, one deadline per receive.

#ifndef HOST_PORT_SERIAL_PORT_H
#define HOST_PORT_SERIAL_PORT_H

#include "abstract_device_interface.h"
#include "host/base/failure.h"
#include "host/port/line_noise.h"
#include "host/port/line_settings.h"
#include "host/port/pending_answer.h"

#include <QByteArray>
#include <QSerialPort>
#include <QString>
#include <QVariant>

#include <optional>

namespace host {

// How the host talks to the controller; times in milliseconds.
struct Timing
{
    int timeout;
    int retries;
    int station;
    int delay;
};

// Who switches between sending and receiving on two wires: the adapter by itself, or the kernel's driver.
enum class Direction { ByAdapter, ByKernel };

class SerialPort : public AbstractDeviceInterface
{
public:
    // Opens the port for this program alone. Fails when that does not work or when the port does not
    // take the settings. A pseudo-terminal has no parity and always 8 data bits; there the two are not
    // insisted on.
    SerialPort(const QString &name, const LineSettings &line, const Timing &timing,
               Direction direction = Direction::ByAdapter);

    // Opens a lost port once more, with the same settings. Fails as long as it is not there.
    void reopen();

    // Waits for up to maxLength bytes until the time-out, counted from the call, has run out. Below 0
    // at once when the port is lost or the program is interrupted.
    int receive(unsigned char *buffer, int maxLength) override;

    // Returns length when all bytes have left, otherwise below 0.
    int send(const unsigned char *data, int length) override;

    // kClearInput throws away everything that was received and not read; the port has no other option. When
    // there was something, when the frame before did not get its whole answer, and at the first time after
    // the port was opened, what is still coming is thrown away too, until the line is silent: for 20 ms, and
    // where an answer may be under way for as long as that takes on the line, or for three quarters of the
    // time-out. This counts against the
    // time-out of what is received next, of which half is left in any case. On a line that is not silent
    // within the time-out nothing is sent and nothing received until the next call.
    bool setOption(int key, const QVariant &value) override;

    // No repetitions on a port that is lost, or once the program is interrupted.
    int retry() override;
    int stationId() override;
    int delay() override;

    // Waits while nothing is under way; returns early when the port goes away or a signal arrives.
    void idle(int milliseconds);

    QString portName() const { return name; }

    // The kernel's descriptor of the open port.
    int handle() const { return int(port.handle()); }

    void setStation(int station) { timing.station = station; }
    void setRetries(int retries) { timing.retries = retries; }

    // Whether the port went away since it was opened.
    bool isLost() const { return lost; }

    // What was on the line when it was to be cleared the last time and could not be; nothing when it could.
    const std::optional<LineNoise> &noise() const { return babble; }

    // Waits for 20 ms, and tells whether nothing came.
    bool staysSilent();

    // Whether the port hears what it sends: all of the last frame has come back, or comes within the time-out
    // as it began. A first byte alone tells nothing: noise and frames of others begin like requests.
    bool hearsItself();

    // What the port does differently from what was asked; empty when nothing.
    QString lineNote() const { return note; }

private:
    void open();
    void openLocked();
    void configure();
    Failure openFailure() const;
    void refuseSharing() const;
    void checkLine();
    bool hasReceived() const;
    bool mayBeUnderWay() const;
    void clearUntilSilent();
    int neededSilence() const;
    int lineTime(int bytes) const;
    int receiveTime() const;
    QByteArray takeReceived(int milliseconds);
    bool goesOn() const;
    void noteError();

    QSerialPort port;
    QString name;
    LineSettings line;
    Timing timing;
    Direction direction;
    QString note;
    bool lost = false;
    PendingAnswer pending;
    bool isUnknown = true;     // the line was not found silent since the port was opened, or the last time
    bool isRecovering = false; // since an attempt failed no answer was whole
    qint64 clearingTime = 0;   // what the last clearing took of the time-out; milliseconds
    std::optional<LineNoise> babble;
};

} // namespace host

#endif
