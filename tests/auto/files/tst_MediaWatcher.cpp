#include "ChildProcess.h"
#include "MediaWatcher.h"
#include "TestCase.h"
#include "Threads.h"

#include <QtCore/QDirIterator>
#include <QtCore/QMetaMethod>
#include <QtCore/QMetaType>
#include <QtCore/QPointer>
#include <QtCore/QSequentialIterable>
#include <QtCore/QThread>
#include <QtCore/QVariant>

#include <memory>

Q_DECLARE_METATYPE(Qt::ConnectionType)

namespace {

constexpr char listTypeName[] = "QFileInfoList";

QStringList filePaths(const QFileInfoList& files)
{
    QStringList paths;
    for (const QFileInfo& file : files) {
        paths.append(file.filePath());
    }
    return paths;
}

QStringList words(const char* text)
{
    return QString::fromLatin1(text).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

// The results of a watcher, one list per signal.
class Findings
{
public:
    explicit Findings(const MediaWatcher& watcher)
    {
        QObject::connect(
            &watcher, &MediaWatcher::filesFound, &m_context,
            [this](const QFileInfoList& files) { m_signals.append(filePaths(files)); },
            Qt::DirectConnection);
    }

    QVector<QStringList> take()
    {
        const QVector<QStringList> taken = m_signals;
        m_signals.clear();
        return taken;
    }

private:
    Q_DISABLE_COPY(Findings)

    QObject m_context;
    QVector<QStringList> m_signals;
};

} // namespace

class tst_MediaWatcher : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void listTypeIsRegisteredInManyThreads(); // must be first: later functions register the type
    void metaObject();
    void methods();
    void listTypeIsRegistered();
    void listTypeIsASequence();
    void listIsDeliveredToOtherThreads_data();
    void listIsDeliveredToOtherThreads();
    void topDirectoryIsSorted();
    void namesAreSortedByCodeUnit();
    void recursiveResultsAreInFileSystemOrder();
    void filesAreFound_data();
    void filesAreFound();
    void mountPathIsUsedAsGiven_data();
    void mountPathIsUsedAsGiven();
    void emptyMediumListsDotEntries_data();
    void emptyMediumListsDotEntries();
    void unsearchablePathEmitsNoSignal_data();
    void unsearchablePathEmitsNoSignal();
    void settingsAreReplaced();
    void signalIsEmittedDuringTheCall();
    void parentOwnsTheWatcher();

private:
    void addMedium();
    QStringList inDirectory(const QStringList& names);

    int m_typeBeforeAnyWatcher = 0;
};

// Created in an order that is neither sorted nor reversed.
void tst_MediaWatcher::addMedium()
{
    QVERIFY(QDir(directory()).mkpath("Music/live"));
    QVERIFY(QDir(directory()).mkpath("empty"));
    for (const char* name : {"delta.mp3", "Alpha.mp3", "charlie.MP3", "Bravo.txt", "echo.txt",
                             ".hidden.mp3", "Music/b.mp3", "Music/C.mp3", "Music/a.mp3",
                             "Music/live/d.mp3", "Music/live/cover.png"}) {
        writeFile(QString::fromLatin1(name), "");
    }
    QVERIFY(QFile::link("Music", path("link.mp3")));
}

QStringList tst_MediaWatcher::inDirectory(const QStringList& names)
{
    QStringList paths;
    for (const QString& name : names) {
        paths.append(path(name));
    }
    return paths;
}

void tst_MediaWatcher::initTestCase()
{
    m_typeBeforeAnyWatcher = QMetaType::type(listTypeName);
}

// Qt warns if two threads register a list type at the same time.
void tst_MediaWatcher::listTypeIsRegisteredInManyThreads()
{
    // In child processes, so that each is the first use of the type.
    for (int i = 0; i < 50; ++i) {
        const ChildResult result = ChildProcess::run([] {
            callInManyThreads([](int) { const MediaWatcher watcher(nullptr); });
            return QMetaType::type(listTypeName) >= QMetaType::User ? 0 : 1;
        });
        QVERIFY(result.exited);
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(result.output, QByteArray());
    }
    QCOMPARE(QMetaType::type(listTypeName), int(QMetaType::UnknownType));
}

