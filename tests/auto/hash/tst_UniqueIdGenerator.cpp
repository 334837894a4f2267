#include "TestCase.h"
#include "Threads.h"
#include "UniqueIdGenerator.h"

#include <QtCore/QProcess>

#include <algorithm>
#include <limits>
#include <thread>
#include <type_traits>
#include <vector>

static_assert(!std::is_polymorphic<UniqueIdGenerator>::value, "no virtual functions");
static_assert(std::is_standard_layout<UniqueIdGenerator>::value, "its address is the counter's");
static_assert(sizeof(UniqueIdGenerator) == sizeof(QAtomicInt), "only the counter");
static_assert(std::is_same<decltype(std::declval<UniqueIdGenerator&>().getId()), QAtomicInt>::value,
              "an atomic integer by value");
static_assert(std::is_same<decltype(UniqueIdGenerator::getInstance()), UniqueIdGenerator&>::value,
              "by reference");

namespace {

int nextId(UniqueIdGenerator& generator)
{
    return generator.getId().loadRelaxed();
}

// The sorted identifiers that threadCount threads get from the generator.
std::vector<int> drawFromManyThreads(UniqueIdGenerator& generator, int identifiersPerThread)
{
    std::vector<int> identifiers(size_t(threadCount * identifiersPerThread), -1);
    callInManyThreads([&generator, &identifiers, identifiersPerThread](int number) {
        std::generate_n(identifiers.data() + number * identifiersPerThread, identifiersPerThread,
                        [&generator] { return nextId(generator); });
    });
    std::sort(identifiers.begin(), identifiers.end());
    return identifiers;
}

// Whether the identifiers are consecutive, starting with first.
bool isEachOnce(const std::vector<int>& identifiers, int first)
{
    return std::all_of(identifiers.begin(), identifiers.end(),
                       [&first](int identifier) { return identifier == first++; });
}

} // namespace

class tst_UniqueIdGenerator : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void processStartsAtZero(); // must be first: the others use up identifiers
    void nextProcessStartsAtZeroAgain_data();
    void nextProcessStartsAtZeroAgain();
    void instanceIsASingleton();
    void separateGeneratorsStartAtZero();
    void resultIsAValue();
    void identifiersAreUniqueAcrossThreads();
    void identifiersOfTheInstanceAreUniqueAcrossThreads();
    void laterIdentifierSeesEarlierWrites();
    void counterWrapsAround();

private:
    static int identifiersPerThread() { return stressRounds(100000, 1000000); }
};

void tst_UniqueIdGenerator::processStartsAtZero()
{
    QCOMPARE(nextId(UniqueIdGenerator::getInstance()), 0);
    QCOMPARE(nextId(UniqueIdGenerator::getInstance()), 1);
    QCOMPARE(nextId(UniqueIdGenerator::getInstance()), 2);
}

void tst_UniqueIdGenerator::nextProcessStartsAtZeroAgain_data()
{
    QTest::addColumn<QString>("testFunction");

    QTest::newRow("in one thread") << "processStartsAtZero";
    QTest::newRow("in many threads") << "instanceIsASingleton";
}

void tst_UniqueIdGenerator::nextProcessStartsAtZeroAgain()
{
    QFETCH(QString, testFunction);

    nextId(UniqueIdGenerator::getInstance());
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(QCoreApplication::applicationFilePath(), {testFunction});
    QVERIFY(process.waitForFinished());
    QVERIFY2(process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0,
             process.readAll().constData());
}

void tst_UniqueIdGenerator::instanceIsASingleton()
{
    std::vector<UniqueIdGenerator*> inThreads(threadCount, nullptr);
    callInManyThreads([&inThreads](int number) {
        inThreads.at(size_t(number)) = &UniqueIdGenerator::getInstance();
    });
    for (UniqueIdGenerator* const instance : inThreads) {
        QCOMPARE(instance, &UniqueIdGenerator::getInstance());
    }
}

void tst_UniqueIdGenerator::separateGeneratorsStartAtZero()
{
    nextId(UniqueIdGenerator::getInstance());
    UniqueIdGenerator one;
    QCOMPARE(nextId(one), 0);
    QCOMPARE(nextId(one), 1);
    UniqueIdGenerator other;
    QCOMPARE(nextId(other), 0);
    QCOMPARE(nextId(one), 2);
}

void tst_UniqueIdGenerator::resultIsAValue()
{
    UniqueIdGenerator generator;
    QAtomicInt first = generator.getId();
    first.fetchAndAddRelaxed(100);
    QCOMPARE(nextId(generator), 1);
    const int number = generator.getId();
    QCOMPARE(number, 2);
}

void tst_UniqueIdGenerator::identifiersAreUniqueAcrossThreads()
{
    UniqueIdGenerator generator;
    QVERIFY(isEachOnce(drawFromManyThreads(generator, identifiersPerThread()), 0));
    QCOMPARE(nextId(generator), threadCount * identifiersPerThread());
}

void tst_UniqueIdGenerator::identifiersOfTheInstanceAreUniqueAcrossThreads()
{
    const int last = nextId(UniqueIdGenerator::getInstance());
    QVERIFY(isEachOnce(
        drawFromManyThreads(UniqueIdGenerator::getInstance(), identifiersPerThread()), last + 1));
}

void tst_UniqueIdGenerator::laterIdentifierSeesEarlierWrites()
{
    // A thread that gets a later identifier sees the writes made before an earlier one was taken.
    // Only the thread sanitizer, or a processor with weaker memory ordering, would show a
    // violation.
    for (int round = 0; round < 100; ++round) {
        UniqueIdGenerator generator;
        int written = 0;
        QAtomicInt isEnded(0); // relaxed: does not order memory for the reader
        std::thread writer([&generator, &written, &isEnded] {
            written = 1;
            nextId(generator);
            isEnded.storeRelease(1);
        });
        bool isLast = false;
        bool isOneMissing = false; // the writer has it
        for (int expected = 0; !isOneMissing && !isLast; ++expected) {
            isLast = isEnded.loadRelaxed() != 0;
            isOneMissing = nextId(generator) != expected;
        }
        const int seen = isOneMissing ? written : 0;
        writer.join();
        QCOMPARE(seen, 1);
    }
}

void tst_UniqueIdGenerator::counterWrapsAround()
{
    UniqueIdGenerator generator;
    // Counting up to the maximum would take too long.
    reinterpret_cast<QAtomicInt&>(generator).storeRelaxed(std::numeric_limits<int>::max() - 1);
    QCOMPARE(nextId(generator), 2147483646);
    QCOMPARE(nextId(generator), 2147483647);
    QCOMPARE(nextId(generator), std::numeric_limits<int>::min());
    QCOMPARE(nextId(generator), std::numeric_limits<int>::min() + 1);
}

QTEST_GUILESS_MAIN(tst_UniqueIdGenerator)
#include "tst_UniqueIdGenerator.moc"
