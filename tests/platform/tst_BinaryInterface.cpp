#include "TestCase.h"

#include <BootInformationHelper.h>
#include <DirectoryWatcher.h>
#include <DragIndicator.h>
#include <ErrorContainer.h>
#include <ExportFileNameCreator.h>
#include <HardwareIdentification.h>
#include <HardwareInfo.h>
#include <HardwareInfoReader.h>
#include <HardwareVersionIniManager.h>
#include <HashGenerator.h>
#include <IniFileManager.h>
#include <KernelCommandLineDefinition.h>
#include <KernelCommandLineParser.h>
#include <MediaWatcher.h>
#include <OrvalisVersionInfoIniManager.h>
#include <QProcessHandler.h>
#include <RaucSystemConfigIniManager.h>
#include <RecorderUrlHashHandling.h>
#include <RecursiveFileSearchWorkerThread.h>
#include <TextFileParser.h>
#include <UniqueIdGenerator.h>
#include <VariantConversionTools.h>
#include <VersionFileIniManager.h>
#include <VersionManager.h>
#include <WildcardFilter.h>

#include <cstring>
#include <dlfcn.h>
#include <link.h>
#include <type_traits>

// Constructors with one argument are implicit, as declared.
static_assert(std::is_convertible<const QString&, DirectoryWatcher>::value, "converts");
static_assert(std::is_convertible<const QStringList&, DirectoryWatcher>::value, "converts");
static_assert(std::is_convertible<const QString&, HardwareIdentification>::value, "converts");
static_assert(std::is_convertible<QObject*, HardwareInfoReader>::value, "converts");
static_assert(std::is_convertible<QObject*, MediaWatcher>::value, "converts");
static_assert(std::is_convertible<const QString&, TextFileParser>::value, "converts");
static_assert(std::is_convertible<const QString&, VersionManager>::value, "converts");

// What programs built earlier rely on: offsets of fields, sizes of objects, and the slots of
// virtual functions.
class tst_BinaryInterface : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void sizes_data();
    void sizes();
    void fieldsAreInDeclaredOrder_data();
    void fieldsAreInDeclaredOrder();
    void enumerationsAreInts();
    void virtualFunctionsAreInSlotOrder_data();
    void virtualFunctionsAreInSlotOrder();
    void classesWithoutVirtualFunctions();
};

