#include "TestCase.h"

#include <QtCore/QDirIterator>
#include <QtCore/QProcess>
#include <QtCore/QRegularExpression>

// Tests libMiscTools.so.1 as the loader sees it: its name, its dependencies, its exports.
class tst_LibraryFile : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void sonames_data();
    void sonames();
    void neededLibraries();
    void platformFunctionsAreNotDefinedInTheLibrary();
    void bundledPlatformDefinesOnlyThePlatformFunctions();
    void headersAreParsed();
    void symbolsAreParsed();
    void exportsAreExactlyThePublicInterface();
    void tablesAndTypesAreExported();
    void loaderAppliesHardening_data();
    void loaderAppliesHardening();
    void libraryStaysLoaded();
    void releaseBuildsProtectTheStack_data();
    void releaseBuildsProtectTheStack();
};

namespace {

const QString library = QStringLiteral(LIBRARY_FILE);
const QString platformLibrary = QStringLiteral(PLATFORM_LIBRARY_FILE);

// The lines that a tool prints about a file; none if the tool fails, which fails every test.
QStringList linesOf(const QString& tool, const QStringList& arguments)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("LC_ALL", "C"); // the tools' output is localized
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(tool, arguments);
    if (!process.waitForFinished() || process.exitStatus() != QProcess::NormalExit ||
        process.exitCode() != 0) {
        return QStringList();
    }
    return QString::fromLocal8Bit(process.readAllStandardOutput())
        .split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

// The captures of the expression in the lines of readelf's output: "-d" for the dynamic section,
// "-l" for the segments.
QStringList capturedIn(const QString& file, const char* view, const QString& expression)
{
    const QRegularExpression entry(expression);
    QStringList values;
    for (const QString& line :
         linesOf(QStringLiteral(READELF), {QLatin1String(view), "-W", file})) {
        const QRegularExpressionMatch match = entry.match(line);
        if (match.hasMatch()) {
            values.append(match.captured(1));
        }
    }
    return values;
}

// The values of a tag of the dynamic section: NEEDED or SONAME.
QStringList dynamicEntries(const QString& file, const QString& tag)
{
    return capturedIn(file, "-d", QStringLiteral("\\(%1\\).*\\[(.*)\\]").arg(tag));
}

// The demangled names of the dynamic symbols that nm lists with the option.
QStringList dynamicSymbols(const QString& file, const QString& option)
{
    const QRegularExpression symbol("^[0-9a-f ]+ [A-Za-z] (.*)$");
    QStringList names;
    for (const QString& line : linesOf(QStringLiteral(NM), {"-DC", option, file})) {
        const QRegularExpressionMatch match = symbol.match(line);
        if (match.hasMatch()) {
            names.append(match.captured(1));
        }
    }
    return names;
}

// The symbols that a file defines.
QStringList definedSymbols(const QString& file)
{
    return dynamicSymbols(file, "--defined-only");
}

// The public interface that a header declares. An overloaded name is listed once per overload.
struct Interface
{
    QStringList classes;
    QStringList functions;
    QStringList variables;
};

void readMembers(const QString& className, QString body, Interface& interface)
{
    // Bodies of nested types, access labels and macros are not declarations of the class.
    body.remove(QRegularExpression("\\{[^}]*\\}"));
    body.remove(QRegularExpression("\\b(?:public|protected|private)(?: Q_SLOTS)?:|\\bQ_SIGNALS:"));
    if (body.contains(QLatin1String("Q_OBJECT"))) {
        for (const char* function : {"metaObject", "qt_metacast", "qt_metacall"}) {
            interface.functions.append(className + QLatin1String("::") + QLatin1String(function));
        }
        interface.variables.append(className + QLatin1String("::staticMetaObject"));
    }
    body.remove(QRegularExpression("\\bQ_OBJECT\\b|\\bQ_DISABLE_COPY\\(\\w+\\)"));

    const QRegularExpression function("(~?\\w+)\\(");
    const QRegularExpression variable("^\\s*static\\b.*\\b(\\w+)(?:\\[\\w*\\])?$");
    for (const QString& declaration : body.split(QLatin1Char(';'))) {
        if (declaration.contains(QLatin1String("= default"))) {
            continue; // emitted where it is used
        }
        QRegularExpressionMatch match = function.match(declaration);
        if (match.hasMatch()) {
            interface.functions.append(className + QLatin1String("::") + match.captured(1));
            continue;
        }
        match = variable.match(declaration);
        if (match.hasMatch()) {
            interface.variables.append(className + QLatin1String("::") + match.captured(1));
        }
    }
}

Interface readHeader(QString text)
{
    Interface interface;
    text.remove(QRegularExpression("/\\*.*?\\*/|//[^\\n]*",
                                   QRegularExpression::DotMatchesEverythingOption));
    const QRegularExpression classExpression("class MISCTOOLS_EXPORT (\\w+)[^{;]*\\{(.*?)\\n\\};",
                                             QRegularExpression::DotMatchesEverythingOption);
    QRegularExpressionMatchIterator classes = classExpression.globalMatch(text);
    while (classes.hasNext()) {
        const QRegularExpressionMatch match = classes.next();
        interface.classes.append(match.captured(1));
        readMembers(match.captured(1), match.captured(2), interface);
    }
    const QRegularExpression functionExpression(
        "(?<!class )\\bMISCTOOLS_EXPORT [^;{]*?(operator<<|\\w+)\\(");
    QRegularExpressionMatchIterator functions = functionExpression.globalMatch(text);
    while (functions.hasNext()) {
        interface.functions.append(functions.next().captured(1));
    }
    return interface;
}

Interface publicInterface()
{
    Interface interface;
    QDirIterator headers(QStringLiteral(INCLUDE_DIRECTORY), {"*.h"});
    while (headers.hasNext()) {
        QFile header(headers.next());
        if (!header.open(QIODevice::ReadOnly)) {
            return Interface();
        }
        const Interface ofHeader = readHeader(QString::fromUtf8(header.readAll()));
        interface.classes += ofHeader.classes;
        interface.functions += ofHeader.functions;
        interface.variables += ofHeader.variables;
    }
    return interface;
}

// The public interface according to the symbols, without parameters and without the functions that
// the compiler generates for a class.
Interface readSymbols(QStringList symbols)
{
    // A constructor or destructor has up to three symbols with the same demangled name.
    symbols.removeDuplicates();
    Interface interface;
    const QRegularExpression table("^vtable for (\\w+)$");
    const QRegularExpression generated(
        "^(?:typeinfo for|typeinfo name for|(?:non-)?virtual thunk to) ");
    for (const QString& symbol : qAsConst(symbols)) {
        const QRegularExpressionMatch match = table.match(symbol);
        if (match.hasMatch()) {
            interface.classes.append(match.captured(1));
        } else if (generated.match(symbol).hasMatch()) {
            continue;
        } else if (symbol.contains(QLatin1Char('('))) {
            interface.functions.append(symbol.section(QLatin1Char('('), 0, 0));
        } else {
            interface.variables.append(symbol);
        }
    }
    return interface;
}

// The elements of one list that the other lacks.
QByteArray surplus(QStringList names, const QStringList& others)
{
    for (const QString& other : others) {
        names.removeOne(other);
    }
    return names.join(QLatin1String(", ")).toUtf8();
}

const QStringList platformFunctions{
    "DeviceManifestManager::getProductCode()",
    "readBoolValueFromJson(QString const&, QJsonObject const&, bool&)",
    "readDoubleValueFromJson(QString const&, QJsonObject const&, double&)",
    "readStringValueFromJson(QString const&, QJsonObject const&, QString&)",
};

} // namespace

