#include "Fuzz.h"

#include "DeviceRoot.h"
#include "MessageRecorder.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QFile>
#include <QtCore/QRegularExpression>
#include <QtCore/QTemporaryDir>

#include <cstdio>
#include <cstdlib>

namespace {

[[noreturn]] void fail(const QString& text)
{
    std::fprintf(stderr, "%s\n", qPrintable(text));
    std::abort();
}

// Prints the reason why a target aborts itself. The library logs no fatal messages.
void printFatal(const Message& message)
{
    if (message.level == QtFatalMsg) {
        std::fprintf(stderr, "%s\n", qPrintable(message.text));
    }
}

// The objects that exist from the first input on.
class Session
{
public:
    Session()
        : m_isMatched(QRegularExpression("a").match("a").hasMatch()), m_application(m_argc, m_argv)
    {
        m_recorder.setObserver(printFatal);
    }

    MessageRecorder& recorder() { return m_recorder; }

private:
    int m_argc = 1;
    char m_name[5] = "fuzz";
    char* m_argv[2] = {m_name, nullptr};
    // Qt's data for regular expressions must be created before the application: the destructor of
    // the application frees the main thread's part of it.
    bool m_isMatched;
    QCoreApplication m_application;
    MessageRecorder m_recorder;
};

Session& session()
{
    static Session instance;
    return instance;
}

QString printable(const QString& text)
{
    QString result;
    for (const QChar character : text) {
        const ushort code = character.unicode();
        result += code >= 0x20 && code < 0x7F
                      ? QString(character)
                      : QStringLiteral("\\u%1").arg(code, 4, 16, QLatin1Char('0'));
    }
    return result;
}

} // namespace

const QString Fuzz::fileName = "FILE";

void Fuzz::needDeviceRoot()
{
    if (DeviceRoot::isEntered()) {
        DeviceRoot::clear();
        return;
    }
    std::fputs("needs the device's fixed paths; run it through script/device-root, where "
               "namespaces are allowed\n",
               stderr);
    std::exit(qEnvironmentVariableIsEmpty("CI") ? exitSkipped : EXIT_FAILURE);
}

QByteArray Fuzz::toBytes(const std::uint8_t* data, std::size_t size, int limit)
{
    session(); // before the first message is logged
    return QByteArray(reinterpret_cast<const char*>(data), qMin(int(size), limit));
}

QByteArray Fuzz::takeLine(QByteArray& bytes)
{
    const int end = bytes.indexOf('\n');
    const QByteArray line = bytes.left(end);
    bytes = end < 0 ? QByteArray() : bytes.mid(end + 1);
    return line;
}

QString Fuzz::toText(const QByteArray& bytes)
{
    if (!bytes.startsWith("\xFF\xFE")) {
        return QString::fromUtf8(bytes);
    }
    QString text;
    for (int i = 2; i + 1 < bytes.size(); i += 2) {
        text += QChar(quint8(bytes.at(i)), quint8(bytes.at(i + 1)));
    }
    return text;
}

QString Fuzz::directory()
{
    static const QTemporaryDir directory;
    if (!directory.isValid()) {
        fail(directory.errorString());
    }
    return directory.path();
}

QString Fuzz::path(const QString& name)
{
    return directory() + QLatin1Char('/') + name;
}

QString Fuzz::writeFile(const QString& name, const QByteArray& content)
{
    const QString filePath = path(name);
    QFile file(filePath);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered) ||
        file.write(content) != content.size()) {
        fail("cannot write " + filePath);
    }
    return filePath;
}

QByteArray Fuzz::readFile(const QString& filePath)
{
    QFile file(filePath);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void Fuzz::removeFile(const QString& filePath)
{
    if (!QFile::remove(filePath)) {
        fail("cannot remove " + filePath);
    }
}

QStringList Fuzz::takeMessages()
{
    QStringList texts;
    for (const Message& message : session().recorder().take()) {
        texts += QString::number(message.level) + QLatin1Char(' ') + message.text;
    }
    return texts;
}

QStringList Fuzz::takeMessages(const QString& filePath)
{
    return takeMessages().replaceInStrings(filePath, fileName);
}

void Fuzz::verifySame(const char* what, const QStringList& actual, const QStringList& expected)
{
    if (actual == expected) {
        return;
    }
    int i = 0;
    while (i < actual.size() && i < expected.size() && actual.at(i) == expected.at(i)) {
        ++i;
    }
    fail(QStringLiteral("%1 differ at entry %2 of %3 and %4:\n   library %5\n   literal %6")
             .arg(QString::fromLatin1(what), QString::number(i), QString::number(actual.size()),
                  QString::number(expected.size()), printable(actual.value(i)),
                  printable(expected.value(i))));
}

void Fuzz::verifySame(const char* what, const QString& actual, const QString& expected)
{
    verifySame(what, QStringList(actual), QStringList(expected));
}

void Fuzz::verifySame(const char* what, const QByteArray& actual, const QByteArray& expected)
{
    if (actual != expected) {
        verifySame(what, QString::fromLatin1(actual.toPercentEncoding()),
                   QString::fromLatin1(expected.toPercentEncoding()));
    }
}

void Fuzz::verify(bool isTrue, const char* what)
{
    if (!isTrue) {
        fail(QString::fromLatin1(what));
    }
}
