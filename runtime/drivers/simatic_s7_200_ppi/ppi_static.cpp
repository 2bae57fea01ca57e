// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "ppi_static.h"

// Objects of one file are created in the order in which they stand: the table before what fills it.
const QString VERSION_STRING(QLatin1String("1.0.0"));
QHash<QByteArray, unsigned char> g_s7_200_ppi_area_table;

namespace {

struct Area
{
    const char *prefix;
    unsigned char code;
};

// The process image carries the high bit. The analogue areas exist as words only.
const Area kAreas[] = {
    {"I", 0x81},   {"IB", 0x81},  {"IW", 0x81},  {"ID", 0x81},  // process-image inputs
    {"Q", 0x82},   {"QB", 0x82},  {"QW", 0x82},  {"QD", 0x82},  // process-image outputs
    {"V", 0x84},   {"VB", 0x84},  {"VW", 0x84},  {"VD", 0x84},  // variable memory
    {"M", 0x83},   {"MB", 0x83},  {"MW", 0x83},  {"MD", 0x83},  // bit memory
    {"T", 0x1F},                                                // timers
    {"C", 0x1E},                                                // counters
    {"HC", 0x20},                                               // high-speed counters
    {"SM", 0x05},  {"SMB", 0x05}, {"SMW", 0x05}, {"SMD", 0x05}, // special memory
    {"AIW", 0x06},                                              // analogue inputs
    {"AQW", 0x07},                                              // analogue outputs
    {"S", 0x04},   {"SB", 0x04},  {"SW", 0x04},  {"SD", 0x04},  // sequence-control relays
};

} // namespace

S7_200_PPI_AreaTableInitializer g_s7_200_ppi_area_table_initializer;

S7_200_PPI_AreaTableInitializer::S7_200_PPI_AreaTableInitializer()
{
    for (const Area &area : kAreas)
        g_s7_200_ppi_area_table[area.prefix] = area.code;
}
