#include "Operations.h"

#include "BootInformationHelper.h"
#include "DeviceRoot.h"
#include "EepromImage.h"
#include "HardwareInfo.h"
#include "HardwareInfoReader.h"
#include "HashGenerator.h"
#include "IniFileManager.h"
#include "KernelCommandLineParser.h"
#include "MessageRecorder.h"
#include "QProcessHandler.h"
#include "TextFileParser.h"
#include "WildcardFilter.h"

#include <QtCore/QDataStream>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QRegularExpression>
#include <QtCore/QSet>

namespace {

// Small helpers

void writeFile(const QString& filePath, const QByteArray& content)
{
    QFile file(filePath);
    if (!QDir().mkpath(QFileInfo(filePath).path()) || !file.open(QIODevice::WriteOnly) ||
        file.write(content) != content.size()) {
        qFatal("cannot write %s", qPrintable(filePath));
    }
}

// A null array for a missing file.
QByteArray readFile(const QString& filePath)
{
    QFile file(filePath);
    return file.open(QIODevice::ReadOnly) ? QByteArray("").append(file.readAll()) : QByteArray();
}

QString iniPath(const QString& directory)
{
    return directory + "/settings.ini";
}

QString dataPath(const QString& directory)
{
    return directory + "/data";
}

bool matches(const QString& text, const QString& pattern)
{
    return QRegularExpression(QRegularExpression::anchoredPattern(pattern)).match(text).hasMatch();
}

// Whether a message is from Qt itself, about a failed call.
bool isOfQt(const QString& message)
{
    static const QString pattern =
        QStringLiteral(": (QFile::at: Cannot set file position \\d+"
                       "|setNativeLocks failed: .*"
                       "|Could not remove our own lock file .*"
                       "|QProcessPrivate::createPipe: Cannot create pipe .*"
                       "|QProcess: Destroyed while process .* is still running\\.)");
    return matches(message, pattern);
}

QStringList ofLibrary(const QStringList& messages)
{
    QStringList own;
    for (const QString& message : messages) {
        if (!isOfQt(message)) {
            own.append(message);
        }
    }
    return own;
}

// The first text that does not match the pattern.
QString firstUnexpected(const QStringList& texts, const QString& pattern)
{
    for (const QString& text : texts) {
        if (!matches(text, pattern)) {
            return text;
        }
    }
    return QString();
}

// Other files in the directory than these. A temporary file may stay when it cannot be removed.
QString problemOfLeftovers(const QString& directory, const QString& files, const Outcome& outcome)
{
    const QStringList names = QDir(directory).entryList(QDir::AllEntries | QDir::Hidden |
                                                        QDir::System | QDir::NoDotAndDotDot);
    const QString leftovers = outcome.hasFailed("unlink")
                                  ? QStringLiteral("|.*\\.[A-Za-z]{6}|settings\\.ini\\.lock")
                                  : QString();
    const QString unexpected = firstUnexpected(names, files + leftovers);
    return unexpected.isEmpty() ? QString() : QStringLiteral("left behind: ") + unexpected;
}

QString problemOfMessages(const Outcome& outcome, const QString& pattern)
{
    const QString unexpected = firstUnexpected(ofLibrary(outcome.messages), pattern);
    return unexpected.isEmpty() ? QString() : QStringLiteral("unexpected message: ") + unexpected;
}

QString firstProblem(const QStringList& problems)
{
    for (const QString& problem : problems) {
        if (!problem.isEmpty()) {
            return problem;
        }
    }
    return QString();
}

QString problemUnless(bool isRight, const char* problem)
{
    return isRight ? QString() : QString::fromLatin1(problem);
}

// Clean-up

// Larger than the pieces in which a clean-up reads and writes.
QByteArray manyKeys()
{
    QByteArray text = "[Colors]\n";
    for (int i = 0; text.size() < 140000; ++i) {
        text += "color" + QByteArray::number(i) + "=%23ff0000,%2300ff00\n";
    }
    return text;
}

QByteArray cleanedKeys()
{
    return manyKeys().replace("%23", "#").replace(',', ' ');
}

void prepareCleanUp(const QString& directory)
{
    writeFile(iniPath(directory), manyKeys());
}

QStringList useCleanUp(const QString& directory)
{
    IniFileManager::cleanUp(iniPath(directory));
    return QStringList();
}

// With functions of the application, a clean-up processes the text in one piece.
QStringList useCleanUpOfApplication(const QString& directory)
{
    IniFileManager::sm_CleanUpFunctions.append([](QString&) {});
    return useCleanUp(directory);
}

bool isOldOrCleaned(const QString& directory)
{
    const QByteArray text = readFile(iniPath(directory));
    return text == manyKeys() || text == cleanedKeys();
}

QString problemOfCleanUp(const QString& directory, const Outcome& outcome)
{
    const bool isNew = readFile(iniPath(directory)) == cleanedKeys();
    const bool hasMessage = !ofLibrary(outcome.messages).isEmpty();
    return firstProblem(
        {problemUnless(isOldOrCleaned(directory), "the file is neither the old nor the new one"),
         problemUnless(isNew || outcome.hasFault(), "the file is not cleaned up"),
         problemUnless(!isNew || !hasMessage, "a message, though the file is cleaned up"),
         problemUnless(outcome.messages.size() <= 1, "more than one message"),
         problemOfMessages(outcome, QStringLiteral("IniFileManager: Can not open file: \"%1\"")
                                        .arg(QRegularExpression::escape(iniPath(directory)))),
         problemOfLeftovers(directory, "settings\\.ini", outcome)});
}

// Set and sync

const QByteArray oldSettings = "[Net]\nName=a\nPort=80\n";
const QByteArray newSettings = "[Net]\nName=a\nPort=8080\n";
const QByteArray firstSettings = "[Net]\nPort=8080\n";

QStringList useSetAndSync(const QString& directory)
{
    IniFileManager manager(iniPath(directory), nullptr);
    manager.setValue("Net", "Port", 8080);
    manager.sync();
    return QStringList();
}

// A missing file is not an empty file.
bool isEither(const QString& directory, const QByteArray& before, const QByteArray& after)
{
    const QByteArray text = readFile(iniPath(directory));
    return text == after || (text == before && text.isNull() == before.isNull());
}

QString problemOfSettings(const QString& directory, const Outcome& outcome,
                          const QByteArray& before, const QByteArray& after)
{
    const QByteArray text = readFile(iniPath(directory));
    // QSettings of Qt 5.15 treats a file that it cannot find or read as empty, and does not detect
    // that the last bytes of the new one cannot be written.
    const bool isLossOfQt =
        outcome.hasFault() &&
        ((text == firstSettings && (outcome.hasFailed("access") || outcome.hasFailed("read") ||
                                    outcome.hasFailed("statx"))) ||
         (text.isEmpty() && outcome.hasFailed("write")));
    return firstProblem(
        {problemUnless(isEither(directory, before, after) || isLossOfQt,
                       "the file is neither the old nor the new one"),
         problemUnless(text == after || outcome.hasFault(), "the setting is not in the file"),
         problemOfMessages(outcome, QStringLiteral("IniFileManager: Can't find specified ini-file: "
                                                   "\"%1\"")
                                        .arg(QRegularExpression::escape(iniPath(directory)))),
         problemOfLeftovers(directory, "settings\\.ini", outcome)});
}

// Hardware

const QStringList boardRecord = {"4711", "Sample board", "2.1", "3", "815", "Made up"};

void prepareHardware(const QString& directory)
{
    writeFile(dataPath(directory), EepromImage("Type=4711\nTypeName=Sample board\nVersion=2.1\n"
                                               "CompatibilityIndex=3\nLP-ID=815\nComment=Made up\n")
                                       .bytes());
}

QStringList useHardware(const QString& directory)
{
    HardwareInfo info;
    info.setType("untouched");
    const bool isRead = HardwareInfoReader(nullptr).readHardwareInfoFromSysFs(
        directory + "/hwinfo.XXXXXX", dataPath(directory), info);
    return {QString::number(isRead), info.type(), info.typeName(), info.hwVersion(),
            info.hwCompIndex(),      info.lpId(), info.Comment()};
}

QString problemOfHardware(const QString& directory, const Outcome& outcome)
{
    const bool isRead = outcome.results.value(0) == "1";
    const QStringList record = outcome.results.mid(1);
    const QStringList messages = ofLibrary(outcome.messages);
    bool isRight = record.size() == boardRecord.size();
    for (int i = 0; isRight && i < record.size(); ++i) {
        isRight = record.at(i) == boardRecord.at(i) || record.at(i).isEmpty();
    }
    const QStringList untouched = {"untouched", QString(), QString(),
                                   QString(),   QString(), QString()};
    const QString image = QRegularExpression::escape(dataPath(directory));
    const QString ofReader =
        QStringLiteral(
            "HardwareInfoReader: (Can't (find|open) eeprom binary file \"%1\" \\."
            "|Number of INI (header|file) bytes is \\d+ , expected 16 \\(file: \"%1\" \\)!"
            "|Seek to start addr \\d+ failed \\(file: \"%1\" \\)!"
            "|Max\\. number of bytes for INI file exceeded \\(bytesToRead field = "
            "\\d+ , file: \"%1\" \\)!"
            "|Invalid checksum for INI block in eeprom binary file \"%1\" \\.)")
            .arg(image);
    const QString ofParse = QStringLiteral(
        "HardwareVersionIniManager: (Can't open temporary file for version data!"
        "|Error on writing to temporary file for version data!"
        "|No valid '?IniFileManager'? object for accessing section \"\" with key \"[\\w-]+\" !)"
        "|IniFileManager: (Can't find specified ini-file: \".*\""
        "|\"Ini-File \\(.*\\):\" Key \"[\\w-]+\" not found in Group \"\" !)");
    return firstProblem(
        {problemUnless(isRead ? isRight : record == untouched, "the record is wrong"),
         problemUnless(isRead ? record == boardRecord || !messages.isEmpty() : messages.size() == 1,
                       "wrong number of messages"),
         problemUnless(record == boardRecord || outcome.hasFault(), "the record is not read"),
         problemOfMessages(outcome, isRead ? ofParse : ofReader),
         problemOfLeftovers(directory, "data", outcome)});
}

// Hash

const QByteArray hashedData = QByteArray(100000, 'a');

QStringList useHash(const QString& directory)
{
    const QByteArray hash =
        HashGenerator::createHashFromFile(dataPath(directory), QCryptographicHash::Sha256);
    return {QString::fromLatin1(hash.toHex())};
}

QString problemOfHash(const QString& directory, const Outcome& outcome)
{
    const auto hashOf = [](const QByteArray& data) {
        return QString::fromLatin1(
            QCryptographicHash::hash(data, QCryptographicHash::Sha256).toHex());
    };
    const QString hash = outcome.results.value(0);
    const bool isRight = hash == hashOf(hashedData);
    // A read error in the file has no message: the hash is that of the bytes before it.
    const bool isOfLess = outcome.hasFailed("read") && hash == hashOf(QByteArray());
    return firstProblem(
        {problemUnless(isRight || isOfLess || hash.isEmpty(), "the hash is wrong"),
         problemUnless(isRight || outcome.hasFault(), "there is no hash"),
         problemUnless(outcome.messages.size() == (hash.isEmpty() ? 1 : 0),
                       "wrong number of messages"),
         problemOfMessages(outcome, QStringLiteral("HashGenerator: (Can't find file: \"%1\" !"
                                                   "|Can't open file: \"%1\" \\( \".+\" \\)!)")
                                        .arg(QRegularExpression::escape(dataPath(directory))))});
}

// Match

QStringList useMatch(const QString& directory)
{
    TextFileParser parser(dataPath(directory));
    return QStringList(parser.getLastError())
           << parser.multiMatch(QRegularExpression("[abc]=(\\d)"));
}

QString problemOfMatch(const QString& directory, const Outcome& outcome)
{
    const QString error = outcome.results.value(0);
    const QStringList found = outcome.results.mid(1);
    const QStringList all = {"1", "2", "3"};
    // As with the hash, a read error ends the file without a message.
    const bool isOfLess = outcome.hasFailed("read") && found == all.mid(0, found.size());
    return firstProblem(
        {problemUnless(error.isEmpty() ? found == all || isOfLess : found.isEmpty(),
                       "wrong matches"),
         problemUnless(found == all || outcome.hasFault(), "no matches"),
         problemUnless(error.isEmpty()
                           ? outcome.messages.isEmpty()
                           : outcome.messages ==
                                 QStringList(QStringLiteral("TextFileParser: \"%1\"").arg(error)),
                       "the messages are not those of the error"),
         problemUnless(matches(error, QStringLiteral("(File doesn't exists: %1"
                                                     "|Can't open file %1 IO Error: .+)?")
                                          .arg(QRegularExpression::escape(dataPath(directory)))),
                       "an unknown error")});
}

// Command line

QStringList useCommandLine(const QString&)
{
    return {KernelCommandLineParser().getValue("orvalismode")};
}

QString problemOfCommandLine(const QString&, const Outcome& outcome)
{
    const QString value = outcome.results.value(0);
    const bool isRight = value == "factoryreset";
    // A read error counts as an empty file, without a message.
    const int messages = isRight || outcome.hasFailed("read") ? 0 : 1;
    return firstProblem(
        {problemUnless(isRight || (value.isEmpty() && outcome.hasFault()), "the value is wrong"),
         problemUnless(outcome.messages.size() == messages, "wrong number of messages"),
         problemOfMessages(outcome, QStringLiteral("KernelCommandLineParser: "
                                                   "(No|Can't open) kernelCommandLine file"))});
}

// Markers

const QString firmwareUpdateMarker = "/orvalis/etc/orvalis-first-boot";
const QString rebootMarker = "/orvalis-reboot";

QString problemOfMarker(const QString& marker, const Outcome& outcome, const QString& message,
                        bool isAccessErrorSilent)
{
    const bool isThere = QFile::exists(marker);
    const bool isSilent = isAccessErrorSilent && outcome.hasFailed("access");
    return firstProblem({problemUnless(!isThere || outcome.hasFault(), "the marker is still there"),
                         problemUnless(outcome.messages.size() == (isThere && !isSilent ? 1 : 0),
                                       "wrong number of messages"),
                         problemOfMessages(outcome, message)});
}

// Search

void prepareSearch(const QString& directory)
{
    writeFile(directory + "/a.txt", "1");
    writeFile(directory + "/b/c.txt", "1");
    writeFile(directory + "/b/d/e.txt", "1");
    QFile::link(directory, directory + "/link");
}

QStringList useSearch(const QString& directory)
{
    QStringList found;
    searchFilesOnPathRecursive(directory, {"*"}, found);
    return found;
}

QString problemOfSearch(const QString& directory, const Outcome& outcome)
{
    const QStringList all = useSearch(directory);
    const QSet<QString> known(all.begin(), all.end());
    const QSet<QString> found(outcome.results.begin(), outcome.results.end());
    return firstProblem(
        {problemUnless(known.contains(found) && outcome.results.size() <= all.size(),
                       "found a file that does not exist"),
         problemUnless(outcome.results == all || outcome.hasFault(), "not everything was found"),
         problemUnless(outcome.messages.isEmpty(), "unexpected message")});
}

// Programs

QStringList useProgram(const QString& directory)
{
    QProcessHandler handler;
    handler.setWaitForStartedTimeout(2000);
    handler.setWaitForFinishedTimeout(2000);
    handler.setWorkingDirectory(directory);
    const int exitCode = handler.startProcess("/bin/sh", {"-c", "echo a; exit 3"});
    return {QString::number(exitCode), handler.getStandardOutput(), handler.getStandardError()};
}

// The handler can be used again after a program that could not be started.
QStringList useProgramTwice(const QString&)
{
    QProcessHandler handler;
    const QString program = "/bin/sh";
    const QStringList arguments = {"-c", "exit 3"};
    const int first = handler.startProcess(program, arguments);
    return {QString::number(first), QString::number(handler.startProcess(program, arguments))};
}

QString problemOfProgramTwice(const QString&, const Outcome& outcome)
{
    const QString first = outcome.hasFault() ? QStringLiteral("-1") : QStringLiteral("3");
    return firstProblem(
        {problemUnless(outcome.results == QStringList({first, "3"}), "the exit codes are wrong"),
         problemUnless(outcome.messages.size() == (outcome.hasFault() ? 1 : 0),
                       "wrong number of messages"),
         problemOfMessages(outcome,
                           QStringLiteral("QProcessHandler: Timeout on starting command  "
                                          "\"/bin/sh\"   \"-c exit 3\" ,  \"\"  ,  \"\""))});
}

QString problemOfProgram(const QString&, const Outcome& outcome)
{
    const QString exitCode = outcome.results.value(0);
    const bool isRun = exitCode == "3";
    const QString output = outcome.results.value(1);
    return firstProblem(
        {problemUnless(isRun || exitCode == "-1", "the exit code is wrong"),
         problemUnless(isRun || outcome.hasFault(), "the program did not run"),
         problemUnless(output == "a\n" || (output.isEmpty() && outcome.hasFault()),
                       "the output is wrong"),
         problemUnless(outcome.results.value(2).isEmpty(), "output of errors"),
         problemUnless(ofLibrary(outcome.messages).size() == (isRun ? 0 : 1),
                       "wrong number of messages"),
         problemOfMessages(outcome,
                           QStringLiteral("QProcessHandler: Timeout (on starting|from) command  "
                                          "\"/bin/sh\"   \"-c echo a; exit 3\" ,  \"(a\\\\n)?\"  "
                                          ",  \"\""))});
}

} // namespace

