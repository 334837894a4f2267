#include "IniCall.h"
#include "IniFileManager.h"
#include "LiteralIniFile.h"
#include "TestCase.h"

#include <QtCore/QRandomGenerator>

namespace {

template <typename T, int N>
const T& pick(QRandomGenerator& random, const T (&choices)[N])
{
    return choices[random.bounded(N)];
}

// Random files of elements that are hard for INI parsers.
QByteArray hostileFile(QRandomGenerator& random)
{
    static const QByteArray pieces[] = {
        "[A]\n",
        "[A/B]\n",
        "[A\\B]\n",
        "[B]\n",
        "[General]\n",
        "[%General]\n",
        "[general]\n",
        "[%general]\n",
        "[]\n",
        "[/]\n",
        "[A//B]\n",
        "[A/]\n",
        "[/A]\n",
        "[ A ]\n",
        "[%41]\n",
        "[A\n",
        "[A] k=9\n",
        "[A%2FB]\n",
        "[\xC3\x84]\n",
        "[%U00C4]\n",
        "Position=0\n",
        "Position=0\n",
        "Position=1\n",
        "Position=1\n",
        "Position=2\n",
        "Position=-1\n",
        "Position=x\n",
        "Position=\n",
        "Position=0,1\n",
        "Position=4294967297\n",
        "position=1\n",
        "B\\Position=1\n",
        "[C]\nPosition=0\n[B]\nPosition=1\n[A]\nPosition=2\n",
        "k=1\n",
        "k=2\n",
        "K=3\n",
        "B\\k=4\n",
        "B/k=5\n",
        "[A/k]\n",
        "[A/B/C]\n",
        "[A/%00]\n",
        "[A%00]\n",
        "%00=1\n",
        "A\\%00=1\n",
        "A\\k=6\n",
        "A\\B\\k=7\n",
        "\\k=8\n",
        "k\\=9\n",
        "=5\n",
        "k\n",
        "k=\n",
        "n=abc\n",
        "n=0x10\n",
        "n=4294967297\n",
        "n=-7\n",
        "n= 12 \n",
        "n=1.5\n",
        "l=a,b,c\n",
        "l=\"a,b\"\n",
        "l=,\n",
        "i=@Invalid()\n",
        "b=@ByteArray(x)\n",
        "v=@Variant(\\0\\0\\0\\x2\\0\\0\\0\\x7)\n",
        "s=@@x\n",
        "; k=1\n",
        "# k=1\n",
        "k=1;2\n",
        "q=\"open\n",
        "e=\\x41\\n\\\n",
        "%6B=10\n",
        "%U006B=11\n",
        "k%=12\n",
        "x y=13\n",
        "\xC3\x84=14\n",
        "k=\xC3\x84\n",
        "k=\xFF\n",
        "\r\n",
        "k=15\r",
        "t=true\n",
        "t=off\n",
        "\n",
        "  k  =  16\n",
        "==\n",
    };
    QByteArray file;
    if (random.bounded(8) == 0) {
        file += "\xEF\xBB\xBF";
    }
    const int count = random.bounded(25);
    for (int i = 0; i < count; ++i) {
        file += pick(random, pieces);
    }
    if (random.bounded(16) == 0) {
        file.insert(random.bounded(file.size() + 1), '\0');
    }
    return file;
}

QString anyKey(QRandomGenerator& random)
{
    static const QString keys[] = {
        QString(),
        "k",
        "k",
        "K",
        "n",
        "l",
        "i",
        "v",
        "b",
        "t",
        "s",
        "e",
        "q",
        "A",
        "B",
        "A/k",
        "B/k",
        "/k",
        "k/",
        "B//k",
        "/",
        "//",
        "x y",
        QString(QChar(QChar::Null)),
        QStringLiteral("\u00C4"),
        "%6B",
        "General",
        "Position",
        "Position",
    };
    return pick(random, keys);
}

QString anyGroup(QRandomGenerator& random)
{
    static const QString groups[] = {
        QString(),
        "A",
        "A",
        "A/B",
        "A/B",
        "B",
        "A/",
        "/A",
        "A//B",
        "/",
        "//",
        "General",
        "general",
        "%General",
        "%general",
        "a",
        QStringLiteral("\u00C4"),
        "k",
        "Z",
        "A/B/C",
        QString(QChar(QChar::Null)),
        QStringLiteral("A") + QChar(QChar::Null),
    };
    return pick(random, groups);
}

QVariant anyValue(QRandomGenerator& random)
{
    static const QVariant values[] = {
        QVariant(),
        QVariant(7),
        QVariant(0),
        QVariant(1),
        QVariant(true),
        QVariant(1.5),
        QVariant(QStringLiteral("text")),
        QVariant(QStringLiteral("a,b; c")),
        QVariant(QStringLiteral("@Invalid()")),
        QVariant(QStringLiteral("\u00C4\u20AC")),
        QVariant(QString()),
        QVariant(QByteArray("a\0b", 3)),
        QVariant(QStringList()),
        QVariant(QStringList{"one"}),
        QVariant(QStringList{"one", "@two"}),
        QVariant(QVariantList{1, "b"}),
    };
    return pick(random, values);
}

QString anyFilter(QRandomGenerator& random)
{
    static const QString filters[] = {
        QString(), "A", ".", "a|B", ".*B", "(", "$", "%",
    };
    return pick(random, filters);
}

// QSettings detects a changed file by its size and time. Two changes within the resolution of the
// clock would be detected in one run and not in another.
void setUniqueTime(const QString& filePath, int number)
{
    QFile file(filePath);
    const QDateTime time = QDateTime::fromSecsSinceEpoch(1000000000 + number);
    if (!file.open(QIODevice::ReadWrite) ||
        !file.setFileTime(time, QFileDevice::FileModificationTime)) {
        qFatal("cannot set the time of %s", qPrintable(filePath));
    }
}

// Makes one random call on file. It depends only on the random numbers, so the same seed causes the
// same calls on the library and the literal version.
template <typename File>
QString callAnything(File& file, QRandomGenerator& random)
{
    IniCall call;
    call.operation = random.bounded(IniCall::operations);
    call.group = anyGroup(random);
    call.key = anyKey(random);
    call.value = anyValue(random);
    call.filter = anyFilter(random);
    call.index = random.bounded(-2, 5);
    return call.on(file);
}

} // namespace