namespace {

struct Field
{
    QByteArray name;
    int offset;
    int size;
    int alignment;
};

// The fields by class, in the order in which they are registered below.
QHash<QByteArray, QVector<Field>>& fields()
{
    static QHash<QByteArray, QVector<Field>> byClass;
    return byClass;
}

template <typename Class, typename Type>
bool registerField(const char* className, const char* name, Type Class::*member)
{
    // In the C++ ABI of all processors, a pointer to a data member is the member's offset.
    std::ptrdiff_t offset = -1;
    static_assert(sizeof(member) == sizeof(offset), "an offset");
    std::memcpy(&offset, &member, sizeof(offset));
    fields()[className].append({name, int(offset), int(sizeof(Type)), int(alignof(Type))});
    return true;
}

// Only an explicit instantiation may name private members outside the class.
template <typename Tag, auto Member>
struct RegisteredField
{
    static const bool isRegistered;
};

template <typename Tag, auto Member>
const bool RegisteredField<Tag, Member>::isRegistered = registerField(Tag::className,
                                                                      Tag::fieldName, Member);

#define REGISTER_FIELD(Class, Name)                                                                \
    struct Class##_##Name                                                                          \
    {                                                                                              \
        static constexpr char className[] = #Class;                                                \
        static constexpr char fieldName[] = #Name;                                                 \
    };                                                                                             \
    template struct RegisteredField<Class##_##Name, &Class::Name>;

REGISTER_FIELD(DirectoryWatcher, m_fileSystemWatcher)
REGISTER_FIELD(DirectoryWatcher, m_delayTimer)
REGISTER_FIELD(DirectoryWatcher, m_delayInMs)
REGISTER_FIELD(DirectoryWatcher, m_changedDirectories)
REGISTER_FIELD(DragIndicator, m_instances)
REGISTER_FIELD(DragIndicator, m_textDateImported)
REGISTER_FIELD(ErrorContainer, m_errorCode)
REGISTER_FIELD(ErrorContainer, m_errorMessage)
REGISTER_FIELD(HardwareIdentification, m_isValid)
REGISTER_FIELD(HardwareIdentification, m_productGroupNumber)
REGISTER_FIELD(HardwareIdentification, m_basicTypeSupplement)
REGISTER_FIELD(HardwareIdentification, m_documentTypeCountingNumber)
REGISTER_FIELD(HardwareIdentification, m_customerVersion)
REGISTER_FIELD(HardwareIdentification, m_partsListSales)
REGISTER_FIELD(HardwareInfo, m_type)
REGISTER_FIELD(HardwareInfo, m_typeName)
REGISTER_FIELD(HardwareInfo, m_hwVersion)
REGISTER_FIELD(HardwareInfo, m_hwCompIndex)
REGISTER_FIELD(HardwareInfo, m_lpId)
REGISTER_FIELD(HardwareInfo, m_comment)
REGISTER_FIELD(HardwareInfoReader, m_headerAddress)
REGISTER_FIELD(HardwareInfoReader, m_headerSize)
REGISTER_FIELD(HardwareInfoReader, m_reservedField)
REGISTER_FIELD(HardwareInfoReader, m_startAddressField)
REGISTER_FIELD(HardwareInfoReader, m_bytesToReadField)
REGISTER_FIELD(HardwareInfoReader, m_checksumField)
REGISTER_FIELD(HardwareVersionIniManager, m_iniFileManager)
REGISTER_FIELD(HardwareVersionIniManager, m_tempFile)
REGISTER_FIELD(IniFileManager, m_settings)
REGISTER_FIELD(IniFileManager, m_mutex)
REGISTER_FIELD(KernelCommandLineParser, m_arguments)
REGISTER_FIELD(MediaWatcher, m_fileMatchPatternList)
REGISTER_FIELD(MediaWatcher, m_recursive)
REGISTER_FIELD(OrvalisVersionInfoIniManager, m_iniFileManager)
REGISTER_FIELD(QProcessHandler, m_process)
REGISTER_FIELD(QProcessHandler, m_waitForStartedTimeout)
REGISTER_FIELD(QProcessHandler, m_waitForFinishedTimeout)
REGISTER_FIELD(QProcessHandler, m_standardOutput)
REGISTER_FIELD(QProcessHandler, m_standardError)
REGISTER_FIELD(QProcessHandler, m_lastExitStatus)
REGISTER_FIELD(RaucSystemConfigIniManager, m_iniFileManager)
REGISTER_FIELD(RecursiveFileSearchWorkerThread, m_path)
REGISTER_FIELD(RecursiveFileSearchWorkerThread, m_fileMatchPatternList)
REGISTER_FIELD(TextFileParser, m_hasError)
REGISTER_FIELD(TextFileParser, m_lastError)
REGISTER_FIELD(TextFileParser, m_content)
REGISTER_FIELD(UniqueIdGenerator, m_counter)
REGISTER_FIELD(VersionFileIniManager, m_iniFileManager)
REGISTER_FIELD(VersionManager, m_mainVersion)
REGISTER_FIELD(VersionManager, m_baseNumber)
REGISTER_FIELD(VersionManager, m_majorIndex)
REGISTER_FIELD(VersionManager, m_minorIndex)
REGISTER_FIELD(VersionManager, m_testIndex)
REGISTER_FIELD(VersionManager, m_patchVersion)
REGISTER_FIELD(VersionManager, m_buildNumber)
REGISTER_FIELD(VersionManager, m_gitHash)
REGISTER_FIELD(VersionManager, m_isOldVersion)
REGISTER_FIELD(WildcardFilter, m_regExps)

// The record of a drag indicator is a nested class.
using DragIndicatorInstance = DragIndicator::DragIndicatorInstance;
REGISTER_FIELD(DragIndicatorInstance, minValueDate)
REGISTER_FIELD(DragIndicatorInstance, maxValueDate)
REGISTER_FIELD(DragIndicatorInstance, minValue)
REGISTER_FIELD(DragIndicatorInstance, maxValue)
REGISTER_FIELD(DragIndicatorInstance, initialized)

constexpr bool isWide = sizeof(void*) == 8;

int alignedTo(int offset, int alignment)
{
    return (offset + alignment - 1) / alignment * alignment;
}

// The mangled name of a class as part of other mangled names.
QByteArray mangled(const QByteArray& className)
{
    return QByteArray::number(className.size()) + className;
}

// All entries of the vtables of a class, in memory order.
QVector<const void*> tableEntries(const QByteArray& className)
{
    const void* const table = dlsym(RTLD_DEFAULT, "_ZTV" + mangled(className));
    Dl_info info;
    void* found = nullptr;
    if (!table || !dladdr1(table, &info, &found, RTLD_DL_SYMENT) || !found) {
        return QVector<const void*>();
    }
    const auto* const symbol = static_cast<const ElfW(Sym)*>(found);
    QVector<const void*> entries(int(symbol->st_size / sizeof(void*)));
    std::memcpy(entries.data(), table, symbol->st_size);
    return entries;
}

// The entries before the slots of each vtable.
QByteArrayList tableHead(const QByteArray& className)
{
    return {QByteArray(), "_ZTI" + mangled(className)};
}

QByteArrayList destructorSlots(const QByteArray& className)
{
    return {"_ZN" + mangled(className) + "D1Ev", "_ZN" + mangled(className) + "D0Ev"};
}

QByteArrayList plainTable(const QByteArray& className)
{
    return tableHead(className) + destructorSlots(className);
}

QByteArrayList objectTable(const QByteArray& className)
{
    const QByteArray name = mangled(className);
    return tableHead(className) +
           QByteArrayList{"_ZNK" + name + "10metaObjectEv", "_ZN" + name + "11qt_metacastEPKc",
                          "_ZN" + name + "11qt_metacallEN11QMetaObject4CallEiPPv"} +
           destructorSlots(className) +
           QByteArrayList{"_ZN7QObject5eventEP6QEvent",
                          "_ZN7QObject11eventFilterEPS_P6QEvent",
                          "_ZN7QObject10timerEventEP11QTimerEvent",
                          "_ZN7QObject10childEventEP11QChildEvent",
                          "_ZN7QObject11customEventEP6QEvent",
                          "_ZN7QObject13connectNotifyERK11QMetaMethod",
                          "_ZN7QObject16disconnectNotifyERK11QMetaMethod"};
}

} // namespace

