// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// How the publishing of a line is going, in the text format of Prometheus, and the file in which the node
// exporter looks for it.

#ifndef HOST_BROKER_METRICS_H
#define HOST_BROKER_METRICS_H

#include "host/broker/health.h"

#include <QByteArray>
#include <QString>

#include <chrono>
#include <functional>

namespace host {

struct Metrics
{
    QString port;
    int station = 0;
    bool isUp = false;        // the program is running
    bool isPortThere = false; // the port is not lost
    int items = 0;
    int failingItems = 0;
    Health health;                              // its answer times are those since the file was written last
    qint64 answerCount = 0;                     // since the beginning
    std::chrono::duration<double> answerSum{0}; // what all these answers took
};

// The content of the file; docs/publish.md tells its figures.
QByteArray metricsText(const Metrics &metrics);

// Claims the file. Fails when the node exporter would not read one of that name, when its directory is not
// there, and when this command uses it for something else.
void claimMetricsFile(const QString &name);

// A file that is replaced as a whole, so that whoever reads it never sees a part.
class MetricsFile
{
public:
    using Tell = std::function<void(const QString &)>;

    // tell is called when the file cannot be written, once for each reason.
    MetricsFile(const QString &name_, const Tell &tell_) : name(name_), tell(tell_) {}

    void write(const QByteArray &content);

private:
    QString replaceWith(const QByteArray &content) const;

    QString name;
    Tell tell;
    QString toldReason;
};

} // namespace host

#endif