void tst_LibraryFile::sonames_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("soname");
    QTest::newRow("library") << library << "libMiscTools.so.1";
    QTest::newRow("bundled platform library") << platformLibrary << "libMiscToolsPlatform.so.1";
}

void tst_LibraryFile::sonames()
{
    QFETCH(QString, file);
    QFETCH(QString, soname);
    QCOMPARE(dynamicEntries(file, QStringLiteral("SONAME")), QStringList(soname));
}

void tst_LibraryFile::neededLibraries()
{
    QStringList needed = dynamicEntries(library, "NEEDED");
    QVERIFY(needed.removeOne("libQt5Core.so.5"));
    QVERIFY(needed.removeOne("libMiscToolsPlatform.so.1"));
    // The remaining libraries belong to the compiler and the system.
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

void tst_LibraryFile::bundledPlatformDefinesOnlyThePlatformFunctions()
{
    QStringList symbols = definedSymbols(platformLibrary);
    symbols.sort();
    QCOMPARE(symbols, platformFunctions);
}

void tst_LibraryFile::headersAreParsed()
{
    const Interface interface = readHeader(QStringLiteral(R"(
#define MISCTOOLS_EXPORT
/*! class MISCTOOLS_EXPORT Commented { public: void none(); }; */
class MISCTOOLS_EXPORT Thing : public QObject
{
    Q_OBJECT

public:
    enum Kind : int { First = 0, Second };
    struct Part { int length = 0; void no(); };

    explicit Thing(QObject* parent = nullptr); // makes(one);
    virtual ~Thing();
    Thing(const Thing&) = default;
    QString name(const QString& key,
                 int index) const;
    QString name() const;
    static const QString& text();
    static const QStringList sm_List;
    static const quint16 sm_Table[256];

Q_SIGNALS:
    void changed();

private Q_SLOTS:
    void change();

private:
    Q_DISABLE_COPY(Thing)
    static const QString sm_Hidden;
    int m_field;
};
class NotMarked { public: void none(); };
MISCTOOLS_EXPORT uint findThings(const QString& text);
MISCTOOLS_EXPORT QDebug operator<<(QDebug debug, const Thing& thing);
)"));
    QCOMPARE(interface.classes, QStringList(QStringLiteral("Thing")));
    QCOMPARE(interface.functions.join(QLatin1Char(' ')),
             QStringLiteral("Thing::metaObject Thing::qt_metacast Thing::qt_metacall Thing::Thing "
                            "Thing::~Thing Thing::name Thing::name Thing::text Thing::changed "
                            "Thing::change findThings operator<<"));
    QCOMPARE(interface.variables.join(QLatin1Char(' ')),
             QStringLiteral("Thing::staticMetaObject Thing::sm_List Thing::sm_Table "
                            "Thing::sm_Hidden"));
}

void tst_LibraryFile::symbolsAreParsed()
{
    const Interface interface = readSymbols(
        {"Thing::Thing(QObject*)", "Thing::Thing(QObject*)", "Thing::~Thing()",
         "Thing::name() const", "Thing::name(int) const", "vtable for Thing", "typeinfo for Thing",
         "typeinfo name for Thing", "Thing::sm_List", "non-virtual thunk to Thing::~Thing()",
         "operator<<(QDebug, Thing const&)", "helper", "(anonymous namespace)::helper()",
         "QList<Thing>::append(Thing const&)"});
    QCOMPARE(interface.classes, QStringList(QStringLiteral("Thing")));
    // Unexpected symbols keep enough of their names to be recognized.
    QCOMPARE(interface.functions.join(QLatin1Char(' ')),
             QStringLiteral("Thing::Thing Thing::~Thing Thing::name Thing::name operator<<  "
                            "QList<Thing>::append"));
    QCOMPARE(interface.variables.join(QLatin1Char(' ')), QStringLiteral("Thing::sm_List helper"));
}

void tst_LibraryFile::exportsAreExactlyThePublicInterface()
{
    const Interface declared = publicInterface();
    const Interface exported = readSymbols(definedSymbols(library));
    QVERIFY(!declared.classes.isEmpty());
    QVERIFY(!declared.functions.isEmpty());
    QCOMPARE(surplus(declared.functions, exported.functions), QByteArray());
    QCOMPARE(surplus(exported.functions, declared.functions), QByteArray());
    QCOMPARE(surplus(declared.variables, exported.variables), QByteArray());
    QCOMPARE(surplus(exported.variables, declared.variables), QByteArray());
}

void tst_LibraryFile::tablesAndTypesAreExported()
{
    // Programs derive from these classes, cast to them, and catch them.
    QStringList polymorphic = publicInterface().classes;
    for (const char* name : {"IniFileManager", "UniqueIdGenerator", "VariantConversionTools"}) {
        QVERIFY2(polymorphic.removeOne(QLatin1String(name)), name);
    }
    const QStringList symbols = definedSymbols(library);
    const Interface exported = readSymbols(symbols);
    QCOMPARE(surplus(polymorphic, exported.classes), QByteArray());
    QCOMPARE(surplus(exported.classes, polymorphic), QByteArray());
    for (const QString& name : qAsConst(polymorphic)) {
        for (const char* part : {"typeinfo for ", "typeinfo name for "}) {
            const QString symbol = QLatin1String(part) + name;
            QVERIFY2(symbols.contains(symbol), qPrintable(symbol));
        }
    }
}

void tst_LibraryFile::loaderAppliesHardening_data()
{
    QTest::addColumn<QString>("file");
    QTest::newRow("library") << library;
    QTest::newRow("bundled platform library") << platformLibrary;
}

void tst_LibraryFile::loaderAppliesHardening()
{
    QFETCH(QString, file);

    // All calls are bound at load time, and the global offset table is read-only afterwards.
    const QString flags = "\\(FLAGS\\)\\s+(.*\\S)";
    // readelf of binutils adds "Flags:", that of LLVM does not.
    const QString flags1 = "\\(FLAGS_1\\)\\s+(?:Flags: )?(.*\\S)";
    QCOMPARE(capturedIn(file, "-d", flags)
                 .join(QLatin1Char(' '))
                 .split(QLatin1Char(' '))
                 .count("BIND_NOW"),
             1);
    QVERIFY(capturedIn(file, "-d", flags1)
                .join(QLatin1Char(' '))
                .split(QLatin1Char(' '))
                .contains("NOW"));
    const QString protection = "^\\s+%1(?:\\s+0x[0-9a-f]+){5}\\s+([RWE ]{3})\\s";
    QCOMPARE(capturedIn(file, "-l", protection.arg(QStringLiteral("GNU_RELRO"))),
             QStringList("R  "));
    // The stack is not executable, and no segment is both writable and executable.
    QCOMPARE(capturedIn(file, "-l", protection.arg(QStringLiteral("GNU_STACK"))),
             QStringList("RW "));
    const QStringList loaded = capturedIn(file, "-l", protection.arg("LOAD"));
    QVERIFY(loaded.size() >= 2);
    QVERIFY(!loaded.contains("RWE"));
    const QString dynamicTag = "\\((\\w+)\\)";
    const QStringList tags = capturedIn(file, "-d", dynamicTag);
    QVERIFY(tags.contains("SONAME"));
    QVERIFY(!tags.contains("TEXTREL"));
}

// Qt's caches refer to static strings of the library.
void tst_LibraryFile::libraryStaysLoaded()
{
    const QString flags1 = "\\(FLAGS_1\\)\\s+Flags: (.*\\S)";
    QVERIFY(capturedIn(library, "-d", flags1)
                .join(QLatin1Char(' '))
                .split(QLatin1Char(' '))
                .contains("NODELETE"));
}

void tst_LibraryFile::releaseBuildsProtectTheStack_data()
{
    loaderAppliesHardening_data();
}

void tst_LibraryFile::releaseBuildsProtectTheStack()
{
    QFETCH(QString, file);
    const QStringList needed = dynamicSymbols(file, "--undefined-only")
                                   .filter(QRegularExpression("^__stack_chk_fail(?:@|$)"));
    QCOMPARE(needed.size(), IS_SHIPPED);
}

QTEST_GUILESS_MAIN(tst_LibraryFile)
#include "tst_LibraryFile.moc"
