#include "ChildProcess.h"
#include "HardwareVersionIniManager.h"
#include "TestCase.h"

#include <csignal>
#include <cstring>
#include <memory>
#include <new>
#include <sys/resource.h>
#include <type_traits>

namespace {

bool memoryIsExhausted = false;

const QByteArray boardText = "Type=4711\n"
                             "TypeName=Sample board\n"
                             "Version=2.1\n"
                             "CompatibilityIndex=3\n"
                             "LP-ID=LP-000815\n"
                             "Comment=Made up\n";

using Reader = QString (HardwareVersionIniManager::*)() const;
using Name = const QString& (HardwareVersionIniManager::*)() const;

} // namespace

Q_DECLARE_METATYPE(Reader)
Q_DECLARE_METATYPE(Name)

// Replaces the operator new that the library calls where it can continue without an object. It
// calls the ordinary operator new, so that the ordinary delete matches.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    return memoryIsExhausted ? nullptr : ::operator new(size);
}

class tst_HardwareVersionIniManager : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void readsTheSixKeys();
    void namesAreConstant_data();
    void namesAreConstant();
    void valuesFollowTheIniFormat_data();
    void valuesFollowTheIniFormat();
    void missingKeyWarns_data();
    void missingKeyWarns();
    void missingCommentLogsNothing_data();
    void missingCommentLogsNothing();
    void otherSectionsAreReadOnlyOnRequest();
    void textIsStoredInATemporaryFile_data();
    void textIsStoredInATemporaryFile();
    void emptyTextIsReportedAsWriteError_data();
    void emptyTextIsReportedAsWriteError();
    void unusableTemplateIsReported_data();
    void unusableTemplateIsReported();
    void exhaustedMemoryIsReported();
    void fullDiskYieldsEmptyValues_data();
    void fullDiskYieldsEmptyValues();
    void fieldsAreInDeclaredOrder();

private:
    QString fileTemplate() const { return path("hwinfo.XXXXXX"); }
    QStringList filesInDirectory() const { return QDir(directory()).entryList(QDir::Files); }
    void expectNotFound(const QString& group, const QString& key);
    void expectNoManagerAtEachRead();
    void verifyAllEmpty(const HardwareVersionIniManager& manager);
};

// The only file in the row's directory is the temporary file.
void tst_HardwareVersionIniManager::expectNotFound(const QString& group, const QString& key)
{
    QCOMPARE(filesInDirectory().size(), 1);
    messages()
        .expectWarning("IniFileManager",
                       QStringLiteral("\"Ini-File (%1):\" Key \"%2\" not found in Group \"%3\" !")
                           .arg(path(filesInDirectory().first()), key, group))
        .function("QVariant IniFileManager::getValue(const QString&, const QString&, "
                  "const QVariant&) const");
}

// In the order of verifyAllEmpty().
void tst_HardwareVersionIniManager::expectNoManagerAtEachRead()
{
    for (const char* key : {"Type", "TypeName", "CompatibilityIndex", "Version", "LP-ID"}) {
        messages()
            .expectWarning("HardwareVersionIniManager",
                           QStringLiteral("No valid 'IniFileManager' object for accessing section "
                                          "\"\" with key \"%1\" !")
                               .arg(QLatin1String(key)))
            .function("QString HardwareVersionIniManager::getStringValueFromIniFile(const "
                      "QString&, const QString&) const");
    }
    messages()
        .expectWarning("HardwareVersionIniManager",
                       QStringLiteral("No valid IniFileManager object for accessing section \"\" "
                                      "with key \"Comment\" !"))
        .function("QString HardwareVersionIniManager::getComment() const");
}

void tst_HardwareVersionIniManager::verifyAllEmpty(const HardwareVersionIniManager& manager)
{
    QCOMPARE(manager.getType(), QString());
    QCOMPARE(manager.getTypeName(), QString());
    QCOMPARE(manager.getHwCompatibilityIndex(), QString());
    QCOMPARE(manager.getHwVersion(), QString());
    QCOMPARE(manager.getLpIdNumber(), QString());
    QCOMPARE(manager.getComment(), QString());
}

