#include "Workspace.h"

#include <QtCore/QDir>
#include <QtCore/QFile>

namespace {

QString& theFolder()
{
    static QString folder;
    return folder;
}

// Under a name of its own until it is complete: a half-made one would be measured later.
QString make(const QString& name, const std::function<void(const QString&)>& makeAt)
{
    const QString path = Workspace::path(name);
    if (!QFile::exists(path)) {
        const QString unfinished = path + QStringLiteral(".unfinished");
        makeAt(unfinished);
        if (!QFile::rename(unfinished, path)) {
            qFatal("cannot make %s", qPrintable(path));
        }
    }
    return path;
}

} // namespace

void Workspace::use(const QString& folder)
{
    theFolder() = folder;
}

QString Workspace::folder()
{
    return theFolder();
}

QString Workspace::path(const QString& name)
{
    return theFolder() + QLatin1Char('/') + name;
}

QString Workspace::file(const QString& name, const std::function<QByteArray()>& content)
{
    return make(name, [&content](const QString& path) { write(path, content()); });
}

QString Workspace::filledFolder(const QString& name,
                                const std::function<void(const QString&)>& fill)
{
    return make(name, [&fill](const QString& path) {
        if (!QDir().mkpath(path)) {
            qFatal("cannot make %s", qPrintable(path));
        }
        fill(path);
    });
}

void Workspace::write(const QString& filePath, const QByteArray& content)
{
    QFile file(filePath);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size()) {
        qFatal("cannot write %s", qPrintable(filePath));
    }
}
