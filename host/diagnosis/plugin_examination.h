// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What a library has of what a panel needs of a driver.

#ifndef HOST_DIAGNOSIS_PLUGIN_EXAMINATION_H
#define HOST_DIAGNOSIS_PLUGIN_EXAMINATION_H

#include "host/diagnosis/findings.h"
#include "host/text/json.h"

#include <QList>
#include <QString>
#include <QStringList>

namespace host {

struct Examination
{
    QList<Finding> findings;
    Json driver = Json::object(); // what the driver says about itself, as far as it does
    QStringList driverLines;
};

// The file is read first, and loaded in a process of its own. Fails when it cannot be read.
Examination examinePlugin(const QString &fileName);

} // namespace host

#endif
