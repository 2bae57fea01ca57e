// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The program s7ppi-sim as its users meet it.

#include "conversation.h"
#include "raw_terminal.h"

#include "simulator/controller/memory_file.h"

#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>
#include <cstdint>
#include <memory>

#include <fcntl.h>
#include <pty.h>
#include <sys/types.h>
#include <termios.h>
#include <unistd.h>

namespace {

const QString kReadFourBytes = "68 1b 1b 68 02 00 6c 32 01 00 00 00 01 00 0e 00 00"
                               "04 01 12 0a 10 02 00 04 00 01 84 00 03 20 8f 16";
const QString kWriteVB100 = "68 21 21 68 02 00 6c 32 01 00 00 00 07 00 0e 00 06"
                            "05 01 12 0a 10 02 00 02 00 01 84 00 03 20"
                            "00 04 00 10 ab cd 26 16";
const QString kAnswerFourBytes = "68 19 19 68 00 02 08 32 03 00 00 00 01 00 02 00 08 00 00"
                                 "04 01 ff 04 00 20 11 22 33 44 1c 16";
const QString kAnswerWritten = "68 12 12 68 00 02 08 32 03 00 00 00 07 00 02 00 01 00 00 05 01 ff 4e 16";

int frameSize(const QString &hexText)
{
    return int(frameBytes(hexText).size());
}

class Simulator
{
public:
    explicit Simulator(const QStringList &options = {})
    {
        process.start(S7PPI_SIM_PROGRAM, options);
        if (!process.waitForStarted()) // a signal to a process that is none would go to all
            qFatal("%s does not start", S7PPI_SIM_PROGRAM);
        while (!process.canReadLine() && process.waitForReadyRead(10000)) {
        }
        printed = QString::fromLocal8Bit(process.readLine());
    }

    ~Simulator()
    {
        if (process.state() != QProcess::NotRunning) {
            process.kill();
            process.waitForFinished();
        }
    }

    QString firstLine() const { return printed; }
    QString portName() const { return printed.trimmed(); }

    // The exit status; -1 when it did not exit by itself.
    int waitForEnd()
    {
        const bool ended = process.state() == QProcess::NotRunning || process.waitForFinished(10000);
        return ended && process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    }

    int stop(int signal = SIGTERM)
    {
        ::kill(static_cast<pid_t>(process.processId()), signal);
        return waitForEnd();
    }

    void kill()
    {
        process.kill();
        process.waitForFinished();
    }

    QString messages() { return QString::fromLocal8Bit(process.readAllStandardError()); }

    // The only message, when a hint follows it; otherwise all there are.
    QString complaint()
    {
        const QString text = messages();
        const QStringList lines = text.split('\n');
        return lines.size() == 3 && lines[1].startsWith("hint: ") && lines[2].isEmpty() ? lines[0] : text;
    }

    QString furtherOutput() { return QString::fromLocal8Bit(process.readAllStandardOutput()); }

private:
    QProcess process;
    QString printed; // the first line on stdout
};

void writeFile(const QString &path, const QByteArray &content)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(content);
}

} // namespace

class TestSimulatorProgram : public QObject
{
    Q_OBJECT

private slots:
    void firstLineNamesThePort();
    void workedExampleIsAnswered();
    void portIsRawBeforeAnyMasterComes();
    void mastersMayComeAndGo();
    void everyByteValuePassesUnchanged();
    void silenceEndsABegunFrame();
    void masterThatTookThePortForItselfCanBeFollowed();
    void stationNumberIsAnOption();
    void requestsAreRefusedOnDemand();
    void faultsAreMadeOnDemand();
    void memoryComesFromTheFile();
    void bothSignalsSaveTheMemory_data();
    void bothSignalsSaveTheMemory();
    void savedMemoryIsTheNextRunsMemory();
    void savingThatCannotSucceedIsRefusedAtTheStart();
    void linkLeadsToThePortAndGoesAtTheEnd();
    void staleLinkIsReplaced();
    void linkThatLeadsElsewhereAtTheEndStays();
    void fileIsNoLinkToReplace();
    void framesAreShownOnDemand();
    void serialPortIsServedAndItsLossEndsTheProgram();
    void missingSerialPortIsStatus3();
    void badUsageIsStatus2_data();
    void badUsageIsStatus2();
    void helpAndVersionAreTold();
};

