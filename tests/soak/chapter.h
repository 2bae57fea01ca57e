// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A soak is played in chapters. Each has its own seed, driver and model, so that a fault that shows after
// hours is repeated from the beginning of its chapter. A chapter is long enough for the 16 bits of the PDU
// reference to begin anew.

#ifndef TESTS_SOAK_CHAPTER_H
#define TESTS_SOAK_CHAPTER_H

#include "tally.h"

#include <QByteArray>
#include <QString>
#include <QtGlobal>

#include <functional>

namespace soak {

const qint64 kExchangesOfChapter = 100000;

enum Kind {
    kFaultyLine, // good requests, a controller that does nothing wrong, and faults of line and port
    kAnything    // any request, and a controller that says anything
};

struct Chapter
{
    Tally tally;
    QByteArray digest;  // of all requests, calls of the port and outcomes
    QString difference; // what the model did otherwise; empty when nothing
    bool isWhole;
};

// Plays so many exchanges, or one or two more: those of a scene are not parted. Stops where goesOn, which is
// called with the exchanges so far, says so.
Chapter playChapter(Kind kind, quint32 seed, qint64 number, qint64 exchanges,
                    const std::function<bool(qint64)> &goesOn);

} // namespace soak

#endif
