#include "Benchmark.h"
#include "IniFileManager.h"

#include <KConfig>
#include <KConfigGroup>

// The converter that the distribution's package is built with.
#define SI_CONVERT_ICU
#include <SimpleIni.h>

#include <filesystem>

using namespace Benchmark;

class tst_bench_IniFileManager : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void getValueHit_data();
    void getValueHit() { runRow(); }
    void getValueMiss_data();
    void getValueMiss() { runRow(); }
    void getGroupValues_data();
    void getGroupValues() { runRow(); }
    void indexedGetter_data();
    void indexedGetter() { runRow(); }
    void getGeneralValue_data();
    void getGeneralValue() { runRow(); }
    void openAndRead_data();
    void openAndRead() { runRow(); }
    void cleanUp_data();
    void cleanUp() { runRow(); }
};

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

// One section with this many keys.
QString fileWithKeys(int keys)
{
    return file(QStringLiteral("keys-%1.ini").arg(keys), [keys](QIODevice& file) {
        file.write("[Group]\n");
        writeKeys(file, keys);
    });
}

QString fileWithTopLevelKeys(int keys)
{
    return file(QStringLiteral("top-level-%1.ini").arg(keys),
                [keys](QIODevice& file) { writeKeys(file, keys); });
}

// Each section has its own number as Position.
QString fileWithSections(int sections)
{
    return file(QStringLiteral("sections-%1.ini").arg(sections), [sections](QIODevice& file) {
        const QString section = QStringLiteral("[%1]\nPosition=%2\nName=%3\n");
        for (int i = 0; i < sections; ++i) {
            file.write(section.arg(keyName(i)).arg(i).arg(valueText(i)).toUtf8());
        }
    });
}

// Sections of fifty keys, in a file with forty names. QSettings keeps what it parsed for the thirty
// files that were closed last, so it only reads a file again under a name not used for a while.
constexpr int names = 40;

QString name(const QString& filePath, int number)
{
    return filePath + QLatin1Char('-') + QString::number(number % names);
}

QString fileWithManyNames(int bytes)
{
    const QString result = file(QStringLiteral("size-%1.ini").arg(bytes), [bytes](QIODevice& file) {
        file.write("[Group]\n");
        writeKeys(file, 50);
        for (int i = 0; file.pos() < bytes; ++i) {
            file.write("[Other" + QByteArray::number(i) + "]\n");
            writeKeys(file, 50);
        }
    });
    for (int i = 0; i < names && !QFile::exists(name(result, i)); ++i) {
        std::filesystem::create_hard_link(result.toStdString(), name(result, i).toStdString());
    }
    return result;
}

QString nextName(const QString& filePath)
{
    static int last = 0;
    return name(filePath, ++last);
}

// The plain way to a value that may be missing.
QVariant listedValue(QSettings& settings, const QString& key)
{
    QVariant value;
    settings.beginGroup(group);
    if (settings.childKeys().contains(key)) {
        value = settings.value(key);
    } else {
        qWarning() << "Ini-File" << settings.fileName() << "Key" << key << "not found in" << group;
    }
    settings.endGroup();
    return value;
}

