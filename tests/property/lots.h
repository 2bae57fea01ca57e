// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What the property tests draw, and how they are run under Qt Test.

#ifndef TESTS_PROPERTY_LOTS_H
#define TESTS_PROPERTY_LOTS_H

#include <QByteArray>
#include <QString>

#include <rapidcheck.h>

#include <functional>
#include <string>

namespace lots {

// An area prefix, known or not.
rc::Gen<std::string> prefix();

// A prefix whose area is memory, so not a timer, counter or high-speed counter.
rc::Gen<std::string> memoryPrefix();

// Up to that many bytes.
rc::Gen<QByteArray> bytes(int atMost);

// Any number of that many bits, the ends and small ones more often.
rc::Gen<int> word();
rc::Gen<uint32_t> doubleWord();

// Once, before the first property: the seed of this run becomes rapidcheck's, unless RC_PARAMS is set.
void useSeedOfRun();

} // namespace lots

#endif
