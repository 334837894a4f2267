#include "TestCase.h"

#include <QtCore/QDirIterator>
#include <QtCore/QProcess>
#include <QtCore/QRegularExpression>

// What libMiscTools.so.1 is to the loader: its name, what it needs, what it gives away.
class tst_LibraryFile : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void sonames_data();
    void sonames();
    void neededLibraries();
    void platformFunctionsAreNotDefinedInTheLibrary();
    void bundledPlatformDefinesThePlatformFunctionsAlone();
    void interfaceNamesAreRecognised_data();
    void interfaceNamesAreRecognised();
    void onlyThePublicInterfaceIsExported();
    void everyPublicClassIsExported();
};

namespace {

const QString library = QStringLiteral(LIBRARY_FILE);
const QString platformLibrary = QStringLiteral(PLATFORM_LIBRARY_FILE);

// The lines that a tool prints about a file; none when it fails, which every caller would notice.
QStringList linesOf(const QString& tool, const QStringList& arguments)
{
    QProcess process;
    process.start(tool, arguments);
    if (!process.waitForFinished() || process.exitStatus() != QProcess::NormalExit ||
        process.exitCode() != 0) {
        return QStringList();
    }
    return QString::fromLocal8Bit(process.readAllStandardOutput())
        .split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

// The values of a tag of the dynamic section: NEEDED or SONAME.
QStringList dynamicEntries(const QString& file, const QString& tag)
{
    const QRegularExpression entry(QStringLiteral("\\(%1\\).*\\[(.*)\\]").arg(tag));
    QStringList values;
    for (const QString& line : linesOf(QStringLiteral(READELF), {QStringLiteral("-dW"), file})) {
        const QRegularExpressionMatch match = entry.match(line);
        if (match.hasMatch()) {
            values.append(match.captured(1));
        }
    }
    return values;
}

// The demangled names of the dynamic symbols that a file defines.
QStringList definedSymbols(const QString& file)
{
    const QRegularExpression symbol(QStringLiteral("^[0-9a-f]+ [A-Za-z] (.*)$"));
    QStringList names;
    for (const QString& line : linesOf(
             QStringLiteral(NM), {QStringLiteral("-DC"), QStringLiteral("--defined-only"), file})) {
        const QRegularExpressionMatch match = symbol.match(line);
        if (match.hasMatch()) {
            names.append(match.captured(1));
        }
    }
    return names;
}

// The names that the public headers mark as exported, classes and free functions.
QStringList captures(const QString& expression)
{
    const QRegularExpression declaration(expression);
    QStringList names;
    QDirIterator headers(QStringLiteral(INCLUDE_FOLDER), {QStringLiteral("*.h")});
    while (headers.hasNext()) {
        QFile header(headers.next());
        if (!header.open(QIODevice::ReadOnly)) {
            return QStringList();
        }
        const QString text = QString::fromUtf8(header.readAll());
        QRegularExpressionMatchIterator matches = declaration.globalMatch(text);
        while (matches.hasNext()) {
            names.append(matches.next().captured(1));
        }
    }
    return names;
}

QStringList publicClasses()
{
    return captures(QStringLiteral("\\bclass MISCTOOLS_EXPORT (\\w+)"));
}

QStringList publicFunctions()
{
    return captures(QStringLiteral("(?<!class )\\bMISCTOOLS_EXPORT [^;{]*?(operator<<|\\w+)\\("));
}

// Whether a symbol is a member of one of the classes, what the compiler makes for one, or one of
// the free functions.
bool isOfInterface(const QString& symbol, const QStringList& classes, const QStringList& functions)
{
    const QRegularExpression expression(
        QStringLiteral("^(?:(?:(?:non-)?virtual thunk to )?(?:%1)::.*"
                       "|(?:vtable|typeinfo|typeinfo name) for (?:%1)"
                       "|(?:%2)\\(.*)$")
            .arg(classes.join(QLatin1Char('|')),
                 functions.isEmpty() ? QStringLiteral("(?!)") : functions.join(QLatin1Char('|'))));
    return expression.match(symbol).hasMatch();
}

const QStringList platformFunctions{
    QStringLiteral("DeviceManifestManager::getProductCode()"),
    QStringLiteral("readBoolValueFromJson(QString const&, QJsonObject const&, bool&)"),
    QStringLiteral("readDoubleValueFromJson(QString const&, QJsonObject const&, double&)"),
    QStringLiteral("readStringValueFromJson(QString const&, QJsonObject const&, QString&)"),
};

} // namespace

void tst_LibraryFile::sonames_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("soname");
    QTest::newRow("library") << library << QStringLiteral("libMiscTools.so.1");
    QTest::newRow("bundled platform library")
        << platformLibrary << QStringLiteral("libMiscToolsPlatform.so.1");
}

