#include "DeviceRoot.h"
#include "IniFileManager.h"
#include "Operations.h"
#include "TestCase.h"

#include <QtCore/QDateTime>
#include <QtCore/QDir>
#include <QtCore/QMap>
#include <QtCore/QRegularExpression>

#include <algorithm>
#include <cerrno>
#include <csignal>

Q_DECLARE_METATYPE(Operation)

namespace {

struct NamedError
{
    const char* name;
    int number;
};

#define NAMED_ERROR(name)                                                                          \
    {                                                                                              \
#name, name                                                                                \
    }

constexpr NamedError usualErrors[] = {NAMED_ERROR(ENOSPC), NAMED_ERROR(EIO), NAMED_ERROR(EACCES),
                                      NAMED_ERROR(EMFILE)};
constexpr NamedError otherErrors[] = {NAMED_ERROR(EROFS), NAMED_ERROR(ENOMEM), NAMED_ERROR(EAGAIN),
                                      NAMED_ERROR(ENOENT), NAMED_ERROR(EPERM)};

#undef NAMED_ERROR

// A quick run is part of all test runs; all faults take a few minutes.
bool isFullRun()
{
    return qEnvironmentVariable("MISCTOOLS_FAULTS") == "all";
}

} // namespace

/*
 * Each system call of an operation fails, or the process is killed before it. A row tests all calls
 * of its operation; the number of faults is printed at the end.
 */
class tst_SystemCallFaults : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void operationsSucceedWithoutFaults_data() { addOperations(Operations::all()); }
    void operationsSucceedWithoutFaults();
    void failedCallIsHandled_data() { addErrors(true); }
    void failedCallIsHandled();
    void interruptedCallIsHandled_data() { addOperations(Operations::all()); }
    void interruptedCallIsHandled();
    void interruptedTransferIsRepeated_data() { addOperations(Operations::transferring()); }
    void interruptedTransferIsRepeated();
    void shortTransferIsContinued_data() { addOperations(Operations::transferring()); }
    void shortTransferIsContinued();
    void lastingFailureIsHandled_data() { addErrors(isFullRun()); }
    void lastingFailureIsHandled();
    void failedReadKeepsTheFile_data() { addOperations(Operations::cleaningUp()); }
    void failedReadKeepsTheFile();
    void failedForkIsAFailedStart_data();
    void failedForkIsAFailedStart();
    void flushOfTheEventLoopIsOneSync();
    void failedFlushOfTheDirectoryHasNoEffect_data();
    void failedFlushOfTheDirectoryHasNoEffect();
    void interruptedFlushOfTheDirectoryIsRepeated_data() { addOperations(Operations::writing()); }
    void interruptedFlushOfTheDirectoryIsRepeated();
    void failedReplacementFlushesNothing_data() { addOperations(Operations::writing()); }
    void failedReplacementFlushesNothing();
    void killKeepsTheOldOrTheNewFile_data() { addOperations(Operations::writing()); }
    void killKeepsTheOldOrTheNewFile();
    void cleanupTestCase();

private:
    void addOperations(const QVector<Operation>& operations);
    void addErrors(bool isWithAllOperations);
    void verifyEachCall(const Fault& kind,
                        QString (tst_SystemCallFaults::*use)(const Operation&, const Fault&,
                                                             Outcome&));
    void prepare(const Operation& operation);
    QString problemOfUse(const Operation& operation, Outcome& outcome);
    QString outcomeOf(const Operation& operation, const Fault& fault, Outcome& outcome);
    QString outcomeWithoutLoss(const Operation& operation, const Fault& fault);
    QString outcomeOfKill(const Operation& operation, const Fault& fault, Outcome& outcome);
    QVector<int> callsOfDirectoryFlush(const QVector<QByteArray>& calls);
    QString files() const { return path("files"); }

    QMap<QString, int> m_faults; // by operation
};

void tst_SystemCallFaults::addOperations(const QVector<Operation>& operations)
{
    QTest::addColumn<Operation>("operation");
    for (const Operation& operation : operations) {
        QTest::newRow(operation.name) << operation;
    }
}

void tst_SystemCallFaults::addErrors(bool isWithAllOperations)
{
    QTest::addColumn<Operation>("operation");
    QTest::addColumn<int>("error");
    const auto addError = [](const Operation& operation, const NamedError& error) {
        QTest::addRow("%s: %s", operation.name, error.name) << operation << error.number;
    };
    const QVector<Operation> operations =
        isWithAllOperations ? Operations::all() : Operations::writing();
    for (const Operation& operation : operations) {
        for (const NamedError& error : usualErrors) {
            addError(operation, error);
        }
        if (isFullRun()) {
            for (const NamedError& error : otherErrors) {
                addError(operation, error);
            }
        }
    }
}