void tst_HardwareVersionIniManager::readsTheSixKeys()
{
    const HardwareVersionIniManager manager(boardText, fileTemplate());
    QCOMPARE(manager.getType(), QStringLiteral("4711"));
    QCOMPARE(manager.getTypeName(), QStringLiteral("Sample board"));
    QCOMPARE(manager.getHwCompatibilityIndex(), QStringLiteral("3"));
    QCOMPARE(manager.getHwVersion(), QStringLiteral("2.1"));
    QCOMPARE(manager.getLpIdNumber(), QStringLiteral("LP-000815"));
    QCOMPARE(manager.getComment(), QStringLiteral("Made up"));
}

void tst_HardwareVersionIniManager::namesAreConstant_data()
{
    QTest::addColumn<Name>("name");
    QTest::addColumn<QString>("text");
    const auto row = [](const char* text, Name name) {
        QTest::newRow(*text == '\0' ? "group" : text) << name << QString::fromLatin1(text);
    };
    row("", &HardwareVersionIniManager::getVersionDataGroup);
    row("Type", &HardwareVersionIniManager::getKeyType);
    row("TypeName", &HardwareVersionIniManager::getKeyTypeName);
    row("CompatibilityIndex", &HardwareVersionIniManager::getKeyHwCompIndex);
    row("Version", &HardwareVersionIniManager::getKeyHwVersion);
    row("LP-ID", &HardwareVersionIniManager::getKeyLpIdNumber);
    row("Comment", &HardwareVersionIniManager::getKeyComment);
}

void tst_HardwareVersionIniManager::namesAreConstant()
{
    QFETCH(Name, name);
    QFETCH(QString, text);
    const HardwareVersionIniManager manager(boardText, fileTemplate());
    const HardwareVersionIniManager other(boardText, fileTemplate());
    const QString& first = (manager.*name)();
    QCOMPARE(first, text);
    QVERIFY(!first.isNull());
    // All objects share one string.
    QCOMPARE(&(manager.*name)(), &first);
    QCOMPARE(&(other.*name)(), &first);
}

void tst_HardwareVersionIniManager::valuesFollowTheIniFormat_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("value");
    const auto row = [](const char* name, const QByteArray& text, const char* latin1) {
        QTest::newRow(name) << text << QString::fromLatin1(latin1);
    };
    row("plain", "Type=A\n", "A");
    row("no line feed at the end", "Type=A", "A");
    row("carriage returns", "Type=A\r\nVersion=1\r\n", "A");
    row("surrounding spaces", "  Type  =  A b  \n", "A b");
    row("no value", "Type=\n", "");
    row("list", "Type=a,b\n", "");
    row("list with an empty end", "Type=a,\n", "");
    row("quoted comma", "Type=\"a, b\"\n", "a, b");
    row("UTF-8 is read as Latin-1", "Type=\xC3\xA9\n", "\xC3\xA9");
    row("Latin-1", "Type=\xE9\n", "\xE9");
    // The mark becomes part of the first line, which is then a different key.
    row("UTF-8 after a byte order mark", "\xEF\xBB\xBF\nType=\xC3\xA9\n", "\xE9");
    row("escaped character", "Type=\\xe9\n", "\xE9");
    row("last duplicate wins", "Type=A\nType=B\n", "B");
    row("comment line", "; Type=A\nType=B\n;Type=C\n", "B");
    row("hash does not start a comment", "Type=A # B\n", "A # B");
    row("hash before the key makes it a different key", "Type=A\n#Type=B\n", "A");
    QTest::newRow("zero byte is part of the value")
        << QByteArray("Type=A\0B\n", 9) << QString::fromLatin1("A\0B", 3);
    row("general section is the top level", "[General]\nType=A\n", "A");
    row("top level after a section", "[Board]\nType=A\n[General]\nType=B\n", "B");
    row("text longer than a buffer", "Comment=" + QByteArray(40000, 'x') + "\nType=A\n", "A");
}

void tst_HardwareVersionIniManager::valuesFollowTheIniFormat()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, value);
    const HardwareVersionIniManager manager(text, fileTemplate());
    QCOMPARE(manager.getType(), value);
}

void tst_HardwareVersionIniManager::missingKeyWarns_data()
{
    QTest::addColumn<Reader>("reader");
    QTest::addColumn<QString>("key");
    const auto row = [](const char* key, Reader reader) {
        QTest::newRow(key) << reader << QString::fromLatin1(key);
    };
    row("Type", &HardwareVersionIniManager::getType);
    row("TypeName", &HardwareVersionIniManager::getTypeName);
    row("CompatibilityIndex", &HardwareVersionIniManager::getHwCompatibilityIndex);
    row("Version", &HardwareVersionIniManager::getHwVersion);
    row("LP-ID", &HardwareVersionIniManager::getLpIdNumber);
}

