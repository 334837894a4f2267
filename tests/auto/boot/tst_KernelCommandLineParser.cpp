#include "DeviceRoot.h"
#include "KernelCommandLineParser.h"
#include "TestCase.h"

#include <cstring>
#include <type_traits>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

static_assert(sizeof(KernelCommandLineParser) == sizeof(void*) + sizeof(QStringList),
              "only the list of arguments");
static_assert(std::has_virtual_destructor<KernelCommandLineParser>::value, "virtual destructor");

class tst_KernelCommandLineParser : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void lookUp_data();
    void lookUp();
    void longLineIsParsedCompletely();
    void fileIsReadOncePerObject();
    void missingFileWarns();
    void unreadableFileWarns();

private:
    void verifyParserIsEmpty(const KernelCommandLineParser& parser);
};

void tst_KernelCommandLineParser::lookUp_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("argument"); // empty: none
    QTest::addColumn<QString>("value");

    const auto newRow = [](const char* situation, const QByteArray& line, const char* key,
                           const QString& argument, const QString& value) {
        QTest::newRow(situation) << line << QString::fromUtf8(key) << argument << value;
    };
    const QString none;
    const QString mode = "mode";
    const QString x = "x";
    const QString modeX = "mode=x";
    const QString lineFeed = "\n";

    const QByteArray usual("console=ttyS0 orvalismode=factoryreset quiet\n");
    newRow("first argument", usual, "console", "console=ttyS0", "ttyS0");
    newRow("middle argument", usual, "orvalismode", "orvalismode=factoryreset", "factoryreset");
    newRow("last argument keeps its line feed", usual, "quiet", "quiet\n", lineFeed);
    newRow("last value keeps its line feed", "a mode=x\n", "mode", "mode=x\n", "x\n");
    newRow("no line feed", "a mode=x", "mode", modeX, x);
    newRow("missing argument", usual, "root", none, none);

    newRow("empty file", "", "a", none, none);
    newRow("empty file, empty key", "", "", none, none);
    newRow("only spaces", "   ", "", none, none);
    newRow("only a line feed", "\n", "", none, none);
    newRow("space and line feed", " \n", "", none, none);
    newRow("two line feeds are an argument", "\n\n", "", "\n\n", "\n\n");

    newRow("two spaces", "a  mode=x b", "mode", modeX, x);
    newRow("leading spaces", "  mode=x b", "", modeX, modeX);
    newRow("trailing spaces", "mode=x  ", "mode", modeX, x);
    newRow("trailing space and line feed", "mode=x \n", "mode", modeX, x);
    newRow("several lone line feeds", "\n \n mode=x \n", "", modeX, modeX);
    newRow("lone line feeds are not arguments", "\n mode=x \n", "\n", none, none);
    newRow("tab does not separate", "a\tmode=x", "mode", none, none);
    newRow("tab is part of the argument", "mode=x\ty b", "mode", "mode=x\ty", "x\ty");
    newRow("line feed does not separate", "a\nmode=x b", "mode", none, none);
    newRow("line feed is part of the argument", "a\nmode=x b", "a", "a\nmode=x", "\nmode=x");
    newRow("carriage return is part of the argument", "mode=x\r\n", "mode", "mode=x\r\n", "x\r\n");
    newRow("lone carriage return is an argument", "\r \n", "", "\r", "\r");
    newRow("quotes have no meaning", "mode=\"x y\" z", "mode", "mode=\"x", "\"x");

    newRow("before a zero byte", QByteArray("mode=x\0y b", 10), "mode", modeX, x);
    newRow("after a zero byte", QByteArray("a \0mode=x b", 11), "mode", none, none);
    newRow("leading zero byte", QByteArray("\0mode=x", 7), "", none, none);
    newRow("UTF-8", "mode=\xc3\xa4 b", "mode", QStringLiteral("mode=\u00e4"),
           QStringLiteral("\u00e4"));
    newRow("UTF-8 key", "m\xc3\xb6=x b", "m\xc3\xb6", QStringLiteral("m\u00f6=x"), x);
    newRow("invalid UTF-8", "mode=\xff b", "mode", QStringLiteral("mode=\ufffd"),
           QStringLiteral("\ufffd"));
    newRow("invalid UTF-8 in an earlier argument", "\xc3 mode=x b", "mode", modeX, x);

    newRow("longer name that begins with the key", "orvalismodex=1 b", "orvalismode",
           "orvalismodex=1", "x=1");
    newRow("longer name first", "modex=1 mode=x b", "mode", "modex=1", "x=1");
    newRow("longer name second", "mode=x modex=1 b", "mode", modeX, x);
    newRow("key in the middle of an argument", "amode=x b", "mode", none, none);
    newRow("key longer than the argument", "mod=x b", "mode", none, none);
    newRow("different case", "MODE=x Mode=y b", "mode", none, none);
    newRow("key twice", "mode=x mode=y b", "mode", modeX, x);
    newRow("key twice, first without value", "mode mode=y b", "mode", mode, none);

    newRow("no equals sign", "orvalismode b", "orvalismode", "orvalismode", none);
    newRow("empty value", "mode= b", "mode", "mode=", none);
    newRow("equals sign in the value", "mode=a=b c", "mode", "mode=a=b", "a=b");
    newRow("two equals signs", "mode==x c", "mode", "mode==x", "=x");
    newRow("key again in the value", "mode=a-mode=b c", "mode", "mode=a-mode=b", "a-mode=b");
    newRow("key with equals sign", "mode=x b", "mode=", modeX, x);
    newRow("key with equals sign, argument with two", "mode==x b", "mode=", "mode==x", x);
    newRow("key with value", "mode=x b", "mode=x", modeX, none);
    newRow("empty key finds the first argument", "console mode=x b", "", "console", "console");
    newRow("empty key, argument begins with equals sign", "=x b", "", "=x", x);
    newRow("argument without a name", "a =x b", "=", "=x", x);
    newRow("argument without a name, two equals signs", "a ==x b", "=", "==x", x);
    newRow("key with a space", "a mode=x b", "a mode", none, none);
}

