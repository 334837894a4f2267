#include "DragIndicator.h"
#include "PlatformCaller.h"
#include "PlatformFunctions.h"
#include "TestCase.h"

#include <QtCore/QJsonArray>
#include <QtCore/QScopeGuard>

// This program defines the platform functions, like device software, and libraries that were linked
// against the bundled ones call these.
class tst_ApplicationPlatform : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void applicationDefinitionsTakePrecedence();
    void failedReadsSetNeitherDateNorFlag();
};

namespace {

// What the readers return; they write to their argument in either case.
bool readsSucceed = true;

} // namespace

QString DeviceManifestManager::getProductCode()
{
    return "the application's code";
}

bool readDoubleValueFromJson(const QString& key, const QJsonObject& object, double& value)
{
    Q_UNUSED(key)
    Q_UNUSED(object)
    value = 47.11;
    return readsSucceed;
}

bool readStringValueFromJson(const QString& key, const QJsonObject& object, QString& value)
{
    Q_UNUSED(object)
    value = "the application's " + key;
    return readsSucceed;
}

bool readBoolValueFromJson(const QString& key, const QJsonObject& object, bool& value)
{
    Q_UNUSED(key)
    Q_UNUSED(object)
    value = true;
    return readsSucceed;
}

void tst_ApplicationPlatform::failedReadsSetNeitherDateNorFlag()
{
    readsSucceed = false;
    const auto restore = qScopeGuard([] { readsSucceed = true; });
    for (int i = 0; i < 2; ++i) {
        for (const char* key :
             {"MinValue", "MaxValue", "MinValueDate", "MaxValueDate", "Initialized"}) {
            const QString text = QStringLiteral("Cannot find key \"%1\" in json object: "
                                                "QJsonObject() !");
            messages().expectWarning("DragIndicator", text.arg(QLatin1String(key)));
        }
    }
    messages().expectWarning("DragIndicator",
                             "Resetting drag indicator due to errors on importing json data!");
    DragIndicator indicator;
    QVERIFY(!indicator.fromJsonArray({QJsonObject(), QJsonObject()}));
    for (const QJsonValue& record : indicator.asJsonArray()) {
        QCOMPARE(record[QStringLiteral("MinValueDate")], QJsonValue(QString()));
        QCOMPARE(record[QStringLiteral("MaxValueDate")], QJsonValue(QString()));
        QCOMPARE(record[QStringLiteral("Initialized")], QJsonValue(false));
    }
    // The text was not a date in the old format, either, so nothing has to be saved again.
    QVERIFY(indicator.compute(1));
    QVERIFY(!indicator.compute(1));
}

void tst_ApplicationPlatform::applicationDefinitionsTakePrecedence()
{
    // The bundled functions would return the first text and reject reads of an empty object.
    qputenv("MISCTOOLS_PRODUCT_CODE", "the environment's code");
    const QString productCode = PlatformCaller::productCode();
    qunsetenv("MISCTOOLS_PRODUCT_CODE");
    QCOMPARE(productCode, QStringLiteral("the application's code"));

    const QString key = "key";
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