// Makes the same random calls on the same random files with the library and with the literal
// version: results, messages and files must be identical.
class tst_IniFileManagerDifferential : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void randomCallsMatchTheLiteralVersion();
    void sectionsOfAddedKeysAreParsed();

private:
    template <typename File>
    QStringList play(quint32 seed, const QByteArray& content, const QString& name);
};

template <typename File>
QStringList tst_IniFileManagerDifferential::play(quint32 seed, const QByteArray& content,
                                                 const QString& name)
{
    static const char* const codecs[] = {nullptr, nullptr, "UTF-8", "ISO 8859-15"};
    QRandomGenerator random(seed);
    const QString filePath = writeFile(name, content);
    const QString otherPath = path("other");
    QStringList record;
    const auto takeMessages = [&] {
        for (const Message& message : messages().take()) {
            record += Message(message).text.replace(filePath, otherPath);
        }
    };
    {
        File file(filePath, pick(random, codecs));
        File sameFile(filePath, nullptr);
        const int calls = 1 + random.bounded(30);
        for (int i = 0; i < calls; ++i) {
            // Sometimes through a second object on the same path, or after another writer changed
            // the file.
            switch (random.bounded(12)) {
            case 0:
                record += callAnything(sameFile, random);
                break;
            case 1:
                setUniqueTime(writeFile(name, hostileFile(random)), i);
                break;
            default:
                record += callAnything(file, random);
                break;
            }
            takeMessages();
        }
    }
    takeMessages(); // the last flush may parse and warn, too
    record += QString::fromLatin1(readFile(filePath).toPercentEncoding());
    return record;
}

void tst_IniFileManagerDifferential::randomCallsMatchTheLiteralVersion()
{
    const quint32 count = quint32(rounds(4000));
    for (quint32 seed = 0; seed < count; ++seed) {
        QRandomGenerator random(seed);
        const QByteArray content = hostileFile(random);
        // Unique names per round, because QSettings caches the files that it has read.
        const QString number = QString::number(seed);
        const QStringList literal = play<LiteralIniFile>(seed, content, "literal" + number);
        const QStringList actual = play<IniFileManager>(seed, content, "library" + number);
        if (actual != literal) {
            for (int i = 0; i < qMin(actual.size(), literal.size()); ++i) {
                QVERIFY2(
                    actual.at(i) == literal.at(i),
                    qPrintable(QStringLiteral("seed %1, entry %2:\n   library %3\n   literal %4")
                                   .arg(number, QString::number(i), actual.at(i), literal.at(i))));
            }
            QCOMPARE(actual.size(), literal.size());
        }
    }
}

// If two sections contain a key, the section that is parsed last wins. Here that is the top level:
// listing the group first parses [A], although the requested keys were added and need no parsing.
template <typename File>
QStringList readAddedKey(const QString& filePath)
{
    const QString group = "A";
    const QString key = "k";
    File file(filePath, nullptr);
    file.setValue(group, QString(QChar(QChar::Null)), 1); // sorts before all other keys
    file.setValue(group, key, 2);
    return {file.getValueString(group, key, QString()),
            file.getGeneralValueString("first", QString()),
            file.getValueString(group, "x", QString())};
}

void tst_IniFileManagerDifferential::sectionsOfAddedKeysAreParsed()
{
    const QByteArray content = "first=1\nA\\x=root\n[A]\nx=section\n";
    const QStringList expected{"2", "1", "root"};
    QCOMPARE(readAddedKey<LiteralIniFile>(writeFile(QStringLiteral("literal"), content)), expected);
    QCOMPARE(readAddedKey<IniFileManager>(writeFile(QStringLiteral("library"), content)), expected);
}

QTEST_GUILESS_MAIN(tst_IniFileManagerDifferential)
#include "tst_IniFileManagerDifferential.moc"
