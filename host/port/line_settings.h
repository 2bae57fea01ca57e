// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The serial line: what is asked for, and what the port really does.

#ifndef HOST_PORT_LINE_SETTINGS_H
#define HOST_PORT_LINE_SETTINGS_H

#include "device_setting.h"
#include "host/base/options.h"

#include <QString>

namespace host {

struct LineSettings
{
    int baud;
    ParityCode parity;
    int dataBits;
    int stopBits; // their number, not a StopBitsCode
};

// Returns the settings that a plug-in proposes. Fails on codes of parity and stop bits that have no name in
// the contract.
LineSettings lineSettings(const DeviceSetting &setting);

// Returns the settings with everything replaced that the options name.
LineSettings withOptions(LineSettings settings, const LineOptions &options);

// "9600 baud, even parity, 8 data bits, 1 stop bit"
QString lineText(const LineSettings &settings);

// "none", "odd", "even", "mark", "space"
QString parityName(ParityCode parity);

// What differs between two settings, for people: "no parity instead of even parity". Empty when
// nothing does. A speed that is off by up to 2 % is no difference: adapters divide a clock, and
// characters still arrive whole.
QString lineDifference(const LineSettings &wanted, LineSettings achieved);

} // namespace host

#endif
