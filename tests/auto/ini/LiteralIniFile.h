#ifndef TESTS_LITERALINIFILE_H
#define TESTS_LITERALINIFILE_H

#include <QtCore/QMap>
#include <QtCore/QSettings>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVariant>

/*
 * A simple implementation of IniFileManager on top of QSettings, without thread safety or
 * optimizations. Tests compare the library with it.
 */
class LiteralIniFile
{
public:
    LiteralIniFile(const QString& filePath, const char* codecName);

    // The cleaned-up text of a file; does not change the file.
    static QByteArray cleanUp(const QString& filePath);

    void sync();
    QStringList getGroups() const;
    int getCount() const;

    void setGeneralValue(const QString& key, const QVariant& value);
    void removeGeneralValue(const QString& key);
    bool containsGeneral(const QString& key);
    QVariant getGeneralValue(const QString& key, const QVariant& defaultValue) const;
    int getGeneralValueInteger(const QString& key, int defaultValue) const;
    QString getGeneralValueString(const QString& key, const QString& defaultValue) const;
    bool getGeneralValueBool(const QString& key, bool defaultValue) const;
    QStringList getGeneralChildKeys() const;

    void setValue(const QString& group, const QString& key, const QVariant& value);
    void removeValue(const QString& group, const QString& key);
    bool contains(const QString& group, const QString& key) const;
    QVariant getValue(const QString& group, const QString& key, const QVariant& defaultValue) const;
    int getValueInteger(const QString& group, const QString& key, int defaultValue) const;
    QString getValueString(const QString& group, const QString& key,
                           const QString& defaultValue) const;
    bool getValueBool(const QString& group, const QString& key, bool defaultValue) const;
    QStringList getGroups(const QString& filter) const;
    bool containsGroup(const QString& group) const;
    QStringList getChildKeys(const QString& group) const;
    QMap<QString, QVariant> getGroupValues(const QString& group) const;

    bool searchIndex(int externalIndex, int& groupIndex) const;
    int getValueInteger(int externalIndex, const QString& key, int defaultValue) const;
    QString getValueString(int externalIndex, const QString& key,
                           const QString& defaultValue) const;
    bool getValueBool(int externalIndex, const QString& key, bool defaultValue) const;

private:
    QDebug warning() const;

    mutable QSettings m_settings;
};

#endif
