#pragma once

#include <string>

#include "tessera/tessera.hpp"

// The sections of the report. Each prints its part; they write what others may go on with as CSV.
namespace Report {

/// Reads Seattle's days and summarizes them; writes the summary and reads it back.
MERVO::Tessera::DataFrame ReportSeattle(const std::string& dataFolder, const std::string& outputFolder);
/// Rows by condition, in order and in groups.
void ReportKindsOfWeather(const MERVO::Tessera::DataFrame& weather);
/// Gaps in measurements, filled, interpolated and dropped.
void ReportAirQuality(const std::string& dataFolder);

} // namespace Report
