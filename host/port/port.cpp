// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/port/port.h"

#include "host/base/interruption.h"

#include <QElapsedTimer>

#include <algorithm>
#include <chrono>
#include <ctime>

#include <poll.h>
#include <sys/ioctl.h>

namespace host {

namespace {

// What ends a stretch of bytes that nobody asked for: adapters hand over what they received up to 16 ms late.
constexpr int kSilence = 20;

// What an answer may be late beyond the time that its bytes take on the line, behind a failed attempt.
constexpr int kDelay = 50;

constexpr int kBitsPerByte = 11; // on the line: start, data, parity and stop

// What the bytes of an answer may be late at most because they are fetched together.
constexpr std::chrono::milliseconds kLongestGathering(5);

// How much is kept of what a line that is never silent brings.
constexpr int kKeptNoise = 300;

int slice(const QDeadlineTimer &deadline)
{
    return int(std::min<qint64>(deadline.remainingTime(), kInterruptionSlice));
}

} // namespace

void Port::reopen()
{
    close();
    open();
    lost = false;
    isUnknown = true;
    isRecovering = false;
    heard = 0;
    pending = PendingAnswer();
}

int Port::receive(unsigned char *buffer, int maxLength)
{
    awaitBytes(maxLength);
    if (!goesOn())
        return -1;
    if (babble)
        return 0;
    const int length = int(device().read(reinterpret_cast<char *>(buffer), maxLength));
    heard += std::max(0, length);
    pending.received(QByteArray(reinterpret_cast<const char *>(buffer), std::max(0, length)));
    return length;
}

// When the time is up there is a last look: a busy machine may wake this program long after the bytes came.
void Port::awaitBytes(int count)
{
    QDeadlineTimer deadline(timing.gap && hasBegun() ? *timing.gap : receiveTime());
    bool isLastLook = false;
    bool isComing = hasBegun();
    while (goesOn() && device().bytesAvailable() < count && !isLastLook) {
        const qint64 before = device().bytesAvailable();
        isLastLook = deadline.hasExpired();
        if (isComing && !isLastLook)
            letGather(count - before, deadline);
        if (!device().waitForReadyRead(isLastLook ? 0 : slice(deadline)))
            noteError();
        isComing = hasBegun() && device().bytesAvailable() > before;
        if (timing.gap && isComing) {
            deadline.setRemainingTime(*timing.gap);
            isLastLook = false;
        }
    }
}

// Sleeps as long as so many bytes take on the line. Adapters that hand over every byte by itself would wake
// this program for each of them, which takes more of the processor than all that is done with the answer.
void Port::letGather(qint64 bytes, const QDeadlineTimer &deadline)
{
    using std::chrono::nanoseconds;
    if (!runsOwnLine())
        return;
    const nanoseconds time(std::max<qint64>(0, bytes - waitingInKernel()) * lineTimeOfByte());
    const nanoseconds left(std::max<qint64>(0, deadline.remainingTimeNSecs()));
    const nanoseconds pause = std::min({time, nanoseconds(kLongestGathering), left});
    const timespec duration = {0, long(pause.count())};
    if (pause > nanoseconds::zero())
        ppoll(nullptr, 0, &duration, nullptr);
}

qint64 Port::lineTimeOfByte() const
{
    return kBitsPerByte * qint64(1000000000) / std::max(baud, 1);
}

// Whether bytes of the answer came, and not only the echo of what was sent.
bool Port::hasBegun() const
{
    return heard + device().bytesAvailable() > echoLength;
}

int Port::receiveTime() const
{
    return babble ? 0 : std::max(timing.timeout - int(clearingTime), timing.timeout / 2);
}

int Port::send(const unsigned char *data, int length)
{
    if (!goesOn() || babble || device().write(reinterpret_cast<const char *>(data), length) != length)
        return -1;
    if (isProtocolKnown)
        pending.sent(QByteArray(reinterpret_cast<const char *>(data), length));
    heard = 0;
    echoLength = isEchoed ? length : 0;
    const QDeadlineTimer deadline(timing.timeout);
    while (goesOn() && device().bytesToWrite() > 0 && !deadline.hasExpired()) {
        if (!device().waitForBytesWritten(slice(deadline)))
            noteError();
    }
    if (goesOn() && device().bytesToWrite() == 0 && drain())
        return length;
    clearOutput();
    return -1;
}

bool Port::setOption(int key, const QVariant & /*value*/)
{
    if (key != kClearInput || !goesOn())
        return false;
    babble.reset();
    clearingTime = 0;
    const bool isClean = !mayBeUnderWay();
    isRecovering = isRecovering ? !pending.isAnswered() : pending.hasFailed();
    if (!isClean)
        clearUntilSilent();
    else if (!clearInput())
        noteError();
    isUnknown = babble.has_value();
    return goesOn();
}

bool Port::hasReceived() const
{
    return device().bytesAvailable() > 0 || waitingInKernel() > 0;
}

int Port::waitingInKernel() const
{
    int bytes = 0;
    return ioctl(handle(), FIONREAD, &bytes) == 0 ? bytes : 0;
}

// The answer to what an earlier program, or an attempt that was given up, asked for may still be under way.
// In front of the next answer it would be taken for that, and so would every answer after it. A controller
// that was late acknowledges twice, the earlier request and this one.
bool Port::mayBeUnderWay() const
{
    return isUnknown || hasReceived() || pending.missing() > 0 || (isRecovering && pending.isAcknowledged());
}

// It is not silent as long as bytes wait in the kernel: a busy machine may have kept this program from them.
// In the last quarter any gap will do: where other masters speak there may never be a longer one.
void Port::clearUntilSilent()
{
    const int limit = std::max(timing.timeout, 2 * kSilence);
    QElapsedTimer time;
    QElapsedTimer silence;
    LineNoise noise;
    time.start();
    silence.start();
    const auto needed = [&] { return time.elapsed() < limit * 3 / 4 ? neededSilence() : kSilence; };
    const auto isSilent = [&] { return silence.elapsed() >= needed() && !hasReceived(); };
    while (goesOn() && time.elapsed() < limit && !isSilent()) {
        const QByteArray bytes =
            takeReceived(std::min(kInterruptionSlice, needed() - int(silence.elapsed())));
        if (bytes.isEmpty())
            continue;
        pending.received(bytes);
        noise.count += bytes.size();
        noise.beginning += bytes.left(kKeptNoise - int(noise.beginning.size()));
        noise.milliseconds = time.elapsed();
        silence.restart();
    }
    clearingTime = noise.milliseconds;
    if (noise.count > 0 && !isSilent())
        babble = noise;
}

// Returns what is there, or comes within the time.
QByteArray Port::takeReceived(int milliseconds)
{
    if (device().bytesAvailable() == 0 && !device().waitForReadyRead(std::max(0, milliseconds)))
        noteError();
    return device().readAll();
}

int Port::neededSilence() const
{
    const int bytes = pending.missing();
    return bytes > 0 ? lineTime(bytes) + kDelay : kSilence;
}

int Port::lineTime(int bytes) const
{
    return int(bytes * lineTimeOfByte() / 1000000);
}

bool Port::staysSilent()
{
    const QByteArray bytes = takeReceived(kSilence);
    pending.received(bytes);
    isUnknown = isUnknown || !bytes.isEmpty();
    return bytes.isEmpty();
}

bool Port::hearsItself()
{
    const QDeadlineTimer deadline(std::max(timing.timeout, 2 * kSilence));
    while (goesOn() && pending.isEchoBegun() && !deadline.hasExpired())
        pending.received(takeReceived(slice(deadline)));
    return pending.isEcho();
}

int Port::retry()
{
    return goesOn() ? timing.retries : 0;
}

int Port::stationId()
{
    return timing.station;
}

int Port::delay()
{
    return goesOn() ? timing.delay : 0;
}

void Port::idle(int milliseconds)
{
    pollfd device = {handle(), hangUpEvent(), 0};
    lost = lost || poll(&device, 1, milliseconds) > 0;
}

bool Port::goesOn() const
{
    return !lost && interruptingSignal() == 0;
}

void Port::noteError()
{
    lost = takeError() || lost;
}

} // namespace host
