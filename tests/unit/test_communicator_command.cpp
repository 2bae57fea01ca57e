// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "communicator_command.h"
#include "test_class.h"

#include <QtTest>

namespace {

CommunicatorCommand commandOfType(int dataType)
{
    CommunicatorCommand command;
    command.dataType = dataType;
    return command;
}

// Which predicates hold, in the order bit, byte, word, double word, block.
QString predicates(int dataType)
{
    const CommunicatorCommand command = commandOfType(dataType);
    QString names;
    names += isBitCommand(command) ? "bit " : "";
    names += isByteCommand(command) ? "byte " : "";
    names += isWordCommand(command) ? "word " : "";
    names += isDoubleWordCommand(command) ? "dword " : "";
    names += isBlockCommand(command) ? "block " : "";
    return names.trimmed();
}

} // namespace

class TestCommunicatorCommand : public QObject
{
    Q_OBJECT

private slots:
    void aNewCommandIsAllZero();
    void eachTypeHasAtMostOnePredicate_data();
    void eachTypeHasAtMostOnePredicate();
};

void TestCommunicatorCommand::aNewCommandIsAllZero()
{
    const CommunicatorCommand command;
    QCOMPARE(command.linkId, 0);
    QCOMPARE(command.tagId, 0);
    QCOMPARE(command.dataType, 0);
    QCOMPARE(command.count, 0);
    QVERIFY(command.address.isEmpty());
}

void TestCommunicatorCommand::eachTypeHasAtMostOnePredicate_data()
{
    QTest::addColumn<int>("dataType");
    QTest::addColumn<QString>("names");
    QTest::newRow("bit") << 0 << "bit";
    QTest::newRow("byte") << 1 << "byte";
    QTest::newRow("word") << 2 << "word";
    QTest::newRow("double word") << 3 << "dword";
    QTest::newRow("quad word has none") << 4 << "";
    QTest::newRow("block") << 5 << "block";
    QTest::newRow("a bit block is not a bit command") << 6 << "";
    QTest::newRow("above 6") << 7 << "";
    QTest::newRow("negative") << -1 << "";
}

void TestCommunicatorCommand::eachTypeHasAtMostOnePredicate()
{
    QFETCH(int, dataType);
    QFETCH(QString, names);
    QCOMPARE(predicates(dataType), names);
}

TEST_CLASS(TestCommunicatorCommand)
#include "test_communicator_command.moc"
