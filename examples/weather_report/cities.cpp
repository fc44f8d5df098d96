#include <iostream>

#include "sections.h"
#include "tools.h"

namespace Report {

void ReportCities(const std::string& dataFolder, const std::string& outputFolder)
{
    const DataFrame::Types types = {TESSERA_DATETIME, TESSERA_DOUBLE};
    const DataFrame seattle = ReadTable(dataFolder + "/seattle-temps.csv", types);
    const DataFrame sanFrancisco = ReadTable(dataFolder + "/sf-temps.csv", types);
    DataFrame hours = seattle.Merge(sanFrancisco, {0}, {0}, TESSERA_JOIN_INNER, {"_seattle", "_sf"});
    StopOnFailure(hours.GetError().code, "merging");
    StopOnFailure(hours.Sort({"time"}, /*ascending=*/true), "sorting"); // merged rows descend

    DataFrame difference = hours["temp_sf"] - hours["temp_seattle"];
    StopOnFailure(difference.SetColumnName({"difference"}), "naming");
    StopOnFailure(hours.AppendColInplace(difference), "inserting the difference");
    std::cout << "Two cities by the hour, in Fahrenheit\n"
              << hours << "\nHours merged: " << hours.RowCount()
              << "\nSan Francisco is warmer by: " << Compute<Func::Mean>(hours["difference"]).To1DVector<double>()[0]
              << "\nHours in which Seattle is warmer: " << CountTrue(hours["difference"] < Constant(0.0))[0] << "\n\n";
    WriteTable(hours, outputFolder + "/cities.csv");
}

} // namespace Report
