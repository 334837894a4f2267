#include "TestCase.h"
#include "VariantConversionTools.h"
#include "VariantSamples.h"

#include <QtCore/QSet>

class tst_VariantConversionTools : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void samplesCoverEveryBuiltInType();
    void toBool_data();
    void toBool();
    void toString_data();
    void toString();

private:
    void addSamples();
};

void tst_VariantConversionTools::samplesCoverEveryBuiltInType()
{
    QSet<int> types;
    for (const VariantSample& sample : variantSamples()) {
        types.insert(sample.value.userType());
    }
    for (int type = QMetaType::UnknownType; type <= QMetaType::LastCoreType; ++type) {
        // No variant can have the type void.
        if (type != QMetaType::Void) {
            QVERIFY2(types.contains(type), QMetaType::typeName(type));
        }
    }
}

void tst_VariantConversionTools::addSamples()
{
    QTest::addColumn<VariantSample>("sample");
    for (const VariantSample& sample : variantSamples()) {
        QTest::newRow(sample.name.constData()) << sample;
    }
}

void tst_VariantConversionTools::toBool_data()
{
    addSamples();
}

void tst_VariantConversionTools::toBool()
{
    QFETCH(VariantSample, sample);

    for (const bool before : {false, true}) {
        if (!sample.isBool) {
            messages()
                .expectWarning(
                    "VariantConversionTools",
                    QStringLiteral("Unable to convert QVariant %1 to bool!").arg(sample.debugged))
                .function("static bool VariantConversionTools::toBool(const QVariant&, bool&)");
        }
        bool result = before;
        QCOMPARE(VariantConversionTools::toBool(sample.value, result), sample.isBool);
        QCOMPARE(result, sample.isBool ? sample.asBool : before);
    }
}

void tst_VariantConversionTools::toString_data()
{
    addSamples();
}

void tst_VariantConversionTools::toString()
{
    QFETCH(VariantSample, sample);

    if (!sample.isText) {
        messages()
            .expectWarning(
                "VariantConversionTools",
                QStringLiteral("Unable to convert QVariant %1 to string!").arg(sample.debugged))
            .function("static bool VariantConversionTools::toString(const QVariant&, QString&)");
    }
    const QString before = "before";
    QString result = before;
    QCOMPARE(VariantConversionTools::toString(sample.value, result), sample.isText);
    QCOMPARE(result, sample.isText ? sample.asText : before);
}

QTEST_GUILESS_MAIN(tst_VariantConversionTools)
#include "tst_VariantConversionTools.moc"