void TestSimulatorProgram::firstLineNamesThePort()
{
    Simulator simulator;
    QVERIFY2(QRegularExpression("^/dev/pts/[0-9]+\n$").match(simulator.firstLine()).hasMatch(),
             qPrintable(simulator.firstLine()));
    QVERIFY(QFileInfo::exists(simulator.portName()));
    QCOMPARE(simulator.stop(), 0);
    QCOMPARE(simulator.furtherOutput(), QString());
    QCOMPARE(simulator.messages(), QString());
}

void TestSimulatorProgram::workedExampleIsAnswered()
{
    Simulator simulator;
    RawTerminal line(simulator.portName());
    QCOMPARE(line.ask(kReadFourBytes, 1), plain("e5"));
    QCOMPARE(line.ask(kPoll, frameSize(kAnswerFourBytes)), plain(kAnswerFourBytes));
    QVERIFY(line.isSilent());
}

void TestSimulatorProgram::portIsRawBeforeAnyMasterComes()
{
    Simulator simulator;
    const int port = open(simulator.portName().toLocal8Bit().constData(), O_RDWR | O_NOCTTY);
    termios settings;
    QCOMPARE(tcgetattr(port, &settings), 0);
    close(port);
    QCOMPARE(settings.c_lflag & (ICANON | ECHO | ISIG), tcflag_t(0));
    QCOMPARE(settings.c_iflag & (ICRNL | IXON), tcflag_t(0));
    QCOMPARE(settings.c_oflag & OPOST, tcflag_t(0));
}

void TestSimulatorProgram::mastersMayComeAndGo()
{
    Simulator simulator;
    for (int i = 0; i < 3; ++i) {
        RawTerminal line(simulator.portName());
        QCOMPARE(line.ask(kReadFourBytes, 1), plain("e5"));
        QCOMPARE(line.ask(kPoll, frameSize(kAnswerFourBytes)), plain(kAnswerFourBytes));
    }
    QCOMPARE(simulator.stop(), 0);
}

// Terminals like to treat 03, 04, 0a, 0d, 11, 13, 1a, 7f and others on their own.
void TestSimulatorProgram::everyByteValuePassesUnchanged()
{
    const QTemporaryDir folder;
    QString all;
    for (int value = 0; value < 256; ++value)
        all += hex(sim::Bytes{uint8_t(value)});
    writeFile(folder.filePath("memory.json"), "{ \"V\": { \"0\": \"" + all.toLatin1() + "\" } }");
    Simulator simulator({"--memory", folder.filePath("memory.json")});
    RawTerminal line(simulator.portName());
    // VB0 and VB128, 128 bytes each
    QCOMPARE(line.ask("68 1b 1b 68 02 00 6c 32 01 00 00 00 01 00 0e 00 00"
                      "04 01 12 0a 10 02 00 80 00 01 84 00 00 00 e8 16",
                      1),
             plain("e5"));
    QCOMPARE(line.ask(kPoll, 155).mid(2 * 25, 2 * 128), all.left(2 * 128));
    QCOMPARE(line.ask("68 1b 1b 68 02 00 6c 32 01 00 00 00 01 00 0e 00 00"
                      "04 01 12 0a 10 02 00 80 00 01 84 00 04 00 ec 16",
                      1),
             plain("e5"));
    QCOMPARE(line.ask(kPoll, 155).mid(2 * 25, 2 * 128), all.mid(2 * 128));
}