// Before each call the file is copied, which is measured as well.
void measureCleanUp(int bytes, void (*cleanUp)(const QString& filePath))
{
    const auto lines = [bytes](const QString& name, const QByteArray& line) {
        return file(name.arg(bytes), [bytes, &line](QIODevice& file) {
            for (int i = 0; i < bytes / 50; ++i) {
                file.write(line);
            }
        });
    };
    const QString original = lines(QStringLiteral("original-%1.ini"),
                                   "Name=first%20part, second part %23 12, and so on\r\n");
    const QString expected = lines(QStringLiteral("expected-%1.ini"),
                                   "Name=first%20part  second part # 12  and so on\n");
    const QString copy = path(QStringLiteral("copy.ini"));
    const auto copyAndCleanUp = [&original, &copy, cleanUp] {
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

void tst_bench_IniFileManager::getValueHit_data()
{
    const auto misctools = [](int keys) {
        const IniFileManager file(fileWithKeys(keys), "UTF-8");
        const QString key = keyName(keys / 2);
        measure([&] { return file.getValue(group, key, QVariant()); },
                QVariant(valueText(keys / 2)));
    };
    const auto settings = [](int keys) {
        const QSettings file(fileWithKeys(keys), QSettings::IniFormat);
        QMutex mutex(QMutex::Recursive);
        const QString key = group + QLatin1Char('/') + keyName(keys / 2);
        const auto value = [&] {
            const QMutexLocker locker(&mutex);
            return file.value(key);
        };
        measure(value, QVariant(valueText(keys / 2)));
    };
    const auto kconfig = [](int keys) {
        const KConfig file(fileWithKeys(keys), KConfig::SimpleConfig);
        const KConfigGroup section(&file, group);
        const QString key = keyName(keys / 2);
        measure([&] { return section.readEntry(key, QString()); }, valueText(keys / 2));
    };
    const auto simpleIni = [](int keys) {
        CSimpleIniCaseA file;
        file.LoadFile(fileWithKeys(keys).toLocal8Bit().constData());
        const QByteArray key = keyName(keys / 2).toUtf8();
        const auto check = [keys](const char* value) {
            QCOMPARE(QString::fromUtf8(value), valueText(keys / 2));
        };
        measureChecked([&] { return file.GetValue("Group", key.constData()); }, check);
    };
    const auto listing = [](int keys) {
        QSettings file(fileWithKeys(keys), QSettings::IniFormat);
        const QString key = keyName(keys / 2);
        measure([&] { return listedValue(file, key); }, QVariant(valueText(keys / 2)));
    };
    addRows({{"MiscTools", misctools},
             {"QSettings::value, mutex", settings},
             {"KConfigGroup::readEntry", kconfig},
             {"CSimpleIni::GetValue", simpleIni},
             {"childKeys, value", listing}},
            "keys", {10, 100, 1000, 10000});
}

void tst_bench_IniFileManager::getValueMiss_data()
{
    const auto misctools = [](int keys) {
        const IniFileManager file(fileWithKeys(keys), "UTF-8");
        measure([&] { return file.getValue(group, missingKey, QVariant()); }, QVariant(), 1);
    };
    const auto listing = [](int keys) {
        QSettings file(fileWithKeys(keys), QSettings::IniFormat);
        measure([&] { return listedValue(file, missingKey); }, QVariant(), 1);
    };
    addRows({{"MiscTools", misctools}, {"childKeys, message", listing}}, "keys", {1000, 10000});
}

void tst_bench_IniFileManager::getGroupValues_data()
{
    const auto misctools = [](int keys) {
        const IniFileManager file(fileWithKeys(keys), "UTF-8");
        measure([&] { return file.getGroupValues(group); }, allValues(keys));
    };
    const auto settings = [](int keys) {
        QSettings file(fileWithKeys(keys), QSettings::IniFormat);
        file.beginGroup(group);
        measure([&] { return file.childKeys(); }, QStringList(allValues(keys).keys()));
    };
    addRows({{"MiscTools", misctools}, {"QSettings::childKeys", settings}}, "keys",
            {10, 100, 1000, 10000});
}

// Of the last section, so that all are examined.
void tst_bench_IniFileManager::indexedGetter_data()
{
    const auto misctools = [](int sections) {
        const IniFileManager file(fileWithSections(sections), "UTF-8");
        const QString key = QStringLiteral("Name");
        measure([&] { return file.getValueString(sections - 1, key, QString()); },
                valueText(sections - 1));
    };
    const auto settings = [](int sections) {
        const QSettings file(fileWithSections(sections), QSettings::IniFormat);
        measure([&] { return file.childGroups(); }, QStringList(allValues(sections).keys()));
    };
    addRows({{"MiscTools", misctools}, {"QSettings::childGroups", settings}}, "sections",
            {10, 100, 1000, 10000});
}

// Each read of a key without a group lists all of them.
void tst_bench_IniFileManager::getGeneralValue_data()
{
    const auto misctools = [](int keys) {
        const IniFileManager file(fileWithTopLevelKeys(keys), "UTF-8");
        const QString key = keyName(keys / 2);
        measure([&] { return file.getGeneralValue(key, QVariant()); },
                QVariant(valueText(keys / 2)));
    };
    const auto wholeGroup = [](int keys) {
        const IniFileManager file(fileWithTopLevelKeys(keys), "UTF-8");
        measure([&] { return file.getGroupValues(QString()); }, allValues(keys));
    };
    addRows({{"MiscTools", misctools}, {"getGroupValues of all", wholeGroup}}, "keys", {1000});
}

void tst_bench_IniFileManager::openAndRead_data()
{
    static const QString key = keyName(25);
    static const QString text = valueText(25);
    const auto misctools = [](int bytes) {
        const QString filePath = fileWithManyNames(bytes);
        const auto read = [&filePath] {
            return IniFileManager(nextName(filePath), "UTF-8").getValue(group, key, QVariant());
        };
        measure(read, QVariant(text));
    };
    const auto settings = [](int bytes) {
        const QString filePath = fileWithManyNames(bytes);
        const auto read = [&filePath] {
            QSettings file(nextName(filePath), QSettings::IniFormat);
            file.setIniCodec("UTF-8");
            return file.value(group + QLatin1Char('/') + key);
        };
        measure(read, QVariant(text));
    };
    const auto kconfig = [](int bytes) {
        const QString filePath = fileWithManyNames(bytes);
        const auto read = [&filePath] {
            const KConfig file(nextName(filePath), KConfig::SimpleConfig);
            return KConfigGroup(&file, group).readEntry(key, QString());
        };
        measure(read, text);
    };
    addRows(
        {{"MiscTools", misctools}, {"QSettings, value", settings}, {"KConfig, readEntry", kconfig}},
        "bytes", {kibi, 32 * kibi, mebi});
}

void tst_bench_IniFileManager::cleanUp_data()
{
    const auto misctools = [](int bytes) { measureCleanUp(bytes, &IniFileManager::cleanUp); };
    const auto literal = [](int bytes) { measureCleanUp(bytes, &cleanUpLiterally); };
    addRows({{"MiscTools", misctools}, {"QFile, functions, QSaveFile", literal}}, "bytes",
            {kibi, 32 * kibi, 256 * kibi, mebi});
}

QTEST_GUILESS_MAIN(tst_bench_IniFileManager)
#include "tst_bench_IniFileManager.moc"
