#include "KernelCommandLineDefinition.h"
#include "TestCase.h"

#include <thread>
#include <type_traits>

using Name = const QString& (*)();
Q_DECLARE_METATYPE(Name)

static_assert(sizeof(KernelCommandLineDefinition) == sizeof(void*), "no fields");
static_assert(std::has_virtual_destructor<KernelCommandLineDefinition>::value,
              "virtual destructor");
static_assert(std::is_default_constructible<KernelCommandLineDefinition>::value, "constructible");

class tst_KernelCommandLineDefinition : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void namesAreConstant_data();
    void namesAreConstant();
    void constructionLogsNothing();
};

void tst_KernelCommandLineDefinition::namesAreConstant_data()
{
    QTest::addColumn<Name>("name");
    QTest::addColumn<QString>("text");

    using Definition = KernelCommandLineDefinition;
    QTest::newRow("file path") << Name(&Definition::getFilePath) << "/proc/cmdline";
    QTest::newRow("key") << Name(&Definition::getKeyOrvalisMode) << "orvalismode";
    QTest::newRow("value") << Name(&Definition::getValueOrvalisModeFactoryReset) << "factoryreset";
}

void tst_KernelCommandLineDefinition::namesAreConstant()
{
    QFETCH(Name, name);
    QFETCH(QString, text);

    const QString& first = name();
    QCOMPARE(first, text);
    QCOMPARE(&name(), &first);

    // All threads share one string.
    const QString* elsewhere = nullptr;
    std::thread([&] { elsewhere = &name(); }).join();
    QCOMPARE(elsewhere, &first);
}

void tst_KernelCommandLineDefinition::constructionLogsNothing()
{
    const QScopedPointer<KernelCommandLineDefinition> definition(new KernelCommandLineDefinition);
    QCOMPARE(messages().takeProblems(), QStringList());
}

QTEST_GUILESS_MAIN(tst_KernelCommandLineDefinition)
#include "tst_KernelCommandLineDefinition.moc"