void tst_MediaWatcher::metaObject()
{
    const QMetaObject& type = MediaWatcher::staticMetaObject;
    QCOMPARE(type.className(), "MediaWatcher");
    QCOMPARE(type.superClass(), &QObject::staticMetaObject);
    QCOMPARE(type.methodCount() - type.methodOffset(), 2);
    QCOMPARE(type.propertyCount(), type.propertyOffset());

    const MediaWatcher watcher(nullptr);
    QCOMPARE(watcher.metaObject(), &type);
    QVERIFY(watcher.parent() == nullptr);
}

void tst_MediaWatcher::methods()
{
    const QMetaObject& type = MediaWatcher::staticMetaObject;
    const QMetaMethod found = type.method(type.methodOffset());
    QCOMPARE(found.methodSignature(), QByteArray("filesFound(QFileInfoList)"));
    QCOMPARE(found.methodType(), QMetaMethod::Signal);
    QCOMPARE(found.parameterNames(), QList<QByteArray>({"fileInfoList"}));
    const QMetaMethod mounted = type.method(type.methodOffset() + 1);
    QCOMPARE(mounted.methodSignature(), QByteArray("mediumMounted(QString)"));
    QCOMPARE(mounted.methodType(), QMetaMethod::Slot);
    QCOMPARE(mounted.access(), QMetaMethod::Public);
    QCOMPARE(mounted.parameterNames(), QList<QByteArray>({"strMountPath"}));

    writeFile("a.mp3", "");
    MediaWatcher watcher(nullptr);
    watcher.setFileMatchPatternList({"*.mp3"});
    Findings findings(watcher);
    QVERIFY(QMetaObject::invokeMethod(&watcher, "mediumMounted", Q_ARG(QString, directory())));
    QCOMPARE(findings.take(), QVector<QStringList>({inDirectory(words("a.mp3"))}));
}

void tst_MediaWatcher::listTypeIsRegistered()
{
    QCOMPARE(m_typeBeforeAnyWatcher, int(QMetaType::UnknownType));
    const MediaWatcher watcher(nullptr);
    const int type = QMetaType::type(listTypeName);
    QVERIFY(type >= QMetaType::User);
    QCOMPARE(QMetaType::typeName(type), "QList<QFileInfo>");
    QCOMPARE(QMetaType::type("QList<QFileInfo>"), type);
    QCOMPARE(QMetaType::sizeOf(type), int(sizeof(QFileInfoList)));

    // Another watcher does not register it again.
    const MediaWatcher other(nullptr);
    QCOMPARE(QMetaType::type(listTypeName), type);
}

void tst_MediaWatcher::listTypeIsASequence()
{
    const MediaWatcher watcher(nullptr);
    const QFileInfoList files = {QFileInfo("/a"), QFileInfo("/b")};
    const QVariant variant(QMetaType::type(listTypeName), &files);
    QVERIFY(variant.isValid());
    QCOMPARE(*static_cast<const QFileInfoList*>(variant.constData()), files);
    QVERIFY(variant.canConvert<QVariantList>());
    const auto sequence = variant.value<QSequentialIterable>();
    QCOMPARE(sequence.size(), 2);
    QCOMPARE(sequence.at(1).value<QFileInfo>().filePath(), QStringLiteral("/b"));

    const QVariant copy = variant;
    QCOMPARE(*static_cast<const QFileInfoList*>(copy.constData()), files);
}

void tst_MediaWatcher::listIsDeliveredToOtherThreads_data()
{
    QTest::addColumn<bool>("isConnectedByName");
    QTest::addColumn<Qt::ConnectionType>("connectionType");
    QTest::newRow("automatic") << false << Qt::AutoConnection;
    QTest::newRow("queued") << false << Qt::QueuedConnection;
    QTest::newRow("by name, automatic") << true << Qt::AutoConnection;
    QTest::newRow("by name, queued") << true << Qt::QueuedConnection;
}

