#include "PlatformCaller.h"
#include "TestCase.h"

#include <QtCore/QJsonDocument>

// Tests the platform functions of a stand-alone program, which are those of the bundled library
// because this program defines none.
class tst_BundledPlatform : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void productCodeIsAsConfigured();
    void productCodeOfTheEnvironmentTakesPrecedence_data();
    void productCodeOfTheEnvironmentTakesPrecedence();
    void readersAcceptOnlyTheirType_data();
    void readersAcceptOnlyTheirType();
    void readersReturnTheValue();
};

namespace {

constexpr char environmentVariable[] = "MISCTOOLS_PRODUCT_CODE";

} // namespace

void tst_BundledPlatform::productCodeIsAsConfigured()
{
    qunsetenv(environmentVariable);
    QCOMPARE(PlatformCaller::productCode(), QStringLiteral(CONFIGURED_PRODUCT_CODE));
}

void tst_BundledPlatform::productCodeOfTheEnvironmentTakesPrecedence_data()
{
    QTest::addColumn<QByteArray>("code");
    QTest::newRow("different code") << QByteArray("640917");
    QTest::newRow("empty") << QByteArray("");
}

void tst_BundledPlatform::productCodeOfTheEnvironmentTakesPrecedence()
{
    QFETCH(QByteArray, code);
    qputenv(environmentVariable, code);
    const QString productCode = PlatformCaller::productCode();
    qunsetenv(environmentVariable);
    QCOMPARE(productCode, QString::fromLatin1(code));
}

void tst_BundledPlatform::readersAcceptOnlyTheirType_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<bool>("isDouble");
    QTest::addColumn<bool>("isString");
    QTest::addColumn<bool>("isBool");

    QTest::newRow("missing member") << QByteArray("{}") << false << false << false;
    QTest::newRow("different key") << QByteArray("{\"Key\": 1}") << false << false << false;
    QTest::newRow("null") << QByteArray("{\"key\": null}") << false << false << false;
    QTest::newRow("number") << QByteArray("{\"key\": 1.5}") << true << false << false;
    QTest::newRow("zero") << QByteArray("{\"key\": 0}") << true << false << false;
    QTest::newRow("text") << QByteArray("{\"key\": \"text\"}") << false << true << false;
    QTest::newRow("empty text") << QByteArray("{\"key\": \"\"}") << false << true << false;
    QTest::newRow("number as text") << QByteArray("{\"key\": \"1.5\"}") << false << true << false;
    QTest::newRow("true") << QByteArray("{\"key\": true}") << false << false << true;
    QTest::newRow("false") << QByteArray("{\"key\": false}") << false << false << true;
    QTest::newRow("array") << QByteArray("{\"key\": [1]}") << false << false << false;
    QTest::newRow("object") << QByteArray("{\"key\": {\"key\": 1}}") << false << false << false;
}

void tst_BundledPlatform::readersAcceptOnlyTheirType()
{
    QFETCH(QByteArray, json);
    QFETCH(bool, isDouble);
    QFETCH(bool, isString);
    QFETCH(bool, isBool);
    const QString key = "key";
    QJsonParseError error;
    const QJsonObject object = QJsonDocument::fromJson(json, &error).object();
    QCOMPARE(error.error, QJsonParseError::NoError);

    double number = -7.25;
    QCOMPARE(PlatformCaller::readDouble(key, object, number), isDouble);
    QCOMPARE(number == -7.25, !isDouble);

    QString text = "as it was";
    QCOMPARE(PlatformCaller::readString(key, object, text), isString);
    QCOMPARE(text == QLatin1String("as it was"), !isString);

    for (const bool before : {false, true}) {
        bool flag = before;
        QCOMPARE(PlatformCaller::readBool(key, object, flag), isBool);
        QCOMPARE(flag, isBool ? object.value(key).toBool() : before);
    }
}

void tst_BundledPlatform::readersReturnTheValue()
{
    const QString key = "key";
    double number = 0;
    QVERIFY(PlatformCaller::readDouble(key, {{key, 1.5}}, number));
    QCOMPARE(number, 1.5);

    QString text;
    QVERIFY(PlatformCaller::readString(key, {{key, "text"}}, text));
    QCOMPARE(text, QStringLiteral("text"));
}

QTEST_GUILESS_MAIN(tst_BundledPlatform)
#include "tst_BundledPlatform.moc"
