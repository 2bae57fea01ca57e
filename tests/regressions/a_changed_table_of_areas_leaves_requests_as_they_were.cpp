// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A host that changed the table of areas got requests with codes out of freed memory. A second table, by
// letters, kept places within the first one, which are lost as soon as it changes.

#include "hex.h"
#include "simatic_s7_200_ppi/ppi_request.h"
#include "simatic_s7_200_ppi/ppi_static.h"
#include "test_class.h"

#include <QByteArray>
#include <QHash>
#include <QtTest>

class AChangedTableOfAreasLeavesRequestsAsTheyWere : public QObject
{
    Q_OBJECT

private slots:
    void areaCodeIsThatOfTheTable();
};

void AChangedTableOfAreasLeavesRequestsAsTheyWere::areaCodeIsThatOfTheTable()
{
    const int area = 10; // where it stands in the block
    QHash<QByteArray, unsigned char> table;
    table.swap(g_s7_200_ppi_area_table);
    const QByteArray emptied = S7_200_PPIPackLayer7ReadReqParamBlock(2, 1, "VB", 100);
    table.swap(g_s7_200_ppi_area_table);
    QCOMPARE(int(emptied.at(area)), 0);
    QCOMPARE(hex(S7_200_PPIPackLayer7ReadReqParamBlock(2, 1, "VB", 100).mid(area, 1)), QString("84"));
}

TEST_CLASS(AChangedTableOfAreasLeavesRequestsAsTheyWere)
#include "a_changed_table_of_areas_leaves_requests_as_they_were.moc"
