#include "tessera/operations/column_copies.h"

#include <utility>

#include "tessera/functors/column_runs.h"
#include "tessera/functors/copy_series.h"
#include "tessera/functors/functor_factory.h"

namespace MERVO::Tessera {

Error CopyColumns(const DataFrameRef& window, std::span<const std::uint32_t> positions, DataFrameView::Columns& copies)
{
    const UnaryFactory factory = Func::FunctorFactory<Func::CopySeries, Func::UnaryBase>{};
    Func::UnaryRun run(factory, window);
    for (const std::uint32_t position : positions) {
        run.Open(position, run.SourceContainer(position));
        SeriesPtr copy;
        const SeriesPtr& column = window.GetColumn(position);
        Error outcome = run.HasCursors()
            ? Func::ComputeColumn(run, WithLength(column->GetAttr(), window.RowCount()), copy)
            : run.Process(nullptr);
        if (outcome.code != ERROR_NONE) {
            return outcome;
        }
        copies.push_back(std::move(copy));
    }
    return {};
}

} // namespace MERVO::Tessera
