#include "VariantConversionTools.h"

#include "common/Log.h"

namespace {

constexpr char unableToConvert[] = "Unable to convert QVariant";

} // namespace

bool VariantConversionTools::toBool(const QVariant& value, bool& result)
{
    if (!value.canConvert(QMetaType::Bool)) {
        MISCTOOLS_LOG(VariantConversionTools).warning() << unableToConvert << value << "to bool!";
        return false;
    }
    result = value.toBool();
    return true;
}

bool VariantConversionTools::toString(const QVariant& value, QString& result)
{
    if (!value.canConvert(QMetaType::QString)) {
        MISCTOOLS_LOG(VariantConversionTools).warning() << unableToConvert << value << "to string!";
        return false;
    }
    result = value.toString();
    return true;
}
