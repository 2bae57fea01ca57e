// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The lookups on a real SQLite file, the directories and the stopped process in a copy of a small program.

#include "log_capture.h"
#include "temporary_directory.h"
#include "tools/project_database.h"

#include <QProcess>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QtTest>

#include <climits>

namespace {

const char kProject[] = "project";

const char *const kTables[] = {
    "CREATE TABLE LINK (LINKID INTEGER, HMIPORT INTEGER)",
    "CREATE TABLE NODE (LINKID INTEGER, STATIONID INTEGER, IP TEXT, PORT INTEGER, ISDEFAULT INTEGER)"};

const char *const kTablesOfTexts[] = {
    "CREATE TABLE LINK (LINKID TEXT, HMIPORT TEXT)",
    "CREATE TABLE NODE (LINKID TEXT, STATIONID TEXT, IP TEXT, PORT TEXT, ISDEFAULT TEXT)"};

// Link 7 is a serial one with two controllers, link 9 an Ethernet one with several.
const char *const kRows[] = {"INSERT INTO LINK VALUES (7, 1001)",
                             "INSERT INTO LINK VALUES (9, 2000)",
                             "INSERT INTO LINK VALUES (-3, 1005)",
                             "INSERT INTO LINK VALUES (11, 1006)",
                             "INSERT INTO LINK VALUES (12, 1007)",
                             "INSERT INTO LINK VALUES (13, 1008)",
                             "INSERT INTO NODE VALUES (7, 3, '', 0, 0)",
                             "INSERT INTO NODE VALUES (7, 2, '', 0, 1)",
                             "INSERT INTO NODE VALUES (9, 4, '192.168.0.1', 102, 1)",
                             "INSERT INTO NODE VALUES (9, 5, '192.168.0.1', 103, 1)",
                             "INSERT INTO NODE VALUES (9, 258, '192.168.0.2', 65535, 1)",
                             "INSERT INTO NODE VALUES (9, 6, '192.168.0.1', 102, 0)",
                             "INSERT INTO NODE VALUES (9, 8, '192.168.0.1', 102, 1)",
                             "INSERT INTO NODE VALUES (-3, 258, '', 500, 1)",
                             "INSERT INTO NODE VALUES (11, NULL, '', 0, 1)",
                             "INSERT INTO NODE VALUES (12, -1, '10.0.0.1', 102, 1)",
                             "INSERT INTO NODE VALUES (13, 'two', '10.0.0.2', 102, 1)"};

// Opens a file of its own under a name, and closes it again.
class Connection
{
public:
    Connection(const char *name, const QString &file, const char *driver = "QSQLITE")
        : connectionName(QString::fromLatin1(name))
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(QString::fromLatin1(driver), connectionName);
        database.setDatabaseName(file);
    }
    ~Connection() { QSqlDatabase::removeDatabase(connectionName); }

    QString name() const { return connectionName; }

    // The empty text, or what the database says.
    template <size_t kCount> QString run(const char *const (&statements)[kCount]) const
    {
        QSqlQuery query(QSqlDatabase::database(connectionName));
        for (size_t i = 0; i < kCount; ++i) {
            if (!query.exec(QString::fromLatin1(statements[i])))
                return query.lastError().text();
        }
        return QString();
    }

private:
    Connection(const Connection &);
    Connection &operator=(const Connection &);

    QString connectionName;
};

// "7/2 9/258"
QString shown(const QList<LinkIdStationId> &records)
{
    QStringList texts;
    for (const LinkIdStationId &record : records)
        texts += QString::fromLatin1("%1/%2").arg(record.linkId).arg(record.stationId);
    return texts.join(" ");
}

QString defaultOfPort(const QString &connection, int hmiPort)
{
    int linkId = -99;
    unsigned char stationId = 0xEE;
    if (!GetLinkIdAndDefaultStationId(connection, hmiPort, linkId, stationId))
        return linkId == -99 && stationId == 0xEE ? "none" : "none, but changed";
    return QString::fromLatin1("%1/%2").arg(linkId).arg(stationId);
}

QString defaultsOfSocket(const QString &connection, int hmiPort, const QString &ip, int port)
{
    QList<LinkIdStationId> result;
    const bool found =
        GetLinkIdAndDefaultStationId(connection, hmiPort, ip, static_cast<unsigned short>(port), result);
    return found == result.isEmpty() ? "answer and list differ" : shown(result);
}

