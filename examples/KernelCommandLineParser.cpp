// Reads the arguments that the boot loader passed to the kernel. KernelCommandLineDefinition has
// the names of the argument and the value that the library itself looks for.

#include <KernelCommandLineDefinition.h>
#include <KernelCommandLineParser.h>

#include <cstdio>

int main()
{
    //! [arguments]
    const KernelCommandLineParser arguments; // reads /proc/cmdline once, here
    std::printf("console <%s>, splash: %s\n",
                qPrintable(arguments.getValue(QStringLiteral("console"))),
                arguments.contains(QStringLiteral("splash")) ? "yes" : "no");
    //! [arguments]

    //! [definition]
    const QString mode = arguments.getValue(KernelCommandLineDefinition::getKeyOrvalisMode());
    const bool isReset = mode == KernelCommandLineDefinition::getValueOrvalisModeFactoryReset();
    std::printf("mode %s, factory reset: %s\n", qPrintable(mode), isReset ? "yes" : "no");
    //! [definition]

    // The beginning of a name is enough to find an argument. To exclude longer names, end the key
    // with "=".
    std::printf("root -> %s\n", qPrintable(arguments.findKey(QStringLiteral("root"))));
    std::printf("roo= -> <%s>\n", qPrintable(arguments.findKey(QStringLiteral("roo="))));
    return 0;
}
