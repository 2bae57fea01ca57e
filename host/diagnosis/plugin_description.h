// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What a plug-in says about itself, as fields and as lines side by side.

#ifndef HOST_DIAGNOSIS_PLUGIN_DESCRIPTION_H
#define HOST_DIAGNOSIS_PLUGIN_DESCRIPTION_H

#include "host/driver/plugin.h"
#include "host/text/json.h"

#include <QString>
#include <QStringList>

namespace host {

class Description
{
public:
    void add(const char *field, const Json &value, const QString &label, const QString &text);
    void add(const char *field, const QString &label, const QString &text);
    void add(const char *field, const QString &label, int number, const QString &unit = QString());

    const Json &fields() const { return all; }
    const QStringList &lines() const { return texts; }

private:
    Json all = Json::object();
    QStringList texts;
};

void addIdentity(Description &description, const Plugin &plugin);

// Fails when the driver proposes nothing, or what no port has.
void addDefaults(Description &description, const Plugin &plugin);

void addSizes(Description &description, const Plugin &plugin);

} // namespace host

#endif
