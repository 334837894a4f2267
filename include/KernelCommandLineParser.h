#ifndef MISCTOOLS_KERNELCOMMANDLINEPARSER_H
#define MISCTOOLS_KERNELCOMMANDLINEPARSER_H

#include "MiscToolsGlobal.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

/*!
 * \brief Reads the arguments that the boot loader passed to the kernel.
 *
 * Reads /proc/cmdline once, at construction, and splits it at spaces. Use it to look up single
 * arguments. Do not use it for values that contain spaces: quotes have no special meaning.
 *
 * \snippet KernelCommandLineParser.cpp arguments
 *
 * \par Contract
 * - **Threads:** thread-safe after construction; one object may be shared between threads.
 * - **Ownership:** results are copies.
 * - **Errors:** nothing throws. If the file cannot be read, no argument is found.
 * - **Log messages:** at construction, the warnings "No kernelCommandLine file" and "Can't open
 *   kernelCommandLine file"; see
 *   \ref log-messages-kernelcommandlineparser "log messages of KernelCommandLineParser".
 * - **Units and formats:** a key matches the beginning of an argument: the key "orvalismode" also
 *   finds "orvalismodex=1". If an argument is given twice, only the first one counts. The trailing
 *   line feed of the file is part of the last argument: if that is "mode=x", the value of "mode"
 *   is "x" and a line feed.
 *
 * \sa \ref boot, \ref gotchas
 * \since 1.0
 */
class MISCTOOLS_EXPORT KernelCommandLineParser
{
public:
    /*! \brief Reads the command line. */
    KernelCommandLineParser();
    virtual ~KernelCommandLineParser();

    /*! \brief Returns the entire first argument that begins with \a key; empty if there is none. */
    QString findKey(const QString& key) const;

    /*! \brief Returns true if an argument begins with \a key. */
    bool contains(const QString& key) const;

    /*!
     * \brief Returns the text after \a key, without a leading "=", in the first argument that
     * begins with \a key.
     *
     * Empty if there is no such argument or if nothing follows.
     */
    QString getValue(const QString& key) const;

private:
    QStringList m_arguments;
};

#endif
