#include <iostream>

#include "sections.h"
#include "tools.h"

namespace Report {
namespace {

/// A part of each date, as a number.
SeriesPtr MakeDateColumn(const std::string& name, const DataFrameRef& dates, std::size_t place, std::size_t length)
{
    std::vector<std::int32_t> parts;
    for (const DateTime& date : dates.To1DVector<DateTime>()) {
        parts.push_back(std::stoi(date.ToString().substr(place, length)));
    }
    return MakeColumn(name, parts);
}

} // namespace

void ReportMonths(const DataFrame& weather, const std::string& outputFolder)
{
    const std::vector<std::string> measured = {"precipitation", "temp_max", "temp_min", "wind"};
    DataFrame days = weather.SelectCol(measured);
    DataFrame::Columns months;
    months.push_back(MakeDateColumn("month", weather["date"], 5, 2));
    StopOnFailure(days.InsertColInplace(DataFrame(std::move(months)), 0), "inserting months");

    const Groups groups = days.GroupBy({"month"}, /*inPlace=*/false, /*ascending=*/true, /*sorted=*/true);
    const DataFrame means = groups.Apply(Func::FunctorFactory<Func::Mean, Func::UnaryBase>{});
    StopOnFailure(means.GetError().code, "taking means of months");
    std::cout << "Means by month\n" << means << '\n';
    WriteTable(means, outputFolder + "/monthly-means.csv");
}

void ReportYears(const DataFrame& weather, const std::string& outputFolder)
{
    DataFrame::Columns columns;
    columns.push_back(MakeColumn("weather", weather["weather"].To1DVector<std::string>()));
    columns.push_back(MakeDateColumn("year", weather["date"], 0, 4));
    columns.push_back(MakeColumn("days", std::vector<std::int32_t>(weather.RowCount(), 1)));
    const DataFrame days(std::move(columns));

    const DataFrame::TableParams cells = {/*values=*/{2}, /*index=*/{0}, /*columns=*/{1}};
    const Func::FunctorFactory<Func::Sum, Func::UnaryBase> count;
    const DataFrame table = days.PivotTable<std::int32_t>(cells, count, /*fill=*/0);
    // Years come as they first appear in the groups.
    const std::vector<std::string> inOrder = {"weather", "days-2012", "days-2013", "days-2014", "days-2015"};
    const DataFrame years = table.SelectCol(inOrder);
    StopOnFailure(years.GetError().code, "the cross table");
    std::cout << "Days by weather and year\n" << years << '\n';
    WriteTable(years, outputFolder + "/weather-by-year.csv");
}

} // namespace Report