void tst_BinaryInterface::sizes_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<int>("expected");
    const auto row = [](const char* name, std::size_t size, int onWide, int onNarrow) {
        QTest::newRow(name) << int(size) << (isWide ? onWide : onNarrow);
    };
    row("BootInformationHelper", sizeof(BootInformationHelper), 8, 4);
    row("DirectoryWatcher", sizeof(DirectoryWatcher), 80, 48);
    row("DragIndicator", sizeof(DragIndicator), 24, 12);
    row("DragIndicator::DragIndicatorInstance", sizeof(DragIndicatorInstance), 40, 32);
    row("ErrorContainer", sizeof(ErrorContainer), 24, 12);
    row("ExportFileNameCreator", sizeof(ExportFileNameCreator), 8, 4);
    row("HardwareIdentification", sizeof(HardwareIdentification), 56, 28);
    row("HardwareInfo", sizeof(HardwareInfo), 56, 28);
    row("HardwareInfoReader", sizeof(HardwareInfoReader), 56, 48);
    row("HardwareVersionIniManager", sizeof(HardwareVersionIniManager), 40, 20);
    row("HashGenerator", sizeof(HashGenerator), 8, 4);
    row("IniFileManager", sizeof(IniFileManager), 24, 12);
    row("KernelCommandLineDefinition", sizeof(KernelCommandLineDefinition), 8, 4);
    row("KernelCommandLineParser", sizeof(KernelCommandLineParser), 16, 8);
    row("MediaWatcher", sizeof(MediaWatcher), 32, 16);
    row("OrvalisVersionInfoIniManager", sizeof(OrvalisVersionInfoIniManager), 32, 16);
    row("QProcessHandler", sizeof(QProcessHandler), 56, 32);
    row("RaucSystemConfigIniManager", sizeof(RaucSystemConfigIniManager), 32, 16);
    row("RecorderUrlHashHandling", sizeof(RecorderUrlHashHandling), 8, 4);
    row("RecursiveFileSearchWorkerThread", sizeof(RecursiveFileSearchWorkerThread), 48, 24);
    row("TextFileParser", sizeof(TextFileParser), 32, 16);
    row("UniqueIdGenerator", sizeof(UniqueIdGenerator), 4, 4);
    row("VariantConversionTools", sizeof(VariantConversionTools), 1, 1);
    row("VersionFileIniManager", sizeof(VersionFileIniManager), 32, 16);
    row("VersionManager", sizeof(VersionManager), 80, 40);
    row("WildcardFilter", sizeof(WildcardFilter), 16, 8);
}

