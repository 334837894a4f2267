#ifndef MISCTOOLS_KERNELCOMMANDLINEDEFINITION_H
#define MISCTOOLS_KERNELCOMMANDLINEDEFINITION_H

#include "MiscToolsGlobal.h"

#include <QtCore/QString>

/*!
 * \brief The names that go with the kernel command line.
 *
 * \snippet KernelCommandLineParser.cpp definition
 *
 * \par Contract
 * - **Threads:** may be called from any thread.
 * - **Ownership:** the texts live as long as the library.
 * - **Errors:** none.
 * - **Units and formats:** see KernelCommandLineParser.
 *
 * \since 1.0
 */
class MISCTOOLS_EXPORT KernelCommandLineDefinition
{
public:
    KernelCommandLineDefinition();
    virtual ~KernelCommandLineDefinition();

    /*!
     * \brief "/proc/cmdline": the arguments that the kernel was started with.
     *
     * The format is the kernel's own: https://docs.kernel.org/admin-guide/kernel-parameters.html
     */
    static const QString& getFilePath();
    /*! \brief "orvalismode": the argument that asks for a boot mode. */
    static const QString& getKeyOrvalisMode();
    /*! \brief "factoryreset": its value that asks for a factory reset. */
    static const QString& getValueOrvalisModeFactoryReset();
};

#endif
