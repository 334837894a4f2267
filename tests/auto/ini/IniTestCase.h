#ifndef TESTS_INITESTCASE_H
#define TESTS_INITESTCASE_H

#include "TestCase.h"

#include <QtCore/QVariant>

// What the tests of IniFileManager share: one INI file per row, and the shape of its warnings.
class IniTestCase : public TestCase
{
protected:
    // The path of the row's INI file, which is not there before writeIni().
    QString iniFile() const { return path(QStringLiteral("settings.ini")); }
    void writeIni(const QByteArray& content) const;

    // Announces a warning that begins with the log prefix of the row's file.
    ExpectedMessage& expectIniWarning(const QString& items);

    // A copy of the row's file: QSettings has never seen it, so it must be parsed anew.
    QString copyOfIniFile() const;

    static QStringList words(const char* blankSeparated);

    // Rows of text behind "key=" in a file, and what each reader must make of it.
    static void addValueRows();
};

#endif
