// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The built library, met as a host meets it: through Qt's loader and through dlopen. Like a host this
// program has the contract's own sources, and links nothing of the library.

#include "abstract_device_interface.h"
#include "driver_interface.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLibraryInfo>
#include <QPluginLoader>
#include <QPointer>
#include <QProcess>
#include <QSet>
#include <QtTest>

#include <dlfcn.h>

namespace {

// Qt 4's loader takes only libraries that have its own build key. Later ones do not look at it, so with them
// it is always the panel's.
#if QT_VERSION >= 0x050000
#define VERSION "4.8.6"
#define BUILD_KEY "arm linux g++-4 no-pkg-config"

bool isForThisQt()
{
    return true;
}
#else
#define VERSION CONFIGURED_VERSION
#define BUILD_KEY CONFIGURED_BUILD_KEY

bool isForThisQt()
{
    return QLibraryInfo::buildKey() == QLatin1String(BUILD_KEY);
}
#endif

const char kVerificationText[] = "pattern=QT_PLUGIN_VERIFICATION_DATA\n"
                                 "version=" VERSION "\n"
                                 "debug=false\n"
                                 "buildkey=" BUILD_KEY;

// clang-format off
// What the driver itself does not use: nothing in the library would miss it.
const char *const kForOtherDrivers[] = {
    "COMPILE_PATH",
    "DATABASE_PATH",
    "GetCompilePath()",
    "GetDatabaseName()",
    "DevStrToHmiPort(QString const&)",
    "GetLinkIdAndDefaultStationId(QString const&, int, int&, unsigned char&)",
    "GetLinkIdAndDefaultStationId(QString const&, int, QString const&, unsigned short, QList<LinkIdStationId>&)",
    "GetLinkIdAndDefaultStationId(QString const&, int, QList<LinkIdStationId>&)",
    "UInt8CheckSum(unsigned char const*, int)",
    "UShortCheckSum(unsigned char const*, int)",
    "XorUInt8CheckSum(unsigned char const*, int)",
    "CRC16Calculate(unsigned char const*, int)",
    "update_crc_ccitt(unsigned short, unsigned char)",
    "update_crc_16(unsigned short, unsigned char)",
    "update_crc_kermit(unsigned short, unsigned char)",
    "update_crc_dnp(unsigned short, unsigned char)",
    "update_crc_32(unsigned int, unsigned char)",
    "update_crc_sick(unsigned short, unsigned char, unsigned char)",
    "TxPackage::TxPackage()",
    "TxPackage::~TxPackage()",
    "TxPackage::appendSection(QByteArray const&)",
    "TxPackage::appendByte(unsigned char)",
    "TxPackage::appendWord(unsigned short)",
    "TxPackage::appendDWord(unsigned int)",
    "TxPackage::appendString(QString const&)",
    "TxPackage::appendByte2Ascii(unsigned char)",
    "TxPackage::appendLRCByte()",
    "TxPackage::appendLRCAscii()",
    "TxPackage::appendFCSAscii(int)",
    "TxPackage::calculateFCS(TxPackage*, int)",
    "TxPackage::numberOfSections() const",
    "TxPackage::totalSize() const",
    "TxPackage::validSectionNumber(int) const",
    "TxPackage::sectionStartIndex(int) const",
    "TxPackage::sectionSize(int) const",
    "TxPackage::dataAt(int) const",
    "TxPackage::arrayToInt(QByteArray const&)",
    "TxPackage::setSectionSize(QList<int> const&)",
    "TxPackage::setData(QByteArray const&)",
    "TxPackage::setData(char*, int)",
    "TxPackage::data()",
    "TxPackage::byteArrayData() const",
    "TxPackage::toString() const",
    "TxPackage::clearAll()",
};
// clang-format on

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

// Address, kind and name of each exported symbol.
QStringList exportedLines()
{
    const QStringList arguments = QStringList() << "-D"
                                                << "-C"
                                                << "--defined-only" << PLUGIN_FILE;
    return outputOf("nm", arguments).split('\n');
}

// What the headers of contract and toolkit declare: every word before an opening parenthesis.
QSet<QString> declaredNames()
{
    const QDir drivers(QString(SOURCE_DIR) + "/runtime/drivers");
    const QFileInfoList headers = drivers.entryInfoList(QStringList("*.h")) +
                                  QDir(drivers.filePath("tools")).entryInfoList(QStringList("*.h"));
    QSet<QString> names;
    for (const QFileInfo &header : headers) {
        QFile file(header.filePath());
        file.open(QIODevice::ReadOnly);
        const QStringList pieces =
            QString::fromLatin1(file.readAll()).replace('*', ' ').replace('&', ' ').remove('~').split('(');
        for (const QString &piece : pieces)
            names.insert(piece.simplified().section(' ', -1));
    }
    names.remove(QString());
    names << "COMPILE_PATH"
          << "DATABASE_PATH"; // the toolkit's data
    return names;
}

// "vtable for A", "A::f() const", "void f<T>(int)": A or f. What a sanitizer notes about data goes by their
// name.
QString nameIn(const QString &symbol)
{
    const QString callee = symbol.section('(', 0, 0).remove("__odr_asan.");
    if (callee.startsWith("operator"))
        return callee;
    return callee.section('<', 0, 0).section(' ', -1).section("::", 0, 0);
}

// The reports of sanitizers name source files by the path that the compiler was given, the counters of a
// coverage build the files that they are saved in: texts of their own, which make up no log line.
bool isForInstruments(const QString &text)
{
    return text.endsWith(".gcda") || (qstrlen(SANITIZERS) > 0 && QFile::exists(text));
}

} // namespace

