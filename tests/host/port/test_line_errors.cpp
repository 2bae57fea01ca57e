// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What the counters of a serial port tell of a line.

#include "host/port/line_errors.h"

#include "test_class.h"

#include <QtTest>

using namespace host;

class TestLineErrors : public QObject
{
    Q_OBJECT

private slots:
    void onlyNewErrorsAreTold();
};

void TestLineErrors::onlyNewErrorsAreTold()
{
    const LineErrors before = {10, 20, 30, 40};
    QCOMPARE(errorsText(LineErrors{11, 22, 33, 44} - before),
             QString("1 framing error, 2 parity errors, 3 lost characters, 4 breaks"));
    QCOMPARE(errorsText(LineErrors{10, 20, 31, 40} - before), QString("1 lost character"));
    QCOMPARE(errorsText(before - before), QString());
}

TEST_CLASS(TestLineErrors)
#include "test_line_errors.moc"
