// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/broker/metrics.h"

#include "host/base/failure.h"
#include "host/base/files.h"
#include "host/base/files_in_use.h"
#include "host/base/filled.h"
#include "host/base/system_reason.h"

#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstdio>
#include <utility>

namespace host {

namespace {

constexpr char kEnding[] = ".prom";

double inSeconds(std::chrono::duration<double> duration)
{
    return duration.count();
}

// A label's value stands between quotes, in one line.
QByteArray escaped(const QString &value)
{
    QByteArray text = value.toUtf8();
    text.replace('\\', "\\\\").replace('"', "\\\"").replace('\n', "\\n");
    return text;
}

QByteArray labelText(const char *name, const QString &value)
{
    return QByteArray(name) + "=\"" + escaped(value) + '"';
}

class MetricsWriter
{
public:
    MetricsWriter(const QString &port, int station)
        : labels(labelText("port", port) + ',' + labelText("station", QString::number(station)))
    {
    }

    // Begins a figure, whose samples follow.
    void begin(const char *figure, const char *type, const char *help)
    {
        name = QByteArray("s7ppi_") + figure;
        text += "# HELP " + name + ' ' + help + "\n# TYPE " + name + ' ' + type + '\n';
    }
    void sample(double value, const QByteArray &label = QByteArray(), const char *suffix = "")
    {
        text += name + suffix + '{' + labels + (label.isEmpty() ? "" : ",") + label + "} " +
                QByteArray::number(value, 'g', 15) + '\n';
    }
    void gauge(const char *figure, const char *help, double value)
    {
        begin(figure, "gauge", help);
        sample(value);
    }
    void counter(const char *figure, const char *help, qint64 value)
    {
        begin(figure, "counter", help);
        sample(double(value));
    }
    QByteArray takeText() { return std::exchange(text, QByteArray()); }

private:
    QByteArray labels; // that every sample has
    QByteArray name;
    QByteArray text;
};

void addLine(MetricsWriter &writer, const Metrics &metrics)
{
    const Health &health = metrics.health;
    writer.gauge("up", "Whether the program is running.", metrics.isUp);
    writer.gauge("port_up", "Whether the port is there.", metrics.isPortThere);
    writer.gauge("simulated", "Whether the controller is a simulated one.", health.isSimulated);
    writer.gauge("items", "Items that are polled.", metrics.items);
    writer.gauge("items_failing", "Items whose last poll brought no value.", metrics.failingItems);
    writer.counter("requests_total", "Requests sent to controllers, repetitions included.", health.attempts);
    writer.counter("readings_total", "Polls of an item that brought values.", health.answers);
    writer.begin("reading_errors_total", "counter", "Polls of an item that brought none, by their cause.");
    for (const auto &[cause, count] : health.errors)
        writer.sample(count, labelText("cause", causeWord(cause)));
    writer.counter("polls_total", "Polls of all groups.", health.polls);
    writer.counter("late_polls_total", "Polls that ended after the next one should have begun.",
                   health.latePolls);
}

void addAnswerTimes(MetricsWriter &writer, const Metrics &metrics)
{
    const Health &health = metrics.health;
    writer.begin("answer_seconds", "summary", "From a request to its answer.");
    writer.sample(inSeconds(health.usualAnswerTime), labelText("quantile", "0.5"));
    writer.sample(inSeconds(health.longAnswerTime), labelText("quantile", "0.9"));
    writer.sample(inSeconds(health.longestAnswerTime), labelText("quantile", "1"));
    writer.sample(inSeconds(metrics.answerSum), QByteArray(), "_sum");
    writer.sample(double(metrics.answerCount), QByteArray(), "_count");
}

void addBroker(MetricsWriter &writer, const Health &health)
{
    writer.gauge("broker_connected", "Whether the broker is reached.", health.connectedSince.has_value());
    writer.counter("broker_connections_total", "How often the broker was reached.", health.connections);
    writer.gauge("messages_queued", "Messages that wait for the broker.", double(health.queued));
    writer.counter("messages_dropped_total", "Messages that the broker will never get.", health.dropped);
    writer.counter("commands_done_total", "Commands from the broker that were done.", health.writes);
    writer.counter("commands_refused_total", "Commands from the broker that were not done.", health.refusals);
}

} // namespace

QByteArray metricsText(const Metrics &metrics)
{
    MetricsWriter writer(metrics.port, metrics.station);
    addLine(writer, metrics);
    addAnswerTimes(writer, metrics);
    addBroker(writer, metrics.health);
    return writer.takeText();
}

void claimMetricsFile(const QString &name)
{
    if (!name.endsWith(kEnding))
        throw Failure(ExitCode::Usage, filled("the node exporter does not read %1", name),
                      "give the file a name that ends in .prom, as press3.prom");
    const QString directory = QFileInfo(name).absolutePath();
    if (!QFileInfo(directory).isDir())
        throw Failure(ExitCode::Usage, filled("there is no directory %1 for %2", directory, name),
                      "make it, and name it to the node exporter with --collector.textfile.directory");
    claimFile(name, FileRole::Unfinished);
}

void MetricsFile::write(const QByteArray &content)
{
    const QString reason = replaceWith(content);
    if (!reason.isEmpty() && reason != toldReason)
        tell(filled("%1 of --metrics cannot be written: %2; trying again", name, reason));
    toldReason = reason;
}

// Returns why it cannot; empty when it is done. The node exporter, a user of its own, has to read the file
// whatever this program's mask says, and passes the new one over, as its name ends otherwise.
QString MetricsFile::replaceWith(const QByteArray &content) const
{
    QFile file(name + ".new");
    if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        return file.errorString();
    if (file.write(content) != content.size())
        return writeReason(file);
    if (!file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ReadGroup |
                             QFileDevice::ReadOther))
        return file.errorString();
    file.close();
    const bool isDone =
        std::rename(QFile::encodeName(file.fileName()).constData(), QFile::encodeName(name).constData()) == 0;
    return isDone ? QString() : systemReason(errno);
}

} // namespace host
