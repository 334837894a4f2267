#ifndef MISCTOOLS_KERNELCOMMANDLINEPARSER_H
#define MISCTOOLS_KERNELCOMMANDLINEPARSER_H

#include "MiscToolsGlobal.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

/*!
 * \brief Answers what arguments the kernel was started with.
 *
 * \snippet KernelCommandLineParser.cpp arguments
 *
 * The file /proc/cmdline is read once, at construction, and cut at its blanks; quotes mean nothing.
 *
 * \par Contract
 * - **Threads:** after construction an object is only read, and may be shared.
 * - **Ownership:** answers are copies.
 * - **Errors:** nothing throws. "No kernelCommandLine file" and "Can't open kernelCommandLine file"
 *   are warned of at construction; nothing is then contained.
 * - **Units and formats:** an argument is found by the beginning of its name: the key "orvalismode"
 *   also finds "orvalismodex=1". Of an argument that is given twice only the first counts. The line
 *   ends in a line feed, which belongs to its last word: the value of "mode" in a line that ends
 *   with "mode=x" is "x" and a line feed.
 *
 * \since 1.0
 */
class MISCTOOLS_EXPORT KernelCommandLineParser
{
public:
    /*! \brief Reads the command line. */
    KernelCommandLineParser();
    virtual ~KernelCommandLineParser();

    /*! \brief The first argument that begins with \a key, whole; empty when there is none. */
    QString findKey(const QString& key) const;

    /*! \brief Whether an argument begins with \a key. */
    bool contains(const QString& key) const;

    /*!
     * \brief What follows \a key, and "=" if there is one, in the first argument that begins with
     * it.
     *
     * Empty when there is no such argument, and when nothing follows.
     */
    QString getValue(const QString& key) const;

private:
    QStringList m_arguments;
};

#endif
