#include "fuzz/support/play.h"

#include <algorithm>

namespace MERVO::Tessera::Fuzz {

Play::Play(const std::uint8_t* data, std::size_t size) : inputs(data, size)
{
    for (DataFrame& table : tables) {
        table = inputs.Table(MOST_ROWS, true);
    }
    for (auto& window : windows) {
        window = std::make_unique<DataFrameRef>();
    }
    Check();
}

DataFrameRef& Play::Place(std::uint32_t place)
{
    return place < TABLES ? static_cast<DataFrameRef&>(tables[place]) : *windows[place - TABLES];
}

DataFrameRef& Play::WrittenView()
{
    DataFrameRef& view = Place(inputs.Below(TABLES + WINDOWS));
    WillChange(view);
    return view;
}

DataFrame& Play::WrittenTable()
{
    DataFrame& table = AnyTable();
    WillChange(table);
    return table;
}

void Play::KeepWindow(std::unique_ptr<DataFrameRef> window)
{
    const std::uint32_t place = inputs.Below(WINDOWS);
    windows[place] = std::move(window);
    witness.Forget(TABLES + place);
}

void Play::Keep(DataFrame&& table)
{
    RequireSound(table, true);
    const std::uint32_t place = inputs.Below(2 * TABLES); // some tables should last
    if (place < TABLES && table.RowCount() <= MOST_ROWS && table.ColumnCount() <= MOST_COLUMNS) {
        tables[place] = std::move(table);
        NoteAssigned(tables[place]);
        witness.Forget(place);
    }
}

Range Play::DrawRange(std::uint32_t size)
{
    Range range = {inputs.Index(size), inputs.Index(size)};
    if (inputs.Below(16) != 0) {
        std::sort(range.begin(), range.end());
        ++range[1];
    }
    return range;
}

std::string Play::DrawName(const DataFrameRef& table)
{
    const Names names = table.GetColumnName();
    return names.empty() || inputs.Below(8) == 0 ? inputs.Name()
                                                 : names[inputs.Below(static_cast<std::uint32_t>(names.size()))];
}

Names Play::DrawNames(const DataFrameRef& table)
{
    Names names(inputs.Below(4));
    std::generate(names.begin(), names.end(), [&] { return DrawName(table); });
    return names;
}

void Play::NoteApplied(const DataFrameRef& target, ErrorCode code)
{
    if (code != ERROR_NONE) {
        torn.insert(&target);
    }
}

void Play::Check()
{
    for (std::uint32_t place = 0; place < TABLES + WINDOWS; ++place) {
        RequireSound(Place(place), place < TABLES && !IsTorn(Place(place)));
        witness.Look(place, Place(place));
    }
    witness.Finish();
    for (std::uint32_t place = 0; place < TABLES; ++place) {
        if (tables[place].RowCount() > MOST_ROWS || tables[place].ColumnCount() > MOST_COLUMNS) {
            tables[place] = inputs.Table(MOST_ROWS, true);
            NoteAssigned(tables[place]);
            witness.Forget(place);
        }
    }
}

} // namespace MERVO::Tessera::Fuzz
