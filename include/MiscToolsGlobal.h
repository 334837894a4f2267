#ifndef MISCTOOLS_MISCTOOLSGLOBAL_H
#define MISCTOOLS_MISCTOOLSGLOBAL_H

#include <QtCore/QtGlobal>

/*!
 * \file
 * \brief The export macro of the library.
 */

/*!
 * \def MISCTOOLS_EXPORT
 * \brief Marks a class or function as exported from the library.
 */
#if defined(MISCTOOLS_BUILD)
#define MISCTOOLS_EXPORT Q_DECL_EXPORT
#else
#define MISCTOOLS_EXPORT Q_DECL_IMPORT
#endif

#endif
