#include "IniTestCase.h"

#include <QtCore/QFile>

void IniTestCase::writeIni(const QByteArray& content) const
{
    writeFile("settings.ini", content);
}

ExpectedMessage& IniTestCase::expectIniWarning(const QString& items)
{
    return messages().expectWarning("IniFileManager", "\"Ini-File (" + iniFile() + "):\" " + items);
}

QString IniTestCase::copyOfIniFile() const
{
    const QString copy = path("copy.ini");
    if (!QFile::copy(iniFile(), copy)) {
        qFatal("cannot copy %s", qPrintable(iniFile()));
    }
    return copy;
}

QStringList IniTestCase::words(const char* spaceSeparated)
{
    return QString::fromUtf8(spaceSeparated).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

void IniTestCase::addValueRows()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("string");
    QTest::addColumn<bool>("truth");
    QTest::addColumn<bool>("isInteger");
    QTest::addColumn<int>("integer");
    QTest::addColumn<QString>("shown"); // in the warning of a failed conversion

    const auto number = [](const char* name, const char* text, const char* string, int integer) {
        const QString asString = QString::fromUtf8(string);
        QTest::newRow(name) << QByteArray(text) << QVariant(asString) << asString << (integer != 0)
                            << true << integer << QString();
    };
    const auto nonNumber = [](const char* name, const char* text, const char* string, bool truth) {
        const QString asString = QString::fromUtf8(string);
        QTest::newRow(name) << QByteArray(text) << QVariant(asString) << asString << truth << false
                            << 0 << "QVariant(QString, \"" + asString + "\")";
    };
    const auto other = [](const char* name, const char* text, const QVariant& value,
                          const QString& string, const char* shown) {
        QTest::newRow(name) << QByteArray(text) << value << string << false << false << 0
                            << QString::fromUtf8(shown);
    };

    number("number", "12", "12", 12);
    number("negative number", "-12", "-12", -12);
    number("number with a plus", "+12", "+12", 12);
    number("zero", "0", "0", 0);
    number("leading zero is decimal", "010", "010", 10);
    number("surrounding spaces", "  12  ", "12", 12);
    number("spaces inside quotes", "\" 12 \"", " 12 ", 12);
    number("number in quotes", "\"12\"", "12", 12);
    number("trailing comment", "12 ;a comment", "12", 12);
    number("largest", "2147483647", "2147483647", 2147483647);
    number("smallest", "-2147483648", "-2147483648", -2147483647 - 1);
    number("largest plus one is truncated", "2147483648", "2147483648", -2147483647 - 1);
    number("64 bits are truncated", "4294967301", "4294967301", 5);
    number("largest 64-bit number", "9223372036854775807", "9223372036854775807", -1);

    nonNumber("65 bits", "9223372036854775808", "9223372036854775808", true);
    nonNumber("letters", "abc", "abc", true);
    nonNumber("number with a unit", "12V", "12V", true);
    nonNumber("hexadecimal", "0x1F", "0x1F", true);
    nonNumber("fraction", "1.5", "1.5", true);
    nonNumber("exponent", "1e3", "1e3", true);
    nonNumber("true", "true", "true", true);
    nonNumber("false", "false", "false", false);
    nonNumber("false in uppercase", "FALSE", "FALSE", false);
    nonNumber("off", "off", "off", true);
    nonNumber("no", "no", "no", true);
    nonNumber("zero with a fraction", "0.0", "0.0", true);
    nonNumber("empty value", "", "", false);
    nonNumber("empty quotes", "\"\"", "", false);
    nonNumber("space in quotes", "\" \"", " ", true);
    nonNumber("hash does not start a comment", "#5", "#5", true);
    nonNumber("percent escape is kept", "%235", "%235", true);
    nonNumber("hexadecimal escape", "\\x41\\x42", "AB", true);
    nonNumber("comma in quotes", "\"1,2\"", "1,2", true);
    nonNumber("doubled at sign", "@@Invalid()", "@Invalid()", true);
    nonNumber("Latin-1", "\xe4", "\xc3\xa4", true);

    other("list", "1,2", words("1 2"), QString(), R"(QVariant(QStringList, ("1", "2")))");
    other("list of empty elements", ",", QStringList({QString(), QString()}), QString(),
          R"(QVariant(QStringList, ("", "")))");
    other("present and invalid", "@Invalid()", QVariant(), QString(), "QVariant(Invalid)");
    QTest::newRow("bytes") << QByteArray("@ByteArray(12)") << QVariant(QByteArray("12")) << "12"
                           << true << true << 12 << QString();
    other("point", "@Point(1 2)", QPoint(1, 2), QString(), "QVariant(QPoint, QPoint(1,2))");
}
