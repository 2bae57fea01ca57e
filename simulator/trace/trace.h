// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The traffic in words, for people who watch the line. It looks from the master's side:
//    > 10 02 00 5c 5e 16  0 to 2: poll
//    < e5  acknowledged

#ifndef SIMULATOR_TRACE_TRACE_H
#define SIMULATOR_TRACE_TRACE_H

#include "simulator/line/controllers.h"
#include "simulator/protocol/bytes.h"

#include <string>

namespace sim {

// Returns one line, without a line end. ">" is what a master sends, "<" what it receives, "?" what came from
// it and made no frame.
std::string traceLine(Traffic traffic, const Bytes &bytes);

// The words alone: "0 to 2: poll".
std::string frameWords(const Bytes &bytes);

} // namespace sim

#endif
