// Reads real CSV files and reports on them: statistics of their columns, hot days, the warmest month, rainy days and
// other kinds of weather, and gaps in measurements, filled, interpolated and dropped. Writes a summary as CSV and reads
// it back.
//
//     weather_report [DATA_FOLDER [OUTPUT_FOLDER]]

#include <cstdlib>

#include "sections.h"

int main(int argc, char** argv)
{
    const std::string dataFolder = argc > 1 ? argv[1] : "examples/data";
    const std::string outputFolder = argc > 2 ? argv[2] : ".";
    const MERVO::Tessera::DataFrame weather = Report::ReportSeattle(dataFolder, outputFolder);
    Report::ReportKindsOfWeather(weather);
    Report::ReportAirQuality(dataFolder);
    return EXIT_SUCCESS;
}
