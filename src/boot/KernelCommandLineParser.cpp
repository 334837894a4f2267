#include "KernelCommandLineParser.h"

#include "KernelCommandLineDefinition.h"
#include "common/Log.h"

#include <QtCore/QFile>

KernelCommandLineParser::KernelCommandLineParser()
{
    QFile file(KernelCommandLineDefinition::getFilePath());
    if (!file.exists()) {
        MISCTOOLS_LOG(KernelCommandLineParser).warning() << "No kernelCommandLine file";
        return;
    }
    if (!file.open(QIODevice::ReadOnly)) {
        MISCTOOLS_LOG(KernelCommandLineParser).warning() << "Can't open kernelCommandLine file";
        return;
    }
    m_arguments = QString::fromUtf8(file.readAll()).split(QLatin1Char(' '));
    m_arguments.removeAll(QString());
    m_arguments.removeAll(QStringLiteral("\n"));
}

KernelCommandLineParser::~KernelCommandLineParser() = default;

QString KernelCommandLineParser::findKey(const QString& key) const
{
    for (const QString& argument : m_arguments) {
        if (argument.startsWith(key)) {
            return argument;
        }
    }
    return QString();
}

bool KernelCommandLineParser::contains(const QString& key) const
{
    return !findKey(key).isEmpty();
}

QString KernelCommandLineParser::getValue(const QString& key) const
{
    QString value = findKey(key).mid(key.length());
    if (value.startsWith(QLatin1Char('='))) {
        value.remove(0, 1);
    }
    return value;
}