Operation Operations::programTwice()
{
    return {"program twice", [](const QString&) {}, &useProgramTwice, &problemOfProgramTwice};
}

QVector<Operation> Operations::cleaningUp()
{
    return {{"clean-up", &prepareCleanUp, &useCleanUp, &problemOfCleanUp, &isOldOrCleaned},
            {"clean-up of the application", &prepareCleanUp, &useCleanUpOfApplication,
             &problemOfCleanUp, &isOldOrCleaned}};
}

QVector<Operation> Operations::writing()
{
    return cleaningUp() +
           QVector<Operation>{
               {"set and sync",
                [](const QString& directory) { writeFile(iniPath(directory), oldSettings); },
                &useSetAndSync,
                [](const QString& directory, const Outcome& outcome) {
                    return problemOfSettings(directory, outcome, oldSettings, newSettings);
                },
                [](const QString& directory) {
                    return isEither(directory, oldSettings, newSettings);
                }},
               {"set and sync of a new file", [](const QString&) {}, &useSetAndSync,
                [](const QString& directory, const Outcome& outcome) {
                    return problemOfSettings(directory, outcome, QByteArray(), firstSettings);
                },
                [](const QString& directory) {
                    return isEither(directory, QByteArray(), firstSettings);
                }}};
}

QVector<Operation> Operations::transferring()
{
    return writing() +
           QVector<Operation>{
               {"hardware", &prepareHardware, &useHardware, &problemOfHardware},
               {"hash",
                [](const QString& directory) { writeFile(dataPath(directory), hashedData); },
                &useHash, &problemOfHash},
               {"match",
                [](const QString& directory) {
                    writeFile(dataPath(directory), "a=1\nb=2\n" + hashedData + "\nc=3\n");
                },
                &useMatch, &problemOfMatch},
               {"command line",
                [](const QString&) {
                    DeviceRoot::setCommandLine("quiet " + QByteArray(5000, 'a') +
                                               " orvalismode=factoryreset console=ttyS0\n");
                },
                &useCommandLine, &problemOfCommandLine},
               {"program", [](const QString&) {}, &useProgram, &problemOfProgram},
           };
}

