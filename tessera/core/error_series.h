#pragma once

#include "tessera/core/series.h"

namespace MERVO::Tessera {

template <typename T, ContainerID CID>
class Series;

/// The column that stands for a column that could not be made: it logs each use and gives empty answers.
template <>
class Series<InvalidType, CONTAINER_ARRAY> final : public BaseSeries {
public:
    std::uint32_t Size() const override;
    MERVO_TESSERA_TYPEID GetTypeId() const override;
    void Print(unsigned int begin, unsigned int end) const override;
    std::string GetName() const override;
    void SetName(const std::string& newName) override;
    void SetName(std::string&& newName) override;
    Cursor GetIterator() override;
    Cursor GetIterator(unsigned int begin, unsigned int end) override;
    SeriesAttr GetAttr() const override;
};

} // namespace MERVO::Tessera
