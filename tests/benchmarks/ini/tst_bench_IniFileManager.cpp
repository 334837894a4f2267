#include "Benchmark.h"
#include "IniFileManager.h"

#include <KConfig>
#include <KConfigGroup>

// The converter that the distribution's package uses.
#define SI_CONVERT_ICU
#include <SimpleIni.h>

#include <filesystem>

using namespace Benchmark;

namespace {

const QString group = QStringLiteral("Group");
const QString missingKey = QStringLiteral("NoSuchKey");

QString keyName(int number)
{
    return QStringLiteral("Key%1").arg(number, 6, 10, QLatin1Char('0'));
}

QString valueText(int number)
{
    return QStringLiteral("value of %1").arg(number);
}

QVariant value(int number)
{
    return valueText(number);
}

QMap<QString, QVariant> allValues(int keys)
{
    QMap<QString, QVariant> result;
    for (int i = 0; i < keys; ++i) {
        result.insert(keyName(i), valueText(i));
    }
    return result;
}

void writeKeys(QIODevice& file, int keys)
{
    for (int i = 0; i < keys; ++i) {
        file.write(keyName(i).toUtf8() + '=' + valueText(i).toUtf8() + '\n');
    }
}

// A file with this number of keys, in one section or at the top level.
QString fileWithKeys(int keys, const QByteArray& section = "[Group]\n")
{
    const QString name = QStringLiteral("%1-keys-%2.ini").arg(keys).arg(section.size());
    return file(name, [keys, section](QIODevice& file) {
        file.write(section);
        writeKeys(file, keys);
    });
}

// A file with this number of sections; the Position of each is its number.
QString fileWithSections(int sections)
{
    return file(QStringLiteral("sections-%1.ini").arg(sections), [sections](QIODevice& file) {
        const QString section = QStringLiteral("[%1]\nPosition=%2\nName=%3\n");
        for (int i = 0; i < sections; ++i) {
            file.write(section.arg(keyName(i)).arg(i).arg(valueText(i)).toUtf8());
        }
    });
}

// Sections of fifty keys, in a file with forty names. QSettings caches the thirty files that were
// closed last, so it reads a file again only under a name that was not used recently.
class FileWithManyNames
{
public:
    explicit FileWithManyNames(int bytes)
        : m_path(file(QStringLiteral("size-%1.ini").arg(bytes), [bytes](QIODevice& file) {
            file.write("[Group]\n");
            writeKeys(file, 50);
            for (int i = 0; file.pos() < bytes; ++i) {
                file.write("[Other" + QByteArray::number(i) + "]\n");
                writeKeys(file, 50);
            }
        }))
    {
        while (!QFile::exists(next())) {
            std::filesystem::create_hard_link(m_path.toStdString(), name().toStdString());
        }
    }

    QString next()
    {
        ++theNumber;
        return name();
    }

private:
    QString name() const { return m_path + QString::number(theNumber % 40); }

    // Shared: Qt Test calls a test function, which creates such a file, several times.
    static inline int theNumber = 0;
    QString m_path;
};

// The simple way to read a value that may be missing.
QVariant listedValue(QSettings& settings, const QString& key)
{
    QVariant result;
    settings.beginGroup(group);
    if (settings.childKeys().contains(key)) {
        result = settings.value(key);
    } else {
        qWarning() << "Ini-File" << settings.fileName() << "Key" << key << "not found in" << group;
    }
    settings.endGroup();
    return result;
}

// The measurement includes copying the file before each call.
template <void (*cleanUp)(const QString& filePath)>
void measureCleanUp(int bytes)
{
    const auto lines = [bytes](const QString& name, const QByteArray& line) {
        return file(name.arg(bytes),
                    [&](QIODevice& file) { file.write(line.repeated(bytes / 50)); });
    };
    const QString original = lines(QStringLiteral("original-%1.ini"),
                                   "Name=first%20part, second part %23 12, and so on\r\n");
    const QString expected = lines(QStringLiteral("expected-%1.ini"),
                                   "Name=first%20part  second part # 12  and so on\n");
    const QString copy = path(QStringLiteral("copy.ini"));
    const auto copyAndCleanUp = [&] {
        std::filesystem::copy_file(original.toStdString(), copy.toStdString(),
                                   std::filesystem::copy_options::overwrite_existing);
        cleanUp(copy);
        return copy;
    };
    measureChecked(copyAndCleanUp, [&expected](const QString& result) {
        constexpr auto sha1 = QCryptographicHash::Sha1;
        QCOMPARE(digest(result, sha1), digest(expected, sha1));
    });
}

void cleanUpLiterally(const QString& filePath)
{
    QString text = QString::fromUtf8(content(filePath));
    for (const auto cleanUpFunction : qAsConst(IniFileManager::sm_CleanUpFunctions)) {
        cleanUpFunction(text);
    }
    QSaveFile target(filePath);
    target.open(QIODevice::WriteOnly | QIODevice::Text);
    target.write(text.toUtf8());
    target.commit();
}

} // namespace

