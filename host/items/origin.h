// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Where the data of a record come from, and when they came.

#ifndef HOST_ITEMS_ORIGIN_H
#define HOST_ITEMS_ORIGIN_H

#include "host/text/json.h"

#include <QString>

namespace host {

struct Origin
{
    QString time; // as timeText() has it
    QString port; // its name as the user knows it
    int station;
};

// {"time", "port", "station"}, with which every record of a controller's data begins.
inline Json originFields(const Origin &origin)
{
    return {{"time", jsonText(origin.time)}, {"port", jsonText(origin.port)}, {"station", origin.station}};
}

} // namespace host

#endif
