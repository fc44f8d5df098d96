// Reads real CSV files and reports on them: statistics of their columns, hot days and warm months, kinds of weather by
// year, the rain of each week, two cities hour by hour, and gaps in measurements. Writes the tables as CSV; page.sh
// draws them.
//
//     weather_report [DATA_FOLDER [OUTPUT_FOLDER]]

#include <cstdlib>

#include "sections.h"

int main(int argc, char** argv)
{
    const std::string dataFolder = argc > 1 ? argv[1] : "examples/data";
    const std::string outputFolder = argc > 2 ? argv[2] : ".";
    setenv("TZ", "UTC0", 1); // the times tell no zone; in this one every hour comes once

    const MERVO::Tessera::DataFrame weather = Report::ReportSeattle(dataFolder, outputFolder);
    Report::ReportKindsOfWeather(weather);
    Report::ReportMonths(weather, outputFolder);
    Report::ReportYears(weather, outputFolder);
    Report::ReportWeeks(weather, outputFolder);
    Report::ReportCities(dataFolder, outputFolder);
    Report::ReportAirQuality(dataFolder);
    return EXIT_SUCCESS;
}
