// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Items of all kinds, drawn by lot so that many of them are neighbours, and what a plan may make of them:
// worked out from the items' texts and the line's figures alone.

#ifndef TESTS_PROPERTY_PLANNED_ITEMS_H
#define TESTS_PROPERTY_PLANNED_ITEMS_H

#include "host/driver/read_plan.h"

#include <QString>

#include <utility>
#include <vector>

namespace lots {

// Up to so many items of one or two controllers, all of them in the memory of the simulated one.
std::vector<host::Item> plannedItems(int atMost);

// What the items are called, for a property that does not hold.
QString textOf(const std::vector<host::Item> &items);

struct Line
{
    qint64 characterTime; // nanoseconds
    host::RequestCost cost;
};

// Of one of the usual rates, 8 data bits with even parity, and a controller of some speed.
Line line();

// No limits, --block, or --no-merge.
host::PlanLimits planLimits();

// Hints as refusals could have left them: about the places and indices of these items.
host::PlanHints planHints(const std::vector<host::Item> &items);

} // namespace lots

namespace planned {

// Places of an area: bytes, or the numbers of timers and counters.
struct Span
{
    int begin;
    int end; // behind the last

    int size() const { return end - begin; }
};

Span spanOf(const host::Item &item);

// Places of one value, which belong together.
int placesOfValue(const host::Item &item);

// How many places one request may bring of the item's kind; a value that alone has more is allowed.
int mostPlaces(const host::Item &item, const host::PlanLimits &limits);

// Characters on the line for one place.
int charactersOfPlace(const host::Item &item);

// Bytes of values in one place.
int bytesOfPlace(const host::Item &item);

// Two items can come with one request when these are equal.
QString poolOf(const host::Item &item);

} // namespace planned

#endif
