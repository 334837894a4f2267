#ifndef MISCTOOLS_UNIQUEIDGENERATOR_H
#define MISCTOOLS_UNIQUEIDGENERATOR_H

#include "MiscToolsGlobal.h"

#include <QtCore/QAtomicInt>

/*!
 * \brief Generates numbers that are unique within the process: 0, 1, 2 and so on.
 *
 * Use it to number objects or requests within one process. Do not use it for identifiers that are
 * stored or sent elsewhere: every process starts at 0.
 *
 * \snippet UniqueIdGenerator.cpp number
 *
 * \par Contract
 * - **Threads:** thread-safe and lock-free; no two calls return the same number.
 * - **Ownership:** getInstance() returns a static object, which the library owns; the caller owns
 *   any other generator.
 * - **Errors:** nothing throws. After 2147483647 the numbers continue with -2147483648, unchecked.
 * - **Log messages:** none.
 * - **Units and formats:** signed 32-bit integers.
 *
 * \sa \ref hashes
 * \since 1.0
 */
class MISCTOOLS_EXPORT UniqueIdGenerator
{
public:
    /*! \brief Creates a separate generator, which starts at 0. */
    UniqueIdGenerator();
    ~UniqueIdGenerator(); // NOLINT(performance-trivially-destructible): part of the binary
                          // interface

    /*! \brief Returns the generator that the whole process shares. */
    static UniqueIdGenerator& getInstance();

    /*! \brief Returns the next number. */
    QAtomicInt getId();

private:
    Q_DISABLE_COPY(UniqueIdGenerator)

    QAtomicInt m_counter;
};

#endif
