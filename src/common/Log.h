#ifndef MISCTOOLS_LOG_H
#define MISCTOOLS_LOG_H

#include <QtCore/QDebug>
#include <QtCore/QMessageLogger>

/*!
 * \internal
 * Every message of the library starts here: MISCTOOLS_LOG(IniFileManager).warning() << ...
 *
 * The context is the class's name as the file, the line, the whole signature of the calling
 * function and the category "default". Qt's own qWarning() and qDebug() leave all of that out of
 * release builds, and a field log without it is of little use.
 */
#define MISCTOOLS_LOG(SourceFile) QMessageLogger(#SourceFile, __LINE__, Q_FUNC_INFO)

#endif