QString defaultsOfLink(const QString &connection, int linkId)
{
    QList<LinkIdStationId> result;
    const bool found = GetLinkIdAndDefaultStationId(connection, linkId, result);
    return found == result.isEmpty() ? "answer and list differ" : shown(result);
}

// All three lookups, for rows that the project has.
QString everythingOf(const QString &connection)
{
    return QStringList(QStringList() << defaultOfPort(connection, 1001)
                                     << defaultsOfSocket(connection, 2000, "192.168.0.1", 102)
                                     << defaultsOfLink(connection, 7))
        .join(";");
}

const char kNothing[] = "none;;";

struct Answer
{
    QString text;
    QString message;
    bool stopped;
};

Answer ask(const QString &program, const QStringList &question)
{
    QProcess process;
    process.start(program, question);
    const bool finished = process.waitForFinished();
    const Answer answer = {QString::fromLocal8Bit(process.readAllStandardOutput()).trimmed(),
                           QString::fromLocal8Bit(process.readAllStandardError()),
                           finished && process.exitStatus() == QProcess::CrashExit};
    return answer;
}

// What the program answers from a directory of its own, in which these directories, and perhaps an empty
// file, stand. The answer begins behind that directory.
QString answerBeside(const QStringList &directories, const char *question, const QString &file = QString())
{
    const TemporaryDirectory place;
    for (const QString &directory : directories)
        QDir(place.path()).mkpath(directory);
    if (!file.isEmpty() && !QFile(place.path(file)).open(QIODevice::WriteOnly))
        return "no file " + file;
    QFile::copy(QLatin1String(PROBE_FILE), place.path("probe"));
    const QString answer = ask(place.path("probe"), QStringList(QString::fromLatin1(question))).text;
    return answer.startsWith(place.path()) ? answer.mid(int(place.path().size())) : "elsewhere: " + answer;
}

} // namespace

class TestProjectDatabase : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void directoryNames();
    void compilePathIsBesideTheProgram();
    void databaseNameNeedsNoDirectories_data();
    void databaseNameNeedsNoDirectories();
    void fileIsNoCompilePath();
    void fileIsNoDirectoryOfTheDatabase_data();
    void fileIsNoDirectoryOfTheDatabase();
    void deviceStringsHavePorts_data();
    void deviceStringsHavePorts();
    void malformedDeviceStringStopsTheProcess_data();
    void malformedDeviceStringStopsTheProcess();
    void linkAndDefaultStationOfAPort_data();
    void linkAndDefaultStationOfAPort();
    void stationOfAPortIsCutTo8Bits();
    void stationMinus1HasAllBitsSet();
    void stationThatIsNoNumberIs0();
    void defaultStationsOfASocket_data();
    void defaultStationsOfASocket();
    void nullAddressIsAnEmptyOne();
    void textIsNeverPartOfTheStatement_data();
    void textIsNeverPartOfTheStatement();
    void defaultStationsOfALink_data();
    void defaultStationsOfALink();
    void recordsAreAppended();
    void recordsFromBeforeCount();
    void columnsOfTextGiveTheSameRows();
    void closedConnectionIsOpened();
    void unknownConnectionFindsNothing();
    void missingFileFindsNothing();
    void missingTablesFindNothing();
    void fileThatIsNoDatabaseFindsNothing();
    void missingDatabaseDriverFindsNothing();

private:
    TemporaryDirectory *directory;
    Connection *project;
};

void TestProjectDatabase::initTestCase()
{
    directory = new TemporaryDirectory;
    project = new Connection(kProject, directory->path("database"));
    QCOMPARE(project->run(kTables), QString());
    QCOMPARE(project->run(kRows), QString());
}

void TestProjectDatabase::cleanupTestCase()
{
    const QString path = directory->path();
    delete project;
    delete directory;
    QVERIFY(!QDir(path).exists());
}

void TestProjectDatabase::directoryNames()
{
    QCOMPARE(COMPILE_PATH, QString("compile"));
    QCOMPARE(DATABASE_PATH, QString("database"));
}

void TestProjectDatabase::compilePathIsBesideTheProgram()
{
    QCOMPARE(answerBeside(QStringList("compile"), "compile-path"), QString("/compile"));
    QCOMPARE(answerBeside(QStringList(), "compile-path"), QString());
}

