#include "PlatformCaller.h"
#include "TestCase.h"
#include "common/PlatformFunctions.h"

// The platform functions of a device: this program defines them, as device software does, and
// libraries that were linked against the bundled ones call these.
class tst_ApplicationPlatform : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void definitionsOfTheApplicationWin();
};

QString DeviceManifestManager::getProductCode()
{
    return QStringLiteral("the application's code");
}

bool readDoubleValueFromJson(const QString& key, const QJsonObject& object, double& value)
{
    Q_UNUSED(key)
    Q_UNUSED(object)
    value = 47.11;
    return true;
}

bool readStringValueFromJson(const QString& key, const QJsonObject& object, QString& value)
{
    Q_UNUSED(object)
    value = QStringLiteral("the application's ") + key;
    return true;
}

bool readBoolValueFromJson(const QString& key, const QJsonObject& object, bool& value)
{
    Q_UNUSED(key)
    Q_UNUSED(object)
    value = true;
    return true;
}

void tst_ApplicationPlatform::definitionsOfTheApplicationWin()
{
    // The bundled functions would give the first text and refuse the reads of an empty object.
    qputenv("MISCTOOLS_PRODUCT_CODE", "the environment's code");
    const QString productCode = PlatformCaller::productCode();
    qunsetenv("MISCTOOLS_PRODUCT_CODE");
    QCOMPARE(productCode, QStringLiteral("the application's code"));

    const QString key = QStringLiteral("key");
    double number = 0;
    QVERIFY(PlatformCaller::readDouble(key, QJsonObject(), number));
    QCOMPARE(number, 47.11);
    QString text;
    QVERIFY(PlatformCaller::readString(key, QJsonObject(), text));
    QCOMPARE(text, QStringLiteral("the application's key"));
    bool flag = false;
    QVERIFY(PlatformCaller::readBool(key, QJsonObject(), flag));
    QVERIFY(flag);
}

QTEST_GUILESS_MAIN(tst_ApplicationPlatform)
#include "tst_ApplicationPlatform.moc"