void TestSimulatorProgram::silenceEndsABegunFrame()
{
    Simulator simulator;
    RawTerminal line(simulator.portName());
    line.ask("68 ff ff 68 02", 0);
    QTest::qWait(600);
    QCOMPARE(line.ask(kReadFourBytes, 1), plain("e5"));
}

void TestSimulatorProgram::masterThatTookThePortForItselfCanBeFollowed()
{
    Simulator simulator;
    {
        RawTerminal first(simulator.portName());
        QVERIFY(first.setExclusive());
        QCOMPARE(first.ask(kReadFourBytes, 1), plain("e5"));
        QVERIFY(first.isExclusive());
    }
    const auto isFree = [&] {
        const RawTerminal next(simulator.portName());
        return next.isOpen() && !next.isExclusive();
    };
    QTRY_VERIFY(isFree());
}

void TestSimulatorProgram::stationNumberIsAnOption()
{
    Simulator simulator({"--station", "3"});
    RawTerminal line(simulator.portName());
    QCOMPARE(line.ask("10 03 00 5c 5f 16", 1), plain("e5"));
    line.ask(kPoll, 0);
    QVERIFY(line.isSilent());
}

void TestSimulatorProgram::requestsAreRefusedOnDemand()
{
    Simulator simulator({"--fault", "no-resource@2", "--fault", "not-active@3"});
    RawTerminal line(simulator.portName());
    QCOMPARE(line.ask(kReadFourBytes, 1), plain("e5"));
    QCOMPARE(line.ask(kReadFourBytes, 6), plain("10 00 02 02 04 16"));
    QCOMPARE(line.ask(kReadFourBytes, 6), plain("10 00 02 03 05 16"));
    QCOMPARE(line.ask(kReadFourBytes, 1), plain("e5"));
}

void TestSimulatorProgram::faultsAreMadeOnDemand()
{
    Simulator simulator({"--fault", "wrong-ack"});
    RawTerminal line(simulator.portName());
    QCOMPARE(line.ask(kReadFourBytes, 1), plain("00"));
    QCOMPARE(line.ask(kReadFourBytes, 1), plain("00"));
}

void TestSimulatorProgram::memoryComesFromTheFile()
{
    const QTemporaryDir folder;
    writeFile(folder.filePath("memory.json"), "{ \"V\": { \"101\": \"ff\" } }");
    Simulator simulator({"--memory", folder.filePath("memory.json")});
    RawTerminal line(simulator.portName());
    QCOMPARE(line.ask(kReadFourBytes, 1), plain("e5"));
    QCOMPARE(
        line.ask(kPoll, frameSize(kAnswerFourBytes)),
        plain(
            "68 19 19 68 00 02 08 32 03 00 00 00 01 00 02 00 08 00 00 04 01 ff 04 00 20 00 ff 00 00 71 16"));
}

void TestSimulatorProgram::bothSignalsSaveTheMemory_data()
{
    QTest::addColumn<int>("signal");
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGINT") << SIGINT;
}

void TestSimulatorProgram::bothSignalsSaveTheMemory()
{
    QFETCH(int, signal);
    const QTemporaryDir folder;
    const QString path = folder.filePath("saved.json");
    Simulator simulator({"--save", path});
    RawTerminal line(simulator.portName());
    QCOMPARE(line.ask(kWriteVB100, 1), plain("e5"));
    QCOMPARE(line.ask(kPoll, frameSize(kAnswerWritten)), plain(kAnswerWritten));
    QVERIFY(!QFileInfo::exists(path));
    QCOMPARE(simulator.stop(signal), 0);

    sim::Memory expected = sim::exampleMemory();
    expected.bytes(sim::kAreaV)[100] = 0xAB;
    expected.bytes(sim::kAreaV)[101] = 0xCD;
    QVERIFY(sim::loadMemory(path.toStdString()).memory == expected);
}

void TestSimulatorProgram::savedMemoryIsTheNextRunsMemory()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("memory.json");
    sim::Memory memory;
    memory.timers[7] = {1, 2, true};
    sim::saveMemory({memory, {}}, path.toStdString());
    Simulator simulator({"--memory", path, "--save", path});
    QCOMPARE(simulator.stop(), 0);
    QVERIFY(sim::loadMemory(path.toStdString()).memory == memory);
}