void TestProjectDatabase::databaseNameNeedsNoDirectories_data()
{
    QTest::addColumn<QStringList>("directories");
    QTest::addColumn<QString>("name");
    const auto row = [](const char *title, const QStringList &directories, const char *name) {
        QTest::newRow(title) << directories << name;
    };
    row("both", QStringList("compile/database"), "/compile/database/database");
    row("no database", QStringList("compile"), "/compile/database");
    row("no compile", QStringList(), "/database");
    row("database beside the program", QStringList("database"), "/database/database");
    row("compile comes first", QString("database,compile").split(','), "/compile/database");
}

void TestProjectDatabase::databaseNameNeedsNoDirectories()
{
    QFETCH(QStringList, directories);
    QFETCH(QString, name);
    QCOMPARE(answerBeside(directories, "database-name"), name);
}

void TestProjectDatabase::fileIsNoCompilePath()
{
    QCOMPARE(answerBeside(QStringList(), "compile-path", "compile"), QString());
}

void TestProjectDatabase::fileIsNoDirectoryOfTheDatabase_data()
{
    QTest::addColumn<QStringList>("directories");
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("name");
    const auto row = [](const char *title, const QStringList &directories, const char *file,
                        const char *name) { QTest::newRow(title) << directories << file << name; };
    row("compile", QStringList(), "compile", "/database");
    row("compile, database beside the program", QStringList("database"), "compile", "/database/database");
    row("compile/database", QStringList("compile"), "compile/database", "/compile/database");
    row("database beside the program", QStringList(), "database", "/database");
}

void TestProjectDatabase::fileIsNoDirectoryOfTheDatabase()
{
    QFETCH(QStringList, directories);
    QFETCH(QString, file);
    QFETCH(QString, name);
    QCOMPARE(answerBeside(directories, "database-name", file), name);
}

void TestProjectDatabase::deviceStringsHavePorts_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("port");
    QTest::newRow("ETHERNET") << "ETHERNET" << 2000;
    QTest::newRow("ethernet") << "ethernet" << 2000;
    QTest::newRow("Ethernet, number does not count") << "Ethernet3" << 2000;
    QTest::newRow("ETHERNET, more behind") << "ETHERNET: 10.0.0.1" << 2000;
    QTest::newRow("COM1") << "COM1" << 1000;
    QTest::newRow("COM2") << "COM2" << 1001;
    QTest::newRow("COM10") << "COM10" << 1009;
    QTest::newRow("COM0") << "COM0" << 999;
    QTest::newRow("leading zero") << "COM007" << 1006;
    QTest::newRow("only the last digits count") << "RS485-2 COM3" << 1002;
    QTest::newRow("no sign") << "COM-3" << 1002;
    QTest::newRow("path") << "/dev/ttyS1" << 1000;
    QTest::newRow("not quite Ethernet") << "ETHERNE7" << 1006;
    QTest::newRow("Ethernet not in front") << "an ETHERNET2" << 1001;
    QTest::newRow("digits of another script precede") << QString(QChar(0x0661)) + QString("5") << 1004;
    QTest::newRow("largest port") << "COM2147482648" << INT_MAX;
    QTest::newRow("no int as port") << "COM2147482649" << 999;
    QTest::newRow("no int as number") << "COM2147483648" << 999;
    QTest::newRow("many digits") << "COM99999999999999999999999" << 999;
}

void TestProjectDatabase::deviceStringsHavePorts()
{
    QFETCH(QString, text);
    QFETCH(int, port);
    QCOMPARE(DevStrToHmiPort(text), port);
}

void TestProjectDatabase::malformedDeviceStringStopsTheProcess_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("no digit") << "COM";
    QTest::newRow("only digits") << "12";
    QTest::newRow("digits not at the end") << "COM1A";
    QTest::newRow("blank at the end") << "COM1 ";
    QTest::newRow("empty") << "";
    QTest::newRow("part of Ethernet") << "ETHERNE";
    QTest::newRow("digit of another script") << QString("COM") + QChar(0x0661);
}

