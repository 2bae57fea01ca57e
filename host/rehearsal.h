// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What a driver would send for some requests, as lines on stdout: one per frame, meaning and bytes. No
// port is opened.

#ifndef HOST_REHEARSAL_H
#define HOST_REHEARSAL_H

#include "plugin.h"
#include "read_plan.h"
#include "write_plan.h"

namespace host {

class Rehearsal
{
public:
    explicit Rehearsal(const Options &options);

    // Both fail when the driver refuses the request and sends nothing.
    void write(const WriteRequest &request) const;
    void read(const ReadRequest &request) const;

private:
    Plugin plugin;
    int station;
};

} // namespace host

#endif
