// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Places: where a number stands in the memory, as people write it:
//
//    V10.3              a bit of I Q V M SM S
//    VB100 MW2 SMD28    a byte, word or double word of these
//    AIW0 AQW2          an analogue word, at an even byte
//    T37 C5 HC0         the current value: 16 bits, HC 32
//    VD4:f32            a double word that holds a floating-point number

#ifndef SIMULATOR_CONTROLLER_PLACE_H
#define SIMULATOR_CONTROLLER_PLACE_H

#include "simulator/controller/areas.h"
#include "simulator/controller/memory.h"

#include <cstdint>
#include <string>

namespace sim {

struct Place
{
    const Area *area = nullptr;
    uint32_t number = 0; // that of the first byte, or of the object
    unsigned bit = 0;
    unsigned width = 0; // in bits; 1 for a single bit
    bool isFloat = false;
};

// Throws std::invalid_argument with a text for the user.
Place parsePlace(const std::string &text);

// Whether the place can hold the number. A floating-point place holds any; the others hold what fits into
// their bits, with a sign or without one.
bool holds(const Place &place, double number);

// Rounds the number, and keeps the low bits of one that does not fit.
void storeNumber(Memory &memory, const Place &place, double number);

} // namespace sim

#endif
