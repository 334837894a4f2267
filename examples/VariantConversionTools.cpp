// Converts variants and reports whether the conversion is possible.

#include <VariantConversionTools.h>

#include <QtCore/QPoint>

#include <cstdio>

int main()
{
    //! [convert]
    bool isOn = false;
    if (VariantConversionTools::toBool(QVariant(QStringLiteral("true")), isOn)) {
        std::printf("a text: %s\n", isOn ? "on" : "off");
    }
    // A point has no boolean value: the library logs that, and the variable keeps its value.
    if (!VariantConversionTools::toBool(QVariant(QPoint(1, 2)), isOn)) {
        std::printf("a point: no conversion, still %s\n", isOn ? "on" : "off");
    }
    //! [convert]

    // The type decides whether a conversion is possible, not the value: every text has a boolean
    // value. "off" is true, because only an empty text, "0" and "false" are false.
    const bool isPossible = VariantConversionTools::toBool(QVariant(QStringLiteral("off")), isOn);
    std::printf("the text off: %s, %s\n", isPossible ? "converted" : "no conversion",
                isOn ? "on" : "off");

    QString text;
    VariantConversionTools::toString(QVariant(21.5), text);
    std::printf("a number: %s\n", qPrintable(text));
    return 0;
}
