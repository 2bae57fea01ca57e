// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Scenes in which bytes and calls go wrong in every combination while requests of every kind are made.

#ifndef TESTS_FAULT_STORM_H
#define TESTS_FAULT_STORM_H

#include "random.h"
#include "scene.h"

// One to three requests over a line and a port of which any number of calls and bytes may go wrong.
Scene drawStorm(Random &random);

#endif
