// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// How far a load came, and for which load that counts.

#include "host/dump/load_state.h"

#include "host/items/memory_range.h"

#include "test_class.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

using namespace host;

namespace {

const QByteArray kData = "0123456789";

} // namespace

class TestLoadState : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void whatWasSavedIsFoundByTheSameLoad();
    void anotherLoadFindsNothing_data();
    void anotherLoadFindsNothing();
    void whatMakesNoSenseIsNothing_data();
    void whatMakesNoSenseIsNothing();
    void forgettingLeavesNoFile();
    void aDirectoryThatTakesNoFileIsTold();

private:
    LoadState state() const { return {name, parseRange("VB0..VB9"), 2, kData}; }

    std::unique_ptr<QTemporaryDir> directory;
    QString name;
};

void TestLoadState::init()
{
    directory = std::make_unique<QTemporaryDir>();
    name = directory->filePath("press.dump.loading");
}

void TestLoadState::whatWasSavedIsFoundByTheSameLoad()
{
    QCOMPARE(state().written(), 0);
    QVERIFY(state().save(7));
    QCOMPARE(state().written(), 7);
    QVERIFY(state().save(10));
    QCOMPARE(state().written(), 10);
}

void TestLoadState::anotherLoadFindsNothing_data()
{
    QTest::addColumn<QString>("range");
    QTest::addColumn<int>("station");
    QTest::addColumn<QByteArray>("data");
    QTest::newRow("to another place") << "VB1..VB10" << 2 << kData;
    QTest::newRow("to another station") << "VB0..VB9" << 3 << kData;
    QTest::newRow("of other bytes") << "VB0..VB9" << 2 << QByteArray("012345678a");
}

void TestLoadState::anotherLoadFindsNothing()
{
    QFETCH(QString, range);
    QFETCH(int, station);
    QFETCH(QByteArray, data);
    QVERIFY(state().save(7));
    QCOMPARE(LoadState(name, parseRange(range), station, data).written(), 0);
    QCOMPARE(state().written(), 7);
}

void TestLoadState::whatMakesNoSenseIsNothing_data()
{
    QTest::addColumn<QByteArray>("count");
    for (const char *count : {"", "x", "-1", "0", "11", "7 bytes", "99999999999"})
        QTest::newRow(count) << QByteArray(count);
}

void TestLoadState::whatMakesNoSenseIsNothing()
{
    QFETCH(QByteArray, count);
    QVERIFY(state().save(7));
    QFile file(name);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray text = file.readAll();
    file.close();
    QVERIFY(text.endsWith("written 7\n"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(text.chopped(2) + count + '\n');
    file.close();
    QCOMPARE(state().written(), 0);
}

void TestLoadState::forgettingLeavesNoFile()
{
    QVERIFY(state().save(7));
    state().forget();
    QVERIFY(!QFile::exists(name));
    QCOMPARE(state().written(), 0);
}

void TestLoadState::aDirectoryThatTakesNoFileIsTold()
{
    name = directory->filePath("missing/press.dump.loading");
    QVERIFY(!state().save(7));
}

TEST_CLASS(TestLoadState)
#include "test_load_state.moc"
