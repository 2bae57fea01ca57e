// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What a command's data look like: their form, and the members of their records.

#ifndef HOST_OUTPUT_SCHEMA_H
#define HOST_OUTPUT_SCHEMA_H

#include "host/base/options.h"

#include <QString>
#include <QStringList>

namespace host {

enum class Format { Text, JsonDocument, JsonLines, Csv, Tsv, Raw };

// The form of a command's data. The version grows when a reader of the old form could be led astray.
struct Schema
{
    QString command; // "read": the format is "s7ppi.read/1"
    int version;
    QString list;        // what the records are called together; empty when there is one, the document itself
    QStringList columns; // of tables; the members of records that they show
    bool hasRaw = false; // whether there are bytes to give with --format raw
    bool isSimulated = false;   // the data are those of a simulated controller: every form but raw says so
    QString beside = QString(); // a second list of records, behind the first; only json has it
};

// The form of data that come from the controller behind a port.
Schema withSource(Schema schema, const PortOptions &options);

// The form of data about items, some of which name a station of their own, or none of them does.
Schema withStation(Schema schema, bool hasStations);

} // namespace host

#endif
