// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The commands in README.md and docs/, run as they stand there, against what the documents say they print.
//
//   ```console               $ COMMAND, and below it what it prints on stdout and stderr, if anything
//   ```console interrupted   the same for commands that get a Ctrl-C after a second
//   ```console background    the same for one that runs on until the next of its kind, or the end
//   ```console elsewhere     commands that need another machine, the rights of root, a terminal or what is
//                            installed: not run here; tests/install runs those of the examples
//   ```tags.csv              a file of this name
//
// The commands of a document are run one after the other in one shell and one directory. /dev/ttyUSB0 is a
// simulated controller there, as is everything that a command makes below /tmp. Of what is printed a line
// with nothing but "…" stands for any lines, "…" in a line for any text; what is another with every run, as
// a time, may differ. <!-- differs: PATTERN --> in front of a block names more of that.

#include "tests/host/support/document.h"

#include <QtTest>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>

#include <map>
#include <memory>
#include <vector>

namespace {

struct Command
{
    int line;        // in the document
    QString mode;    // what stands behind "console"
    QString text;    // behind "$ "
    QString printed; // as the document has it
    QString differs; // a pattern of what may be another; empty if none
};

// A part of a document that the shell is to do: a command or a file.
struct Step
{
    Command command; // without a text there is a file
    QString fileName;
    QString content;
};

struct Document
{
    QString name;
    std::vector<Step> steps;
    QStringList kinds; // of all its blocks
    std::unique_ptr<QTemporaryDir> directory;
    std::unique_ptr<QProcess> shell;
};

const QRegularExpression &fence()
{
    static const QRegularExpression pattern(
        "(?:^<!-- differs: (?<differs>[^\n]*) -->\n+)?^```(?<kind>[^\n]*)\n(?<text>.*?)^```$",
        QRegularExpression::MultilineOption | QRegularExpression::DotMatchesEverythingOption);
    return pattern;
}

// Splits a block into its commands. One that ends with a backslash goes on in the next line.
void addCommands(std::vector<Step> &steps, const QString &mode, int line, const QString &text,
                 const QString &differs)
{
    bool goesOn = false;
    for (const QString &row : text.split('\n').mid(0, text.count('\n'))) {
        ++line;
        if (row.startsWith("$ "))
            steps.push_back({{line, mode, row.mid(2), QString(), differs}, QString(), QString()});
        else if (goesOn)
            steps.back().command.text += '\n' + row;
        else if (!steps.empty())
            steps.back().command.printed += row + '\n';
        goesOn = (goesOn || row.startsWith("$ ")) && row.endsWith('\\');
    }
}

void readDocument(Document &document)
{
    const QString whole = contentOf(QString(SOURCE_DIR "/") + document.name);
    auto matches = fence().globalMatch(whole);
    while (matches.hasNext()) {
        const QRegularExpressionMatch block = matches.next();
        const QString kind = block.captured("kind");
        document.kinds << kind;
        if (kind.section(' ', 0, 0) == "console")
            addCommands(document.steps, kind.section(' ', 1),
                        int(whole.left(block.capturedStart("text")).count('\n')), block.captured("text"),
                        block.captured("differs"));
        else if (kind.contains('.'))
            document.steps.push_back({{}, kind, block.captured("text")});
    }
}

void writeFile(const QString &name, const QString &content)
{
    QFile file(name);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(content.toUtf8());
}

// What a command is called in the directory.
QString numbered(const char *kind, size_t number)
{
    return QString("%1.%2").arg(kind).arg(number);
}

const char kFunctions[] = R"sh(
end_background() {
    [ -z "$background" ] || kill "$background"
    [ -z "$background" ] || wait "$background"
    background=
} 2>/dev/null
start() {
    local i
    end_background
    bash "$OUT/command.$1" >"$OUT/printed.$1" 2>&1 &
    background=$!
    for ((i = 0; i < 600; ++i)); do
        [ "$(wc -l <"$OUT/printed.$1")" -ge "$2" ] && return
        sleep 0.05
    done
}
trap end_background EXIT
background=
)sh";

// What a command in the background prints before the next one runs: all lines but a "…" at the end.
int linesAtOnce(const Command &command)
{
    return int(command.printed.count('\n')) - (command.printed.endsWith(QString::fromUtf8("…\n")) ? 1 : 0);
}

// The commands in files of their own, and a script that runs them.
QString scriptOf(const Document &document, const QString &notes)
{
    QString script = kFunctions;
    for (size_t i = 0; i < document.steps.size(); ++i) {
        const Step &step = document.steps[i];
        if (!step.fileName.isEmpty()) {
            writeFile(notes + '/' + numbered("content", i), step.content);
            script += QString("mkdir -p \"$(dirname '%2')\"\n"
                              "sed \"s|/dev/ttyUSB0|$OUT/ttyUSB0|\" \"$OUT/content.%1\" >'%2'\n")
                          .arg(i)
                          .arg(step.fileName);
            continue;
        }
        QString text = step.command.text;
        text.replace("/dev/ttyUSB0", "$OUT/ttyUSB0").replace("/tmp/", "$OUT/");
        const bool isBackground = step.command.mode == "background"; // which is to get the signal itself
        writeFile(notes + '/' + numbered("command", i), (isBackground ? "exec " : "") + text + '\n');
        const QString to = QString(" >\"$OUT/printed.%1\" 2>&1 </dev/null\n").arg(i);
        if (step.command.mode.isEmpty())
            script += QString(". \"$OUT/command.%1\"").arg(i) + to;
        if (step.command.mode == "interrupted")
            script += QString("timeout -s INT 1 bash \"$OUT/command.%1\"").arg(i) + to;
        if (isBackground)
            script += QString("start %1 %2\n").arg(i).arg(linesAtOnce(step.command));
    }
    return script;
}