void tst_KernelCommandLineParser::lookUp()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    QFETCH(QByteArray, line);
    QFETCH(QString, key);
    QFETCH(QString, argument);
    QFETCH(QString, value);

    DeviceRoot::setCommandLine(line);
    const KernelCommandLineParser parser;
    QCOMPARE(parser.findKey(key), argument);
    QCOMPARE(parser.contains(key), !argument.isEmpty());
    QCOMPARE(parser.getValue(key), value);
}

void tst_KernelCommandLineParser::longLineIsParsedCompletely()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    const QByteArray last(" mode=x \n");
    const QByteArray filling("argument=value ");
    QByteArray line;
    while (line.size() + filling.size() + last.size() < 64 * 1024) {
        line += filling;
    }
    line += QByteArray(64 * 1024 - line.size() - last.size(), 'z') + last;
    QCOMPARE(line.size(), 64 * 1024);

    DeviceRoot::setCommandLine(line);
    const KernelCommandLineParser parser;
    QCOMPARE(parser.getValue(QStringLiteral("mode")), QStringLiteral("x"));
    QCOMPARE(parser.getValue(QStringLiteral("argument")), QStringLiteral("value"));
}

void tst_KernelCommandLineParser::fileIsReadOncePerObject()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    DeviceRoot::setCommandLine("mode=x b\n");
    const KernelCommandLineParser first;
    DeviceRoot::setCommandLine("mode=y b\n");
    const KernelCommandLineParser second;
    QCOMPARE(first.getValue(QStringLiteral("mode")), QStringLiteral("x"));
    QCOMPARE(second.getValue(QStringLiteral("mode")), QStringLiteral("y"));
}

void tst_KernelCommandLineParser::verifyParserIsEmpty(const KernelCommandLineParser& parser)
{
    for (const QString& key : {QString(), QStringLiteral("mode")}) {
        QCOMPARE(parser.findKey(key), QString());
        QVERIFY(!parser.contains(key));
        QCOMPARE(parser.getValue(key), QString());
    }
}

void tst_KernelCommandLineParser::missingFileWarns()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    DeviceRoot::setCommandLine("mode=x b\n");
    const DeviceRoot::Covered covered("/proc");
    messages()
        .expectWarning("KernelCommandLineParser", "No kernelCommandLine file")
        .function("KernelCommandLineParser::KernelCommandLineParser()");
    const KernelCommandLineParser parser;
    verifyParserIsEmpty(parser);
}

void tst_KernelCommandLineParser::unreadableFileWarns()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    // Not even root can open a socket in the file system.
    const QString socketPath = path("socket");
    const QByteArray name = QFile::encodeName(socketPath);
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    QVERIFY(name.size() < int(sizeof address.sun_path));
    memcpy(address.sun_path, name.constData(), size_t(name.size()));
    const int descriptor = socket(AF_UNIX, SOCK_STREAM, 0);
    QVERIFY(descriptor >= 0);
    QCOMPARE(bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);

    const DeviceRoot::Covered covered("/proc/cmdline", socketPath);
    messages()
        .expectWarning("KernelCommandLineParser", "Can't open kernelCommandLine file")
        .function("KernelCommandLineParser::KernelCommandLineParser()");
    const KernelCommandLineParser parser;
    close(descriptor);
    verifyParserIsEmpty(parser);
}

QTEST_GUILESS_MAIN(tst_KernelCommandLineParser)
#include "tst_KernelCommandLineParser.moc"
