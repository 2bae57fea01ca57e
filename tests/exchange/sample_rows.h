// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Test tables with a row, or several, for every sample; their column "sample" holds its name.

#ifndef TESTS_SAMPLE_ROWS_H
#define TESTS_SAMPLE_ROWS_H

#include "samples.h"

#include <QtTest>

// The row of a sample; what tells it from the sample's other rows stands behind its name.
inline QTestData &sampleRow(const Sample &sample, const QByteArray &what = QByteArray())
{
    const QByteArray name = sample.name();
    return QTest::newRow((what.isEmpty() ? name : name + ": " + what).constData()) << QString(name);
}

inline void addSampleColumn()
{
    QTest::addColumn<QString>("sample");
}

// The whole table for a test with nothing else in its rows.
inline void addSampleRows()
{
    addSampleColumn();
    for (const Sample &sample : samples())
        sampleRow(sample);
}

#endif