void tst_SystemCallFaults::prepare(const Operation& operation)
{
    DeviceRoot::clear();
    QDir(files()).removeRecursively();
    QDir().mkpath(files());
    operation.prepare(files());
}

// Runs an operation with the fault on new files; returns what is wrong with the outcome.
QString tst_SystemCallFaults::outcomeOf(const Operation& operation, const Fault& fault,
                                        Outcome& outcome)
{
    prepare(operation);
    outcome = Operations::run(operation, files(), fault, messages());
    return problemOfUse(operation, outcome);
}

// The same for a fault that must have no effect.
QString tst_SystemCallFaults::outcomeWithoutLoss(const Operation& operation, const Fault& fault)
{
    prepare(operation);
    Outcome outcome = Operations::run(operation, files(), fault, messages());
    outcome.run.failedCalls.clear();
    return problemOfUse(operation, outcome);
}

QString tst_SystemCallFaults::problemOfUse(const Operation& operation, Outcome& outcome)
{
    if (outcome.run.isTimedOut) {
        return "it hangs";
    }
    if (outcome.run.hasSignalledOthers) {
        return "it sends signals to other processes";
    }
    if (!outcome.run.exited) {
        return QStringLiteral("killed by signal %1").arg(outcome.run.signal);
    }
    if (outcome.run.descriptorsLeft != 0) {
        return QStringLiteral("%1 descriptors leaked").arg(outcome.run.descriptorsLeft);
    }
    return operation.problem(files(), outcome);
}

// The same for an operation that is killed and then repeated.
QString tst_SystemCallFaults::outcomeOfKill(const Operation& operation, const Fault& fault,
                                            Outcome& outcome)
{
    prepare(operation);
    outcome = Operations::run(operation, files(), fault, messages());
    if (outcome.run.signal != SIGKILL && outcome.hasFault()) {
        return "it was not killed";
    }
    if (!operation.isOldOrNew(files())) {
        return "the file is neither the old nor the new one";
    }
    // A killed process leaves a lock, whose owner is known to be dead, and a new file that had not
    // yet replaced the old one, which is never removed.
    const QRegularExpression unfinished("^settings\\.ini\\.[A-Za-z]{6}$");
    const QStringList names = QDir(files()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
    for (const QString& name : names) {
        if (unfinished.match(name).hasMatch()) {
            QFile::remove(files() + QLatin1Char('/') + name);
        } else if (name != "settings.ini" && name != "settings.ini.lock") {
            return "left behind: " + name;
        }
    }
    // Qt waits for a lock that does not yet name its owner until it is half a minute old.
    QFile lock(files() + "/settings.ini.lock");
    if (lock.size() == 0 && lock.open(QIODevice::ReadWrite | QIODevice::ExistingOnly)) {
        lock.setFileTime(QDateTime::currentDateTime().addSecs(-31),
                         QFileDevice::FileModificationTime);
    }
    Outcome second = Operations::run(operation, files(), Fault(), messages());
    const QString problem = problemOfUse(operation, second);
    return problem.isEmpty() ? problem : QStringLiteral("when repeated: ") + problem;
}

// The calls that open and flush the directory. Files are flushed by another call, fdatasync.
QVector<int> tst_SystemCallFaults::callsOfDirectoryFlush(const QVector<QByteArray>& calls)
{
    const int flush = calls.indexOf("fsync");
    const int opening = flush < 0 ? -1 : calls.lastIndexOf("openat", flush);
    if (calls.count("fsync") != 1 || opening < 0) {
        QTest::qFail("not one flush of a directory", __FILE__, __LINE__);
    }
    return {opening, flush};
}

void tst_SystemCallFaults::operationsSucceedWithoutFaults()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    MISCTOOLS_NEED_FAULTS();
    QFETCH(Operation, operation);
    Outcome outcome;
    QCOMPARE(outcomeOf(operation, Fault(), outcome), QString());
    QVERIFY(!outcome.run.calls.isEmpty());
    QVERIFY(outcome.run.failedCalls.isEmpty());
}