void tst_BinaryInterface::sizes()
{
    QFETCH(int, size);
    QTEST(size, "expected");
}

void tst_BinaryInterface::fieldsAreInDeclaredOrder_data()
{
    QTest::addColumn<QByteArray>("className");
    QTest::addColumn<int>("begin");
    QTest::addColumn<int>("end");
    constexpr int table = int(sizeof(void*));
    // The bounds of the fields: the end of the base classes and the end of the object.
    const auto row = [](const char* className, int begin, std::size_t end) {
        QTest::newRow(className) << QByteArray(className) << begin << int(end);
    };
    row("DirectoryWatcher", int(sizeof(QObject)), sizeof(DirectoryWatcher));
    row("DragIndicator", table, sizeof(DragIndicator));
    row("DragIndicatorInstance", 0, sizeof(DragIndicatorInstance));
    row("ErrorContainer", table, sizeof(ErrorContainer));
    row("HardwareIdentification", table, sizeof(HardwareIdentification));
    row("HardwareInfo", table, sizeof(HardwareInfo));
    row("HardwareInfoReader", int(sizeof(QObject)), sizeof(HardwareInfoReader));
    row("HardwareVersionIniManager", table, sizeof(HardwareVersionIniManager));
    row("IniFileManager", 0, sizeof(IniFileManager));
    row("KernelCommandLineParser", table, sizeof(KernelCommandLineParser));
    row("MediaWatcher", int(sizeof(QObject)), sizeof(MediaWatcher));
    row("OrvalisVersionInfoIniManager", table, sizeof(OrvalisVersionInfoIniManager));
    row("QProcessHandler", table, sizeof(QProcessHandler));
    row("RaucSystemConfigIniManager", table, sizeof(RaucSystemConfigIniManager));
    // The object may not end in padding that belongs to QRunnable's count.
    row("RecursiveFileSearchWorkerThread", int(sizeof(QObject) + sizeof(QRunnable)),
        sizeof(RecursiveFileSearchWorkerThread));
    row("TextFileParser", table, sizeof(TextFileParser));
    row("UniqueIdGenerator", 0, sizeof(UniqueIdGenerator));
    row("VersionFileIniManager", table, sizeof(VersionFileIniManager));
    row("VersionManager", table, sizeof(VersionManager));
    row("WildcardFilter", table, sizeof(WildcardFilter));
}