void TestProjectDatabase::malformedDeviceStringStopsTheProcess()
{
    QFETCH(QString, text);
    const Answer answer = ask(QLatin1String(PROBE_FILE), QStringList() << "hmi-port" << text);
    QVERIFY(answer.stopped);
    QCOMPARE(answer.text, QString());
    QVERIFY2(answer.message.contains("i >= 0 && (i+1) < dev_str.size()"), qPrintable(answer.message));
    QCOMPARE(ask(QLatin1String(PROBE_FILE), QStringList() << "hmi-port"
                                                          << "COM2")
                 .text,
             QString("1001"));
}

void TestProjectDatabase::linkAndDefaultStationOfAPort_data()
{
    QTest::addColumn<int>("hmiPort");
    QTest::addColumn<QString>("found");
    QTest::newRow("COM2, default only") << 1001 << "7/2";
    QTest::newRow("Ethernet, first row") << 2000 << "9/4";
    QTest::newRow("no value is station 0") << 1006 << "11/0";
    QTest::newRow("no such port") << 1002 << "none";
    QTest::newRow("negative") << -1001 << "none";
    QTest::newRow("lowest") << INT_MIN << "none";
}

void TestProjectDatabase::linkAndDefaultStationOfAPort()
{
    QFETCH(int, hmiPort);
    QFETCH(QString, found);
    QCOMPARE(defaultOfPort(kProject, hmiPort), found);
}

void TestProjectDatabase::stationOfAPortIsCutTo8Bits()
{
    QCOMPARE(defaultOfPort(kProject, 1005), QString("-3/2"));
    QCOMPARE(defaultsOfLink(kProject, -3), QString("-3/258"));
}

void TestProjectDatabase::stationMinus1HasAllBitsSet()
{
    QCOMPARE(defaultOfPort(kProject, 1007), QString("12/255"));
    QCOMPARE(defaultsOfSocket(kProject, 1007, "10.0.0.1", 102), QString("12/4294967295"));
    QCOMPARE(defaultsOfLink(kProject, 12), QString("12/4294967295"));
}

void TestProjectDatabase::stationThatIsNoNumberIs0()
{
    QCOMPARE(defaultOfPort(kProject, 1008), QString("13/0"));
    QCOMPARE(defaultsOfSocket(kProject, 1008, "10.0.0.2", 102), QString("13/0"));
    QCOMPARE(defaultsOfLink(kProject, 13), QString("13/0"));
}

void TestProjectDatabase::defaultStationsOfASocket_data()
{
    QTest::addColumn<int>("hmiPort");
    QTest::addColumn<QString>("ip");
    QTest::addColumn<int>("port");
    QTest::addColumn<QString>("found");
    QTest::newRow("two defaults") << 2000 << "192.168.0.1" << 102 << "9/4 9/8";
    QTest::newRow("other socket port") << 2000 << "192.168.0.1" << 103 << "9/5";
    QTest::newRow("other address, highest socket port") << 2000 << "192.168.0.2" << 65535 << "9/258";
    QTest::newRow("empty address") << 1001 << "" << 0 << "7/2";
    QTest::newRow("no such port") << 1001 << "192.168.0.1" << 102 << "";
    QTest::newRow("no such address") << 2000 << "192.168.0.9" << 102 << "";
    QTest::newRow("no such socket port") << 2000 << "192.168.0.1" << 104 << "";
    QTest::newRow("address as it is, blanks included") << 2000 << " 192.168.0.1" << 102 << "";
}

void TestProjectDatabase::defaultStationsOfASocket()
{
    QFETCH(int, hmiPort);
    QFETCH(QString, ip);
    QFETCH(int, port);
    QFETCH(QString, found);
    QCOMPARE(defaultsOfSocket(kProject, hmiPort, ip, port), found);
}

void TestProjectDatabase::nullAddressIsAnEmptyOne()
{
    QCOMPARE(defaultsOfSocket(kProject, 1001, QString(), 0), QString("7/2"));
}

void TestProjectDatabase::textIsNeverPartOfTheStatement_data()
{
    QTest::addColumn<QString>("ip");
    QTest::newRow("a quote") << "192.168.0.1'";
    QTest::newRow("quotes around") << "'192.168.0.1'";
    QTest::newRow("always true") << "x' OR '1' = '1";
    QTest::newRow("comment") << "192.168.0.1' --";
    QTest::newRow("second statement") << "'; DROP TABLE NODE; --";
    QTest::newRow("double quotes") << "\"IP\"";
    QTest::newRow("place marks") << "?";
    QTest::newRow("numbered place marks") << "%1%3";
    QTest::newRow("named place mark") << ":ip";
}

