// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Tables of texts that a command line may not hold, each with what is said of it and which hint is given:
//
//     void TestItem::wrongItemsSayWhatCouldBeMeant_data()
//     {
//         addRefusedTexts();
//         refused("V1.0:bit", "\"bit\" is not a type", "write bool instead of bit");
//     }
//
//     void TestItem::wrongItemsSayWhatCouldBeMeant()
//     {
//         compareRefusal([](const QString &text) { parseItem(text); });
//     }

#ifndef TESTS_HOST_SUPPORT_REFUSED_TEXT_H
#define TESTS_HOST_SUPPORT_REFUSED_TEXT_H

#include "common/exit_code.h"
#include "tests/host/support/failure_of.h"

#include <QString>
#include <QtTest>

inline void addRefusedTexts()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("failure");
}

inline void refused(const QString &text, const QString &failure, const QString &hint)
{
    const int code = int(host::ExitCode::Usage);
    QTest::newRow(qPrintable(text)) << text << QString("%1: %2 / %3").arg(code).arg(failure, hint);
}

// Calls the action with the text of the row.
template <typename Action> void compareRefusal(const Action &action)
{
    QFETCH(QString, text);
    QTEST(failureOf([&] { action(text); }), "failure");
}

#endif
