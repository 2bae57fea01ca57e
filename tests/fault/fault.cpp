// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "fault.h"

#include <algorithm>

namespace {

const char *const kDamageNames[] = {"lose", "cut", "double", "insert", "swap", "corrupt", "hold", "seal"};
const char *const kFailureNames[] = {"nothing", "error", "worst error", "fewer", "more", "most", "pretend"};

LateByte onTime(int value)
{
    const LateByte byte = {char(value), 0};
    return byte;
}

bool isSame(const QVector<LateByte> &a, const QVector<LateByte> &b)
{
    if (a.size() != b.size())
        return false;
    int i = 0;
    while (i < int(a.size()) && a.at(i).value == b.at(i).value && a.at(i).delay == b.at(i).delay)
        ++i;
    return i == int(a.size());
}

void hold(QVector<LateByte> &bytes, int place, int delay)
{
    for (int i = place; i < int(bytes.size()); ++i)
        bytes[i].delay += delay;
}

// FCS: sum of the bytes from the first station address on, as many as the length byte counts.
void seal(QVector<LateByte> &bytes)
{
    const int first = 4;
    if (bytes.size() < first)
        return;
    const int checkSumPlace = first + static_cast<unsigned char>(bytes.at(1).value);
    if (checkSumPlace >= int(bytes.size()))
        return;
    int sum = 0;
    for (int i = first; i < checkSumPlace; ++i)
        sum += bytes.at(i).value;
    bytes[checkSumPlace].value = char(sum);
}

void damage(QVector<LateByte> &bytes, const LineFault &fault)
{
    const int behind = int(bytes.size()) - fault.place;
    if (fault.damage == kInsert && behind >= 0)
        bytes.insert(fault.place, onTime(fault.value));
    if (behind <= 0)
        return;
    if (fault.damage == kLose)
        bytes.remove(fault.place);
    else if (fault.damage == kCut)
        bytes = bytes.mid(0, fault.place);
    else if (fault.damage == kDouble)
        bytes.insert(fault.place, LateByte(bytes.at(fault.place)));
    else if (fault.damage == kSwap && behind > 1)
        qSwap(bytes[fault.place], bytes[fault.place + 1]);
    else if (fault.damage == kCorrupt)
        bytes[fault.place].value = char(fault.value);
    else if (fault.damage == kHold)
        hold(bytes, fault.place, fault.value);
    else if (fault.damage == kSeal)
        seal(bytes);
}

} // namespace

LineFault lineFault(int reply, Damage damage, int place, int value)
{
    const LineFault fault = {damage, place, value, reply};
    return fault;
}

CallFault callFault(Call call, int number, Failure failure, bool forEver)
{
    const CallFault fault = {call, number, forEver, failure};
    return fault;
}

Strikes::Strikes()
{
    std::fill(damages, damages + kDamages, 0);
    std::fill(failures, failures + kFailureKinds, 0);
}

Strikes &Strikes::operator+=(const Strikes &other)
{
    for (int i = 0; i < kDamages; ++i)
        damages[i] += other.damages[i];
    for (int i = 0; i < kFailureKinds; ++i)
        failures[i] += other.failures[i];
    return *this;
}

QVector<LateByte> damaged(const QByteArray &reply, int number, const QList<LineFault> &faults,
                          Strikes &strikes)
{
    QVector<LateByte> bytes;
    for (int i = 0; i < int(reply.size()); ++i)
        bytes += onTime(reply.at(i));
    for (int i = 0; i < int(faults.size()); ++i) {
        if (faults.at(i).reply != 0 && faults.at(i).reply != number)
            continue;
        const QVector<LateByte> before = bytes;
        damage(bytes, faults.at(i));
        strikes.damages[faults.at(i).damage] += isSame(before, bytes) ? 0 : 1;
    }
    return bytes;
}

QString toString(Damage damage)
{
    return QLatin1String(kDamageNames[damage]);
}

QString toString(Failure failure)
{
    return QLatin1String(kFailureNames[failure]);
}

QString toString(const LineFault &fault)
{
    return QString::fromLatin1("%1 at byte %2 of reply %3, value %4")
        .arg(toString(fault.damage))
        .arg(fault.place)
        .arg(fault.reply)
        .arg(fault.value);
}

QString toString(const CallFault &fault)
{
    return QString::fromLatin1("%1 of %2 %3%4")
        .arg(toString(fault.failure))
        .arg(QLatin1String(fault.call == kReceive ? "receive" : "send"))
        .arg(fault.number)
        .arg(QLatin1String(fault.forEver ? " and all behind it" : ""));
}