void tst_BinaryInterface::fieldsAreInDeclaredOrder()
{
    QFETCH(QByteArray, className);
    QFETCH(int, begin);
    QFETCH(int, end);
    const QVector<Field> fieldsOfClass = fields().value(className);
    QVERIFY(!fieldsOfClass.isEmpty());

    int offset = begin;
    int largestAlignment = className == "DragIndicatorInstance" || className == "UniqueIdGenerator"
                               ? 1
                               : int(alignof(void*));
    for (const Field& field : fieldsOfClass) {
        offset = alignedTo(offset, field.alignment);
        QVERIFY2(field.offset == offset, field.name + " is at " + QByteArray::number(field.offset) +
                                             ", not at " + QByteArray::number(offset));
        offset += field.size;
        largestAlignment = qMax(largestAlignment, field.alignment);
    }
    // No other field follows.
    QCOMPARE(alignedTo(offset, largestAlignment), end);
}

void tst_BinaryInterface::enumerationsAreInts()
{
    QCOMPARE(sizeof(DragIndicator::DragIndicatorInstances), sizeof(int));
    QVERIFY(DragIndicator::DragIndicatorInstances(-1) < DragIndicator::ResettableInstance);
    QCOMPARE(sizeof(BootInformationHelper::BootMode), sizeof(int));
}

void tst_BinaryInterface::virtualFunctionsAreInSlotOrder_data()
{
    QTest::addColumn<QByteArray>("className");
    QTest::addColumn<QByteArrayList>("expected");
    const auto row = [](const QByteArray& className, const QByteArrayList& entries) {
        QTest::newRow(className) << className << entries;
    };
    for (const char* className :
         {"BootInformationHelper", "DragIndicator", "ErrorContainer", "ExportFileNameCreator",
          "HardwareIdentification", "HardwareInfo", "HardwareVersionIniManager", "HashGenerator",
          "KernelCommandLineDefinition", "KernelCommandLineParser", "OrvalisVersionInfoIniManager",
          "QProcessHandler", "RaucSystemConfigIniManager", "RecorderUrlHashHandling",
          "TextFileParser", "VersionFileIniManager", "VersionManager", "WildcardFilter"}) {
        row(className, plainTable(className));
    }
    for (const char* className : {"DirectoryWatcher", "HardwareInfoReader", "MediaWatcher"}) {
        row(className, objectTable(className));
    }
    // A worker is also a QRunnable: a second vtable with thunks that adjust the object pointer.
    const QByteArray worker = "RecursiveFileSearchWorkerThread";
    const QByteArray thunk = isWide ? "_ZThn16_N" : "_ZThn8_N";
    row(worker,
        objectTable(worker) + QByteArrayList{"_ZN" + mangled(worker) + "3runEv"} +
            tableHead(worker) +
            QByteArrayList{thunk + mangled(worker) + "3runEv", thunk + mangled(worker) + "D1Ev",
                           thunk + mangled(worker) + "D0Ev"});
}

void tst_BinaryInterface::virtualFunctionsAreInSlotOrder()
{
    QFETCH(QByteArray, className);
    QFETCH(QByteArrayList, expected);
    const QVector<const void*> entries = tableEntries(className);
    QCOMPARE(entries.size(), expected.size());
    for (int i = 0; i < entries.size(); ++i) {
        // The offset to the object is not a function and has no name.
        if (!expected.at(i).isEmpty()) {
            const void* const function = dlsym(RTLD_DEFAULT, expected.at(i));
            QVERIFY2(function, expected.at(i) + " is not exported");
            QVERIFY2(entries.at(i) == function, expected.at(i) + " is not in its slot");
        }
    }
}

void tst_BinaryInterface::classesWithoutVirtualFunctions()
{
    QVERIFY(!std::is_polymorphic<IniFileManager>::value);
    QVERIFY(!std::is_polymorphic<UniqueIdGenerator>::value);
    QVERIFY(!std::is_polymorphic<VariantConversionTools>::value);
}

QTEST_GUILESS_MAIN(tst_BinaryInterface)
#include "tst_BinaryInterface.moc"