// Lives in a different thread from the watcher; the test reads it after that thread has finished.
class Receiver : public QObject
{
    Q_OBJECT

public:
    QStringList paths;
    QThread* calledIn = nullptr;

public Q_SLOTS:
    void receive(const QFileInfoList& files)
    {
        paths += filePaths(files);
        calledIn = QThread::currentThread();
        calledIn->quit();
    }
};

void tst_MediaWatcher::listIsDeliveredToOtherThreads()
{
    QFETCH(bool, isConnectedByName);
    QFETCH(Qt::ConnectionType, connectionType);
    writeFile("b.mp3", "");
    writeFile("a.mp3", "");

    MediaWatcher watcher(nullptr);
    watcher.setFileMatchPatternList({"*.mp3"});
    QThread thread;
    Receiver receiver;
    receiver.moveToThread(&thread);
    QVERIFY(isConnectedByName ? connect(&watcher, SIGNAL(filesFound(QFileInfoList)), &receiver,
                                        SLOT(receive(QFileInfoList)), connectionType)
                              : connect(&watcher, &MediaWatcher::filesFound, &receiver,
                                        &Receiver::receive, connectionType));
    watcher.mediumMounted(directory());
    QCOMPARE(receiver.paths, QStringList()); // its event loop is not running yet
    thread.start();
    const bool isFinished = thread.wait(10000);
    thread.quit();
    thread.wait();
    QVERIFY(isFinished);
    QCOMPARE(receiver.calledIn, &thread);
    QCOMPARE(receiver.paths, inDirectory(words("a.mp3 b.mp3")));
}

void tst_MediaWatcher::topDirectoryIsSorted()
{
    addMedium();
    MediaWatcher watcher(nullptr);
    Findings findings(watcher);
    watcher.mediumMounted(directory());
    QCOMPARE(
        findings.take(),
        QVector<QStringList>({inDirectory(words(". .. Alpha.mp3 Bravo.txt charlie.MP3 delta.mp3 "
                                                "echo.txt empty link.mp3 Music"))}));
}

void tst_MediaWatcher::namesAreSortedByCodeUnit()
{
    const QString umlaut = QFile::decodeName("\xc3\xa4.mp3");
    writeFile(umlaut, "");
    for (const char* name : {"z.mp3", "B.mp3", "_a.mp3", "10.mp3", "9.mp3", "a b.mp3", "a-b.mp3"}) {
        writeFile(QString::fromLatin1(name), "");
    }
    MediaWatcher watcher(nullptr);
    watcher.setFileMatchPatternList(words("*.mp3"));
    Findings findings(watcher);
    watcher.mediumMounted(directory());
    QStringList expected = words("10.mp3 9.mp3 _a.mp3 a?b.mp3 a-b.mp3 B.mp3 z.mp3");
    expected.replaceInStrings("?", " ");
    expected.append(umlaut); // sorts after every ASCII letter
    QCOMPARE(findings.take(), QVector<QStringList>({inDirectory(expected)}));
}

void tst_MediaWatcher::recursiveResultsAreInFileSystemOrder()
{
    addMedium();
    for (int i = 0; i < 100; ++i) {
        writeFile(QStringLiteral("%1.mp3").arg(i * 37 % 100), "");
    }
    const QStringList patterns("*.mp3");
    QStringList expected;
    QDirIterator iterator(directory(), patterns, QDir::AllEntries, QDirIterator::Subdirectories);
    while (iterator.hasNext()) {
        expected.append(iterator.next());
    }
    QCOMPARE(expected.size(), 108);
    QStringList sorted = expected;
    sorted.sort(Qt::CaseInsensitive);
    QVERIFY(expected != sorted);

    MediaWatcher watcher(nullptr);
    watcher.setRecursive(true);
    watcher.setFileMatchPatternList(patterns);
    Findings findings(watcher);
    watcher.mediumMounted(directory());
    QCOMPARE(findings.take(), QVector<QStringList>({expected}));
}

