// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Scenes drawn by lot: what a host could ask for, sensible or not.

#ifndef TESTS_PROPERTY_DRAW_H
#define TESTS_PROPERTY_DRAW_H

#include "random.h"
#include "scene.h"

// One to three requests over a port that may fail now and then.
Scene drawScene(Random &random);

#endif
