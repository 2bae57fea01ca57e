// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// An adapter that is unplugged and plugged in again, a thousand times, in the middle of an exchange.

#include "host/driver/connection.h"

#include "hex.h"
#include "host/base/messages.h"
#include "simulator/simulator.h"
#include "tests/host/support/failure_of.h"
#include "tests/host/support/pseudo_line.h"

#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QtTest>

#include <chrono>
#include <cstdio>
#include <memory>
#include <thread>
#include <utility>

using namespace host;

namespace {

constexpr int kLosses = 1000;

// When it is unplugged, once it has served a whole exchange.
enum class Stage { Request, Acknowledgement, HalfAnAnswer, Count };

// A port under a name that stays, with a controller behind it.
class Adapter
{
public:
    explicit Adapter(const QString &name_) : name(name_), line(std::make_unique<PseudoLine>())
    {
        pointName();
        controller.addStation(2);
    }

    // Answers one exchange, and the next one up to the stage; then another line has the name.
    void serveUntil(Stage stage);

    void serveOneExchange();
    void unplug() { line->hangUp(); }

    // The same name, another line.
    void replace();

private:
    QByteArray nextAnswer();
    void pointName() const;

    QString name;
    std::unique_ptr<PseudoLine> line;
    sim::Simulator controller;
};

// A name that is replaced in one step is never missing.
void Adapter::pointName() const
{
    const QString fresh = name + ".new";
    QVERIFY(QFile::link(line->name(), fresh));
    QCOMPARE(std::rename(qPrintable(fresh), qPrintable(name)), 0);
}

void Adapter::replace()
{
    auto next = std::make_unique<PseudoLine>();
    std::swap(line, next);
    pointName();
}

// Empty when nobody asks.
QByteArray Adapter::nextAnswer()
{
    while (true) {
        const QByteArray piece = line->readSome();
        const sim::Bytes answer =
            controller.feed(reinterpret_cast<const uint8_t *>(piece.constData()), size_t(piece.size()));
        if (!answer.empty() || piece.isEmpty())
            return QByteArray(reinterpret_cast<const char *>(answer.data()), int(answer.size()));
    }
}

void Adapter::serveOneExchange()
{
    line->write(nextAnswer());
    line->write(nextAnswer());
}

void Adapter::serveUntil(Stage stage)
{
    serveOneExchange();
    const QByteArray acknowledgement = nextAnswer();
    if (stage != Stage::Request)
        line->write(acknowledgement);
    if (stage == Stage::HalfAnAnswer) {
        const QByteArray answer = nextAnswer();
        line->write(answer.left(answer.size() / 2));
    }
    replace();
}

Options optionsFor(const QString &port)
{
    Options options;
    options.port = port;
    options.plugin = PLUGIN_FILE;
    options.timeout = std::chrono::milliseconds(5000);
    options.retries = 0;
    return options;
}

CommunicatorCommand fourBytes()
{
    CommunicatorCommand command;
    command.address = "VB100";
    command.dataType = kBytes;
    command.count = 4;
    return command;
}

// Runs beside the test, which reads meanwhile.
class Beside
{
public:
    template <typename Work> explicit Beside(const Work &work) : thread(work) {}
    ~Beside() { thread.join(); }

private:
    std::thread thread;
};

} // namespace

class TestLostPorts : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { installDriverLog(false); }
    void init();
    void aThousandLossesCostNoRead();
    void withoutReconnectALossEndsIt();
    void aWriteIsNeverRepeated();
    void triesBecomeRarerUntilSomethingCame();

private:
    QTemporaryDir directory;
    QString name;
};

void TestLostPorts::init()
{
    name = directory.filePath(QTest::currentTestFunction());
}

void TestLostPorts::aThousandLossesCostNoRead()
{
    Adapter adapter(name);
    Options options = optionsFor(name);
    options.reconnect = true;
    Connection connection(options);
    QStringList told;
    const host::Connection::MessageRedirect redirect(connection,
                                                     [&told](const QString &text) { told << text; });

    const Beside adapterAtWork([&adapter] {
        for (int loss = 0; loss < kLosses; ++loss)
            adapter.serveUntil(Stage(loss % int(Stage::Count)));
        adapter.serveOneExchange();
    });
    for (int i = 0; i <= kLosses; ++i)
        QCOMPARE(hex(connection.read(fourBytes())), QString("11223344"));
    QCOMPARE(connection.returnCount(), kLosses);
    QCOMPARE(told.size(), 2 * kLosses);
    QCOMPARE(told.first(), name + " is gone: waiting for it to come back");
    QCOMPARE(told.last(), name + " is back");
}

void TestLostPorts::withoutReconnectALossEndsIt()
{
    Adapter adapter(name);
    Connection connection(optionsFor(name));
    adapter.unplug();
    QVERIFY(failureOf([&] { connection.read(fourBytes()); }).startsWith("6: the port is gone / "));
}

void TestLostPorts::aWriteIsNeverRepeated()
{
    Adapter adapter(name);
    Options options = optionsFor(name);
    options.reconnect = true;
    Connection connection(options);
    adapter.replace();
    QVERIFY(failureOf([&] { connection.write(fourBytes(), "abcd"); }).startsWith("6: the port is gone / "));
}

// A port that opens and is lost at once, over and over, is waited for as one that is not there.
void TestLostPorts::triesBecomeRarerUntilSomethingCame()
{
    Adapter adapter(name);
    Options options = optionsFor(name);
    options.reconnect = true;
    Connection connection(options);
    int returns = 0;
    std::unique_ptr<Beside> adapterAtWork;
    const host::Connection::MessageRedirect redirect(connection, [&](const QString &text) {
        if (!text.endsWith(" is back"))
            return;
        if (++returns < 3)
            adapter.replace();
        else
            adapterAtWork = std::make_unique<Beside>([&adapter] { adapter.serveOneExchange(); });
    });
    adapter.replace();
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(hex(connection.read(fourBytes())), QString("11223344"));
    QVERIFY(timer.elapsed() >= 500 + 1000);
}

QTEST_GUILESS_MAIN(TestLostPorts)
#include "test_lost_ports.moc"
