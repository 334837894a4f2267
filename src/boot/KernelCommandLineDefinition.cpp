#include "KernelCommandLineDefinition.h"

KernelCommandLineDefinition::KernelCommandLineDefinition() = default;

KernelCommandLineDefinition::~KernelCommandLineDefinition() = default;

const QString& KernelCommandLineDefinition::getFilePath()
{
    static const QString filePath = QStringLiteral("/proc/cmdline");
    return filePath;
}

const QString& KernelCommandLineDefinition::getKeyOrvalisMode()
{
    static const QString key = QStringLiteral("orvalismode");
    return key;
}

const QString& KernelCommandLineDefinition::getValueOrvalisModeFactoryReset()
{
    static const QString value = QStringLiteral("factoryreset");
    return value;
}
