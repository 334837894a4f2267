// The input is a line of calls with four characters each (operation, group, key, value), followed
// by the file to which they apply. Afterwards every getter reads the content of the file, and the
// classes that read the device's files read it.
#include "DeviceRoot.h"
#include "Fuzz.h"
#include "IniCall.h"
#include "IniFileManager.h"
#include "LiteralIniFile.h"
#include "OrvalisVersionInfoIniManager.h"
#include "RaucSystemConfigIniManager.h"
#include "VersionFileIniManager.h"

#include <QtCore/QRegularExpression>
#include <QtCore/QVector>

#include <iterator>

namespace {

constexpr int contentLimit = 4096;
constexpr int callLimit = 24;
constexpr int nameLimit = 16; // number of names in the file that calls may use
constexpr int sweepLimit = 6; // number of groups, and keys per group, that every getter reads
// Matching a longer expression may take a long time.
constexpr int filterSize = 5;

const char* const codecs[] = {nullptr, "UTF-8", "ISO 8859-15"};

// The names that calls may use: those in the file, as written, and some that are not in it.
QStringList namesFor(const QByteArray& content)
{
    static const QRegularExpression separators("[\\n\\r=;\\[\\]]+");
    QStringList names{QString(), "Position", "General", "A/k", "/", QString(QChar(QChar::Null))};
    for (const QString& name : QString::fromLatin1(content).split(separators)) {
        if (names.size() == nameLimit) {
            break;
        }
        if (!names.contains(name)) {
            names += name;
        }
    }
    return names;
}

QVariant valueFor(int number, const QString& name)
{
    switch (number % 8) {
    case 0:
        return QVariant();
    case 1:
        return 7;
    case 2:
        return true;
    case 3:
        return "a,b; c\n\"%23";
    case 4:
        return QByteArray("a\0b", 3);
    case 5:
        return QStringList{"@one", name};
    case 6:
        return QVariantList{1.5, name};
    default:
        return name;
    }
}

// The calls that the input encodes.
QVector<IniCall> callsOf(const QByteArray& line, const QStringList& names)
{
    QVector<IniCall> calls;
    for (int i = 0; i + 3 < line.size() && calls.size() < callLimit; i += 4) {
        const auto number = [&line, i](int offset) { return int(quint8(line.at(i + offset))); };
        const auto name = [&names, number](int offset) {
            return names.at(number(offset) % names.size());
        };
        IniCall call;
        call.operation = number(0) % IniCall::operations;
        call.group = name(1);
        call.key = name(2);
        call.value = valueFor(number(3), call.key);
        call.filter = call.group.left(filterSize);
        call.index = number(3) % 6 - 1;
        calls += call;
    }
    return calls;
}

// Calls every getter for the groups and keys that the file lists.
template <typename File>
QStringList readAll(File& file)
{
    constexpr int generalReaders[] = {2, 3, 4, 5, 6};
    constexpr int groupReaders[] = {11, 14, 15, 16, 17};
    constexpr int listings[] = {19, 20, 21};
    constexpr int filterReaders[] = {18};
    constexpr int indexReaders[] = {23, 24, 25, 26};

    QStringList record;
    IniCall call;
    call.value = "default";
    const auto callAll = [&](const auto& operations) {
        for (const int operation : operations) {
            call.operation = operation;
            record += call.on(file);
        }
    };
    const QStringList generalKeys = file.getGeneralChildKeys().mid(0, sweepLimit);
    for (const QString& key : generalKeys + QStringList("none")) {
        call.key = key;
        callAll(generalReaders);
    }
    const QStringList groups = file.getGroups().mid(0, sweepLimit);
    for (const QString& group : QStringList(QString()) + groups) {
        call.group = group;
        callAll(listings);
        const QStringList keys = file.getChildKeys(group).mid(0, sweepLimit);
        for (const QString& key : keys) {
            call.key = key;
            callAll(groupReaders);
        }
    }
    call.filter = QRegularExpression::escape(call.group);
    callAll(filterReaders);
    call.key = "k";
    for (call.index = -1; call.index <= groups.size(); ++call.index) {
        callAll(indexReaders);
    }
    return record;
}

// QSettings caches files and treats one of the same name, size and time as unchanged, so each file
// has a unique name.
QString writeNewFile(const QByteArray& content)
{
    static int number = 0;
    ++number;
    return Fuzz::writeFile("settings" + QString::number(number), content);
}

template <typename File>
QStringList play(const QByteArray& line, const QByteArray& content)
{
    const QString filePath = writeNewFile(content);
    const char* const codec = codecs[std::size_t(line.size()) % std::size(codecs)];
    QStringList record;
    {
        File file(filePath, codec);
        for (const IniCall& call : callsOf(line, namesFor(content))) {
            record += call.on(file);
            record += Fuzz::takeMessages(filePath);
        }
        record += readAll(file);
        record += Fuzz::takeMessages(filePath);
    }
    record += Fuzz::takeMessages(filePath); // the last flush may parse and warn, too
    record += QString::fromLatin1(Fuzz::readFile(filePath).toPercentEncoding());
    Fuzz::removeFile(filePath);
    return record;
}

// The expected results of the classes that read the device's files.
QStringList literalDevice(const QByteArray& content)
{
    const QString filePath = writeNewFile(content);
    const auto text = [&filePath](const char* group, const char* key) {
        return LiteralIniFile(filePath, nullptr)
            .getValueString(QString::fromLatin1(group), QString::fromLatin1(key), QString());
    };
    QStringList record{text("MainVersion", "VersionString"),
                       text("MainVersion", "VersionStringHash"),
                       text("ApplicationVersion", "Version"),
                       text("ApplicationVersion", "ProductCode"), text("General", "CreationDate")};
    record += QString::number(
        LiteralIniFile(filePath, nullptr).getValueInteger("system", "compatible", 0));
    record += Fuzz::takeMessages(filePath);
    Fuzz::removeFile(filePath);
    return record;
}

QStringList libraryDevice(const QByteArray& content)
{
    static const QStringList filePaths{
        "/orvalis/VersionFile.ini", "/orvalis/etc/OrvalisVersionInfo.ini", "/etc/rauc/system.conf"};
    for (const QString& filePath : filePaths) {
        DeviceRoot::writeFile(filePath, content);
    }
    const QStringList record{VersionFileIniManager().getMainVersionVersionString(),
                             VersionFileIniManager().getVersionStringHash(),
                             OrvalisVersionInfoIniManager().getApplicationVersion(),
                             OrvalisVersionInfoIniManager().getProductCode(),
                             OrvalisVersionInfoIniManager().getCreationDate(),
                             RaucSystemConfigIniManager().getDeviceIndex()};
    QStringList messages = Fuzz::takeMessages();
    for (const QString& filePath : filePaths) {
        messages.replaceInStrings(filePath, Fuzz::fileName);
    }
    return record + messages;
}

} // namespace

int LLVMFuzzerInitialize(int*, char***)
{
    Fuzz::needDeviceRoot();
    return 0;
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    QByteArray content = Fuzz::toBytes(data, size, contentLimit);
    const QByteArray line = Fuzz::takeLine(content);
    Fuzz::verifySame("results, messages and the file", play<IniFileManager>(line, content),
                     play<LiteralIniFile>(line, content));
    Fuzz::verifySame("the device's files", libraryDevice(content), literalDevice(content));
    return 0;
}
