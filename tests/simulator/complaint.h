// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What is said to whoever gave the simulator a text that it refuses: complaintOf<std::invalid_argument>([] {
// sim::parseFault("loud"); }). "none" when it is taken; any other exception ends the test.

#ifndef TESTS_SIMULATOR_COMPLAINT_H
#define TESTS_SIMULATOR_COMPLAINT_H

#include <QString>

template <typename Refusal, typename Action> QString complaintOf(const Action &action)
{
    try {
        action();
    } catch (const Refusal &refusal) {
        return QString::fromStdString(refusal.what());
    }
    return "none";
}

#endif