// Runs the row's operation once for each of its calls, which has a fault of the kind.
void tst_SystemCallFaults::verifyEachCall(const Fault& kind,
                                          QString (tst_SystemCallFaults::*use)(const Operation&,
                                                                               const Fault&,
                                                                               Outcome&))
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    MISCTOOLS_NEED_FAULTS();
    QFETCH(Operation, operation);
    prepare(operation);
    const FaultyRun complete = Operations::run(operation, files(), Fault(), messages()).run;

    int faults = 0;
    Fault fault = kind;
    for (const bool isAtStart : {false, true}) {
        fault.isAtStart = isAtStart;
        const int calls = (isAtStart ? complete.callsAtStart : complete.calls).size();
        for (fault.call = 0; fault.call < calls; ++fault.call) {
            Outcome outcome;
            const QString problem = (this->*use)(operation, fault, outcome);
            const QString report = "call %1, %2: %3\n   results: %4\n   messages: %5";
            QVERIFY2(problem.isEmpty(),
                     qPrintable(report.arg(QString::number(fault.call),
                                           QString::fromLatin1(outcome.run.failedCalls.value(0)),
                                           problem, outcome.results.join(" | "),
                                           outcome.messages.join("\n      "))));
            faults += outcome.hasFault() ? 1 : 0;
        }
    }
    const int calls =
        complete.calls.size() - (kind.error == EINTR ? complete.calls.count("close") : 0);
    // The number of calls varies: waiting for a faster program needs fewer.
    QVERIFY(faults > 0 && faults >= calls * 3 / 4);
    m_faults[QString::fromLatin1(operation.name)] += faults;
}

void tst_SystemCallFaults::failedCallIsHandled()
{
    QFETCH(int, error);
    Fault fault;
    fault.kind = Fault::Once;
    fault.error = error;
    verifyEachCall(fault, &tst_SystemCallFaults::outcomeOf);
}

// Some calls are repeated after a signal, others are not.
void tst_SystemCallFaults::interruptedCallIsHandled()
{
    Fault fault;
    fault.kind = Fault::Once;
    fault.error = EINTR;
    verifyEachCall(fault, &tst_SystemCallFaults::outcomeOf);
}

void tst_SystemCallFaults::interruptedTransferIsRepeated()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    MISCTOOLS_NEED_FAULTS();
    QFETCH(Operation, operation);
    prepare(operation);
    const QVector<QByteArray> calls =
        Operations::run(operation, files(), Fault(), messages()).run.calls;
    QVERIFY(calls.contains("read") || calls.contains("write"));
    Fault fault;
    fault.kind = Fault::Once;
    fault.error = EINTR;
    for (fault.call = 0; fault.call < calls.size(); ++fault.call) {
        const QByteArray& name = calls.at(fault.call);
        if (name == "read" || name == "write") {
            QCOMPARE(outcomeWithoutLoss(operation, fault), QString());
        }
    }
}

void tst_SystemCallFaults::shortTransferIsContinued()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    MISCTOOLS_NEED_FAULTS();
    QFETCH(Operation, operation);
    prepare(operation);
    const int transfers = Operations::run(operation, files(), Fault(), messages()).run.transfers;
    QVERIFY(transfers > 0);
    Fault fault;
    fault.kind = Fault::Short;
    for (fault.call = 0; fault.call < transfers; ++fault.call) {
        QCOMPARE(outcomeWithoutLoss(operation, fault), QString());
    }
}

void tst_SystemCallFaults::lastingFailureIsHandled()
{
    QFETCH(int, error);
    Fault fault;
    fault.kind = Fault::Lasting;
    fault.error = error;
    verifyEachCall(fault, &tst_SystemCallFaults::outcomeOf);
}

// A partially read text must not replace the file. (Qt continues to read after a single error.)
void tst_SystemCallFaults::failedReadKeepsTheFile()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    MISCTOOLS_NEED_FAULTS();
    QFETCH(Operation, operation);
    prepare(operation);
    const QByteArray before = readFile(files() + "/settings.ini");
    const QVector<QByteArray> calls =
        Operations::run(operation, files(), Fault(), messages()).run.calls;
    QVERIFY(calls.contains("read"));
    Fault fault;
    fault.kind = Fault::Lasting;
    fault.error = EIO;
    for (fault.call = 0; fault.call < calls.size(); ++fault.call) {
        if (calls.at(fault.call) == "read") {
            Outcome outcome;
            QCOMPARE(outcomeOf(operation, fault, outcome), QString());
            QCOMPARE(outcome.messages, QStringList());
            QVERIFY(readFile(files() + "/settings.ini") == before);
        }
    }
}

void tst_SystemCallFaults::failedForkIsAFailedStart_data()
{
    QTest::addColumn<int>("error");
    QTest::newRow("too many processes") << EAGAIN;
    QTest::newRow("no memory") << ENOMEM;
}

// The library must not wait for a program that was not started, nor kill another one instead.
void tst_SystemCallFaults::failedForkIsAFailedStart()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    MISCTOOLS_NEED_FAULTS();
    QFETCH(int, error);
    Outcome outcome;
    QCOMPARE(outcomeOf(Operations::programTwice(), Fault(), outcome), QString());
    Fault fault;
    fault.kind = Fault::Once;
    fault.error = error;
    fault.call = outcome.run.calls.indexOf("clone");
    QVERIFY(fault.call >= 0);
    QCOMPARE(outcomeOf(Operations::programTwice(), fault, outcome), QString());
    QCOMPARE(outcome.run.failedCalls, QVector<QByteArray>{"clone"});
}

