#include "tools.h"

#include <cstdlib>
#include <iostream>

namespace Report {

void StopOnFailure(ErrorCode code, const std::string& what)
{
    if (code != 0) {
        std::cerr << "weather_report: " << what << " failed with code " << code << '\n';
        std::exit(EXIT_FAILURE);
    }
}

DataFrame ReadTable(const std::string& path, const DataFrame::Types& types)
{
    DataFrame table;
    StopOnFailure(table.ReadCSV(path, types, /*hasHeader=*/true, ","), "reading " + path);
    return table;
}

void WriteTable(const DataFrame& table, const std::string& path)
{
    StopOnFailure(table.ToCSV(path, /*writeHeader=*/true, ","), "writing " + path);
}

std::vector<std::int64_t> CountTrue(const DataFrame& marks)
{
    StopOnFailure(marks.GetError().code, "a comparison"); // a failure goes through a whole expression
    return Compute<Func::Sum>(marks).To1DVector<std::int64_t>();
}

SeriesPtr MakeColumn(const std::string& name, const DataFrameRef& cells)
{
    return MakeColumn(name, cells.To1DVector<double>());
}

DataFrame::Columns Summarize(const DataFrameRef& numbers)
{
    constexpr bool SKIP_NAN = true;
    constexpr bool BIAS = false;
    DataFrame::Columns columns;
    columns.push_back(MakeColumn("column", numbers.GetColumnName()));
    columns.push_back(MakeColumn("count", CountTrue(!Compute<Func::IsNan>(numbers))));
    columns.push_back(MakeColumn("mean", Compute<Func::Mean>(numbers)));
    columns.push_back(MakeColumn("min", Compute<Func::Min>(numbers)));
    columns.push_back(MakeColumn("max", Compute<Func::Max>(numbers)));
    columns.push_back(MakeColumn("range", Compute<Func::Ptp>(numbers)));
    columns.push_back(MakeColumn("skewness", Compute<Func::Skew>(numbers, SKIP_NAN, BIAS)));
    columns.push_back(MakeColumn("kurtosis", Compute<Func::Kurt>(numbers, SKIP_NAN, BIAS)));
    columns.push_back(MakeColumn("max_row", Compute<Func::IdxMax>(numbers).To1DVector<std::uint32_t>()));
    return columns;
}

} // namespace Report
