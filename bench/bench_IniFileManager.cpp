#include "IniFileManager.h"
#include "support/Program.h"
#include "support/Workspace.h"

#include <KConfig>
#include <KConfigGroup>

#include <QtCore/QDebug>
#include <QtCore/QFile>
#include <QtCore/QMutex>
#include <QtCore/QMutexLocker>
#include <QtCore/QSaveFile>
#include <QtCore/QSettings>

// The converter that the distribution's package is built with.
#define SI_CONVERT_ICU
#include <SimpleIni.h>

#include <filesystem>
#include <memory>

namespace {

QString groupName()
{
    return QStringLiteral("Group");
}

QString keyName(int number)
{
    return QStringLiteral("Key%1").arg(number, 6, 10, QLatin1Char('0'));
}

QString valueText(int number)
{
    return QStringLiteral("value of %1").arg(number);
}

QByteArray sectionText(const QString& section, int keys)
{
    QString text = QLatin1Char('[') + section + QStringLiteral("]\n");
    for (int i = 0; i < keys; ++i) {
        text += keyName(i) + QLatin1Char('=') + valueText(i) + QLatin1Char('\n');
    }
    return text.toUtf8();
}

// One section with this many keys.
QString fileWithKeys(int keys)
{
    return Workspace::file(QStringLiteral("keys-%1.ini").arg(keys),
                           [keys] { return sectionText(groupName(), keys); });
}

// Each with its own number as Position.
QString fileWithSections(int sections)
{
    return Workspace::file(QStringLiteral("sections-%1.ini").arg(sections), [sections] {
        QByteArray text;
        for (int i = 0; i < sections; ++i) {
            text += QStringLiteral("[Section%1]\nPosition=%2\nName=%3\n")
                        .arg(i, 6, 10, QLatin1Char('0'))
                        .arg(i)
                        .arg(valueText(i))
                        .toUtf8();
        }
        return text;
    });
}

// Sections of fifty keys, as many as fit.
QString fileOfSize(int bytes)
{
    return Workspace::file(QStringLiteral("size-%1.ini").arg(bytes), [bytes] {
        QByteArray text = sectionText(groupName(), 50);
        for (int i = 0; text.size() < bytes; ++i) {
            text += sectionText(QStringLiteral("Other%1").arg(i), 50);
        }
        return text;
    });
}

// QSettings as it is used from several threads.
class LockedSettings
{
public:
    explicit LockedSettings(const QString& filePath) : m_settings(filePath, QSettings::IniFormat) {}

    QVariant value(const QString& path)
    {
        const QMutexLocker locker(&m_mutex);
        return m_settings.value(path);
    }

    // The plain way to a value that may be missing.
    QVariant listedValue(const QString& group, const QString& key)
    {
        const QMutexLocker locker(&m_mutex);
        QVariant value;
        m_settings.beginGroup(group);
        if (m_settings.childKeys().contains(key)) {
            value = m_settings.value(key);
        } else {
            qWarning() << QStringLiteral("Ini-File (") + m_settings.fileName() +
                              QStringLiteral("):")
                       << "Key" << key << "not found in Group" << group << "!";
        }
        m_settings.endGroup();
        return value;
    }

    QStringList childKeys(const QString& group)
    {
        const QMutexLocker locker(&m_mutex);
        m_settings.beginGroup(group);
        const QStringList keys = m_settings.childKeys();
        m_settings.endGroup();
        return keys;
    }

