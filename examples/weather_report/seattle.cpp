#include <iostream>
#include <vector>

#include "sections.h"
#include "tools.h"

namespace Report {
namespace {

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
    const DataFrame isHot = numbers["temp_max"] > Constant(30.0);
    const DataFrame isDry = numbers["precipitation"] == Constant(0.0);
    const DataFrame isFrosty = numbers["temp_min"] < Constant(0.0);
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

} // namespace

DataFrame ReportSeattle(const std::string& dataFolder, const std::string& outputFolder)
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
    WriteTable(summary, path);
    const DataFrame again = ReadTable(path,
        {TESSERA_STRING, TESSERA_INT64, TESSERA_DOUBLE, TESSERA_DOUBLE, TESSERA_DOUBLE, TESSERA_DOUBLE, TESSERA_DOUBLE,
            TESSERA_DOUBLE, TESSERA_UINT32, TESSERA_DATETIME});
    std::cout << "The summary, written and read back\n" << again << '\n';
    return weather;
}

} // namespace Report
