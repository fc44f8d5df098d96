#pragma once

#include <cstdint>
#include <string>

#include "tessera/core/series.h"

/// Columns of texts whose cells are not alive, neither before they are filled nor after they were emptied: passing over
/// all cells to make or destroy them takes as long as copying them.
namespace MERVO::Tessera {

/// A new column, an array, and its first cell, where none of the cells is constructed; both null without memory.
struct RawTexts {
    SeriesPtr column;
    std::string* cells = nullptr;
};

/// Makes such a column. Whoever asks for it constructs every cell, before the column is read, written or destroyed.
RawTexts BuildRawTexts(std::uint32_t count, std::string name);

/// Whether ForgetTexts serves a column: any that was built as an array of texts.
bool CanForgetTexts(const BaseSeries& column);
/// Takes it that each text of a column has been destroyed. The column can then only be destroyed.
void ForgetTexts(BaseSeries& column);

} // namespace MERVO::Tessera