    QStringList childGroups()
    {
        const QMutexLocker locker(&m_mutex);
        return m_settings.childGroups();
    }

private:
    QSettings m_settings;
    QMutex m_mutex{QMutex::Recursive};
};

std::shared_ptr<IniFileManager> manager(const QString& filePath)
{
    return std::make_shared<IniFileManager>(filePath, "UTF-8");
}

const QString& settingsName()
{
    static const QString name = QStringLiteral("QSettings::value, mutex");
    return name;
}

auto managersValue(const std::shared_ptr<IniFileManager>& file, const QString& key)
{
    return [file, key, group = groupName()] { return file->getValue(group, key, QVariant()); };
}

void addHit(Contenders& contenders, int keys)
{
    const QString filePath = fileWithKeys(keys);
    const QString group = groupName();
    const QString key = keyName(keys / 2);
    const QString text = valueText(keys / 2);
    contenders.subject(managersValue(manager(filePath), key), equals(QVariant(text)));

    const auto settings = std::make_shared<LockedSettings>(filePath);
    const QString path = group + QLatin1Char('/') + key;
    contenders
        .peer(
            settingsName(), [settings, path] { return settings->value(path); },
            equals(QVariant(text)))
        .atMost(1.5);

    const auto config = std::make_shared<KConfig>(filePath, KConfig::SimpleConfig);
    const auto configGroup = std::make_shared<KConfigGroup>(config.get(), group);
    contenders
        .peer(
            QStringLiteral("KConfigGroup::readEntry"),
            // The group does not keep the file.
            [config, configGroup, key] { return configGroup->readEntry(key, QString()); },
            equals(text))
        .atMost(1.0);

    const auto ini = std::make_shared<CSimpleIniCaseA>();
    if (ini->LoadFile(filePath.toLocal8Bit().constData()) != SI_OK) {
        qFatal("cannot read %s", qPrintable(filePath));
    }
    contenders.peer(
        QStringLiteral("CSimpleIni::GetValue"),
        [ini, groupBytes = group.toUtf8(), keyBytes = key.toUtf8()] {
            return ini->GetValue(groupBytes.constData(), keyBytes.constData());
        },
        [text](const char* value) { return QString::fromUtf8(value) == text; });

    contenders.peer(
        QStringLiteral("childKeys, value"),
        [settings, group, key] { return settings->listedValue(group, key); },
        equals(QVariant(text)));
}

void addHitManyKeys(Contenders& contenders)
{
    addHit(contenders, 10000);
    contenders
        .peer(QStringLiteral("MiscTools with 1,000 keys"),
              managersValue(manager(fileWithKeys(1000)), keyName(500)),
              equals(QVariant(valueText(500))))
        .atMost(1.3);
}

void addMiss(Contenders& contenders, int keys)
{
    const QString filePath = fileWithKeys(keys);
    const QString group = groupName();
    const QString key = QStringLiteral("NoSuchKey");
    contenders.subject(managersValue(manager(filePath), key), equals(QVariant()));
    const auto settings = std::make_shared<LockedSettings>(filePath);
    contenders
        .peer(
            QStringLiteral("childKeys, message"),
            [settings, group, key] { return settings->listedValue(group, key); },
            equals(QVariant()))
        .noDearer();
}

auto managersValues(const QString& filePath)
{
    return [file = manager(filePath), group = groupName()] { return file->getGroupValues(group); };
}

auto areAllValues(int keys)
{
    return [keys](const QMap<QString, QVariant>& values) {
        QMap<QString, QVariant> expected;
        for (int i = 0; i < keys; ++i) {
            expected.insert(keyName(i), valueText(i));
        }
        return values == expected;
    };
}

void addGroupValues(Contenders& contenders, int keys)
{
    const QString filePath = fileWithKeys(keys);
    contenders.subject(managersValues(filePath), areAllValues(keys));
    const auto settings = std::make_shared<LockedSettings>(filePath);
    contenders
        .peer(
            QStringLiteral("QSettings::childKeys"),
            [settings, group = groupName()] { return settings->childKeys(group); },
            [keys](const QStringList& result) { return result.size() == keys; })
        .atMost(5);
}

void addManyGroupValues(Contenders& contenders)
{
    addGroupValues(contenders, 10000);
    contenders
        .peer(QStringLiteral("MiscTools with 1,000 keys"), managersValues(fileWithKeys(1000)),
              areAllValues(1000))
        .atMost(12);
}

// Of the last section, so that all are looked at.
void addIndexedValue(Contenders& contenders, int sections)
{
    const QString filePath = fileWithSections(sections);
    contenders.subject(
        [file = manager(filePath), key = QStringLiteral("Name"), index = sections - 1] {
            return file->getValueString(index, key, QString());
        },
        equals(valueText(sections - 1)));
    const auto settings = std::make_shared<LockedSettings>(filePath);
    contenders
        .peer(
            QStringLiteral("QSettings::childGroups"),
            [settings] { return settings->childGroups(); },
            [sections](const QStringList& result) { return result.size() == sections; })
        .atMost(5);
}

/*
 * One file under many names. QSettings keeps what it parsed for the thirty files that were closed
 * last, so a file is only read again under a name that was not used for a while.
 */
class FileOfManyNames
{
public:
    explicit FileOfManyNames(const QString& filePath, const QString& prefix)
    {
        for (int i = 0; i < 40; ++i) {
            const QString name = QStringLiteral("%1.%2-%3").arg(filePath, prefix).arg(i);
            if (!QFile::exists(name)) {
                std::filesystem::create_hard_link(filePath.toStdString(), name.toStdString());
            }
            m_names.append(name);
        }
    }