// What is another with every run: times, durations, rates, terminals, where things are installed.
QString withoutVolatile(QString text, const QString &differs)
{
    static const QRegularExpression kVolatile(
        "\\d{4}-\\d\\d-\\d\\d[T ]\\d\\d:\\d\\d(:\\d\\d(\\.\\d+)?)?(Z|[+-]\\d\\d:\\d\\d)?|"
        "\\d+(\\.\\d+)? (ms|s|bytes/s|requests? and|values? per)\\b|/dev/pts/\\d+|"
        "/\\S*(?=/\\.config/)|/\\S*(?=/libs7_200_ppi\\.so)|process \\d+|p[59]\\d \\d+(\\.\\d)?,");
    if (!differs.isEmpty())
        text.replace(QRegularExpression(differs, QRegularExpression::MultilineOption), QString());
    return text.replace(kVolatile, "~");
}

// A pattern of what is printed: "…" stands for any text, and by itself for any lines.
QRegularExpression patternOf(const QString &printed)
{
    QString pattern;
    for (const QString &line : printed.split('\n', Qt::SkipEmptyParts)) {
        QStringList parts;
        for (const QString &part : line.split(QString::fromUtf8("…")))
            parts << QRegularExpression::escape(part);
        pattern += line == QString::fromUtf8("…") ? "(.*\\n)*?" : parts.join(".*") + "\\n";
    }
    return QRegularExpression("^" + pattern + "$", QRegularExpression::DontCaptureOption);
}

QStringList documentNames()
{
    QStringList names = {"README.md"};
    for (const QString &name : QDir(SOURCE_DIR "/docs").entryList({"*.md"}))
        if (name != "json.md") // whose examples test_output_document has
            names << "docs/" + name;
    return names;
}

} // namespace

class TestDocuments : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void commandsPrintWhatTheDocumentSays_data();
    void commandsPrintWhatTheDocumentSays();
    void everyBlockIsOfAKnownKind();

private:
    void start(Document &document);

    std::vector<Document> documents;
};

// All documents at once: they wait for a line most of the time.
void TestDocuments::initTestCase()
{
    for (const QString &name : documentNames()) {
        Document document;
        document.name = name;
        readDocument(document);
        start(document);
        documents.push_back(std::move(document));
    }
    for (Document &document : documents)
        QVERIFY2(document.shell->waitForFinished(120000), qPrintable(document.name));
}

void TestDocuments::start(Document &document)
{
    document.directory = std::make_unique<QTemporaryDir>();
    const QString notes = document.directory->filePath("notes");
    const QString work = document.directory->filePath("work");
    QVERIFY(QDir().mkpath(notes) && QDir().mkpath(work));
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const QString &name : environment.keys())
        if (name.startsWith("S7PPI_"))
            environment.remove(name);
    environment.insert("OUT", notes);
    environment.insert("HOME", work);
    environment.insert("PATH", START_DIR ":" + environment.value("PATH"));
    document.shell = std::make_unique<QProcess>();
    document.shell->setProcessEnvironment(environment);
    document.shell->setWorkingDirectory(work);
    document.shell->setStandardErrorFile(notes + "/errors");
    const QString line =
        "s7ppi-sim --station 2 --station 3 --live demo --link \"$OUT/ttyUSB0\" >\"$OUT/port\" & line=$!\n"
        "until [ -s \"$OUT/port\" ]; do sleep 0.05; done\n";
    writeFile(notes + "/script", line + scriptOf(document, notes) + "kill \"$line\"\n");
    document.shell->start("bash", {notes + "/script"});
}

void TestDocuments::commandsPrintWhatTheDocumentSays_data()
{
    QTest::addColumn<QString>("expected");
    QTest::addColumn<QString>("printed");
    for (const Document &document : documents)
        for (size_t i = 0; i < document.steps.size(); ++i) {
            const Command &command = document.steps[i].command;
            if (command.text.isEmpty() || command.mode == "elsewhere")
                continue;
            const QString notes = document.directory->filePath("notes");
            QString printed = contentOf(notes + '/' + numbered("printed", i));
            printed.replace(notes + "/ttyUSB0", "/dev/ttyUSB0").replace(notes + '/', "/tmp/");
            QTest::addRow("%s:%d %s", qPrintable(document.name), command.line, qPrintable(command.text))
                << withoutVolatile(command.printed, command.differs)
                << withoutVolatile(printed, command.differs);
        }
}

void TestDocuments::commandsPrintWhatTheDocumentSays()
{
    QFETCH(QString, expected);
    QFETCH(QString, printed);
    const QStringList lines = printed.split('\n', Qt::SkipEmptyParts);
    const QString whole = lines.isEmpty() ? QString() : lines.join('\n') + '\n';
    QVERIFY2(patternOf(expected).match(whole).hasMatch(),
             qPrintable("\n--- the document\n" + expected + "--- the command\n" + printed));
}

void TestDocuments::everyBlockIsOfAKnownKind()
{
    const QRegularExpression known(
        "^(console( interrupted| background| elsewhere)?|text|cpp|cmake|ini|\\S*\\.\\S+)$");
    for (const Document &document : documents)
        for (const QString &kind : document.kinds)
            QVERIFY2(known.match(kind.trimmed()).hasMatch(), qPrintable(document.name + ": ```" + kind));
}

QTEST_GUILESS_MAIN(TestDocuments)
#include "test_documents.moc"
