// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/diagnosis/plugin_examination.h"

#include "host/base/failure.h"
#include "host/base/files.h"
#include "host/diagnosis/elf_file.h"
#include "host/diagnosis/isolation.h"
#include "host/diagnosis/plugin_description.h"
#include "host/driver/plugin.h"

#include <QByteArray>
#include <QFileInfo>
#include <QJsonObject>
#include <QLibrary>
#include <QPluginLoader>

#include <chrono>
#include <exception>
#include <memory>
#include <string>

namespace host {

namespace {

constexpr std::chrono::seconds kLoadingTime(10);

// In bytes; with all that helps to find faults in it a library is ten times smaller.
constexpr qint64 kLargestLibrary = 128 << 20;

const char *const kEntryPoints[] = {"CreateDriver", "qt_plugin_instance",
                                    "qt_plugin_query_verification_data"};

Finding findingOn(const QString &check, bool isGood, const QString &text)
{
    return isGood ? goodFinding(check, text)
                  : failedFinding(check, Failure(ExitCode::PluginUnusable, text, QString()));
}

Finding entryPoint(const QString &name, const ElfFile &file)
{
    const bool isThere = file.exports.contains(name);
    return findingOn(name, isThere, isThere ? "exported" : "missing");
}

Finding verification(const QByteArray &bytes)
{
    const QStringList lines = verificationLines(bytes);
    return findingOn("verification text", !lines.isEmpty(), lines.isEmpty() ? "missing" : lines.join(", "));
}

// Looks for the interface as Qt's loader does, in the file, without loading it.
Finding interfaceOf(const QString &fileName)
{
    const QJsonObject metaData = QPluginLoader(QFileInfo(fileName).absoluteFilePath()).metaData();
    const QString identifier = metaData.value("IID").toString();
    if (identifier.isEmpty())
        return findingOn("interface", false, "Qt finds none");
    const bool isOurs = identifier == DRIVER_INTERFACE_ID;
    return findingOn("interface", isOurs, isOurs ? identifier : identifier + ", not " + DRIVER_INTERFACE_ID);
}

// The trial of a library, in a process of its own, from which its findings come as JSON.
class Trial
{
public:
    explicit Trial(const QString &fileName_) : fileName(fileName_) {}

    QByteArray run();

private:
    template <typename Action> bool attempt(const char *what, const Action &action);
    QString makeDrivers() const;

    QString fileName;
    Json findings = Json::array();
};

template <typename Action> bool Trial::attempt(const char *what, const Action &action)
{
    QString text;
    bool isGood = false;
    try {
        text = action();
        isGood = true;
    } catch (const Failure &failure) {
        text = failure.text();
    } catch (const std::exception &error) {
        text = QString("throws: ") + error.what();
    }
    findings.push_back({{"what", what}, {"good", isGood}, {"text", jsonText(text)}});
    return isGood;
}

QString Trial::makeDrivers() const
{
    using CreateFunction = DriverInterface *(*)();
    const auto create = reinterpret_cast<CreateFunction>(
        QLibrary::resolve(QFileInfo(fileName).absoluteFilePath(), "CreateDriver"));
    if (!create)
        throw Failure(ExitCode::PluginUnusable, "cannot be called", QString());
    const std::unique_ptr<DriverInterface> first(create());
    std::unique_ptr<DriverInterface> second(create());
    if (first == second) // the same object, which is deleted once
        static_cast<void>(second.release());
    if (!first || !second)
        throw Failure(ExitCode::PluginUnusable, "CreateDriver makes no new driver on every call", QString());
    return first->name();
}

QByteArray Trial::run()
{
    std::unique_ptr<Plugin> plugin;
    Description description;
    const bool isLoaded = attempt("loading", [&] {
        plugin = std::make_unique<Plugin>(fileName);
        return QString("the driver is there");
    });
    if (isLoaded) {
        attempt("identity", [&] {
            addIdentity(description, *plugin);
            return plugin->driver().name();
        });
        attempt("defaults", [&] {
            addDefaults(description, *plugin);
            return QString("for port and driver");
        });
        attempt("sizes", [&] {
            addSizes(description, *plugin);
            return QString("told");
        });
        attempt("new drivers", [&] { return makeDrivers(); });
    }
    Json lines = Json::array();
    for (const QString &line : description.lines())
        lines.push_back(jsonText(line));
    const Json result = {{"findings", findings}, {"driver", description.fields()}, {"lines", lines}};
    return QByteArray::fromStdString(result.dump(-1, ' ', false, Json::error_handler_t::replace));
}

QString textOf(const Json &value)
{
    return QString::fromStdString(value.get<std::string>());
}

void addTrial(Examination &examination, const QString &fileName)
{
    const IsolatedEnd end = runIsolated([&] { return Trial(fileName).run(); }, kLoadingTime);
    if (end.failure) {
        examination.findings << findingOn("loading", false, end.failure->text());
        return;
    }
    const Json result = Json::parse(end.result.toStdString());
    for (const Json &finding : result.at("findings"))
        examination.findings << findingOn(textOf(finding.at("what")), finding.at("good").get<bool>(),
                                          textOf(finding.at("text")));
    examination.driver = result.at("driver");
    for (const Json &line : result.at("lines"))
        examination.driverLines << textOf(line);
}

bool isSameMachine(const ElfFile &file, const ElfFile &own)
{
    return file.machine == own.machine && file.bits == own.bits && file.isLittleEndian == own.isLittleEndian;
}

} // namespace

Examination examinePlugin(const QString &fileName)
{
    const QByteArray bytes = readInput(fileName, kLargestLibrary);
    const ElfFile file = parseElf(bytes);
    Examination examination;
    if (file.failure) {
        examination.findings << findingOn("file", false, "no shared library: " + file.failure->text());
        return examination;
    }
    examination.findings << findingOn("file", true, QString("shared library, %1 bytes").arg(bytes.size()));
    const ElfFile own = parseElf(readInput("/proc/self/exe", kLargestLibrary));
    const bool isOurMachine = isSameMachine(file, own);
    const QString machine = machineText(file);
    examination.findings << findingOn("machine", isOurMachine,
                                      isOurMachine ? machine : machine + "; this one is " + machineText(own));
    for (const char *name : kEntryPoints)
        examination.findings << entryPoint(name, file);
    examination.findings << verification(bytes);
    if (!isOurMachine)
        return examination;
    examination.findings << interfaceOf(fileName);
    addTrial(examination, fileName);
    return examination;
}

} // namespace host
