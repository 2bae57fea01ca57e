// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What can go wrong between driver and controller, as data.

#ifndef TESTS_FAULT_FAULT_H
#define TESTS_FAULT_FAULT_H

#include <QByteArray>
#include <QList>
#include <QString>
#include <QVector>
#include <QtGlobal>

// Damage to what the controller says. place counts the bytes of one reply from 0; a place behind its
// end changes nothing.
enum Damage {
    kLose,    // the byte at place
    kCut,     // everything from place on
    kDouble,  // the byte at place comes twice
    kInsert,  // value, in front of place
    kSwap,    // the byte at place with the one behind it
    kCorrupt, // the byte at place becomes value
    kHold,    // everything from place on comes value milliseconds later
    kSeal     // the check sum is made right again, there where the length byte says it is
};

const int kDamages = 8;

struct LineFault
{
    Damage damage;
    int place;
    int value;
    int reply; // which one, counted from 1; 0: every one
};

LineFault lineFault(int reply, Damage damage, int place = 0, int value = 0);

enum Call { kReceive, kSend };

// How a call of the port goes wrong. A send that is lost or broken off does not reach the controller.
enum Failure {
    kNothing,    // 0: nothing came, nothing went
    kError,      // -1, likewise
    kWorstError, // the lowest of all integers, likewise
    kFewer,      // half of what came or went, rounded down; the rest of what came is lost
    kMore,       // one more than asked for, and all of it came or went
    kMost,       // the highest of all integers, likewise
    kPretend     // as many as asked for, but none of them came or went
};

const int kFailureKinds = 7;

struct CallFault
{
    Call call;
    int number;   // of the call, counted from 1
    bool forEver; // from this one on
    Failure failure;
};

CallFault callFault(Call call, int number, Failure failure, bool forEver = false);

// Bytes on their way, each with the time by which it is late.
struct LateByte
{
    char value;
    int delay; // milliseconds
};

// How often a fault of each kind changed something.
struct Strikes
{
    Strikes();
    Strikes &operator+=(const Strikes &other);

    qint64 damages[kDamages];
    qint64 failures[kFailureKinds];
};

// What becomes of a reply: the faults that concern it, one after the other. Those that changed it are
// counted.
QVector<LateByte> damaged(const QByteArray &reply, int number, const QList<LineFault> &faults,
                          Strikes &strikes);

QString toString(Damage damage);
QString toString(Failure failure);
QString toString(const LineFault &fault);
QString toString(const CallFault &fault);

#endif
