#include "LiteralIniFile.h"

#include <QtCore/QDebug>
#include <QtCore/QFile>
#include <QtCore/QRegularExpression>

LiteralIniFile::LiteralIniFile(const QString& filePath, const char* codecName)
    : m_settings(filePath, QSettings::IniFormat)
{
    if (codecName != nullptr) {
        m_settings.setIniCodec(codecName);
    }
    if (!QFile::exists(filePath)) {
        qWarning() << "Can't find specified ini-file:" << filePath;
    }
}

QDebug LiteralIniFile::warning() const
{
    return qWarning() << "Ini-File (" + m_settings.fileName() + "):";
}

QByteArray LiteralIniFile::cleanUp(const QString& filePath)
{
    QFile file(filePath);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        qFatal("cannot read %s", qPrintable(filePath));
    }
    const QByteArray bytes = file.readAll();
    QString text = bytes.isNull() ? QString() : QString(bytes.constData());
    text.replace("%23", "#");
    text.replace(",", " ");
    return text.toUtf8();
}

void LiteralIniFile::sync()
{
    m_settings.sync();
}

QStringList LiteralIniFile::getGroups() const
{
    return m_settings.childGroups();
}

int LiteralIniFile::getCount() const
{
    return m_settings.childGroups().count();
}

void LiteralIniFile::setGeneralValue(const QString& key, const QVariant& value)
{
    if (key.isEmpty()) {
        warning() << "Key is empty!";
        return;
    }
    m_settings.setValue(key, value);
}

void LiteralIniFile::removeGeneralValue(const QString& key)
{
    if (key.isEmpty()) {
        warning() << "Key is empty!";
        return;
    }
    m_settings.remove(key);
}

bool LiteralIniFile::containsGeneral(const QString& key)
{
    if (key.isEmpty()) {
        warning() << "Key is empty!";
        return false;
    }
    return m_settings.contains(key);
}

QVariant LiteralIniFile::getGeneralValue(const QString& key, const QVariant& defaultValue) const
{
    QVariant result = defaultValue;
    if (key.isEmpty()) {
        warning() << "Key is empty!";
        return result;
    }
    if (m_settings.childKeys().contains(key)) {
        result = m_settings.value(key, defaultValue);
    } else {
        warning() << "Key" << key << "not found in section 'General'!";
    }
    return result;
}

int LiteralIniFile::getGeneralValueInteger(const QString& key, int defaultValue) const
{
    const QVariant value = getGeneralValue(key, QVariant(defaultValue));
    bool ok = false;
    const int number = value.toInt(&ok);
    if (ok) {
        return number;
    }
    warning() << "Conversion failed:" << value;
    return defaultValue;
}

QString LiteralIniFile::getGeneralValueString(const QString& key, const QString& defaultValue) const
{
    return getGeneralValue(key, QVariant(defaultValue)).toString();
}

bool LiteralIniFile::getGeneralValueBool(const QString& key, bool defaultValue) const
{
    return getGeneralValue(key, QVariant(defaultValue)).toBool();
}

QStringList LiteralIniFile::getGeneralChildKeys() const
{
    return m_settings.childKeys();
}

void LiteralIniFile::setValue(const QString& group, const QString& key, const QVariant& value)
{
    if (group.isEmpty()) {
        warning() << "Group is empty!";
    } else if (key.isEmpty()) {
        warning() << "Key is empty!";
    } else {
        m_settings.beginGroup(group);
        m_settings.setValue(key, value);
        m_settings.endGroup();
    }
}

void LiteralIniFile::removeValue(const QString& group, const QString& key)
{
    if (group.isEmpty()) {
        warning() << "Group is empty!";
    } else if (key.isEmpty()) {
        warning() << "Key is empty!";
    } else {
        m_settings.beginGroup(group);
        m_settings.remove(key);
        m_settings.endGroup();
    }
}

bool LiteralIniFile::contains(const QString& group, const QString& key) const
{
    if (key.isEmpty()) {
        warning() << "Key is empty!";
        return false;
    }
    m_settings.beginGroup(group);
    const bool found = m_settings.contains(key);
    m_settings.endGroup();
    return found;
}

