// Reads two real CSV files, computes statistics of their columns, and writes and reads back a summary.
//
//     weather_report [DATA_FOLDER [OUTPUT_FOLDER]]

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

#include "tessera/tessera.hpp"

using namespace MERVO::Tessera;

namespace {

/// A report on half the data is worse than none.
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

/// One row: what a reduction makes of each column.
template <template <ContainerID, typename...> class REDUCTION>
DataFrame Reduce(const DataFrameRef& table)
{
    DataFrame result;
    StopOnFailure(result.ApplyInplace(Func::FunctorFactory<REDUCTION, Func::UnaryBase>{}, table), "a reduction");
    return result;
}

template <typename T>
SeriesPtr MakeColumn(const std::string& name, const std::vector<T>& values)
{
    SeriesPtr column = BuildSeries({static_cast<std::uint32_t>(values.size()), CONTAINER_ARRAY, TYPE_ID_OF<T>}, name);
    const Cursor cursor = column->GetIterator();
    for (std::uint32_t i = 0; i < values.size(); ++i) {
        SetValueToIterator<T>(cursor, values[i], i);
    }
    return column;
}

std::vector<std::int32_t> CountValues(const DataFrameRef& numbers)
{
    std::vector<std::int32_t> counts(numbers.ColumnCount(), 0);
    for (const std::vector<double>& row : numbers.ToVector<double>()) {
        for (std::size_t c = 0; c < row.size(); ++c) {
            counts[c] += std::isnan(row[c]) ? 0 : 1;
        }
    }
    return counts;
}

/// One row per column of a table of doubles: how many values, their mean without NaN, extremes, range, and where the
/// largest stands. The range of a column with a NaN is NaN: it does not pass over gaps, as the extremes do.
DataFrame::Columns Summarize(const DataFrameRef& numbers)
{
    DataFrame::Columns columns;
    columns.push_back(MakeColumn("column", numbers.GetColumnName()));
    columns.push_back(MakeColumn("count", CountValues(numbers)));
    columns.push_back(MakeColumn("mean", Reduce<Func::Mean>(numbers).To1DVector<double>()));
    columns.push_back(MakeColumn("min", Reduce<Func::Min>(numbers).To1DVector<double>()));
    columns.push_back(MakeColumn("max", Reduce<Func::Max>(numbers).To1DVector<double>()));
    columns.push_back(MakeColumn("range", Reduce<Func::Ptp>(numbers).To1DVector<double>()));
    columns.push_back(MakeColumn("max_row", Reduce<Func::IdxMax>(numbers).To1DVector<std::uint32_t>()));
    return columns;
}

/// The dates at which the largest values stand.
std::vector<DateTime> DatesOf(const DataFrameRef& dates, const std::vector<std::uint32_t>& rows)
{
    const std::vector<DateTime> all = dates.To1DVector<DateTime>();
    std::vector<DateTime> chosen;
    for (const std::uint32_t row : rows) {
        chosen.push_back(all[row]);
    }
    return chosen;
}

void ReportSeattle(const std::string& dataFolder, const std::string& outputFolder)
{
    const DataFrame weather = ReadTable(dataFolder + "/seattle-weather.csv",
        {TESSERA_DATETIME, TESSERA_DOUBLE, TESSERA_DOUBLE, TESSERA_DOUBLE, TESSERA_DOUBLE, TESSERA_STRING});
    std::cout << "Daily weather of Seattle\n" << weather << '\n';

    const DataFrameRef numbers = weather[DataFrame::NameRange{"precipitation", "weather"}];
    DataFrame::Columns columns = Summarize(numbers);
    const auto rows = Reduce<Func::IdxMax>(numbers).To1DVector<std::uint32_t>();
    columns.push_back(MakeColumn("max_date", DatesOf(weather["date"], rows)));
    const DataFrame summary(std::move(columns));
    std::cout << "Summary\n" << summary << '\n';

    std::cout << "The first four days, turned\n" << numbers.Slice(0, {0, 4}).Transpose() << '\n';

    const std::string path = outputFolder + "/seattle-summary.csv";
    StopOnFailure(summary.ToCSV(path, /*writeHeader=*/true, ","), "writing " + path);
    const DataFrame again = ReadTable(path,
        {TESSERA_STRING, TESSERA_INT32, TESSERA_DOUBLE, TESSERA_DOUBLE, TESSERA_DOUBLE, TESSERA_DOUBLE, TESSERA_UINT32,
            TESSERA_DATETIME});
    std::cout << "The summary, written and read back\n" << again << '\n';
}

void ReportAirQuality(const std::string& dataFolder)
{
    const DataFrame air = ReadTable(dataFolder + "/airquality.csv",
        {TESSERA_DOUBLE, TESSERA_DOUBLE, TESSERA_DOUBLE, TESSERA_DOUBLE, TESSERA_INT32, TESSERA_INT32});
    std::cout << "Air quality in New York\n" << air << '\n';

    // The summary is of doubles; months and days are counted in integers, so they are cast first.
    DataFrame numbers;
    StopOnFailure(numbers.ApplyInplace(
                      Func::FunctorFactory<Func::TypeCast, Func::UnaryBase, MERVO_TESSERA_TYPEID>{TESSERA_DOUBLE}, air),
        "casting to double");
    std::cout << "Summary\n" << DataFrame(Summarize(numbers)) << '\n';
}

} // namespace

int main(int argc, char** argv)
{
    const std::string dataFolder = argc > 1 ? argv[1] : "examples/data";
    const std::string outputFolder = argc > 2 ? argv[2] : ".";
    ReportSeattle(dataFolder, outputFolder);
    ReportAirQuality(dataFolder);
    return EXIT_SUCCESS;
}
