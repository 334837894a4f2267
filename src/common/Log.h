#ifndef MISCTOOLS_LOG_H
#define MISCTOOLS_LOG_H

#include <QtCore/QDebug>
#include <QtCore/QMessageLogger>

/*!
 * \internal
 * The library logs every message through this macro: MISCTOOLS_LOG(IniFileManager).warning() << ...
 *
 * The context consists of the class name as the file, the line, the signature of the calling
 * function and the category "default". qWarning() and qDebug() omit file, line and function in
 * release builds, which makes field logs hard to use.
 */
#define MISCTOOLS_LOG(SourceFile) QMessageLogger(#SourceFile, __LINE__, Q_FUNC_INFO)

#endif