    const QString& next() { return m_names.at(m_next++ % m_names.size()); }

private:
    QStringList m_names;
    int m_next = 0;
};

void addFirstRead(Contenders& contenders, int bytes)
{
    const QString filePath = fileOfSize(bytes);
    const QString group = groupName();
    const QString key = keyName(25);
    const auto names = [filePath](const QString& prefix) {
        return std::make_shared<FileOfManyNames>(filePath, prefix);
    };
    contenders.subject(
        [files = names(QStringLiteral("subject")), group, key] {
            const IniFileManager file(files->next(), "UTF-8");
            return file.getValue(group, key, QVariant());
        },
        equals(QVariant(valueText(25))));
    contenders
        .peer(
            QStringLiteral("QSettings, value"),
            [files = names(QStringLiteral("settings")), path = group + QLatin1Char('/') + key] {
                QSettings settings(files->next(), QSettings::IniFormat);
                settings.setIniCodec("UTF-8");
                return settings.value(path);
            },
            equals(QVariant(valueText(25))))
        .atMost(1.2);
    contenders.peer(
        QStringLiteral("KConfig, readEntry"),
        [filePath, group, key] {
            const KConfig config(filePath, KConfig::SimpleConfig);
            return KConfigGroup(&config, group).readEntry(key, QString());
        },
        equals(valueText(25)));
}

QByteArray repeated(const QByteArray& line, int bytes)
{
    return line.repeated(bytes / line.size() + 1).left(bytes - 1) + '\n';
}

QByteArray contentOf(const QString& filePath)
{
    QFile file(filePath);
    if (!file.open(QIODevice::ReadOnly)) {
        qFatal("cannot read %s", qPrintable(filePath));
    }
    return file.readAll();
}

void cleanUpLiterally(const QString& filePath)
{
    QFile source(filePath);
    if (!source.open(QIODevice::ReadOnly | QIODevice::Text)) {
        qFatal("cannot read %s", qPrintable(filePath));
    }
    QString text = QString::fromUtf8(source.readAll());
    source.close();
    for (const auto cleanUpFunction : qAsConst(IniFileManager::sm_CleanUpFunctions)) {
        cleanUpFunction(text);
    }
    QSaveFile target(filePath);
    if (!target.open(QIODevice::WriteOnly | QIODevice::Text) || target.write(text.toUtf8()) < 0 ||
        !target.commit()) {
        qFatal("cannot write %s", qPrintable(filePath));
    }
}

void addCleanUp(Contenders& contenders, int bytes)
{
    const QString name = QStringLiteral("clean-up-%1.ini").arg(bytes);
    const QString original = Workspace::file(name, [bytes] {
        return repeated("Name=first%20part, second part %23 12, and so on\r\n", bytes);
    });
    // As it is in the end; without it in memory, as the peak of memory is measured.
    const QString cleanFile = Workspace::file(name + QStringLiteral(".clean"), [original] {
        return contentOf(original).replace("\r\n", "\n").replace("%23", "#").replace(',', ' ');
    });
    const QString filePath = Workspace::path(name + QStringLiteral(".work"));
    contenders.subject(
        [filePath] {
            IniFileManager::cleanUp(filePath);
            return filePath;
        },
        [cleanFile](const QString& path) { return contentOf(path) == contentOf(cleanFile); },
        [original, filePath] {
            std::filesystem::copy_file(original.toStdString(), filePath.toStdString(),
                                       std::filesystem::copy_options::overwrite_existing);
        });
    contenders
        .peer(
            QStringLiteral("QFile, functions, QSaveFile"),
            [filePath] {
                cleanUpLiterally(filePath);
                return filePath;
            },
            [cleanFile](const QString& path) { return contentOf(path) == contentOf(cleanFile); },
            [original, filePath] {
                std::filesystem::copy_file(original.toStdString(), filePath.toStdString(),
                                           std::filesystem::copy_options::overwrite_existing);
            })
        .noDearer();
}

// Each read of a key without a group lists all of them.
void addTopLevelHit(Contenders& contenders, int keys)
{
    const QString filePath = Workspace::file(QStringLiteral("top-level-%1.ini").arg(keys), [keys] {
        QByteArray content;
        for (int i = 0; i < keys; ++i) {
            content += keyName(i).toUtf8() + '=' + valueText(i).toUtf8() + '\n';
        }
        return content;
    });
    const QString key = keyName(keys / 2);
    const QString text = valueText(keys / 2);
    contenders.subject(
        [file = manager(filePath), key] { return file->getGeneralValue(key, QVariant()); },
        equals(QVariant(text)));
    contenders.peer(
        QStringLiteral("MiscTools, getGroupValues of all"),
        [file = manager(filePath)] { return file->getGroupValues(QString()); }, areAllValues(keys));
}

template <typename Add>
Operation operation(const QString& name, Add add, int size)
{
    return Operation(name, [add, size](Contenders& contenders) { add(contenders, size); });
}

constexpr int kibi = 1024;
constexpr int mebi = 1024 * kibi;

Operations operations()
{
    Operations all = {
        operation(QStringLiteral("getValue, hit, 1,000 keys"), addHit, 1000).inTable().counted(100),
        Operation(QStringLiteral("getValue, hit, 10,000 keys"), addHitManyKeys)
            .inTable()
            .counted(20),
        operation(QStringLiteral("getValue, miss, 1,000 keys"), addMiss, 1000)
            .logs(1)
            .inTable()
            .counted(100),
        operation(QStringLiteral("getValue, miss, 10,000 keys"), addMiss, 10000).logs(1).inTable(),
        operation(QStringLiteral("getGroupValues, 100 keys"), addGroupValues, 100).counted(10),
        operation(QStringLiteral("getGroupValues, 1,000 keys"), addGroupValues, 1000)
            .inTable()
            .counted(1),
        Operation(QStringLiteral("getGroupValues, 10,000 keys"), addManyGroupValues).inTable(),
        // Not counted: how its many small allocations fit into the heap, and so how many
        // instructions they take, depends on the length of the program's path (by 3 %).
        operation(QStringLiteral("indexed getter, 1,000 sections"), addIndexedValue, 1000)
            .inTable(),
        operation(QStringLiteral("open, one read, 1 MiB"), addFirstRead, mebi)
            .inTable()
            .counted(5)
            .peakMeasured(),
        operation(QStringLiteral("cleanUp, 1 MiB"), addCleanUp, mebi).counted(2),
        operation(QStringLiteral("cleanUp, 250 KB"), addCleanUp, 250 * 1000).inTable(),
        operation(QStringLiteral("getGeneralValue, hit, 2,000 keys"), addTopLevelHit, 2000)
            .inTable()
            .counted(10),
    };
    const QString keys = QStringLiteral("keys");
    for (const int size : {10, 100, 1000, 10000}) {
        all.push_back(operation(QStringLiteral("getValue plot, %1").arg(size), addHit, size)
                          .inPlot(QStringLiteral("getValue, hit"), keys, size));
        all.push_back(
            operation(QStringLiteral("getGroupValues plot, %1").arg(size), addGroupValues, size)
                .inPlot(QStringLiteral("getGroupValues"), keys, size));
        all.push_back(
            operation(QStringLiteral("indexed getter plot, %1").arg(size), addIndexedValue, size)
                .inPlot(QStringLiteral("indexed getter"), QStringLiteral("sections"), size));
    }
    for (const int size : {kibi, 16 * kibi, 256 * kibi, 4 * mebi}) {
        all.push_back(operation(QStringLiteral("open plot, %1").arg(size), addFirstRead, size)
                          .inPlot(QStringLiteral("open, one read"), QStringLiteral("bytes"), size));
        all.push_back(operation(QStringLiteral("cleanUp plot, %1").arg(size), addCleanUp, size)
                          .inPlot(QStringLiteral("cleanUp"), QStringLiteral("bytes"), size));
    }
    return all;
}

} // namespace

int main(int argc, char* argv[])
{
    return Program::run(argc, argv, operations());
}
