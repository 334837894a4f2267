#ifndef MISCTOOLS_FILESEARCH_H
#define MISCTOOLS_FILESEARCH_H

/*!
 * \file
 * \brief Includes WildcardFilter.h, which declares searchFilesOnPathRecursive() and
 *        concatenatePaths().
 */

#include "WildcardFilter.h"

#endif
