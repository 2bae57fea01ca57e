// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Live values: numbers in the memory that change by themselves, so that there is something to watch. A user
// writes them as PLACE=KIND[:ARGUMENTS]:
//
//    VW100=ramp:0..1000/10s         from 0 to 1000 within 10 seconds, then again from 0
//    VW102=sine:500+-400/30s        around 500, once up and down in 30 seconds; "±" will do, too
//    VD0=clock                      seconds since the beginning of 1970, UTC
//    C5=counter:1/s                 one more every second, from 0; begins again when the place is full
//    V10.3=blink:1s                 on for half a second, off for half a second
//
// Times are a number and ms, s, min or h; numbers may have a sign and a fraction. Ramp, sine and counter
// begin when the simulator does. What a master writes to such a place stays for a moment only.

#ifndef SIMULATOR_CONTROLLER_LIVE_VALUE_H
#define SIMULATOR_CONTROLLER_LIVE_VALUE_H

#include "simulator/controller/memory.h"
#include "simulator/controller/place.h"
#include "simulator/protocol/clock.h"

#include <string>
#include <vector>

namespace sim {

class LiveValue
{
public:
    // place and course are what stands left and right of "=". Throws std::invalid_argument with a text for
    // the user.
    LiveValue(const std::string &place, const std::string &course);

    // Writes the number that the value has now, having begun at start.
    void store(Memory &memory, Time now, Time start) const;

    const std::string &place() const { return placeText; }
    const std::string &course() const { return courseText; }

private:
    enum class Kind { Ramp, Sine, Clock, Counter, Blink };
    struct Form;

    static const std::vector<Form> &forms();

    void check() const;
    double at(double seconds) const;

    std::string placeText;
    std::string courseText;
    Place target;
    Kind kind = Kind::Clock;
    double first = 0;  // where a ramp begins, the middle of a sine, the step of a counter
    double second = 0; // where a ramp ends, the amplitude of a sine
    double period = 1; // in seconds
};

// Reads one value, as "VW100=ramp:0..1000/10s", or the word "demo", which stands for a dozen values of all
// kinds and areas, none of them where the example memory has something.
std::vector<LiveValue> parseLiveValues(const std::string &text);

} // namespace sim

#endif