void tst_MediaWatcher::filesAreFound_data()
{
    QTest::addColumn<QStringList>("patterns");
    QTest::addColumn<QStringList>("ofTopDirectory"); // both sorted case-insensitively
    QTest::addColumn<QStringList>("ofWholeMedium");

    QTest::newRow("one pattern") << words("*.mp3")
                                 << words("Alpha.mp3 charlie.MP3 delta.mp3 link.mp3")
                                 << words("Alpha.mp3 charlie.MP3 delta.mp3 link.mp3 Music/a.mp3 "
                                          "Music/b.mp3 Music/C.mp3 Music/live/d.mp3");
    QTest::newRow("several patterns") << words("*.txt d*") << words("Bravo.txt delta.mp3 echo.txt")
                                      << words("Bravo.txt delta.mp3 echo.txt Music/live/d.mp3");
    QTest::newRow("directories match, too")
        << words("[lm]*c* live empty") << words("empty Music") << words("empty Music Music/live");
    QTest::newRow("only in a subdirectory")
        << words("*.png") << QStringList() << words("Music/live/cover.png");
    QTest::newRow("no match") << words("*.ogg") << QStringList() << QStringList();
    QTest::newRow("hidden") << words(".hidden*") << QStringList() << QStringList();
}

void tst_MediaWatcher::filesAreFound()
{
    QFETCH(QStringList, patterns);
    QFETCH(QStringList, ofTopDirectory);
    QFETCH(QStringList, ofWholeMedium);
    addMedium();

    MediaWatcher watcher(nullptr);
    watcher.setFileMatchPatternList(patterns);
    Findings findings(watcher);
    watcher.mediumMounted(directory());
    QCOMPARE(findings.take(), ofTopDirectory.isEmpty()
                                  ? QVector<QStringList>()
                                  : QVector<QStringList>({inDirectory(ofTopDirectory)}));

    watcher.setRecursive(true);
    watcher.mediumMounted(directory());
    QVector<QStringList> found = findings.take();
    for (QStringList& paths : found) {
        paths.sort(Qt::CaseInsensitive);
    }
    QCOMPARE(found, ofWholeMedium.isEmpty() ? QVector<QStringList>()
                                            : QVector<QStringList>({inDirectory(ofWholeMedium)}));
}

void tst_MediaWatcher::mountPathIsUsedAsGiven_data()
{
    QTest::addColumn<QString>("mountPath"); // below the row's directory
    QTest::addColumn<bool>("recursive");
    QTest::addColumn<QString>("found"); // as text, because the path must not be cleaned
    for (const bool recursive : {false, true}) {
        const char* const mode = recursive ? "recursive" : "top directory";
        QTest::addRow("%s, double slash", mode)
            << "/Music//live" << recursive << "/Music//live/d.mp3";
        QTest::addRow("%s, with dot components", mode)
            << "/empty/.././Music/live" << recursive << "/empty/.././Music/live/d.mp3";
        // ".." after a link is the parent of the link's target, not the directory of the link.
        QTest::addRow("%s, parent of a link", mode)
            << "/link/.." << recursive
            << (recursive ? QStringLiteral("/link/../live/d.mp3") : QString());
    }
}

void tst_MediaWatcher::mountPathIsUsedAsGiven()
{
    QFETCH(QString, mountPath);
    QFETCH(bool, recursive);
    QFETCH(QString, found);
    addMedium();
    QVERIFY(QFile::link("Music/live", path("link")));

    MediaWatcher watcher(nullptr);
    watcher.setRecursive(recursive);
    watcher.setFileMatchPatternList({"[dc]*.mp3"});
    Findings findings(watcher);
    watcher.mediumMounted(directory() + mountPath);
    QStringList paths;
    const QVector<QStringList> taken = findings.take();
    for (const QStringList& names : taken) {
        paths += names;
    }
    paths.sort();
    QStringList expected;
    if (mountPath == "/link/..") {
        expected.append(directory() + "/link/../C.mp3");
    }
    if (!found.isEmpty()) {
        expected.append(directory() + found);
    }
    QCOMPARE(paths, expected);
}

