#include "VariantSamples.h"

#include <QtCore/QtCore>

namespace {

struct PlainType
{
};

struct ConvertibleType
{
};

// Has conversions that fail.
struct StubbornType
{
    QString toText(bool* ok) const
    {
        *ok = false;
        return "must not be returned";
    }
    bool toBool(bool* ok) const
    {
        *ok = false;
        return true;
    }
};

} // namespace

Q_DECLARE_METATYPE(PlainType)
Q_DECLARE_METATYPE(ConvertibleType)
Q_DECLARE_METATYPE(StubbornType)

namespace {

QVector<VariantSample> numbers()
{
    using Sample = VariantSample;
    return {
        Sample("bool", true).toBool(true).toText("true"),
        Sample("bool, false", false).toBool(false).toText("false"),
        Sample("bool, null", QVariant(QVariant::Bool)).toBool(false).toText("false"),
        Sample("int", 42).toBool(true).toText("42"),
        Sample("int, zero", 0).toBool(false).toText("0"),
        Sample("uint", 42u).toBool(true).toText("42"),
        Sample("qlonglong", Q_INT64_C(-5000000000)).toBool(true).toText("-5000000000"),
        Sample("qulonglong", Q_UINT64_C(5000000000)).toBool(true).toText("5000000000"),
        Sample("double", 0.5).toBool(true).toText("0.5"),
        Sample("float", 0.5f).toBool(true).toText("0.5"),
        Sample("short", QVariant::fromValue(short(5))).toBool(true).toText("5"),
        Sample("ushort", QVariant::fromValue(ushort(5))).toBool(true).toText("5"),
        Sample("char", QVariant::fromValue('A')).toBool(true).toText("A"),
        Sample("signed char", QVariant::fromValue<signed char>('A')).toBool(true).toText("A"),
        // QVariant::toString() converts these, although canConvert() returns false for them.
        Sample("uchar", QVariant::fromValue<uchar>('A'), "QVariant(uchar, 65)"),
        Sample("long", QVariant::fromValue(5L), "QVariant(long, 5)"),
        Sample("ulong", QVariant::fromValue(5UL), "QVariant(ulong, 5)"),
    };
}

QVector<VariantSample> texts()
{
    using Sample = VariantSample;
    return {
        Sample("QString", "text").toBool(true).toText("text"),
        Sample("QString, empty", "").toBool(false).toText(""),
        Sample("QString, null", QVariant(QVariant::String)).toBool(false).toText(QString()),
        Sample("QString, true", "true").toBool(true).toText("true"),
        Sample("QString, false", "False").toBool(false).toText("False"),
        Sample("QString, 0", "0").toBool(false).toText("0"),
        Sample("QString, 00", "00").toBool(true).toText("00"),
        Sample("QString, beyond ASCII", QStringLiteral(u"\u00E4\u20AC"))
            .toBool(true)
            .toText(QStringLiteral(u"\u00E4\u20AC")),
        Sample("QByteArray", QByteArray("raw")).toBool(true).toText("raw"),
        Sample("QByteArray, 0", QByteArray("0")).toBool(false).toText("0"),
        Sample("QChar", QChar(QLatin1Char('x'))).toBool(true).toText("x"),
        Sample("QStringList of one", QStringList("one"), "QVariant(QStringList, (\"one\"))")
            .toText("one"),
        Sample("QStringList of two", QStringList{"one", "two"},
               "QVariant(QStringList, (\"one\", \"two\"))"),
        Sample("QStringList, empty", QStringList(), "QVariant(QStringList, ())"),
        Sample("QByteArrayList", QVariant::fromValue(QByteArrayList{"a"}),
               "QVariant(QByteArrayList, (\"a\"))"),
        Sample("QUrl", QUrl("http://host/a"), "QVariant(QUrl, QUrl(\"http://host/a\"))")
            .toText("http://host/a"),
        Sample("QUuid", QUuid("{00010203-0405-0607-0809-0a0b0c0d0e0f}"),
               "QVariant(QUuid, QUuid(\"{00010203-0405-0607-0809-0a0b0c0d0e0f}\"))")
            .toText("{00010203-0405-0607-0809-0a0b0c0d0e0f}"),
        Sample("QRegExp", QRegExp("a*"),
               "QVariant(QRegExp, QRegExp(patternSyntax=0, pattern='\"a*\"'))"),
        Sample("QRegularExpression", QRegularExpression("a*"),
               QStringLiteral("QVariant(QRegularExpression, QRegularExpression(\"a*\", "
                              "QRegularExpression::PatternOptions(\"NoPatternOption\")))")),
        Sample("QLocale", QLocale::c(), "QVariant(QLocale, QLocale(C, Default, Default))"),
    };
}

// The value as Qt logs it: digits of a time depend on the system's language.
template <typename Value>
QString logged(const char* type, const Value& value)
{
    QString text;
    QDebug(&text).nospace() << value;
    return QStringLiteral("QVariant(%1, %2)").arg(QLatin1String(type), text);
}

QVector<VariantSample> dates()
{
    using Sample = VariantSample;
    const QDate date(2020, 2, 29);
    const QTime time(1, 2, 3);
    const QDateTime dateTime(date, time, Qt::UTC);
    return {
        Sample("QDate", date, "QVariant(QDate, QDate(\"2020-02-29\"))").toText("2020-02-29"),
        Sample("QTime", time, logged("QTime", time)).toText("01:02:03.000"),
        Sample("QDateTime", dateTime, logged("QDateTime", dateTime))
            .toText("2020-02-29T01:02:03.000Z"),
    };
}

QVector<VariantSample> shapes()
{
    using Sample = VariantSample;
    return {
        Sample("QRect", QRect(1, 2, 3, 4), "QVariant(QRect, QRect(1,2 3x4))"),
        Sample("QRectF", QRectF(1, 2, 3, 4), "QVariant(QRectF, QRectF(1,2 3x4))"),
        Sample("QSize", QSize(1, 2), "QVariant(QSize, QSize(1, 2))"),
        Sample("QSizeF", QSizeF(1, 2), "QVariant(QSizeF, QSizeF(1, 2))"),
        Sample("QLine", QLine(1, 2, 3, 4), "QVariant(QLine, QLine(QPoint(1,2),QPoint(3,4)))"),
        Sample("QLineF", QLineF(1, 2, 3, 4), "QVariant(QLineF, QLineF(QPointF(1,2),QPointF(3,4)))"),
        Sample("QPoint", QPoint(1, 2), "QVariant(QPoint, QPoint(1,2))"),
        Sample("QPointF", QPointF(1, 2), "QVariant(QPointF, QPointF(1,2))"),
    };
}

QVector<VariantSample> containers()
{
    using Sample = VariantSample;
    const QString key = "k";
    return {
        Sample("QVariantMap", QVariantMap{{key, 1}},
               "QVariant(QVariantMap, QMap((\"k\", QVariant(int, 1))))"),
        Sample("QVariantHash", QVariantHash{{key, 1}},
               "QVariant(QVariantHash, QHash((\"k\", QVariant(int, 1))))"),
        Sample("QVariantList", QVariantList{1}, "QVariant(QVariantList, (QVariant(int, 1)))"),
        Sample("QVariant in a QVariant", QVariant(QMetaType::QVariant, nullptr),
               "QVariant(QVariant, QVariant(Invalid))"),
        Sample("QBitArray", QBitArray(2, true), "QVariant(QBitArray, QBitArray(11))"),
        // A JSON number converts to the bool false and to a null string.
        Sample("QJsonValue, number", QVariant::fromValue(QJsonValue(1)))
            .toBool(false)
            .toText(QString()),
        Sample("QJsonValue, bool", QVariant::fromValue(QJsonValue(true)))
            .toBool(true)
            .toText(QString()),
        Sample("QJsonValue, text", QVariant::fromValue(QJsonValue("text")))
            .toBool(false)
            .toText("text"),
        Sample("QJsonObject", QJsonObject{{key, 1}},
               "QVariant(QJsonObject, QJsonObject({\"k\":1}))"),
        Sample("QJsonArray", QJsonArray{1}, "QVariant(QJsonArray, QJsonArray([1]))"),
        Sample("QJsonDocument", QJsonDocument(), "QVariant(QJsonDocument, QJsonDocument())"),
        Sample("QCborValue", QVariant::fromValue(QCborValue(5))).toBool(false).toText("5"),
        Sample("QCborArray", QVariant::fromValue(QCborArray{5}),
               "QVariant(QCborArray, QCborArray{QCborValue(5)})"),
        Sample("QCborMap", QVariant::fromValue(QCborMap{{key, 5}}),
               "QVariant(QCborMap, QCborMap{{QCborValue(\"k\"), QCborValue(5)}})"),
        Sample("QCborSimpleType", QVariant::fromValue(QCborSimpleType(5)),
               "QVariant(QCborSimpleType, QCborSimpleType(5))"),
    };
}

QVector<VariantSample> others()
{
    using Sample = VariantSample;
    const QVariant curve = QEasingCurve(QEasingCurve::Linear);
    QString addressText; // holds the address of a function
    QDebug(&addressText).nospace() << curve;

    QMetaType::registerConverter<ConvertibleType, QString>(
        [](const ConvertibleType&) { return "converted"; });
    QMetaType::registerConverter<ConvertibleType, bool>(
        [](const ConvertibleType&) { return true; });
    QMetaType::registerConverter(&StubbornType::toText);
    QMetaType::registerConverter(&StubbornType::toBool);

    return {
        Sample("invalid", QVariant(), "QVariant(Invalid)"),
        Sample("QEasingCurve", curve, addressText),
        Sample("void*", QVariant::fromValue<void*>(nullptr), "QVariant(void*, 0x0)"),
        Sample("QObject*", QVariant::fromValue<QObject*>(nullptr),
               "QVariant(QObject*, QObject(0x0))"),
        Sample("std::nullptr_t", QVariant::fromValue(nullptr),
               "QVariant(std::nullptr_t, (nullptr))")
            .toText(QString()),
        Sample("QModelIndex", QModelIndex(),
               "QVariant(QModelIndex, QModelIndex(-1,-1,0x0,QObject(0x0)))"),
        Sample("QPersistentModelIndex", QPersistentModelIndex(),
               "QVariant(QPersistentModelIndex, QModelIndex(-1,-1,0x0,QObject(0x0)))"),
        Sample("an enumeration", QVariant::fromValue(QCryptographicHash::Md5),
               "QVariant(QCryptographicHash::Algorithm, \"Md5\")")
            .toText("Md5"),
        Sample("user type", QVariant::fromValue(PlainType()), "QVariant(PlainType, )"),
        Sample("user type with conversions", QVariant::fromValue(ConvertibleType()))
            .toBool(true)
            .toText("converted"),
        Sample("user type whose conversions fail", QVariant::fromValue(StubbornType()))
            .toBool(false)
            .toText(QString()),
    };
}

} // namespace

VariantSample::VariantSample(const char* situation, const QVariant& variant,
                             const QString& debugText)
    : name(situation), value(variant), debugged(debugText)
{
}

VariantSample& VariantSample::toBool(bool result)
{
    isBool = true;
    asBool = result;
    return *this;
}

VariantSample& VariantSample::toText(const QString& result)
{
    isText = true;
    asText = result;
    return *this;
}

const QVector<VariantSample>& variantSamples()
{
    // A conversion can be registered only once.
    static const QVector<VariantSample> samples =
        numbers() + texts() + dates() + shapes() + containers() + others();
    return samples;
}
