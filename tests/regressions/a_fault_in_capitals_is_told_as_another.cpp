// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// s7ppi-sim --fault ECHO was told that late is the nearest kind of fault. A capital counted as another letter
// than its small one, so that any short name was as near.

#include "complaint.h"
#include "simulator/faults/fault.h"
#include "test_class.h"

#include <QString>
#include <QtTest>

#include <stdexcept>

class AFaultInCapitalsIsToldAsAnother : public QObject
{
    Q_OBJECT

private slots:
    void capitalsAreNoDifference_data();
    void capitalsAreNoDifference();
};

void AFaultInCapitalsIsToldAsAnother::capitalsAreNoDifference_data()
{
    QTest::addColumn<QString>("complaint");
    const auto row = [](const char *name, const char *complaint) { QTest::newRow(name) << complaint; };
    row("ECHO", "\"ECHO\" is no kind of fault; the nearest is echo");
    row("Silent", "\"Silent\" is no kind of fault; the nearest is silent");
}

void AFaultInCapitalsIsToldAsAnother::capitalsAreNoDifference()
{
    QTEST(complaintOf<std::invalid_argument>([] { sim::parseFault(QTest::currentDataTag()); }), "complaint");
}

TEST_CLASS(AFaultInCapitalsIsToldAsAnother)
#include "a_fault_in_capitals_is_told_as_another.moc"
