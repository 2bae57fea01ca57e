// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// docs/failures.md against the driver's sources, and against the exit codes of the host; docs/exit-codes.md
// against those, too.

#include "host/driver/driver_fault.h"

#include "test_class.h"
#include "tests/host/support/document.h"

#include <QtTest>

#include <QDir>

using namespace host;

namespace {

// A row about an error text. ADDRESS stands for the address in the text, "(none)" for no text.
struct Row
{
    QString text;
    int exitCode;
    QStringList explanations;
};

const QString kAddress = "ADDRESS";

Row rowOf(const QRegularExpressionMatch &match)
{
    const QString text = match.captured(1) == "(none)" ? QString() : match.captured(1).mid(1).chopped(1);
    return {text, match.captured(2).toInt(), {match.captured(3).trimmed(), match.captured(4).trimmed()}};
}

QList<Row> rows()
{
    static const QRegularExpression row(R"(^\| (`[^`]+`|\(none\)) \| (\d+) \|([^|]*)\|([^|]*)\|$)",
                                        QRegularExpression::MultilineOption);
    QList<Row> rows;
    auto matches = row.globalMatch(contentOf(SOURCE_DIR "/docs/failures.md"));
    while (matches.hasNext())
        rows += rowOf(matches.next());
    return rows;
}

// Error texts are the driver's only string literals with a blank in them, but for its own name.
QStringList textsIn(QString source)
{
    static const QRegularExpression comment("//[^\n]*");
    QStringList literals = captured("\"([^\"\n]*)\"", source.remove(comment));
    literals.removeAll("Simatic S7-200 PPI");
    return literals.filter(" ");
}

QStringList textsOfTheDriver()
{
    const QDir driver(SOURCE_DIR "/runtime/drivers/simatic_s7_200_ppi");
    QStringList texts;
    for (const QString &file : driver.entryList({"*.cpp", "*.h"}))
        texts += textsIn(contentOf(driver.filePath(file)));
    texts.removeDuplicates();
    texts.sort();
    return texts;
}

// Those of the document that are not made of several texts.
QStringList documentedTexts()
{
    QStringList texts;
    for (const Row &row : rows())
        if (!row.text.isEmpty() && !row.text.contains(','))
            texts += QString(row.text).remove(kAddress);
    texts.sort();
    return texts;
}

} // namespace

class TestFailuresDocument : public QObject
{
    Q_OBJECT

private slots:
    void everyTextOfTheDriverIsDocumentedOnceAndNoOther();
    void textsThatAreNoLiteralsAreDocumentedToo();
    void exitCodeIsTheHosts_data();
    void exitCodeIsTheHosts();
    void everyTextHasItsCauseAndWhatToCheck_data();
    void everyTextHasItsCauseAndWhatToCheck();
    void everyExitCodeIsDocumented();
};

void TestFailuresDocument::everyTextOfTheDriverIsDocumentedOnceAndNoOther()
{
    QVERIFY(textsOfTheDriver().contains("plc no response"));
    QCOMPARE(documentedTexts(), textsOfTheDriver());
}

void TestFailuresDocument::textsThatAreNoLiteralsAreDocumentedToo()
{
    int joined = 0;
    int none = 0;
    for (const Row &row : rows()) {
        joined += row.text.contains(',') ? 1 : 0;
        none += row.text.isEmpty() ? 1 : 0;
    }
    QCOMPARE(joined, 1);
    QCOMPARE(none, 1);
}

void TestFailuresDocument::exitCodeIsTheHosts_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("exitCode");
    for (const Row &row : rows())
        QTest::newRow(qPrintable(row.text)) << QString(row.text).replace(kAddress, "HC0") << row.exitCode;
}

void TestFailuresDocument::exitCodeIsTheHosts()
{
    QFETCH(QString, text);
    QTEST(int(driverFailure(text).code()), "exitCode");
}

void TestFailuresDocument::everyTextHasItsCauseAndWhatToCheck_data()
{
    QTest::addColumn<QStringList>("explanations");
    for (const Row &row : rows())
        QTest::newRow(qPrintable(row.text)) << row.explanations;
}

void TestFailuresDocument::everyTextHasItsCauseAndWhatToCheck()
{
    QFETCH(QStringList, explanations);
    QVERIFY(!explanations.contains(QString()));
}

void TestFailuresDocument::everyExitCodeIsDocumented()
{
    const QStringList codes =
        captured("^    [A-Z][A-Za-z]+ = (\\d+)", contentOf(SOURCE_DIR "/common/exit_code.h"));
    QVERIFY(codes.contains("8"));
    QCOMPARE(captured("^\\| (\\d+) \\|", contentOf(SOURCE_DIR "/docs/exit-codes.md")), codes);
}

TEST_CLASS(TestFailuresDocument)
#include "test_failures_document.moc"
