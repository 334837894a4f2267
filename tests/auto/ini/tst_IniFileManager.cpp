#include "IniFileManager.h"
#include "TestCase.h"

class tst_IniFileManager : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void missingFileWarnsOnce();
};

void tst_IniFileManager::missingFileWarnsOnce()
{
    const QString file = path(QStringLiteral("none.ini"));
    messages()
        .expectWarning("IniFileManager",
                       QStringLiteral("Can't find specified ini-file: \"%1\"").arg(file))
        .function("IniFileManager::IniFileManager(const QString&, const char*)");
    const IniFileManager manager(file, nullptr);
    QVERIFY(!QFile::exists(file));
}

QTEST_GUILESS_MAIN(tst_IniFileManager)
#include "tst_IniFileManager.moc"
