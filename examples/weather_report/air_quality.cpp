#include <iostream>

#include "sections.h"
#include "tools.h"

namespace Report {
namespace {

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

} // namespace

void ReportAirQuality(const std::string& dataFolder)
{
    const DataFrame air = ReadTable(dataFolder + "/airquality.csv",
        {TESSERA_DOUBLE, TESSERA_DOUBLE, TESSERA_DOUBLE, TESSERA_DOUBLE, TESSERA_INT32, TESSERA_INT32});
    std::cout << "Air quality in New York\n" << air << '\n';

    // The temperature is in Fahrenheit. A window computes in place, in the cells of its table.
    DataFrame numbers = air[DataFrame::NameRange{"Ozone", "Month"}];
    DataFrameRef temperature = numbers["Temp"];
    temperature -= Constant(32.0);
    temperature /= Constant(1.8);
    StopOnFailure(temperature.GetError().code, "converting degrees");
    std::cout << "Summary, in Celsius\n" << DataFrame(Summarize(numbers)) << '\n';

    const DataFrame complete = air.DropNanRow(true);
    StopOnFailure(complete.GetError().code, "dropping incomplete days");
    std::cout << "Incomplete days: " << air.RowCount() - complete.RowCount() << " of " << air.RowCount() << "\n\n";

    const DataFrame interpolated = Compute<Func::Interpolate>(numbers);
    ReportGaps(numbers, interpolated);
    std::cout << "Summary, gaps interpolated\n" << DataFrame(Summarize(interpolated)) << '\n';
}

} // namespace Report
