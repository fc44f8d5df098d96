#include <iostream>

#include "sections.h"
#include "tools.h"

namespace Report {
namespace {

/// The wettest rainy days; of equally wet ones the windier come first.
void ReportRainyDays(const DataFrame& weather)
{
    constexpr std::uint32_t SHOWN = 5;
    const DataFrame isRainy = weather["weather"] == Constant<std::string>("rain");
    DataFrame rainy = weather.SelectRow(isRainy);
    StopOnFailure(rainy.GetError().code, "selecting rainy days");
    std::cout << "Rainy days: " << rainy.RowCount() << " of " << weather.RowCount() << "\n\n";
    StopOnFailure(rainy.Sort({"precipitation", "wind"}, /*ascending=*/false), "sorting");
    std::cout << "The wettest rainy days\n" << rainy.Slice(0, {0, SHOWN}) << '\n';
}

/// One row per kind of weather, in alphabetical order: how many days, and the first of them.
void ReportGroups(DataFrame weather)
{
    const Groups kinds = weather.GroupBy({"weather"}, /*inPlace=*/true, /*ascending=*/true, /*sorted=*/true);
    std::vector<std::string> names;
    std::vector<std::uint32_t> days;
    std::vector<DateTime> firstDays;
    GroupReader<Groups> reader(0, kinds);
    for (std::uint32_t group = 0; group < kinds.GetGroupNum(); ++group, ++reader) {
        const DataFrame members = reader.GetGroup();
        names.push_back(members["weather"].To1DVector<std::string>().front());
        days.push_back(members.RowCount());
        firstDays.push_back(members["date"].To1DVector<DateTime>().front());
    }
    DataFrame::Columns columns;
    columns.push_back(MakeColumn("weather", names));
    columns.push_back(MakeColumn("days", days));
    columns.push_back(MakeColumn("first_day", firstDays));
    std::cout << "Days by kind of weather\n" << DataFrame(std::move(columns)) << '\n';
}

} // namespace

void ReportKindsOfWeather(const DataFrame& weather)
{
    ReportRainyDays(weather);
    const std::uint32_t column = weather.ColumnCount() - 1;
    std::cout << "Kinds of weather, as they first came\n" << weather.Unique(column) << '\n';
    ReportGroups(weather);
}

} // namespace Report
