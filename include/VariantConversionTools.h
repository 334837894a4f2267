#ifndef MISCTOOLS_VARIANTCONVERSIONTOOLS_H
#define MISCTOOLS_VARIANTCONVERSIONTOOLS_H

#include "MiscToolsGlobal.h"

#include <QtCore/QString>
#include <QtCore/QVariant>

/*!
 * \brief Checked conversions of variants.
 *
 * \snippet VariantConversionTools.cpp convert
 *
 * Whether a conversion is possible is decided by the variant's type alone (QVariant::canConvert): a
 * text can be made a bool whatever it says.
 *
 * \par Contract
 * - **Threads:** may be called from any thread.
 * - **Ownership:** nothing is kept.
 * - **Errors:** nothing throws; an impossible conversion is warned of and gives false.
 * - **Units and formats:** as QVariant::toBool() and QVariant::toString() convert.
 *
 * \since 1.0
 */
class MISCTOOLS_EXPORT VariantConversionTools
{
public:
    /*!
     * \brief Converts \a value into \a result.
     *
     * \return whether that is possible; otherwise \a result stays as it is, and "Unable to convert
     *         QVariant", the variant, "to bool!" is warned of
     */
    static bool toBool(const QVariant& value, bool& result);

    /*! \brief As above, into a text; the warning ends in "to string!". */
    static bool toString(const QVariant& value, QString& result);
};

#endif
