#ifndef MISCTOOLS_VARIANTCONVERSIONTOOLS_H
#define MISCTOOLS_VARIANTCONVERSIONTOOLS_H

#include "MiscToolsGlobal.h"

#include <QtCore/QString>
#include <QtCore/QVariant>

/*!
 * \brief Converts variants and reports whether the conversion is possible.
 *
 * Use it where a variant of the wrong type must not silently become a default value. Do not use it
 * to validate a value: the variant's type alone decides (QVariant::canConvert()), so that every
 * string can be converted to a bool.
 *
 * \snippet VariantConversionTools.cpp convert
 *
 * \par Contract
 * - **Threads:** thread-safe.
 * - **Ownership:** the class has no state; results are copies.
 * - **Errors:** nothing throws; a conversion that is not possible returns false.
 * - **Log messages:** one warning for each conversion that is not possible; see
 *   \ref log-messages-variantconversiontools "log messages of VariantConversionTools".
 * - **Units and formats:** conversions are those of QVariant::toBool() and QVariant::toString().
 *
 * \sa \ref errors
 * \since 1.0
 */
class MISCTOOLS_EXPORT VariantConversionTools
{
public:
    /*!
     * \brief Converts \a value to a bool in \a result.
     *
     * \return true if the conversion is possible; otherwise false, and \a result is unchanged
     *
     * If it is not possible, warns "Unable to convert QVariant", the variant, "to bool!".
     */
    static bool toBool(const QVariant& value, bool& result);

    /*! \brief Like toBool(), to a string; the warning ends in "to string!". */
    static bool toString(const QVariant& value, QString& result);
};

#endif
