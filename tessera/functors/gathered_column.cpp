#include "tessera/functors/gathered_column.h"

#include "tessera/core/memory_room.h"
#include "tessera/core/raw_texts.h"
#include "tessera/core/scattered.h"
#include "tessera/functors/assign_text.h"
#include "tessera/functors/cell_place.h"
#include "tessera/functors/gather.h"
#include "tessera/functors/long_texts.h"

namespace MERVO::Tessera::Func {
namespace {

std::byte* PlaceOf(const Cursor& numbers) { return static_cast<std::byte*>(CellPlace(numbers).Cell()); }

} // namespace

GatheredColumn::GatheredColumn(Cursor source, std::uint32_t length, std::string name, bool streams)
    : from(std::move(source))
{
    if (from == nullptr) {
        return;
    }
    if (from->GetAttr().typeId == TESSERA_STRING) {
        RawTexts texts = BuildRawTexts(length, std::move(name));
        column = std::move(texts.column);
        next = texts.cells;
        end = next == nullptr ? nullptr : next + length;
    } else {
        column = BuildSeries(WithLength(from->GetAttr(), length), std::move(name));
        to = column->GetIterator();
        const auto cellSize = static_cast<std::size_t>(CellSizeOf(column->GetTypeId()));
        if (to != nullptr && CanCompress(cellSize)) {
            compression.emplace(cellSize, PlaceOf(from), PlaceOf(to), streams);
        }
    }
}

void GatheredColumn::Append(std::span<const std::uint32_t> positions)
{
    if (to == nullptr) {
        AppendTexts(positions);
    } else {
        Gather(from, positions, to);
        to->Shift(static_cast<long long>(positions.size()));
    }
}

void GatheredColumn::AppendTexts(std::span<const std::uint32_t> positions)
{
    const std::string* const texts = CursorAs<CONTAINER_ARRAY, std::string>(from).mHead;
    const auto placeOf = [texts, positions](std::size_t i) { return texts + positions[i]; };
    LongTexts longTexts;
    VisitScattered(
        positions.size(), placeOf, [this, placeOf, positions, &longTexts](std::size_t, const std::string* text) {
            longTexts.Add(text->size(), placeOf, positions.size());
            MakeText(next, *text);
            ++next; // one by one, as the next text may have no room
        });
}

SeriesPtr GatheredColumn::Finish()
{
    FillTexts();
    if (compression.has_value()) {
        compression->Finish();
    }
    return std::move(column);
}

} // namespace MERVO::Tessera::Func
