#ifndef TESTS_INICALL_H
#define TESTS_INICALL_H

#include <QtCore/QDebug>
#include <QtCore/QString>
#include <QtCore/QVariant>

/*
 * One call on an INI file, with arguments for every function. It can be made on the library's class
 * or on its literal version.
 */
struct IniCall
{
    static constexpr int operations = 28;

    int operation = 0;
    QString group;
    QString key;
    QVariant value;
    QString filter;
    int index = 0;

    // Makes the call; returns a text with the call and its result.
    template <typename File>
    QString on(File& file) const;

private:
    static QString shown(const QVariant& value)
    {
        QString text;
        QDebug(&text) << value;
        return text;
    }
};

template <typename File>
QString IniCall::on(File& file) const
{
    const QString call = QStringLiteral("%1(<%2>, <%3>, %4) ")
                             .arg(QString::number(operation), group, key, QString::number(index));
    switch (operation) {
    case 0:
        file.setGeneralValue(key, value);
        return call + shown(value);
    case 1:
        file.removeGeneralValue(key);
        return call;
    case 2:
        return call + shown(file.containsGeneral(key));
    case 3:
        return call + shown(file.getGeneralValue(key, value));
    case 4:
        return call + shown(file.getGeneralValueInteger(key, 42));
    case 5:
        return call + shown(file.getGeneralValueString(key, QStringLiteral("default")));
    case 6:
        return call + shown(file.getGeneralValueBool(key, true));
    case 7:
        return call + shown(file.getGeneralChildKeys());
    case 8:
    case 9:
        file.setValue(group, key, value);
        return call + shown(value);
    case 10:
        file.removeValue(group, key);
        return call;
    case 11:
        return call + shown(file.contains(group, key));
    case 12:
    case 13:
    case 14:
        return call + shown(file.getValue(group, key, value));
    case 15:
        return call + shown(file.getValueInteger(group, key, 42));
    case 16:
        return call + shown(file.getValueString(group, key, QStringLiteral("default")));
    case 17:
        return call + shown(file.getValueBool(group, key, true));
    case 18:
        return call + filter + shown(file.getGroups(filter));
    case 19:
        return call + shown(file.containsGroup(group)) + shown(file.getCount());
    case 20:
        return call + shown(file.getChildKeys(group));
    case 21:
        return call + shown(QVariant(file.getGroupValues(group)));
    case 22:
        return call + shown(file.getGroups());
    case 23: {
        int groupIndex = 4711;
        const bool found = file.searchIndex(index, groupIndex);
        return call + shown(found) + shown(groupIndex);
    }
    case 24:
        return call + shown(file.getValueInteger(index, key, 42));
    case 25:
        return call + shown(file.getValueString(index, key, QStringLiteral("default")));
    case 26:
        return call + shown(file.getValueBool(index, key, true));
    default:
        file.sync();
        return call;
    }
}

#endif
