// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "fault_port.h"

#include "controller.h"
#include "fake_sleep.h"

#include <QVariant>

#include <cstring>
#include <limits>
#include <string>

namespace {

const qint64 kNanosecondsPerMillisecond = 1000000;
const int kRoomForCalls = 1000; // bytes, for speed

FaultPort *g_port = nullptr;

int claimOf(Failure failure, int whole, int moved)
{
    switch (failure) {
    case kNothing:
        return 0;
    case kError:
        return -1;
    case kWorstError:
        return std::numeric_limits<int>::min();
    case kFewer:
        return moved;
    case kMore:
        return whole + 1;
    case kMost:
        return std::numeric_limits<int>::max();
    case kPretend:
        break;
    }
    return whole;
}

bool movesAll(Failure failure)
{
    return failure == kMore || failure == kMost;
}

} // namespace

FaultPort::FaultPort(Controller &farEnd, const PortSettings &portSettings)
    : controller(farEnd), settings(portSettings), replies(0), receives(0), sendCalls(0), totalSends(0), now(0)
{
    writtenDown.reserve(kRoomForCalls);
    FakeSleep::reset();
    FakeSleep::setListener(notePause);
    g_port = this;
}

FaultPort::~FaultPort()
{
    FakeSleep::setListener(nullptr);
    g_port = nullptr;
}

void FaultPort::setFaults(const QList<LineFault> &faultsOfLine, const QList<CallFault> &faultsOfCalls)
{
    lineFaults = faultsOfLine;
    callFaults = faultsOfCalls;
    replies = 0;
    receives = 0;
    sendCalls = 0;
}

int FaultPort::receive(unsigned char *buffer, int maxLength)
{
    const CallFault *fault = faultOf(kReceive, ++receives);
    const int result = fault ? receiveFaulty(buffer, maxLength, fault->failure) : collect(buffer, maxLength);
    note("receive of", maxLength);
    note("gave", result);
    return result;
}

// A call that hands out nothing takes its time nevertheless; what comes meanwhile waits for the next one.
int FaultPort::receiveFaulty(unsigned char *buffer, int maxLength, Failure failure)
{
    if (movesAll(failure))
        collect(buffer, maxLength);
    else if (failure == kFewer)
        return collectHalf(buffer, maxLength);
    else
        now += settings.timeout;
    return claimOf(failure, maxLength, 0);
}

int FaultPort::collectHalf(unsigned char *buffer, int maxLength)
{
    QByteArray whole(maxLength, '\0');
    const int half = collect(reinterpret_cast<unsigned char *>(whole.data()), maxLength) / 2;
    std::memcpy(buffer, whole.constData(), size_t(half));
    return half;
}

int FaultPort::collect(unsigned char *buffer, int maxLength)
{
    const qint64 deadline = now + settings.timeout;
    int count = 0;
    while (count < qMin(maxLength, int(arrivals.size())) && arrivals.at(count).time <= deadline) {
        now = qMax(now, arrivals.at(count).time);
        buffer[count] = static_cast<unsigned char>(arrivals.at(count).value);
        ++count;
    }
    arrivals.remove(0, count);
    if (count < maxLength)
        now = deadline;
    return count;
}

int FaultPort::send(const unsigned char *data, int length)
{
    const QByteArray frame(reinterpret_cast<const char *>(data), length);
    writtenDown += "send " + frame.toHex() + '\n';
    ++totalSends;
    if (const CallFault *fault = faultOf(kSend, ++sendCalls))
        return sendFaulty(frame, fault->failure);
    transmit(frame);
    return length;
}

int FaultPort::sendFaulty(const QByteArray &frame, Failure failure)
{
    const int half = int(frame.size()) / 2;
    if (movesAll(failure))
        transmit(frame);
    else if (failure == kFewer)
        transmit(frame.left(half));
    return claimOf(failure, int(frame.size()), half);
}

void FaultPort::transmit(const QByteArray &frame)
{
    const QByteArray reply = controller.replyTo(frame);
    if (reply.isEmpty())
        return;
    const QVector<LateByte> bytes = damaged(reply, ++replies, lineFaults, struck);
    for (int i = 0; i < int(bytes.size()); ++i)
        schedule(bytes.at(i));
}

// Bytes that arrive at the same time keep the order in which they were sent.
void FaultPort::schedule(const LateByte &byte)
{
    const Arrival arrival = {now + kReactionTime + byte.delay, byte.value};
    int place = int(arrivals.size());
    while (place > 0 && arrivals.at(place - 1).time > arrival.time)
        --place;
    arrivals.insert(place, arrival);
}

bool FaultPort::setOption(int key, const QVariant &value)
{
    note("option", key);
    note(value.userType() == int(QMetaType::Int) ? "integer" : "no integer", value.toInt());
    int count = 0;
    while (settings.purges && count < int(arrivals.size()) && arrivals.at(count).time <= now)
        ++count;
    arrivals.remove(0, count);
    return true;
}

int FaultPort::retry()
{
    note("retry", settings.retries);
    return settings.retries;
}

int FaultPort::delay()
{
    note("delay", settings.delay);
    return settings.delay;
}

const CallFault *FaultPort::faultOf(Call call, int number)
{
    for (int i = 0; i < int(callFaults.size()); ++i) {
        const CallFault &fault = callFaults.at(i);
        if (fault.call == call && (fault.forEver ? number >= fault.number : number == fault.number)) {
            ++struck.failures[fault.failure];
            return &fault;
        }
    }
    return nullptr;
}

void FaultPort::note(const char *what, qint64 argument)
{
    writtenDown += what;
    writtenDown += ' ';
    writtenDown += std::to_string(argument).c_str();
    writtenDown += '\n';
}

void FaultPort::notePause(qint64 nanoseconds)
{
    g_port->note("pause", nanoseconds);
    g_port->now += nanoseconds / kNanosecondsPerMillisecond;
}