class TestPlugin : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void qtsLoaderFindsTheDriverThatIsForIt();
    void theMetaDataCarryTheInterface();
    void theInstanceIsSharedUntilItIsDeleted();
    void createDriverMakesANewOneEachTime();
    void theVerificationTextIsExact();
    void theVerificationTextHasASectionOfItsOwn();
    void onlyEntryPointsContractAndToolkitAreExported();
    void theToolkitForOtherDriversIsExported_data();
    void theToolkitForOtherDriversIsExported();
    void noDatabaseDriverIsNeeded();
    void theTreesPathIsNotInTheLibrary();

private:
    void *library;
};

void TestPlugin::initTestCase()
{
    library = dlopen(PLUGIN_FILE, RTLD_NOW | RTLD_LOCAL);
    QVERIFY2(library, dlerror());
}

void TestPlugin::qtsLoaderFindsTheDriverThatIsForIt()
{
    QPluginLoader loader(QLatin1String(PLUGIN_FILE));
    QObject *instance = loader.instance();
    if (!isForThisQt()) {
        QVERIFY(!instance);
        QVERIFY2(loader.errorString().contains(BUILD_KEY), qPrintable(loader.errorString()));
        return;
    }
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
    QCOMPARE(QPluginLoader(QLatin1String(PLUGIN_FILE)).load(), isForThisQt());
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
    QFile file(PLUGIN_FILE);
    QVERIFY(file.open(QIODevice::ReadOnly) && file.seek(fields.value(2).toInt(nullptr, 16)));
    const QByteArray section = file.read(fields.value(3).toInt(nullptr, 16));
    const QByteArray text(kVerificationText, int(sizeof kVerificationText));
    QCOMPARE(section.left(text.size()), text);
    const QByteArray behind = section.mid(text.size()); // clang's AddressSanitizer guards it with zero bytes
    const bool isGuarded = QByteArray(SANITIZERS).contains("address");
    QCOMPARE(behind, QByteArray(isGuarded ? int(behind.size()) : 0, '\0'));
    QCOMPARE(fields.value(5), QString("A")); // allocated, neither written nor executed
}

void TestPlugin::onlyEntryPointsContractAndToolkitAreExported()
{
    const QSet<QString> declared = declaredNames();
    QVERIFY(declared.contains("CreateDriver"));
    const QStringList lines = exportedLines();
    QStringList leaked;
    bool createDriver = false;
    for (const QString &line : lines) {
        const QString symbol = line.section(' ', 2); // behind address and kind
        const QString name = nameIn(symbol);
        createDriver = createDriver || name == "CreateDriver";
        const bool isOurs = declared.contains(name) || name.startsWith("qt_plugin_");
        if (!line.isEmpty() && !isOurs)
            leaked.append(line);
    }
    QVERIFY(createDriver);
    QCOMPARE(leaked.join("\n"), QString());
}

void TestPlugin::theToolkitForOtherDriversIsExported_data()
{
    QTest::addColumn<QString>("name");
    for (size_t i = 0; i < sizeof kForOtherDrivers / sizeof kForOtherDrivers[0]; ++i)
        QTest::newRow(kForOtherDrivers[i]) << QString::fromLatin1(kForOtherDrivers[i]);
}

void TestPlugin::theToolkitForOtherDriversIsExported()
{
    QFETCH(QString, name);
    const QStringList lines = exportedLines();
    bool found = false;
    for (const QString &line : lines)
        found = found || line.section(' ', 2) == name;
    QVERIFY(found);
}

// A panel without a database driver loads the library all the same.
void TestPlugin::noDatabaseDriverIsNeeded()
{
    const QString libraries = outputOf("readelf", QStringList() << "-W"
                                                                << "-d" << PLUGIN_FILE);
    QVERIFY(libraries.contains("(NEEDED)"));
    QVERIFY(!libraries.contains("sqlite", Qt::CaseInsensitive));
}

void TestPlugin::theTreesPathIsNotInTheLibrary()
{
    const QStringList texts = outputOf("strings", QStringList() << "-d" << PLUGIN_FILE).split('\n');
    QVERIFY(!texts.filter("../../../runtime/drivers/simatic_s7_200_ppi/s7_200_ppi.cpp").isEmpty());
    const QStringList suspects = texts.filter(SOURCE_DIR);
    QStringList paths;
    for (const QString &text : suspects)
        if (!isForInstruments(text))
            paths.append(text);
    QCOMPARE(paths.join("\n"), QString());
}

QTEST_APPLESS_MAIN(TestPlugin)
#include "test_plugin.moc"
