// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// s7ppi-sim --live VW0=counter:0/s was taken, and VW0 stayed as it was. A step of 0 is a number, and no more
// was asked of it.

#include "complaint.h"
#include "simulator/controller/live_value.h"
#include "test_class.h"

#include <QString>
#include <QtTest>

#include <stdexcept>

class ALiveCounterNeverCounts : public QObject
{
    Q_OBJECT

private slots:
    void stepOf0IsRefused_data();
    void stepOf0IsRefused();
};

void ALiveCounterNeverCounts::stepOf0IsRefused_data()
{
    QTest::addColumn<QString>("complaint");
    const auto row = [](const char *name, const char *complaint) { QTest::newRow(name) << complaint; };
    row("VW0=counter:0/s", "\"counter:0/s\": the step must not be 0");
    row("VW0=counter:-0.0/2s", "\"counter:-0.0/2s\": the step must not be 0");
}

void ALiveCounterNeverCounts::stepOf0IsRefused()
{
    QTEST(complaintOf<std::invalid_argument>([] { sim::parseLiveValues(QTest::currentDataTag()); }),
          "complaint");
}

TEST_CLASS(ALiveCounterNeverCounts)
#include "a_live_counter_never_counts.moc"
