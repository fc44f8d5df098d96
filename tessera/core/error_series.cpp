#include "tessera/core/error_series.h"

namespace MERVO::Tessera {

std::uint32_t Series<InvalidType, CONTAINER_ARRAY>::Size() const
{
    LogError("Getting Size from error Series");
    return 0;
}

MERVO_TESSERA_TYPEID Series<InvalidType, CONTAINER_ARRAY>::GetTypeId() const
{
    LogError("Getting type id from error Series");
    return TESSERA_INVALID;
}

void Series<InvalidType, CONTAINER_ARRAY>::Print(unsigned int, unsigned int) const
{
    LogError("Printing contents from error Series");
}

std::string Series<InvalidType, CONTAINER_ARRAY>::GetName() const
{
    LogError("Getting Name from error Series");
    return "ErrorSeries";
}

void Series<InvalidType, CONTAINER_ARRAY>::SetName(const std::string&) { LogError("Setting Name to error Series"); }

void Series<InvalidType, CONTAINER_ARRAY>::SetName(std::string&&)
{
    LogError("Setting Name to error Series for setting name");
}

Cursor Series<InvalidType, CONTAINER_ARRAY>::GetIterator()
{
    LogError("Getting Iterator from error Series");
    return nullptr;
}

Cursor Series<InvalidType, CONTAINER_ARRAY>::GetIterator(unsigned int, unsigned int)
{
    LogError("Getting Ranged Iterator from error Series");
    return nullptr;
}

SeriesAttr Series<InvalidType, CONTAINER_ARRAY>::GetAttr() const
{
    LogError("Getting Attr from error Series");
    return {0, CONTAINER_ARRAY, TESSERA_INVALID};
}

SeriesPtr GetErrorSeries()
{
    static Series<InvalidType, CONTAINER_ARRAY> errorSeries;
    return SeriesPtr(&errorSeries, CustomizedDeleter<BaseSeries>{false});
}

} // namespace MERVO::Tessera
