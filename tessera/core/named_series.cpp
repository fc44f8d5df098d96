#include "tessera/core/named_series.h"

namespace MERVO::Tessera {

MERVO_TESSERA_TYPEID NamedSeries::GetTypeId() const { return attr.typeId; }

std::string NamedSeries::GetName() const { return name; }

void NamedSeries::SetName(const std::string& newName) { name = newName; }

void NamedSeries::SetName(std::string&& newName) { name = std::move(newName); }

Cursor NamedSeries::GetIterator() { return GetIterator(0, Size()); }

SeriesAttr NamedSeries::GetAttr() const { return attr; }

} // namespace MERVO::Tessera