// An additional flush by Qt would not be guarded against writes of other threads.
void tst_SystemCallFaults::flushOfTheEventLoopIsOneSync()
{
    MISCTOOLS_NEED_FAULTS();
    const auto callsOf = [this](void (*flush)(IniFileManager&)) {
        const QString filePath = writeFile(QStringLiteral("settings.ini"), "[Net]\nPort=80\n");
        return FaultyProcess::run(Fault(),
                                  [&filePath, flush] {
                                      IniFileManager manager(filePath, nullptr);
                                      manager.setValue(QStringLiteral("Net"),
                                                       QStringLiteral("Port"), 8080);
                                      flush(manager);
                                      return QByteArray();
                                  })
            .calls;
    };
    const QVector<QByteArray> ofSync = callsOf([](IniFileManager& manager) { manager.sync(); });
    QCOMPARE(readFile(path(QStringLiteral("settings.ini"))), QByteArray("[Net]\nPort=8080\n"));
    const QVector<QByteArray> ofEventLoop =
        callsOf([](IniFileManager&) { QCoreApplication::sendPostedEvents(); });
    QCOMPARE(readFile(path(QStringLiteral("settings.ini"))), QByteArray("[Net]\nPort=8080\n"));
    QVERIFY(!ofSync.isEmpty());
    QCOMPARE(ofEventLoop, ofSync);
}

void tst_SystemCallFaults::failedFlushOfTheDirectoryHasNoEffect_data()
{
    addErrors(false);
}

// The failure has no effect: the file is replaced, no message is logged, and no descriptor leaks.
void tst_SystemCallFaults::failedFlushOfTheDirectoryHasNoEffect()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    MISCTOOLS_NEED_FAULTS();
    QFETCH(Operation, operation);
    QFETCH(int, error);
    Outcome complete;
    QCOMPARE(outcomeOf(operation, Fault(), complete), QString());
    Fault fault;
    fault.error = error;
    for (const Fault::Kind kind : {Fault::Once, Fault::Lasting}) {
        fault.kind = kind;
        for (const int call : callsOfDirectoryFlush(complete.run.calls)) {
            fault.call = call;
            QCOMPARE(outcomeWithoutLoss(operation, fault), QString());
        }
    }
}

void tst_SystemCallFaults::interruptedFlushOfTheDirectoryIsRepeated()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    MISCTOOLS_NEED_FAULTS();
    QFETCH(Operation, operation);
    prepare(operation);
    const QVector<QByteArray> calls =
        Operations::run(operation, files(), Fault(), messages()).run.calls;
    Fault fault;
    fault.kind = Fault::Once;
    fault.error = EINTR;
    for (const int call : callsOfDirectoryFlush(calls)) {
        fault.call = call;
        prepare(operation);
        QVector<QByteArray> repeated = calls;
        repeated.insert(call, calls.at(call));
        QCOMPARE(Operations::run(operation, files(), fault, messages()).run.calls, repeated);
    }
}

void tst_SystemCallFaults::failedReplacementFlushesNothing()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    MISCTOOLS_NEED_FAULTS();
    QFETCH(Operation, operation);
    prepare(operation);
    const QVector<QByteArray> calls =
        Operations::run(operation, files(), Fault(), messages()).run.calls;
    QCOMPARE(calls.count("fsync"), 1);
    Fault fault;
    fault.kind = Fault::Once;
    fault.error = EIO;
    // A new file gets its name with linkat.
    fault.call = std::max(calls.lastIndexOf("rename"), calls.lastIndexOf("linkat"));
    QVERIFY(fault.call >= 0);
    prepare(operation);
    const FaultyRun run = Operations::run(operation, files(), fault, messages()).run;
    QCOMPARE(run.failedCalls.size(), 1);
    QCOMPARE(run.calls.count("fsync"), 0);
}

void tst_SystemCallFaults::killKeepsTheOldOrTheNewFile()
{
    Fault fault;
    fault.kind = Fault::Kill;
    verifyEachCall(fault, &tst_SystemCallFaults::outcomeOfKill);
}

void tst_SystemCallFaults::cleanupTestCase()
{
    for (auto operation = m_faults.cbegin(); operation != m_faults.cend(); ++operation) {
        qInfo("%s: %d faults", qPrintable(operation.key()), operation.value());
    }
}

QTEST_GUILESS_MAIN(tst_SystemCallFaults)
#include "tst_SystemCallFaults.moc"
