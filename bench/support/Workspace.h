#ifndef BENCH_WORKSPACE_H
#define BENCH_WORKSPACE_H

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <functional>

/*
 * The folder where the files lie that are worked on. Each is made once; a program that is started
 * anew under a tool, to be counted, finds it there and does not spend the tool's time on it.
 */
namespace Workspace {

// Everything below is in this folder from here on.
void use(const QString& folder);
QString folder();

QString path(const QString& name);

// The path of a file, which is given this content unless it is there already.
QString file(const QString& name, const std::function<QByteArray()>& content);

// The path of a folder, which is filled unless it is there already.
QString filledFolder(const QString& name, const std::function<void(const QString&)>& fill);

// Writes a whole file; ends the program when that cannot be done.
void write(const QString& filePath, const QByteArray& content);

} // namespace Workspace

#endif
