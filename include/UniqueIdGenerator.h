#ifndef MISCTOOLS_UNIQUEIDGENERATOR_H
#define MISCTOOLS_UNIQUEIDGENERATOR_H

#include "MiscToolsGlobal.h"

#include <QtCore/QAtomicInt>

/*!
 * \brief Hands out numbers that are unique within the process: 0, 1, 2 and so on.
 *
 * \snippet UniqueIdGenerator.cpp number
 *
 * \par Contract
 * - **Threads:** all calls may overlap; no two get the same number. No call waits for another.
 * - **Ownership:** the one instance lives as long as the process.
 * - **Errors:** none. Behind 2147483647 comes -2147483648; that is not checked.
 * - **Units and formats:** numbers begin anew with every process.
 *
 * \since 1.0
 */
class MISCTOOLS_EXPORT UniqueIdGenerator
{
public:
    /*! \brief A generator of its own, which begins at 0. */
    UniqueIdGenerator();
    ~UniqueIdGenerator(); // NOLINT(performance-trivially-destructible): part of the binary
                          // interface

    /*! \brief The process's generator. */
    static UniqueIdGenerator& getInstance();

    /*! \brief The next number. */
    QAtomicInt getId();

private:
    Q_DISABLE_COPY(UniqueIdGenerator)

    QAtomicInt m_counter;
};

#endif
