#ifndef MISCTOOLS_MISCTOOLSGLOBAL_H
#define MISCTOOLS_MISCTOOLSGLOBAL_H

#include <QtCore/QtGlobal>

/*!
 * \file
 * \brief The export macro of libMiscTools.
 */

/*!
 * \def MISCTOOLS_EXPORT
 * \brief Marks what leaves the library.
 */
#if defined(MISCTOOLS_BUILD)
#define MISCTOOLS_EXPORT Q_DECL_EXPORT
#else
#define MISCTOOLS_EXPORT Q_DECL_IMPORT
#endif

#endif
