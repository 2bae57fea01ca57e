// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "scripted_port.h"

#include "fake_sleep.h"
#include "hex.h"

#include <QVariant>

#include <cstdio>
#include <cstring>

namespace {

const char kRequestStart = 0x68;
const qint64 kNanosecondsPerMillisecond = 1000000;

thread_local ScriptedPort *g_port = nullptr;

QByteArray pollOf(int station)
{
    QByteArray poll = bytes("10 00 00 5c 00 16");
    poll[1] = char(station);
    poll[4] = char(station + 0x5c);
    return poll;
}

} // namespace

ScriptedPort::ScriptedPort(int stationNumber)
    : station(stationNumber), repetitions(0), milliseconds(0), purges(true), receiveCalls(0)
{
    FakeSleep::reset();
    FakeSleep::setListener(notePause);
    g_port = this;
}

ScriptedPort::~ScriptedPort()
{
    FakeSleep::setListener(nullptr);
    g_port = nullptr;
}

ScriptedPort &ScriptedPort::expects(const char *hexText)
{
    return expects(bytes(hexText));
}

ScriptedPort &ScriptedPort::expects(const QByteArray &frame)
{
    return addStep(kThisFrame, frame);
}

ScriptedPort &ScriptedPort::expectsRequest()
{
    return addStep(kAnyRequest, QByteArray());
}

ScriptedPort &ScriptedPort::expectsPoll()
{
    return expects(pollOf(station));
}

ScriptedPort &ScriptedPort::answers(const char *hexText)
{
    return answers(bytes(hexText));
}

ScriptedPort &ScriptedPort::answers(const QByteArray &received)
{
    if (hasFrame("answers()"))
        script.last().answer = received;
    return *this;
}

ScriptedPort &ScriptedPort::answersLate(const char *hexText)
{
    return answersLate(bytes(hexText));
}

ScriptedPort &ScriptedPort::answersLate(const QByteArray &received)
{
    if (hasFrame("answersLate()"))
        script.last().lateAnswer = received;
    return *this;
}

ScriptedPort &ScriptedPort::thenHasStation(int number)
{
    laterStations[int(script.size()) - 1] = number;
    return *this;
}

ScriptedPort &ScriptedPort::thenRetries(int times)
{
    laterRepetitions[int(script.size()) - 1] = times;
    return *this;
}

ScriptedPort &ScriptedPort::serves(const QByteArray &answer)
{
    return expectsRequest().answers("e5").expectsPoll().answers(answer);
}

ScriptedPort &ScriptedPort::receiveClaims(int call, int result)
{
    claims[call] = result;
    return *this;
}

ScriptedPort &ScriptedPort::retries(int times)
{
    repetitions = times;
    return *this;
}

ScriptedPort &ScriptedPort::delays(int delayMilliseconds)
{
    milliseconds = delayMilliseconds;
    return *this;
}

ScriptedPort &ScriptedPort::keepsOldBytes()
{
    purges = false;
    return *this;
}

bool ScriptedPort::scriptIsFinished() const
{
    QStringList all = complaints;
    for (int i = int(sentFrames.size()); i < int(script.size()); ++i)
        all += QString::fromLatin1("frame %1 of the script was not sent").arg(i + 1);
    for (int i = 0; i < int(all.size()); ++i)
        std::fprintf(stderr, "%s\n", all.at(i).toLatin1().constData());
    return all.isEmpty();
}

int ScriptedPort::requestsSent() const
{
    int count = 0;
    for (int i = 0; i < int(sentFrames.size()); ++i)
        count += sentFrames.at(i).startsWith(kRequestStart) ? 1 : 0;
    return count;
}

int ScriptedPort::receive(unsigned char *buffer, int maxLength)
{
    ++receiveCalls;
    const int claimed = claims.value(receiveCalls, maxLength);
    const int delivered = claimed < 0 ? 0 : deliver(buffer, maxLength);
    if (delivered < maxLength) {
        input += lateInput;
        lateInput.clear();
    }
    const int result = claims.contains(receiveCalls) ? claimed : delivered;
    allEvents += QString::fromLatin1("receive(%1) -> %2").arg(maxLength).arg(result);
    return result;
}

int ScriptedPort::send(const unsigned char *data, int length)
{
    const QByteArray frame(reinterpret_cast<const char *>(data), length);
    const int number = int(sentFrames.size());
    sentFrames += frame;
    allEvents += QLatin1String("send ") + hex(frame);
    const QString complaint = complaintAbout(number, frame);
    if (!complaint.isEmpty())
        complaints += complaint;
    if (number < int(script.size())) {
        input += script.at(number).answer;
        lateInput = script.at(number).lateAnswer;
    }
    station = laterStations.value(number, station);
    repetitions = laterRepetitions.value(number, repetitions);
    return length;
}

bool ScriptedPort::setOption(int key, const QVariant &value)
{
    const QString shown =
        value.userType() == int(QMetaType::Int) ? value.toString() : QString::fromLatin1("no integer");
    allEvents += QString::fromLatin1("option %1 = %2").arg(key).arg(shown);
    if (purges)
        input.clear();
    return true;
}

int ScriptedPort::retry()
{
    allEvents += QLatin1String("retry");
    return repetitions;
}

int ScriptedPort::stationId()
{
    return station;
}

int ScriptedPort::delay()
{
    allEvents += QLatin1String("delay");
    return milliseconds;
}

ScriptedPort &ScriptedPort::addStep(Kind kind, const QByteArray &frame)
{
    Step step = {kind, frame, QByteArray(), QByteArray()};
    script += step;
    return *this;
}

// Whether there is a frame that something can follow; complains otherwise.
bool ScriptedPort::hasFrame(const char *what)
{
    if (script.isEmpty())
        complaints += QString::fromLatin1("%1 needs an expects() before it").arg(QLatin1String(what));
    return !script.isEmpty();
}

QString ScriptedPort::complaintAbout(int number, const QByteArray &frame) const
{
    if (number >= int(script.size()))
        return QString::fromLatin1("frame %1 is not in the script: %2").arg(number + 1).arg(hex(frame));
    const Step &step = script.at(number);
    const bool asExpected = step.kind == kAnyRequest ? frame.startsWith(kRequestStart) : frame == step.frame;
    if (asExpected)
        return QString();
    return QString::fromLatin1("frame %1 is %2 instead of %3")
        .arg(number + 1)
        .arg(hex(frame))
        .arg(step.kind == kAnyRequest ? QString::fromLatin1("a request") : hex(step.frame));
}

int ScriptedPort::deliver(unsigned char *buffer, int maxLength)
{
    const int length = qMin(maxLength, int(input.size()));
    std::memcpy(buffer, input.constData(), size_t(length));
    input.remove(0, length);
    return length;
}

void ScriptedPort::notePause(qint64 nanoseconds)
{
    if (nanoseconds % kNanosecondsPerMillisecond == 0)
        g_port->allEvents += QString::fromLatin1("pause %1 ms").arg(nanoseconds / kNanosecondsPerMillisecond);
    else
        g_port->allEvents += QString::fromLatin1("pause %1 ns").arg(nanoseconds);
}