void tst_HardwareVersionIniManager::missingKeyWarns()
{
    QFETCH(Reader, reader);
    QFETCH(QString, key);
    // The key is in a section and, at the top level, only in different case.
    const QByteArray name = key.toLatin1();
    const HardwareVersionIniManager manager(
        name.toLower() + "=a\n[Board]\n" + name + "=b\n[" + name + "]\nx=c\n", fileTemplate());
    expectNotFound(QString(), key);
    QCOMPARE((manager.*reader)(), QString());
}

void tst_HardwareVersionIniManager::missingCommentLogsNothing_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("no comment") << QByteArray("Type=A\n");
    QTest::newRow("in a section") << QByteArray("Type=A\n[Board]\nComment=b\n");
    QTest::newRow("a section of that name") << QByteArray("Type=A\n[Comment]\nComment=b\n");
    QTest::newRow("in different case") << QByteArray("comment=A\n");
}

void tst_HardwareVersionIniManager::missingCommentLogsNothing()
{
    QFETCH(QByteArray, text);
    const HardwareVersionIniManager manager(text, fileTemplate());
    QCOMPARE(manager.getComment(), QString());
}

void tst_HardwareVersionIniManager::otherSectionsAreReadOnlyOnRequest()
{
    const HardwareVersionIniManager manager("Type=A\n[Board]\nType=B\n", fileTemplate());
    const QString board = "Board";
    QCOMPARE(manager.getStringValueFromIniFile(board, manager.getKeyType()), "B");
    QCOMPARE(manager.getStringValueFromIniFile(QString(), manager.getKeyType()), "A");
    expectNotFound(board, "Version");
    QCOMPARE(manager.getStringValueFromIniFile(board, manager.getKeyHwVersion()), QString());
}

void tst_HardwareVersionIniManager::textIsStoredInATemporaryFile_data()
{
    QTest::addColumn<QString>("templateName");
    QTest::addColumn<QString>("pattern");
    QTest::newRow("placeholder at the end") << "hwinfo.XXXXXX"
                                            << "^hwinfo\\.[A-Za-z]{6}$";
    QTest::newRow("placeholder inside") << "board-XXXXXX.ini"
                                        << "^board-[A-Za-z]{6}\\.ini$";
    QTest::newRow("no placeholder") << "hwinfo"
                                    << "^hwinfo\\.[A-Za-z]{6}$";
}

void tst_HardwareVersionIniManager::textIsStoredInATemporaryFile()
{
    QFETCH(QString, templateName);
    QFETCH(QString, pattern);
    {
        const HardwareVersionIniManager manager(boardText, path(templateName));
        const QStringList files = filesInDirectory();
        QCOMPARE(files.size(), 1);
        QVERIFY2(QRegularExpression(pattern).match(files.first()).hasMatch(),
                 qPrintable(files.first()));
        QCOMPARE(readFile(path(files.first())), boardText);
        QCOMPARE(manager.getType(), QStringLiteral("4711"));
        QCOMPARE(filesInDirectory(), files);
    }
    QCOMPARE(filesInDirectory(), QStringList());
}

void tst_HardwareVersionIniManager::emptyTextIsReportedAsWriteError_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("empty") << QByteArray("");
    QTest::newRow("null") << QByteArray();
}

void tst_HardwareVersionIniManager::emptyTextIsReportedAsWriteError()
{
    QFETCH(QByteArray, text);
    messages()
        .expectWarning("HardwareVersionIniManager",
                       "Error on writing to temporary file for version data!")
        .function("HardwareVersionIniManager::HardwareVersionIniManager(const QByteArray&, const "
                  "QString&)");
    {
        const HardwareVersionIniManager manager(text, fileTemplate());
        expectNoManagerAtEachRead();
        verifyAllEmpty(manager);
    }
    QCOMPARE(filesInDirectory(), QStringList());
}

void tst_HardwareVersionIniManager::unusableTemplateIsReported_data()
{
    QTest::addColumn<QString>("templateName");
    QTest::newRow("missing directory") << "none/hwinfo.XXXXXX";
    QTest::newRow("directory is a file") << "file/hwinfo.XXXXXX";
}