class tst_bench_IniFileManager : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void getValueHit() { runRow(); }
    void getValueHit_data()
    {
        const Rows rows("keys", {10, 100, 1000, 10000});
        rows.add("MiscTools", [](int keys) {
            const IniFileManager file(fileWithKeys(keys), "UTF-8");
            const QString key = keyName(keys / 2);
            measure([&] { return file.getValue(group, key, QVariant()); }, value(keys / 2));
        });
        rows.add("QSettings::value, mutex", [](int keys) {
            const QSettings file(fileWithKeys(keys), QSettings::IniFormat);
            QMutex mutex(QMutex::Recursive);
            const QString key = group + QLatin1Char('/') + keyName(keys / 2);
            const auto lockedValue = [&] {
                const QMutexLocker locker(&mutex);
                return file.value(key);
            };
            measure(lockedValue, value(keys / 2));
        });
        rows.add("KConfigGroup::readEntry", [](int keys) {
            const KConfig file(fileWithKeys(keys), KConfig::SimpleConfig);
            const KConfigGroup section(&file, group);
            const QString key = keyName(keys / 2);
            measure([&] { return section.readEntry(key, QString()); }, valueText(keys / 2));
        });
        rows.add("CSimpleIni::GetValue", [](int keys) {
            CSimpleIniCaseA file;
            file.LoadFile(fileWithKeys(keys).toLocal8Bit().constData());
            const QByteArray key = keyName(keys / 2).toUtf8();
            const auto check = [keys](const char* result) {
                QCOMPARE(QString::fromUtf8(result), valueText(keys / 2));
            };
            measureChecked([&] { return file.GetValue("Group", key.constData()); }, check);
        });
        rows.add("childKeys, value", [](int keys) {
            QSettings file(fileWithKeys(keys), QSettings::IniFormat);
            const QString key = keyName(keys / 2);
            measure([&] { return listedValue(file, key); }, value(keys / 2));
        });
    }

    void getValueMiss() { runRow(); }
    void getValueMiss_data()
    {
        const Rows rows("keys", {1000, 10000});
        rows.add("MiscTools", [](int keys) {
            const IniFileManager file(fileWithKeys(keys), "UTF-8");
            measure([&] { return file.getValue(group, missingKey, QVariant()); }, QVariant(), 1);
        });
        rows.add("childKeys, message", [](int keys) {
            QSettings file(fileWithKeys(keys), QSettings::IniFormat);
            measure([&] { return listedValue(file, missingKey); }, QVariant(), 1);
        });
    }

    void getGroupValues() { runRow(); }
    void getGroupValues_data()
    {
        const Rows rows("keys", {10, 100, 1000, 10000});
        rows.add("MiscTools", [](int keys) {
            const IniFileManager file(fileWithKeys(keys), "UTF-8");
            measure([&] { return file.getGroupValues(group); }, allValues(keys));
        });
        rows.add("QSettings::childKeys", [](int keys) {
            QSettings file(fileWithKeys(keys), QSettings::IniFormat);
            file.beginGroup(group);
            measure([&] { return file.childKeys(); }, QStringList(allValues(keys).keys()));
        });
    }

    // Reads from the last section, so that all sections are examined.
    void indexedGetter() { runRow(); }
    void indexedGetter_data()
    {
        const Rows rows("sections", {10, 100, 1000, 10000});
        rows.add("MiscTools", [](int sections) {
            const IniFileManager file(fileWithSections(sections), "UTF-8");
            const QString key = QStringLiteral("Name");
            measure([&] { return file.getValueString(sections - 1, key, QString()); },
                    valueText(sections - 1));
        });
        rows.add("QSettings::childGroups", [](int sections) {
            const QSettings file(fileWithSections(sections), QSettings::IniFormat);
            measure([&] { return file.childGroups(); }, QStringList(allValues(sections).keys()));
        });
    }

    // Each read of a key without a group lists all such keys.
    void getGeneralValue() { runRow(); }
    void getGeneralValue_data()
    {
        const Rows rows("keys", {1000});
        rows.add("MiscTools", [](int keys) {
            const IniFileManager file(fileWithKeys(keys, QByteArray()), "UTF-8");
            const QString key = keyName(keys / 2);
            measure([&] { return file.getGeneralValue(key, QVariant()); }, value(keys / 2));
        });
        rows.add("getGroupValues of all", [](int keys) {
            const IniFileManager file(fileWithKeys(keys, QByteArray()), "UTF-8");
            measure([&] { return file.getGroupValues(QString()); }, allValues(keys));
        });
    }

    void openAndRead() { runRow(); }
    void openAndRead_data()
    {
        static const QString key = keyName(25);
        const Rows rows("bytes", {kibi, 32 * kibi, mebi});
        rows.add("MiscTools", [](int bytes) {
            FileWithManyNames file(bytes);
            const auto read = [&file] {
                return IniFileManager(file.next(), "UTF-8").getValue(group, key, QVariant());
            };
            measure(read, value(25));
        });
        rows.add("QSettings, value", [](int bytes) {
            FileWithManyNames file(bytes);
            const auto read = [&file] {
                QSettings settings(file.next(), QSettings::IniFormat);
                settings.setIniCodec("UTF-8");
                return settings.value(group + QLatin1Char('/') + key);
            };
            measure(read, value(25));
        });
        rows.add("KConfig, readEntry", [](int bytes) {
            FileWithManyNames file(bytes);
            const auto read = [&file] {
                const KConfig config(file.next(), KConfig::SimpleConfig);
                return KConfigGroup(&config, group).readEntry(key, QString());
            };
            measure(read, valueText(25));
        });
    }

    void cleanUp() { runRow(); }
    void cleanUp_data()
    {
        const Rows rows("bytes", {kibi, 32 * kibi, 256 * kibi, mebi});
        rows.add("MiscTools", &measureCleanUp<&IniFileManager::cleanUp>);
        rows.add("QFile, functions, QSaveFile", &measureCleanUp<&cleanUpLiterally>);
    }
};

QTEST_GUILESS_MAIN(tst_bench_IniFileManager)
#include "tst_bench_IniFileManager.moc"