void tst_LibraryFile::sonames()
{
    QFETCH(QString, file);
    QFETCH(QString, soname);
    QCOMPARE(dynamicEntries(file, QStringLiteral("SONAME")), QStringList(soname));
}

void tst_LibraryFile::neededLibraries()
{
    QStringList needed = dynamicEntries(library, QStringLiteral("NEEDED"));
    QVERIFY(needed.removeOne(QStringLiteral("libQt5Core.so.5")));
    QVERIFY(needed.removeOne(QStringLiteral("libMiscToolsPlatform.so.1")));
    // What is left belongs to the compiler and the system.
    const QRegularExpression runtime(QStringLiteral(
        "^(?:libstdc\\+\\+|libm|libgcc_s|libc|libpthread|libatomic|ld-linux[\\w-]*)\\.so\\.\\d+$"));
    for (const QString& name : qAsConst(needed)) {
        QVERIFY2(runtime.match(name).hasMatch(), qPrintable(name));
    }
}

void tst_LibraryFile::platformFunctionsAreNotDefinedInTheLibrary()
{
    const QStringList symbols = definedSymbols(library);
    QVERIFY(!symbols.isEmpty());
    for (const QString& function : platformFunctions) {
        QVERIFY2(!symbols.contains(function), qPrintable(function));
    }
}

void tst_LibraryFile::bundledPlatformDefinesThePlatformFunctionsAlone()
{
    QStringList symbols = definedSymbols(platformLibrary);
    symbols.sort();
    QCOMPARE(symbols, platformFunctions);
}

void tst_LibraryFile::interfaceNamesAreRecognised_data()
{
    QTest::addColumn<QString>("symbol");
    QTest::addColumn<bool>("expected");
    const auto row = [](const char* symbol, bool expected) {
        QTest::newRow(symbol) << QString::fromLatin1(symbol) << expected;
    };
    row("Thing::Thing()", true);
    row("Thing::call(QString const&) const", true);
    row("Thing::sm_List", true);
    row("vtable for Thing", true);
    row("typeinfo for Thing", true);
    row("typeinfo name for Thing", true);
    row("non-virtual thunk to Thing::~Thing()", true);
    row("findThings(QString const&)", true);
    row("Other::Other()", false);
    row("OtherThing::call()", false);
    row("Things::call()", false);
    row("vtable for Other", false);
    row("vtable for Things", false);
    row("findThingsQuickly(QString const&)", false);
    row("QList<Thing>::append(Thing const&)", false);
    row("QList<Thing::Part>::append(Thing::Part const&)", false);
    row("std::vector<Thing>::~vector()", false);
    row("(anonymous namespace)::helper()", false);
    row("helper", false);
}

void tst_LibraryFile::interfaceNamesAreRecognised()
{
    QFETCH(QString, symbol);
    QFETCH(bool, expected);
    QCOMPARE(isOfInterface(symbol, {QStringLiteral("Thing")}, {QStringLiteral("findThings")}),
             expected);
}

void tst_LibraryFile::onlyThePublicInterfaceIsExported()
{
    const QStringList classes = publicClasses();
    const QStringList functions = publicFunctions();
    const QStringList symbols = definedSymbols(library);
    QVERIFY(!classes.isEmpty());
    QVERIFY(!symbols.isEmpty());
    for (const QString& symbol : symbols) {
        QVERIFY2(isOfInterface(symbol, classes, functions), qPrintable(symbol));
    }
}

void tst_LibraryFile::everyPublicClassIsExported()
{
    const QStringList symbols = definedSymbols(library);
    const QStringList classes = publicClasses();
    QVERIFY(!classes.isEmpty());
    for (const QString& name : classes) {
        const QRegularExpression member(QStringLiteral("^%1::").arg(name));
        QVERIFY2(!symbols.filter(member).isEmpty(), qPrintable(name));
    }
    // Programs derive from these, cast to them and catch them.
    for (const char* name : {"HardwareInfo", "HardwareInfoReader", "HardwareVersionIniManager"}) {
        for (const char* part : {"vtable for ", "typeinfo for "}) {
            const QString symbol = QLatin1String(part) + QLatin1String(name);
            QVERIFY2(symbols.contains(symbol), qPrintable(symbol));
        }
    }
}

QTEST_GUILESS_MAIN(tst_LibraryFile)
#include "tst_LibraryFile.moc"
