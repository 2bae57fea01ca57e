// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "tally.h"

namespace {

const char kRequest[] = "send 68";
const QLatin1String kAddressFollows("can not write data to ");
const int kTextWidth = 50;

QString line(const QString &what, qint64 number)
{
    return QString::fromLatin1("  %1 %2\n").arg(what, -kTextWidth).arg(number, 12);
}

// Not the address of a refused write, and not the codes of single bits: there are too many.
QString kindOf(const QString &reason)
{
    if (reason.isEmpty())
        return QLatin1String("for no reason that is told");
    if (reason.startsWith(kAddressFollows))
        return QLatin1String(kAddressFollows) + QLatin1String("...");
    if (reason.contains(QLatin1Char(',')))
        return QLatin1String("the codes of several bits");
    return reason;
}

} // namespace

namespace soak {

void Tally::count(const Record &record)
{
    for (const Outcome &outcome : record.outcomes) {
        ++exchanges;
        if (outcome.failed)
            ++reasons[kindOf(outcome.reason)];
        else
            ++accepted;
    }
    attempts += record.calls.count(kRequest);
    strikes += record.strikes;
}

Tally &Tally::operator+=(const Tally &other)
{
    exchanges += other.exchanges;
    attempts += other.attempts;
    accepted += other.accepted;
    for (auto reason = other.reasons.begin(); reason != other.reasons.end(); ++reason)
        reasons[reason.key()] += reason.value();
    strikes += other.strikes;
    return *this;
}

QString Tally::text() const
{
    QString text = QLatin1String("exchanges:\n") + line(QLatin1String("asked for"), exchanges) +
                   line(QLatin1String("requests sent, with repetitions"), attempts) +
                   line(QLatin1String("answer accepted"), accepted);
    for (auto reason = reasons.begin(); reason != reasons.end(); ++reason)
        text += line(QLatin1String("refused: ") + reason.key(), reason.value());
    text += QLatin1String("faults that changed something:\n");
    for (int i = 0; i < kDamages; ++i)
        text += line(QLatin1String("of the line: ") + toString(Damage(i)), strikes.damages[i]);
    for (int i = 0; i < kFailureKinds; ++i)
        text += line(QLatin1String("of a call: ") + toString(Failure(i)), strikes.failures[i]);
    return text;
}

} // namespace soak