void tst_HardwareVersionIniManager::unusableTemplateIsReported()
{
    QFETCH(QString, templateName);
    const QString file = writeFile("file", "content");
    messages()
        .expectWarning("HardwareVersionIniManager", "Can't open temporary file for version data!")
        .function("HardwareVersionIniManager::HardwareVersionIniManager(const QByteArray&, const "
                  "QString&)");
    const HardwareVersionIniManager manager(boardText, path(templateName));
    expectNoManagerAtEachRead();
    verifyAllEmpty(manager);
    QCOMPARE(QDir(directory()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
             QStringList("file"));
    QCOMPARE(readFile(file), QByteArray("content"));
}

void tst_HardwareVersionIniManager::exhaustedMemoryIsReported()
{
    messages()
        .expect(QtCriticalMsg, "Can't create 'IniFileManager' object!")
        .file("HardwareVersionIniManager")
        .category("default")
        .function("HardwareVersionIniManager::HardwareVersionIniManager(const QByteArray&, const "
                  "QString&)");
    {
        memoryIsExhausted = true;
        const HardwareVersionIniManager manager(boardText, fileTemplate());
        memoryIsExhausted = false;
        QCOMPARE(filesInDirectory().size(), 1);
        expectNoManagerAtEachRead();
        verifyAllEmpty(manager);
    }
    QCOMPARE(filesInDirectory(), QStringList());
}

void tst_HardwareVersionIniManager::fullDiskYieldsEmptyValues_data()
{
    QTest::addColumn<QByteArray>("text");
    // The first text fails when it is flushed, the second when it is written.
    QTest::newRow("text that fits a buffer") << boardText;
    QTest::newRow("text longer than a buffer") << boardText + QByteArray(40000, ';');
}

// Unlike an empty text, a failed write leaves a manager, which finds no key.
void tst_HardwareVersionIniManager::fullDiskYieldsEmptyValues()
{
    QFETCH(QByteArray, text);
    const ChildResult result = ChildProcess::run([this, &text] {
        rlimit limit;
        getrlimit(RLIMIT_FSIZE, &limit);
        const rlimit noBytes = {0, limit.rlim_max};
        signal(SIGXFSZ, SIG_IGN);
        setrlimit(RLIMIT_FSIZE, &noBytes);
        const QString type = HardwareVersionIniManager(text, fileTemplate()).getType();
        setrlimit(RLIMIT_FSIZE, &limit);
        return type.isEmpty() && filesInDirectory().isEmpty() ? 0 : 1;
    });
    QVERIFY2(result.exited && result.exitCode == 0, result.output.constData());
    const QString output = QString::fromLocal8Bit(result.output);
    const QRegularExpression expected(
        QStringLiteral("^\"Ini-File \\(%1/hwinfo\\.[A-Za-z]{6}\\):\" Key \"Type\" not found in "
                       "Group \"\" !\n$")
            .arg(QRegularExpression::escape(directory())));
    QVERIFY2(expected.match(output).hasMatch(), result.output.constData());
}

void tst_HardwareVersionIniManager::fieldsAreInDeclaredOrder()
{
    using Class = HardwareVersionIniManager;
    static_assert(std::has_virtual_destructor<Class>::value,
                  "may be deleted through a base pointer");
    static_assert(!std::is_copy_constructible<Class>::value, "the file has one owner");
    static_assert(!std::is_copy_assignable<Class>::value, "the file has one owner");
    static_assert(sizeof(Class) ==
                      sizeof(void*) + sizeof(QSharedPointer<int>) + sizeof(QTemporaryFile),
                  "a fixed layout");

    const std::unique_ptr<Class> manager(new Class(boardText, fileTemplate()));
    // The pointer to the INI manager is the first field.
    void* iniFileManager = nullptr;
    memcpy(&iniFileManager, reinterpret_cast<const char*>(manager.get()) + sizeof(void*),
           sizeof iniFileManager);
    QVERIFY(iniFileManager != nullptr);
    const auto* tempFile = reinterpret_cast<const QTemporaryFile*>(
        reinterpret_cast<const char*>(manager.get()) + sizeof(void*) + sizeof(QSharedPointer<int>));
    QCOMPARE(tempFile->openMode() & QIODevice::ReadWrite, QIODevice::ReadWrite);
    QCOMPARE(QStringList(QFileInfo(*tempFile).fileName()), filesInDirectory());
}

QTEST_GUILESS_MAIN(tst_HardwareVersionIniManager)
#include "tst_HardwareVersionIniManager.moc"