void tst_MediaWatcher::emptyMediumListsDotEntries_data()
{
    QTest::addColumn<bool>("recursive");
    QTest::addColumn<QStringList>("patterns");
    QTest::addColumn<bool>("hasDots");
    for (const bool recursive : {false, true}) {
        const char* const mode = recursive ? "recursive" : "top directory";
        QTest::addRow("%s, no pattern", mode) << recursive << QStringList() << true;
        QTest::addRow("%s, all names", mode) << recursive << words("*") << true;
        QTest::addRow("%s, names with a dot", mode) << recursive << words("*.*") << true;
        QTest::addRow("%s, some names", mode) << recursive << words("*.mp3") << false;
    }
}

void tst_MediaWatcher::emptyMediumListsDotEntries()
{
    QFETCH(bool, recursive);
    QFETCH(QStringList, patterns);
    QFETCH(bool, hasDots);

    MediaWatcher watcher(nullptr);
    watcher.setRecursive(recursive);
    watcher.setFileMatchPatternList(patterns);
    Findings findings(watcher);
    watcher.mediumMounted(directory());
    QVector<QStringList> found = findings.take();
    QCOMPARE(found.size(), hasDots ? 1 : 0);
    if (hasDots) {
        found.first().sort();
        QCOMPARE(found.first(), inDirectory(words(". ..")));
    }
}

void tst_MediaWatcher::unsearchablePathEmitsNoSignal_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("missing") << "missing";
    QTest::newRow("file") << "file";
    QTest::newRow("below a file") << "file/directory";
}

void tst_MediaWatcher::unsearchablePathEmitsNoSignal()
{
    QFETCH(QString, name);
    writeFile("file", "");

    MediaWatcher watcher(nullptr);
    Findings findings(watcher);
    for (const bool recursive : {false, true}) {
        watcher.setRecursive(recursive);
        watcher.mediumMounted(path(name));
    }
    QCOMPARE(findings.take(), QVector<QStringList>());
}

void tst_MediaWatcher::settingsAreReplaced()
{
    QVERIFY(QDir(directory()).mkdir("sub"));
    for (const char* name : {"a.mp3", "b.txt", "sub/c.mp3"}) {
        writeFile(QString::fromLatin1(name), "");
    }
    MediaWatcher watcher(nullptr);
    Findings findings(watcher);
    const auto found = [&] {
        watcher.mediumMounted(directory());
        QStringList paths = findings.take().value(0);
        paths.sort();
        return paths;
    };

    QStringList patterns = words("*.mp3");
    watcher.setFileMatchPatternList(patterns);
    patterns.append("*.txt");
    QCOMPARE(found(), inDirectory(words("a.mp3")));
    watcher.setRecursive(true);
    QCOMPARE(found(), inDirectory(words("a.mp3 sub/c.mp3")));
    watcher.setFileMatchPatternList(words("*.txt"));
    QCOMPARE(found(), inDirectory(words("b.txt")));
    watcher.setFileMatchPatternList(words("*.mp3"));
    watcher.setRecursive(false);
    QCOMPARE(found(), inDirectory(words("a.mp3")));
    watcher.setFileMatchPatternList({});
    QCOMPARE(found(), inDirectory(words(". .. a.mp3 b.txt sub")));
}

void tst_MediaWatcher::signalIsEmittedDuringTheCall()
{
    writeFile("a.mp3", "");
    MediaWatcher watcher(nullptr);
    watcher.setFileMatchPatternList(words("*.mp3"));
    Findings findings(watcher);
    for (int i = 0; i < 3; ++i) { // each call searches again and starts with an empty list
        watcher.mediumMounted(directory());
        QCOMPARE(findings.take(), QVector<QStringList>({inDirectory(words("a.mp3"))}));
    }
}

void tst_MediaWatcher::parentOwnsTheWatcher()
{
    std::unique_ptr<QObject> parent(new QObject);
    const QPointer<MediaWatcher> watcher(new MediaWatcher(parent.get()));
    QCOMPARE(watcher->parent(), parent.get());
    parent.reset();
    QVERIFY(watcher.isNull());
}

QTEST_GUILESS_MAIN(tst_MediaWatcher)

#include "tst_MediaWatcher.moc"
