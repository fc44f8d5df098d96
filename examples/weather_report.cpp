// Reads two real CSV files and reports on them: statistics of their columns, hot days, the warmest month, and gaps in
// measurements, filled and interpolated. Writes a summary as CSV and reads it back.
//
//     weather_report [DATA_FOLDER [OUTPUT_FOLDER]]

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

/// What an operation makes of a table.
template <template <ContainerID, typename...> class OPERATION, typename... Arguments>
DataFrame Compute(const DataFrameRef& table, Arguments... arguments)
{
    DataFrame result;
    const Func::FunctorFactory<OPERATION, Func::UnaryBase, Arguments...> operation{arguments...};
    StopOnFailure(result.ApplyInplace(operation, table), "a computation");
    return result;
}

/// One number, which meets every cell of a table on its left.
DataFrame Constant(double value)
{
    DataFrame constant;
    StopOnFailure(constant.ReadVector<double>({value}, {1, 1}), "making a constant");
    return constant;
}

/// How many cells of each column of a table of bools are true.
std::vector<std::int64_t> CountTrue(const DataFrame& marks)
{
    StopOnFailure(marks.GetError().code, "a comparison"); // a failure goes through a whole expression
    return Compute<Func::Sum>(marks).To1DVector<std::int64_t>();
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

/// The cells of a table of doubles, row by row, as one column.
SeriesPtr MakeColumn(const std::string& name, const DataFrameRef& cells)
{
    return MakeColumn(name, cells.To1DVector<double>());
}

/// One row per column of a table of doubles: how many values, statistics without the missing ones, and the row of the
/// largest. Only the range does not pass over missing values: it is NaN then.
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

/// Daily numbers with one more column: how far the temperature went up and down on the day.
DataFrame WithSwing(const DataFrameRef& numbers)
{
    DataFrame::Columns columns;
    for (const std::string& name : numbers.GetColumnName()) {
        columns.push_back(MakeColumn(name, numbers[name.c_str()]));
    }
    const DataFrame swing = numbers["temp_max"] - numbers["temp_min"];
    StopOnFailure(swing.GetError().code, "subtracting");
    columns.push_back(MakeColumn("temp_swing", swing));
    return DataFrame(std::move(columns));
}

void ReportHotDays(const DataFrameRef& numbers)
{
    const DataFrame isHot = numbers["temp_max"] > Constant(30);
    const DataFrame isDry = numbers["precipitation"] == Constant(0);
    const DataFrame isFrosty = numbers["temp_min"] < Constant(0);
    std::cout << "Days above 30 degrees: " << CountTrue(isHot)[0] << ", of which dry: " << CountTrue(isHot && isDry)[0]
              << "\nDays with frost: " << CountTrue(isFrosty)[0] << '\n';
}

void ReportWarmestMonth(const DataFrameRef& weather)
{
    constexpr std::uint32_t DAYS = 30;
    const DataFrame means =
        Compute<Func::RollingMean>(weather["temp_max"], DAYS, /*center=*/false, /*minPeriods=*/DAYS);
    const DataFrameRef whole = means.Slice(0, {DAYS - 1, means.RowCount()}); // before that, days are missing: NaN
    const std::uint32_t warmest = Compute<Func::IdxMax>(whole).To1DVector<std::uint32_t>()[0];
    std::cout << "Warmest 30 days end on: " << weather["date"].To1DVector<DateTime>()[warmest + DAYS - 1]
              << "\nTheir mean of temp_max: " << whole.To1DVector<double>()[warmest] << "\n\n";
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

    const DataFrame numbers = WithSwing(weather[DataFrame::NameRange{"precipitation", "weather"}]);
    DataFrame::Columns columns = Summarize(numbers);
    const auto rows = Compute<Func::IdxMax>(numbers).To1DVector<std::uint32_t>();
    columns.push_back(MakeColumn("max_date", DatesOf(weather["date"], rows)));
    const DataFrame summary(std::move(columns));
    std::cout << "Summary\n" << summary << '\n';

    ReportHotDays(numbers);
    ReportWarmestMonth(weather);

    std::cout << "The first four days, turned\n" << numbers.Slice(0, {0, 4}).Transpose() << '\n';

    const std::string path = outputFolder + "/seattle-summary.csv";
    StopOnFailure(summary.ToCSV(path, /*writeHeader=*/true, ","), "writing " + path);
    const DataFrame again = ReadTable(path,
        {TESSERA_STRING, TESSERA_INT64, TESSERA_DOUBLE, TESSERA_DOUBLE, TESSERA_DOUBLE, TESSERA_DOUBLE, TESSERA_DOUBLE,
            TESSERA_DOUBLE, TESSERA_UINT32, TESSERA_DATETIME});
    std::cout << "The summary, written and read back\n" << again << '\n';
}

/// Two ways to close the gaps, and what they do to the means.
void ReportGaps(const DataFrameRef& numbers, const DataFrameRef& interpolated)
{
    const DataFrame filled = Compute<Func::FillNan>(numbers, "ffill"); // the last value before the gap
    DataFrame::Columns columns;
    columns.push_back(MakeColumn("column", numbers.GetColumnName()));
    columns.push_back(MakeColumn("gaps", CountTrue(Compute<Func::IsNan>(numbers))));
    columns.push_back(MakeColumn("mean", Compute<Func::Mean>(numbers)));
    columns.push_back(MakeColumn("mean_filled", Compute<Func::Mean>(filled)));
    columns.push_back(MakeColumn("mean_interpolated", Compute<Func::Mean>(interpolated)));
    std::cout << "Missing values\n" << DataFrame(std::move(columns)) << '\n';
}

void ReportAirQuality(const std::string& dataFolder)
{
    const DataFrame air = ReadTable(dataFolder + "/airquality.csv",
        {TESSERA_DOUBLE, TESSERA_DOUBLE, TESSERA_DOUBLE, TESSERA_DOUBLE, TESSERA_INT32, TESSERA_INT32});
    std::cout << "Air quality in New York\n" << air << '\n';

    // The temperature is in Fahrenheit. A window computes in place, in the cells of its table.
    DataFrame numbers = air[DataFrame::NameRange{"Ozone", "Month"}];
    DataFrameRef temperature = numbers["Temp"];
    temperature -= Constant(32);
    temperature /= Constant(1.8);
    StopOnFailure(temperature.GetError().code, "converting degrees");
    std::cout << "Summary, in Celsius\n" << DataFrame(Summarize(numbers)) << '\n';

    const DataFrame interpolated = Compute<Func::Interpolate>(numbers);
    ReportGaps(numbers, interpolated);
    std::cout << "Summary, gaps interpolated\n" << DataFrame(Summarize(interpolated)) << '\n';
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
