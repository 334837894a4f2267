// The input is a key on the first line, followed by the kernel's command line.
#include "BootInformationHelper.h"
#include "DeviceRoot.h"
#include "Fuzz.h"
#include "KernelCommandLineParser.h"

namespace {

// The arguments of the command line, parsed character by character.
QStringList literalArguments(const QByteArray& content)
{
    QStringList arguments;
    QString argument;
    const auto endArgument = [&] {
        if (!argument.isEmpty() && argument != QLatin1String("\n")) {
            arguments += argument;
        }
        argument.clear();
    };
    // Up to the first zero byte.
    for (const QChar character : QString::fromUtf8(content.constData())) {
        if (character == QLatin1Char(' ')) {
            endArgument();
        } else {
            argument += character;
        }
    }
    endArgument();
    return arguments;
}

QStringList shown(const QString& argument, const QString& value, bool isThere)
{
    return {argument, value, isThere ? QStringLiteral("is there") : QStringLiteral("is not there")};
}

QString literalValue(const QString& argument, const QString& key)
{
    const QString value = argument.mid(key.size());
    return value.left(1) == QLatin1String("=") ? value.mid(1) : value;
}

QString literalArgument(const QStringList& arguments, const QString& key)
{
    for (const QString& argument : arguments) {
        if (argument.left(key.size()) == key) {
            return argument;
        }
    }
    return QString();
}

void verifyKey(const KernelCommandLineParser& parser, const QStringList& arguments,
               const QString& key)
{
    const QString argument = literalArgument(arguments, key);
    Fuzz::verifySame("argument and value",
                     shown(parser.findKey(key), parser.getValue(key), parser.contains(key)),
                     shown(argument, literalValue(argument, key), !argument.isEmpty()));
}

} // namespace

int LLVMFuzzerInitialize(int*, char***)
{
    Fuzz::needDeviceRoot();
    // This product never boots with a hard reset.
    qputenv("MISCTOOLS_PRODUCT_CODE", "000000");
    return 0;
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr int argumentLimit = 8;

    QByteArray content = Fuzz::toBytes(data, size);
    const QString givenKey = Fuzz::toText(Fuzz::takeLine(content));
    DeviceRoot::setCommandLine(content);

    const QStringList arguments = literalArguments(content);
    const KernelCommandLineParser parser;
    const QString modeKey = "orvalismode";
    for (const QString& key : {givenKey, modeKey, QString()}) {
        verifyKey(parser, arguments, key);
    }
    for (const QString& argument : arguments.mid(0, argumentLimit)) {
        verifyKey(parser, arguments, argument);
        verifyKey(parser, arguments, argument.section(QLatin1Char('='), 0, 0));
        verifyKey(parser, arguments, argument.left(1));
    }

    const bool isFactoryReset =
        literalValue(literalArgument(arguments, modeKey), modeKey) == QLatin1String("factoryreset");
    const BootInformationHelper boot;
    Fuzz::verify(boot.isFactoryReset() == isFactoryReset, "factory reset");
    Fuzz::verify(boot.getCurrentBootMode() == (isFactoryReset
                                                   ? BootInformationHelper::BootModeFactoryReset
                                                   : BootInformationHelper::BootModeNormal),
                 "boot mode");
    Fuzz::verifySame("messages", Fuzz::takeMessages(), QStringList());
    return 0;
}
