#ifndef TESTS_VARIANTSAMPLES_H
#define TESTS_VARIANTSAMPLES_H

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QVariant>
#include <QtCore/QVector>

// A variant, how it is shown, and what it can be converted into.
struct VariantSample
{
    VariantSample() = default;
    VariantSample(const char* situation, const QVariant& variant,
                  const QString& debugText = QString());

    // Converts into a bool, or a text; otherwise it does not.
    VariantSample& toBool(bool result);
    VariantSample& toText(const QString& result);

    QByteArray name;
    QVariant value;
    QString debugged; // as QDebug writes it; empty where it converts into both
    bool isBool = false;
    bool asBool = false;
    bool isText = false;
    QString asText;
};

Q_DECLARE_METATYPE(VariantSample)

/*
 * Variants of every type that Qt Core builds in, of user types with and without conversions, and
 * none at all. Some convert differently from what one would think (long, unsigned char, lists).
 */
const QVector<VariantSample>& variantSamples();

#endif
