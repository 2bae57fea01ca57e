// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A tag file with a column of the user's own, or with Name in place of name, was refused whole. Every column
// had to be one that a tag knows, in small letters.

#include "host/base/outcome.h"
#include "host/items/item.h"
#include "host/items/tag.h"
#include "host/items/tag_file.h"
#include "test_class.h"

#include <QByteArray>
#include <QString>
#include <QtTest>

using namespace host;

class AColumnOfRemarksMakesATagFileUnusable : public QObject
{
    Q_OBJECT

private slots:
    void otherColumnsAreLeftOut_data();
    void otherColumnsAreLeftOut();
};

void AColumnOfRemarksMakesATagFileUnusable::otherColumnsAreLeftOut_data()
{
    QTest::addColumn<QByteArray>("file");
    const auto row = [](const char *name, const char *file) { QTest::newRow(name) << QByteArray(file); };
    row("columns of its own", "remark,name,address,Comment,comment,type,\nhot,Boiler,VW100,a,b,i16,\n");
    row("columns in another case", "Name,ADDRESS,Type\nBoiler,VW100,i16\n");
}

void AColumnOfRemarksMakesATagFileUnusable::otherColumnsAreLeftOut()
{
    QFETCH(QByteArray, file);
    Outcome outcome;
    const auto tags = parseTagFile("tags.csv", file, outcome);
    QVERIFY(outcome.isSuccess());
    QCOMPARE(int(tags.size()), 1);
    QCOMPARE(tags[0].name, QString("Boiler"));
    QCOMPARE(tags[0].item.address.text(), QString("VW100"));
    QCOMPARE(typeName(tags[0].item.type), QString("i16"));
    QCOMPARE(tags[0].item.count, 1);
    QCOMPARE(tags[0].scaling.scale, 1.0);
    QCOMPARE(tags[0].scaling.offset, 0.0);
    QCOMPARE(tags[0].unit, QString());
}

TEST_CLASS(AColumnOfRemarksMakesATagFileUnusable)
#include "a_column_of_remarks_makes_a_tag_file_unusable.moc"
