// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What a soak has done and seen, as numbers.

#ifndef TESTS_SOAK_TALLY_H
#define TESTS_SOAK_TALLY_H

#include "fault.h"
#include "scene.h"

#include <QMap>
#include <QString>
#include <QtGlobal>

namespace soak {

// An exchange is one read or write of the host, with all its repetitions.
struct Tally
{
    void count(const Record &record);
    Tally &operator+=(const Tally &other);

    // One line for each kind of end, then one for each kind of fault.
    QString text() const;

    qint64 exchanges = 0;
    qint64 attempts = 0; // requests that were sent
    qint64 accepted = 0;
    QMap<QString, qint64> reasons; // of those that were not
    Strikes strikes;
};

} // namespace soak

#endif
