// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A port as a driver uses it, whatever brings its bytes: blocking, one deadline per receive.

#ifndef HOST_PORT_PORT_H
#define HOST_PORT_PORT_H

#include "abstract_device_interface.h"
#include "host/base/failure.h"
#include "host/port/line_noise.h"
#include "host/port/line_settings.h"
#include "host/port/pending_answer.h"

#include <QByteArray>
#include <QDeadlineTimer>
#include <QIODevice>
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
    std::optional<int> gap = std::nullopt; // the longest within an answer; without one the time-out holds
};

class Port : public AbstractDeviceInterface
{
public:
    // From now on nothing is taken for the beginning of an answer, or for an echo of what was sent: frames of
    // other protocols may look like either.
    void expectUnknownProtocol() { isProtocolKnown = false; }

    // From now on every frame comes back before its answer, which does not begin with that.
    void expectEcho() { isEchoed = true; }

    // Opens a lost port once more, with the same settings. Fails as long as it is not there.
    void reopen();

    // Whether there is something that could be opened, as far as one can tell without opening it.
    virtual bool isThere() const = 0;

    // Waits for up to maxLength bytes until the time-out, counted from the call, has run out. With a gap that
    // counts from every byte of an answer in place of the time-out, and from the call where the answer had
    // begun before. Below 0 at once when the port is lost or the program is interrupted.
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

    virtual QString portName() const = 0;

    // The kernel's descriptor of the open port.
    virtual int handle() const = 0;

    // How the line runs: "9600 baud, even parity, 8 data bits, 1 stop bit".
    virtual QString settingsText() const = 0;

    // What the port does differently from what was asked; empty when nothing.
    virtual QString lineNote() const { return QString(); }

    void setStation(int station) { timing.station = station; }
    void setRetries(int retries) { timing.retries = retries; }

    // Whether the port went away since it was opened, and what a request ends with that found that.
    bool isLost() const { return lost; }
    virtual Failure loss() const = 0;

    // What was on the line when it was to be cleared the last time and could not be; nothing when it could.
    const std::optional<LineNoise> &noise() const { return babble; }

    // Waits for 20 ms, and tells whether nothing came.
    bool staysSilent();

    // Whether the port hears what it sends: all of the last frame has come back, or comes within the time-out
    // as it began. A first byte alone tells nothing: noise and frames of others begin like requests.
    bool hearsItself();

protected:
    // baud: of the line that lies behind the port, which tells how long bytes are under way.
    Port(const Timing &timing_, int baud_) : timing(timing_), baud(baud_) {}

private:
    virtual void open() = 0;
    virtual void close() = 0;

    virtual QIODevice &device() = 0;
    const QIODevice &device() const { return const_cast<Port *>(this)->device(); }

    // Whether the device failed in more than that nothing came in time, since it was asked the last time.
    virtual bool takeError() = 0;

    // Throws away what was received; false when that fails.
    virtual bool clearInput() = 0;

    // Keeps what could not be sent from going out in front of the next frame.
    virtual void clearOutput() = 0;

    // Waits until what the kernel has taken is on the line, where it tells that; false when that fails.
    virtual bool drain() = 0;

    // What poll() is to wait for, besides errors and the other side's end, to learn that the port is gone.
    virtual short hangUpEvent() const = 0;

    // Whether the bytes come as the line brings them, at the rate that this port was set to.
    virtual bool runsOwnLine() const = 0;

    void awaitBytes(int count);
    void letGather(qint64 bytes, const QDeadlineTimer &deadline);
    bool hasBegun() const;
    bool hasReceived() const;
    int waitingInKernel() const;
    bool mayBeUnderWay() const;
    void clearUntilSilent();
    int neededSilence() const;
    int lineTime(int bytes) const;
    qint64 lineTimeOfByte() const; // nanoseconds
    int receiveTime() const;
    QByteArray takeReceived(int milliseconds);
    bool goesOn() const;
    void noteError();

    Timing timing;
    int baud;
    bool lost = false;
    bool isProtocolKnown = true;
    bool isEchoed = false;
    int echoLength = 0;        // what comes back of the last frame before its answer
    int heard = 0;             // bytes that were received since the last frame was sent
    PendingAnswer pending;     // knows of no frame where the protocol is not known
    bool isUnknown = true;     // the line was not found silent since the port was opened, or the last time
    bool isRecovering = false; // since an attempt failed no answer was whole
    qint64 clearingTime = 0;   // what the last clearing took of the time-out; milliseconds
    std::optional<LineNoise> babble;
};

} // namespace host

#endif
