#pragma once

#include <string>

#include "tessera/tessera.hpp"

// The sections of the report. Each prints its part, and writes what the plots show as CSV into the output folder.
namespace Report {

/// Reads Seattle's days and summarizes them; writes the summary and reads it back.
MERVO::Tessera::DataFrame ReportSeattle(const std::string& dataFolder, const std::string& outputFolder);
/// Rows by condition, in order and in groups.
void ReportKindsOfWeather(const MERVO::Tessera::DataFrame& weather);
/// Means of each month of the year.
void ReportMonths(const MERVO::Tessera::DataFrame& weather, const std::string& outputFolder);
/// The rain of each week of a year, dry weeks and all.
void ReportWeeks(const MERVO::Tessera::DataFrame& weather, const std::string& outputFolder);
/// Kinds of weather by year.
void ReportYears(const MERVO::Tessera::DataFrame& weather, const std::string& outputFolder);
/// The hourly temperatures of two cities side by side.
void ReportCities(const std::string& dataFolder, const std::string& outputFolder);
/// Gaps in measurements, filled, interpolated and dropped.
void ReportAirQuality(const std::string& dataFolder);

} // namespace Report