void TestSimulatorProgram::savingThatCannotSucceedIsRefusedAtTheStart()
{
    Simulator simulator({"--save", "/nonexistent/memory.json"});
    QCOMPARE(simulator.waitForEnd(), 74);
    QCOMPARE(simulator.firstLine(), QString());
    QCOMPARE(simulator.complaint(),
             QString("s7ppi-sim: /nonexistent/memory.json: cannot save: No such file or directory"));
}

void TestSimulatorProgram::linkLeadsToThePortAndGoesAtTheEnd()
{
    const QTemporaryDir folder;
    const QString link = folder.filePath("plc");
    Simulator simulator({"--link", link});
    QCOMPARE(QFile::symLinkTarget(link), simulator.portName());
    RawTerminal line(link);
    QCOMPARE(line.ask(kPoll, 1), plain("e5"));
    QCOMPARE(simulator.stop(), 0);
    QVERIFY(!QFileInfo(link).isSymLink());
}

void TestSimulatorProgram::staleLinkIsReplaced()
{
    for (int i = 0; i < 20; ++i) {
        const QTemporaryDir folder;
        const QString link = folder.filePath("plc");
        Simulator killed({"--link", link});
        killed.kill();
        QVERIFY(QFileInfo(link).isSymLink());
        Simulator simulator({"--link", link});
        if (QFile::symLinkTarget(link) == simulator.portName())
            return;
        // Another program of this machine had got the terminal's number meanwhile, and the link led there.
    }
    QFAIL("a link that leads nowhere was not replaced");
}

void TestSimulatorProgram::linkThatLeadsElsewhereAtTheEndStays()
{
    const QTemporaryDir folder;
    const QString link = folder.filePath("plc");
    Simulator simulator({"--link", link});
    QVERIFY(!simulator.portName().isEmpty());
    QVERIFY(QFile::remove(link) && QFile::link("/dev/null", link));
    QCOMPARE(simulator.stop(), 0);
    QCOMPARE(QFile::symLinkTarget(link), QString("/dev/null"));
}

void TestSimulatorProgram::fileIsNoLinkToReplace()
{
    const QTemporaryDir folder;
    writeFile(folder.filePath("plc"), "precious");
    Simulator simulator({"--link", folder.filePath("plc")});
    QCOMPARE(simulator.waitForEnd(), 3);
    QCOMPARE(simulator.firstLine(), QString());
    QCOMPARE(simulator.complaint(),
             "s7ppi-sim: cannot make the link " + folder.filePath("plc") + ": File exists");
    QCOMPARE(QFileInfo(folder.filePath("plc")).size(), qint64(8));
}

void TestSimulatorProgram::framesAreShownOnDemand()
{
    Simulator simulator({"-v"});
    RawTerminal line(simulator.portName());
    QCOMPARE(line.ask("aa" + kPoll, 1), plain("e5"));
    QCOMPARE(simulator.stop(), 0);
    QCOMPARE(simulator.messages(),
             QString("? aa  skipped\n> 10 02 00 5c 5e 16  0 to 2: poll\n< e5  acknowledged\n"));
}

