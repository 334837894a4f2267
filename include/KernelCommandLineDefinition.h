#ifndef MISCTOOLS_KERNELCOMMANDLINEDEFINITION_H
#define MISCTOOLS_KERNELCOMMANDLINEDEFINITION_H

#include "MiscToolsGlobal.h"

#include <QtCore/QString>

/*!
 * \brief The path, key and value that BootInformationHelper looks for on the kernel command line.
 *
 * Use these names instead of literals in code that reads or writes the command line. To find out
 * how the device booted, use BootInformationHelper instead.
 *
 * \snippet KernelCommandLineParser.cpp definition
 *
 * \par Contract
 * - **Threads:** thread-safe.
 * - **Ownership:** the library owns the strings; the references remain valid until the process
 *   exits.
 * - **Errors:** nothing throws.
 * - **Log messages:** none.
 * - **Units and formats:** see KernelCommandLineParser.
 *
 * \sa \ref boot
 * \since 1.0
 */
class MISCTOOLS_EXPORT KernelCommandLineDefinition
{
public:
    KernelCommandLineDefinition();
    virtual ~KernelCommandLineDefinition();

    /*!
     * \brief Returns "/proc/cmdline": the file with the arguments of the kernel.
     *
     * The kernel documents its format: https://docs.kernel.org/admin-guide/kernel-parameters.html
     */
    static const QString& getFilePath();
    /*! \brief Returns "orvalismode": the argument that requests a boot mode. */
    static const QString& getKeyOrvalisMode();
    /*! \brief Returns "factoryreset": the value that requests a factory reset. */
    static const QString& getValueOrvalisModeFactoryReset();
};

#endif
