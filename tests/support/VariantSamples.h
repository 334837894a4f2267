#ifndef TESTS_VARIANTSAMPLES_H
#define TESTS_VARIANTSAMPLES_H

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QVariant>
#include <QtCore/QVector>

// A variant, its log format, and the results of its conversions.
struct VariantSample
{
    VariantSample() = default;
    VariantSample(const char* situation, const QVariant& variant,
                  const QString& debugText = QString());

    // Set the result of a conversion. Without these calls the value does not convert.
    VariantSample& toBool(bool result);
    VariantSample& toText(const QString& result);

    QByteArray name;
    QVariant value;
    QString debugged; // in the format of QDebug; empty if it converts to both
    bool isBool = false;
    bool asBool = false;
    bool isText = false;
    QString asText;
};

Q_DECLARE_METATYPE(VariantSample)

/*
 * Variants of every built-in type of Qt Core and of user types with and without conversions, and an
 * invalid one. Some convert in unexpected ways (long, unsigned char, lists).
 */
const QVector<VariantSample>& variantSamples();

#endif
