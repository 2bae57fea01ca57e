// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What the model of the driver takes from an address text. Written for the tests from the rules of the
// line; it shares no code with the driver.

#ifndef TESTS_FAULT_MODEL_ADDRESS_H
#define TESTS_FAULT_MODEL_ADDRESS_H

#include <QByteArray>
#include <QString>

struct ModelAddress
{
    explicit ModelAddress(const QString &text);

    bool isTimerOrCounter() const { return prefix == "T" || prefix == "C"; }
    bool isHighSpeedCounter() const { return prefix == "HC"; }
    bool isObject() const { return isTimerOrCounter() || isHighSpeedCounter(); }

    // The address field of a read or of a write of whole elements, not yet cut to 24 bits.
    quint32 wire(quint32 place) const { return isObject() ? place : place * 8; }

    QByteArray prefix;
    int area;
    int dataBlock;
    int width;      // bytes of an element: 1, 2 or 4
    quint32 number; // of all digits of the text
    quint32 byte;   // of the digits before the first dot
    quint32 bit;    // of the last character
};

#endif