void TestProjectDatabase::textIsNeverPartOfTheStatement()
{
    QFETCH(QString, ip);
    QCOMPARE(defaultsOfSocket(kProject, 2000, ip, 102), QString());
    QCOMPARE(defaultsOfSocket(kProject, 2000, "192.168.0.1", 102), QString("9/4 9/8"));
}

void TestProjectDatabase::defaultStationsOfALink_data()
{
    QTest::addColumn<int>("linkId");
    QTest::addColumn<QString>("found");
    QTest::newRow("one default") << 7 << "7/2";
    QTest::newRow("several") << 9 << "9/4 9/5 9/258 9/8";
    QTest::newRow("no value is station 0") << 11 << "11/0";
    QTest::newRow("no such link") << 8 << "";
    QTest::newRow("highest") << INT_MAX << "";
}

void TestProjectDatabase::defaultStationsOfALink()
{
    QFETCH(int, linkId);
    QFETCH(QString, found);
    QCOMPARE(defaultsOfLink(kProject, linkId), found);
}

void TestProjectDatabase::recordsAreAppended()
{
    QList<LinkIdStationId> result;
    QVERIFY(GetLinkIdAndDefaultStationId(kProject, 7, result));
    QVERIFY(GetLinkIdAndDefaultStationId(kProject, 2000, "192.168.0.1", 103, result));
    QCOMPARE(shown(result), QString("7/2 9/5"));
}

void TestProjectDatabase::recordsFromBeforeCount()
{
    QList<LinkIdStationId> result;
    const LinkIdStationId record = {1, 2};
    result.append(record);
    QVERIFY(GetLinkIdAndDefaultStationId(kProject, 8, result));
    QVERIFY(GetLinkIdAndDefaultStationId(kProject, 2000, "192.168.0.9", 102, result));
    QCOMPARE(shown(result), QString("1/2"));
}

void TestProjectDatabase::columnsOfTextGiveTheSameRows()
{
    const Connection texts("texts", directory->path("texts"));
    QCOMPARE(texts.run(kTablesOfTexts), QString());
    QCOMPARE(texts.run(kRows), QString());
    QCOMPARE(everythingOf(texts.name()), QString("7/2;9/4 9/8;7/2"));
    QCOMPARE(everythingOf(kProject), QString("7/2;9/4 9/8;7/2"));
}

void TestProjectDatabase::closedConnectionIsOpened()
{
    const Connection closed("closed", directory->path("database"));
    QVERIFY(!QSqlDatabase::database("closed", false).isOpen());
    QCOMPARE(defaultOfPort(closed.name(), 1001), QString("7/2"));
    QVERIFY(QSqlDatabase::database("closed", false).isOpen());
}

void TestProjectDatabase::unknownConnectionFindsNothing()
{
    const LogCapture warnings;
    QCOMPARE(everythingOf("nobody registered this"), QString(kNothing));
    QCOMPARE(everythingOf(QString()), QString(kNothing));
}

void TestProjectDatabase::missingFileFindsNothing()
{
    const LogCapture warnings;
    const Connection missing("missing", directory->path("no such directory/database"));
    QCOMPARE(everythingOf(missing.name()), QString(kNothing));
    QVERIFY(!QDir(directory->path("no such directory")).exists());
}

void TestProjectDatabase::missingTablesFindNothing()
{
    const Connection empty("empty", directory->path("empty"));
    QCOMPARE(everythingOf(empty.name()), QString(kNothing));
}

void TestProjectDatabase::fileThatIsNoDatabaseFindsNothing()
{
    QFile file(directory->path("text"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(QByteArray("no database at all, but long enough to be looked at\n").repeated(100));
    file.close();
    const Connection text("text", file.fileName());
    QCOMPARE(everythingOf(text.name()), QString(kNothing));
}

void TestProjectDatabase::missingDatabaseDriverFindsNothing()
{
    const LogCapture warnings;
    const Connection connection("without driver", directory->path("database"), "QNONE");
    QCOMPARE(everythingOf(connection.name()), QString(kNothing));
}

QTEST_MAIN(TestProjectDatabase)
#include "test_project_database.moc"
