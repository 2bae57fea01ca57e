// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The door for tests: this header brings all that a test needs of a line with simulated controllers on it.
//
//    sim::Simulator simulator;
//    simulator.addStation(2).memory().bytes(sim::kAreaV)[100] = 0x11;
//    simulator.addFault(sim::parseFault("late=300@2"));
//
//    simulator.feed(request);                  // E5
//    simulator.feed(poll);                     // the answer
//    simulator.feed(request);                  // E5
//    simulator.feed(poll);                     // nothing yet
//    simulator.advance(300ms);                 // the answer

#ifndef SIMULATOR_SIMULATOR_H
#define SIMULATOR_SIMULATOR_H

#include "simulator/controller/areas.h"
#include "simulator/controller/live_value.h"
#include "simulator/controller/memory.h"
#include "simulator/controller/station.h"
#include "simulator/faults/fault.h"
#include "simulator/line/simulator.h"
#include "simulator/protocol/bytes.h"
#include "simulator/protocol/clock.h"
#include "simulator/protocol/layer2.h"

#endif
