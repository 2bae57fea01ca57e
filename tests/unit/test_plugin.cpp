// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The built library, met as a host meets it: through Qt's loader and through dlopen. Like a host this
// program has the contract's own sources, and links nothing of the library.

#include "abstract_device_interface.h"
#include "driver_interface.h"

#include <QLibrary>
#include <QPluginLoader>
#include <QPointer>
#include <QProcess>
#include <QtTest>

#include <dlfcn.h>

namespace {

const char kVerificationText[] = "pattern=QT_PLUGIN_VERIFICATION_DATA\n"
                                 "version=4.8.6\n"
                                 "debug=false\n"
                                 "buildkey=arm linux g++-4 no-pkg-config";

template <typename Function> Function symbol(void *library, const char *name)
{
    Function function = nullptr;
    void *address = dlsym(library, name);
    memcpy(&function, &address, sizeof function);
    return function;
}

typedef DriverInterface *(*CreateDriverFunction)();
typedef QObject *(*InstanceFunction)();
typedef const char *(*VerificationFunction)();

QString outputOf(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    process.waitForFinished();
    return QString::fromLatin1(process.readAllStandardOutput());
}

} // namespace

class TestPlugin : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void qtsLoaderFindsTheDriver();
    void theMetaDataCarryTheInterface();
    void theInstanceIsSharedUntilItIsDeleted();
    void createDriverMakesANewOneEachTime();
    void theVerificationTextIsExact();
    void theVerificationTextHasASectionOfItsOwn();
    void onlyEntryPointsContractAndToolkitAreExported();
    void theTreesPathIsNotInTheLibrary();

private:
    void *library;
};

void TestPlugin::initTestCase()
{
    library = dlopen(PLUGIN_FILE, RTLD_NOW | RTLD_LOCAL);
    QVERIFY2(library, dlerror());
}

void TestPlugin::qtsLoaderFindsTheDriver()
{
    QPluginLoader loader(QLatin1String(PLUGIN_FILE));
    QObject *instance = loader.instance();
    QVERIFY2(instance, qPrintable(loader.errorString()));
    DriverInterface *driver = qobject_cast<DriverInterface *>(instance);
    QVERIFY(driver);
    QCOMPARE(driver->name(), QString("Simatic S7-200 PPI"));
    QVERIFY(driver->getThisObject() == instance);
}

void TestPlugin::theMetaDataCarryTheInterface()
{
#if QT_VERSION >= 0x050000
    const QPluginLoader loader(QLatin1String(PLUGIN_FILE));
    QCOMPARE(loader.metaData().value("IID").toString(), QString(DRIVER_INTERFACE_ID));
    QCOMPARE(loader.metaData().value("className").toString(), QString("DriverS7_200_PPI"));
#else
    QVERIFY(QPluginLoader(QLatin1String(PLUGIN_FILE)).load());
#endif
}

void TestPlugin::theInstanceIsSharedUntilItIsDeleted()
{
    const InstanceFunction instance = symbol<InstanceFunction>(library, "qt_plugin_instance");
    QVERIFY(instance);
    QPointer<QObject> first = instance();
    QVERIFY(first);
    QVERIFY(instance() == first);
    delete first;
    QObject *second = instance();
    QVERIFY(second);
    QCOMPARE(QString(second->metaObject()->className()), QString("DriverS7_200_PPI"));
    QVERIFY(instance() == second);
}

void TestPlugin::createDriverMakesANewOneEachTime()
{
    const CreateDriverFunction create = symbol<CreateDriverFunction>(library, "CreateDriver");
    QVERIFY(create);
    const QScopedPointer<DriverInterface> first(create());
    const QScopedPointer<DriverInterface> second(create());
    QVERIFY(first.data() != second.data());
    QVERIFY(first->getThisObject() != symbol<InstanceFunction>(library, "qt_plugin_instance")());
    QCOMPARE(first->getVersionNumber(), QString("1.0.0"));
}

void TestPlugin::theVerificationTextIsExact()
{
    const VerificationFunction text =
        symbol<VerificationFunction>(library, "qt_plugin_query_verification_data");
    QVERIFY(text);
    QCOMPARE(QString::fromLatin1(text()), QString::fromLatin1(kVerificationText));
}

void TestPlugin::theVerificationTextHasASectionOfItsOwn()
{
    const QStringList lines = outputOf("readelf", QStringList() << "-W"
                                                                << "-S" << PLUGIN_FILE)
                                  .split('\n');
    const QStringList found = lines.filter(" .qtplugin ");
    QCOMPARE(found.size(), 1);
    // type, address, offset, size, entry size, flags; behind them link, info and alignment
    const QStringList fields = found.first().mid(found.first().indexOf("PROGBITS")).simplified().split(' ');
    QCOMPARE(fields.value(3).toInt(nullptr, 16), int(sizeof kVerificationText));
    QCOMPARE(fields.value(5), QString("A")); // allocated, neither written nor executed
}

void TestPlugin::onlyEntryPointsContractAndToolkitAreExported()
{
    const QStringList lines = outputOf("nm", QStringList() << "-D"
                                                           << "-C"
                                                           << "--defined-only" << PLUGIN_FILE)
                                  .split('\n');
    QStringList leaked;
    bool createDriver = false;
    foreach (const QString &line, lines) {
        const QString symbol = line.section(' ', 2); // behind address and kind
        createDriver = createDriver || symbol == "CreateDriver";
        const bool ofTheDriver = symbol.contains("S7_200") || symbol.contains("s7_200") ||
                                 symbol.contains("Ppi") || symbol.contains("VERSION_STRING") ||
                                 symbol.contains("anonymous");
        if (ofTheDriver || symbol.startsWith("std::") || symbol.startsWith("QHash") ||
            symbol.startsWith("QList"))
            leaked.append(line);
    }
    QVERIFY(createDriver);
    QCOMPARE(leaked.join("\n"), QString());
}

void TestPlugin::theTreesPathIsNotInTheLibrary()
{
    const QString text = outputOf("strings", QStringList() << "-d" << PLUGIN_FILE);
    QVERIFY(text.contains("../../../runtime/drivers/simatic_s7_200_ppi/s7_200_ppi.cpp"));
    QVERIFY(!text.contains(SOURCE_DIR));
}

QTEST_APPLESS_MAIN(TestPlugin)
#include "test_plugin.moc"