QVariant LiteralIniFile::getValue(const QString& group, const QString& key,
                                  const QVariant& defaultValue) const
{
    QVariant result = defaultValue;
    if (key.isEmpty()) {
        warning() << "Key is empty!";
        return result;
    }
    m_settings.beginGroup(group);
    if (m_settings.childKeys().contains(key)) {
        result = m_settings.value(key, defaultValue);
    } else {
        warning() << "Key" << key << "not found in Group" << group << "!";
    }
    m_settings.endGroup();
    return result;
}

int LiteralIniFile::getValueInteger(const QString& group, const QString& key,
                                    int defaultValue) const
{
    const QVariant value = getValue(group, key, QVariant(defaultValue));
    bool ok = false;
    const int number = value.toInt(&ok);
    if (ok) {
        return number;
    }
    warning() << "Conversion failed:" << value;
    return defaultValue;
}

QString LiteralIniFile::getValueString(const QString& group, const QString& key,
                                       const QString& defaultValue) const
{
    return getValue(group, key, QVariant(defaultValue)).toString();
}

bool LiteralIniFile::getValueBool(const QString& group, const QString& key, bool defaultValue) const
{
    return getValue(group, key, QVariant(defaultValue)).toBool();
}

QStringList LiteralIniFile::getGroups(const QString& filter) const
{
    const QRegularExpression expression("^" + filter + ".*");
    return getGroups().filter(expression);
}

bool LiteralIniFile::containsGroup(const QString& group) const
{
    return m_settings.childGroups().contains(group);
}

QStringList LiteralIniFile::getChildKeys(const QString& group) const
{
    m_settings.beginGroup(group);
    const QStringList keys = m_settings.childKeys();
    m_settings.endGroup();
    return keys;
}

QMap<QString, QVariant> LiteralIniFile::getGroupValues(const QString& group) const
{
    QMap<QString, QVariant> values;
    const QStringList keys = getChildKeys(group);
    for (const QString& key : keys) {
        values.insert(key, getValue(group, key, QVariant()));
    }
    return values;
}

bool LiteralIniFile::searchIndex(int externalIndex, int& groupIndex) const
{
    const QStringList groups = m_settings.childGroups();
    if (externalIndex >= groups.count()) {
        warning() << "Invalid external index!";
        return false;
    }
    for (int i = 0; i < groups.count(); ++i) {
        if (getValueInteger(groups[i], "Position", 0) == externalIndex) {
            groupIndex = i;
            return true;
        }
    }
    return false;
}

int LiteralIniFile::getValueInteger(int externalIndex, const QString& key, int defaultValue) const
{
    const QStringList groups = m_settings.childGroups();
    if (externalIndex < groups.count()) {
        int groupIndex = 0;
        if (searchIndex(externalIndex, groupIndex)) {
            return getValueInteger(groups[groupIndex], key, defaultValue);
        }
        warning() << "Index not found in group!";
        return defaultValue;
    }
    warning() << "Invalid group index!";
    return defaultValue;
}

QString LiteralIniFile::getValueString(int externalIndex, const QString& key,
                                       const QString& defaultValue) const
{
    const QStringList groups = m_settings.childGroups();
    if (externalIndex < groups.count()) {
        int groupIndex = 0;
        if (searchIndex(externalIndex, groupIndex)) {
            return getValueString(groups[groupIndex], key, defaultValue);
        }
        warning() << "Index not found in group!";
        return defaultValue;
    }
    warning() << "Invalid group index!";
    return defaultValue;
}

bool LiteralIniFile::getValueBool(int externalIndex, const QString& key, bool defaultValue) const
{
    const QStringList groups = m_settings.childGroups();
    if (externalIndex < groups.count()) {
        int groupIndex = 0;
        if (searchIndex(externalIndex, groupIndex)) {
            return getValueBool(groups[groupIndex], key, defaultValue);
        }
        warning() << "Index not found in group!";
        return defaultValue;
    }
    warning() << "Invalid group index!";
    return defaultValue;
}
