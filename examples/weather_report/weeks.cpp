#include <iostream>

#include "sections.h"
#include "tools.h"

namespace Report {

void ReportWeeks(const DataFrame& weather, const std::string& outputFolder)
{
    constexpr std::uint32_t DAYS = 366; // of 2012
    constexpr long WEEK = 7L * 24 * 60 * 60;
    const DataFrameRef year = weather.Slice(0, {0, DAYS});
    const std::vector<std::string> measured = {"date", "precipitation"};
    const DataFrame wet = DataFrame(year).SelectRow(year["precipitation"] > Constant(0.0)).SelectCol(measured);
    StopOnFailure(wet.GetError().code, "selecting days with rain");

    // A week in which it never rained has no rows, and gets one of NaN.
    DataFrame days = wet;
    const Samples weeks = days.Resample("date", DateTime(WEEK), /*labelLeft=*/true, /*closedLeft=*/true);
    const DataFrame rain = weeks.Apply(Func::FunctorFactory<Func::Max, Func::UnaryBase>{});
    StopOnFailure(rain.GetError().code, "cutting into weeks");
    const std::int64_t dryWeeks = CountTrue(Compute<Func::IsNan>(rain["precipitation"]))[0];
    std::cout << "Weeks of 2012: " << rain.RowCount() << ", of which without rain: " << dryWeeks
              << "\nWettest days of the weeks of summer\n"
              << rain.Slice(0, {26, 36}) << '\n';
    WriteTable(rain, outputFolder + "/weekly-rain.csv");
}

} // namespace Report
