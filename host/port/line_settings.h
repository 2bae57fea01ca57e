// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The serial line: what is asked for, and what the port really does.

#ifndef HOST_PORT_LINE_SETTINGS_H
#define HOST_PORT_LINE_SETTINGS_H

#include "host/base/options.h"

#include <QString>

class DeviceSetting;

namespace host {

enum class Parity { None, Odd, Even, Mark, Space };

struct LineSettings
{
    int baud;
    Parity parity;
    int dataBits;
    int stopBits;
};

// The codes of a DeviceSetting are those of this host's ports:
//
//   parity    0 none, 1 odd, 2 even, 3 mark, 4 space
//   stopbits  0 one stop bit, 2 two stop bits
//
// Fails on other codes.
LineSettings lineSettings(const DeviceSetting &setting);

// The settings with everything replaced that the options name.
LineSettings withOptions(LineSettings settings, const Options &options);

// "9600 baud, even parity, 8 data bits, 1 stop bit"
QString lineText(const LineSettings &settings);

// "none", "odd", "even", "mark", "space"
QString parityName(Parity parity);

// What differs between two settings, for people: "no parity instead of even parity". Empty when
// nothing does. A speed that is off by up to 2 % is no difference: adapters divide a clock, and
// characters still arrive whole.
QString lineDifference(const LineSettings &wanted, LineSettings achieved);

} // namespace host

#endif