void TestSimulatorProgram::serialPortIsServedAndItsLossEndsTheProgram()
{
    int other = -1;
    int device = -1;
    QCOMPARE(openpty(&other, &device, nullptr, nullptr, nullptr), 0);
    fcntl(other, F_SETFD, FD_CLOEXEC); // or the simulator would keep the line alive itself
    const QString name = QString::fromLocal8Bit(ttyname(device));
    const QTemporaryDir folder;
    auto line = std::make_unique<RawTerminal>(other);
    Simulator simulator(
        {"--port", name, "--baud", "19200", "--parity", "none", "--save", folder.filePath("saved.json")});
    QCOMPARE(simulator.portName(), name);
    QCOMPARE(line->ask(kReadFourBytes, 1), plain("e5"));
    QCOMPARE(line->ask(kPoll, frameSize(kAnswerFourBytes)), plain(kAnswerFourBytes));

    termios settings;
    QCOMPARE(tcgetattr(device, &settings), 0);
    QCOMPARE(cfgetospeed(&settings), speed_t(B19200));

    close(device);
    line.reset();
    QCOMPARE(simulator.waitForEnd(), 6);
    QCOMPARE(simulator.complaint(), "s7ppi-sim: " + name + " is lost");
    QVERIFY(sim::loadMemory(folder.filePath("saved.json").toStdString()).memory == sim::exampleMemory());
}

void TestSimulatorProgram::missingSerialPortIsStatus3()
{
    Simulator simulator({"--port", "/dev/nonexistent"});
    QCOMPARE(simulator.waitForEnd(), 3);
    QCOMPARE(simulator.firstLine(), QString());
    QCOMPARE(simulator.complaint(),
             QString("s7ppi-sim: cannot open /dev/nonexistent: No such file or directory"));
}

void TestSimulatorProgram::badUsageIsStatus2_data()
{
    QTest::addColumn<QString>("options");
    QTest::addColumn<QString>("complaint");
    const auto row = [](const char *name, const char *options, const char *complaint) {
        QTest::newRow(name) << options << complaint;
    };
    row("unknown option", "--nope", "s7ppi-sim: there is no option --nope");
    row("argument", "nope", "nope is too much: s7ppi-sim takes options only");
    row("station 0", "--station 0", "--station");
    row("station 127", "--station 127", "--station");
    row("station two", "--station two", "--station");
    row("link and port", "--link a --port b", "--link");
    row("baud rate of no port", "--baud 9600", "--baud requires --port");
    row("baud rate", "--port a --baud 0", "--baud: 0 is not a whole number from 50 to 4000000");
    row("seed", "--seed x", "--seed: x is not a whole number from 0 to 4294967295");
    row("turnaround", "--turnaround 1t", "--turnaround: 1t is not a time from 0s to 10min");
    row("no value", "--turnaround --verbose", "--turnaround needs a value; --verbose behind it is an option");
    row("parity", "--port a --parity mark", "--parity: mark is not one of even, odd, none");
    row("fault of request 0", "--fault no-resource@0", "@N: \"0\" is not the number of a request, from 1 on");
    row("fault", "--fault loud", "\"loud\" is no kind of fault; there are no-resource, ");
    row("memory file", "--memory /nonexistent.json",
        "/nonexistent.json: cannot open: No such file or directory");
}

void TestSimulatorProgram::badUsageIsStatus2()
{
    QFETCH(QString, options);
    QFETCH(QString, complaint);
    Simulator simulator(options.split(' '));
    QCOMPARE(simulator.waitForEnd(), 2);
    QCOMPARE(simulator.firstLine(), QString());
    const QString told = simulator.complaint();
    QVERIFY2(told.startsWith("s7ppi-sim: ") && told.contains(complaint), qPrintable(told));
}

void TestSimulatorProgram::helpAndVersionAreTold()
{
    Simulator help({"--help"});
    QCOMPARE(help.waitForEnd(), 0);
    const QString text = help.furtherOutput();
    for (const char *option : {"--station", "--port", "--link", "--memory", "--save", "--baud", "--parity",
                               "--fault", "--live", "--pace", "--trace", "--verbose", "--version"})
        QVERIFY2(text.contains(option), option);
    Simulator version({"--version"});
    QCOMPARE(version.waitForEnd(), 0);
    QVERIFY2(
        QRegularExpression("^s7ppi-sim [0-9]+\\.[0-9]+\\.[0-9]+\n$").match(version.firstLine()).hasMatch(),
        qPrintable(version.firstLine()));
}

QTEST_GUILESS_MAIN(TestSimulatorProgram)
#include "test_program.moc"