QVector<Operation> Operations::all()
{
    return transferring() +
           QVector<Operation>{
               {"firmware update marker",
                [](const QString&) { writeFile(firmwareUpdateMarker, "1"); },
                [](const QString&) {
                    BootInformationHelper().deleteFirmwareUpdateMarker();
                    return QStringList();
                },
                [](const QString&, const Outcome& outcome) {
                    return problemOfMarker(
                        firmwareUpdateMarker, outcome,
                        QStringLiteral("BootInformationHelper: "
                                       "(Unable to delete firmware update marker, file does not "
                                       "exist!|Error on removing firmware update marker!)"),
                        false);
                }},
               {"reboot marker", [](const QString&) { writeFile(rebootMarker, "1"); },
                [](const QString&) {
                    BootInformationHelper().deleteOrvalisRebootMarker();
                    return QStringList();
                },
                [](const QString&, const Outcome& outcome) {
                    return problemOfMarker(rebootMarker, outcome,
                                           QStringLiteral("BootInformationHelper: Unable to remove "
                                                          "file: \"/orvalis-reboot\""),
                                           true);
                }},
               {"search", &prepareSearch, &useSearch, &problemOfSearch},
           };
}

Outcome Operations::run(const Operation& operation, const QString& directory, const Fault& fault,
                        MessageRecorder& messages)
{
    Outcome outcome;
    outcome.run = FaultyProcess::run(fault, [&operation, &directory, &messages] {
        const QStringList results = operation.use(directory);
        QStringList texts;
        const QVector<Message> taken = messages.take();
        for (const Message& message : taken) {
            texts.append(message.file + ": " + message.text);
        }
        QByteArray bytes;
        QDataStream stream(&bytes, QIODevice::WriteOnly);
        stream << results << texts;
        return bytes;
    });
    QDataStream stream(outcome.run.result);
    stream >> outcome.results >> outcome.messages;
    return outcome;
}
