#ifndef TESTS_INITESTCASE_H
#define TESTS_INITESTCASE_H

#include "TestCase.h"

#include <QtCore/QVariant>

// The base of the tests of IniFileManager: one INI file per row, and the format of its warnings.
class IniTestCase : public TestCase
{
protected:
    // The path of the row's INI file, which does not exist before writeIni().
    QString iniFile() const { return path(QStringLiteral("settings.ini")); }
    void writeIni(const QByteArray& content) const;

    // Expects a warning that starts with the log prefix of the row's file.
    ExpectedMessage& expectIniWarning(const QString& items);

    // Copies the row's file; QSettings has not cached the copy and must parse it.
    QString copyOfIniFile() const;

    static QStringList words(const char* spaceSeparated);

    // Adds rows with the text after "key=" in a file and the value that each getter must return.
    static void addValueRows();
};

#endif
