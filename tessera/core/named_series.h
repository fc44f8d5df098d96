#pragma once

#include <string>
#include <utility>

#include "tessera/core/series.h"

namespace MERVO::Tessera {

/// What columns have apart from their cells: an attribute, which never changes, and a name.
class NamedSeries : public BaseSeries {
public:
    explicit NamedSeries(const SeriesAttr& seriesAttr, std::string seriesName = {})
        : attr(seriesAttr), name(std::move(seriesName))
    {
    }

    MERVO_TESSERA_TYPEID GetTypeId() const final;
    std::string GetName() const final;
    void SetName(const std::string& newName) final;
    void SetName(std::string&& newName) final;
    Cursor GetIterator() final;
    using BaseSeries::GetIterator;
    SeriesAttr GetAttr() const final;

protected:
    const SeriesAttr attr;

private:
    std::string name;
};

} // namespace MERVO::Tessera
