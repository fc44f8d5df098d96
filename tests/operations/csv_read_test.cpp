#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tessera/tessera.hpp"
#include "tests/operations/csv_model.h"
#include "tests/support/log_capture.h"
#include "tests/support/same_tables.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/time_zone.h"

namespace MERVO::Tessera {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Types = DataFrame::Types;

// ---- One line

struct LineCase {
    const char* name;
    std::string line;
    std::string separator;
    std::vector<std::string> fields;
};

const LineCase LINE_CASES[] = {
    {"BlanksAreKept", " a , b ", ",", {" a ", " b "}},
    {"SeparatorAtTheEnd", "a,", ",", {"a", ""}},
    {"SeparatorAlone", ",", ",", {"", ""}},
    {"CrLf", "a,b\r\n", ",", {"a", "b"}},
    {"ManyLineEnds", "a,\n\r\n\r", ",", {"a", ""}},
    {"CrInside", "a\r,\rb", ",", {"a\r", "\rb"}},
    {"NoContent", "\r\n\r", ",", {}},
    {"NoBytes", "", ",", {}},
    {"TwoBytes", "a||b|c||", "||", {"a", "b|c", ""}},
    {"FirstFitIsTaken", "a|||b", "||", {"a", "|b"}},
    {"FitBehindAPartialOne", "xaaabyaab", "aab", {"xa", "y", ""}},
    {"NoPattern", "a.b.*c", ".*", {"a.b", "c"}},
    {"Nul", std::string("a\0b", 3), std::string(1, '\0'), {"a", "b"}},
    {"NoQuoting", "\"a,b\"", ",", {"\"a", "b\""}},
    {"LongerThanTheLine", "a", "abc", {"a"}},
};

class Str2Vector : public testing::TestWithParam<LineCase> {};

TEST_P(Str2Vector, AppendsTheFields)
{
    const auto& [name, line, separator, fields] = GetParam();
    std::vector<std::string> cells = {"before"};
    EXPECT_EQ(DataFrame::Str2Vector(line, separator, cells), fields.size());
    cells.erase(cells.begin());
    EXPECT_EQ(cells, fields);
    EXPECT_EQ(ModelFields(line, separator), fields); // so that the model deserves trust below
}

INSTANTIATE_TEST_SUITE_P(Cases, Str2Vector, testing::ValuesIn(LINE_CASES),
    [](const auto& tested) { return std::string(tested.param.name); });

TEST(Str2VectorWithoutSeparator, GivesNothing)
{
    LogCapture log;
    std::vector<std::string> cells;
    EXPECT_EQ(DataFrame::Str2Vector("a", "", cells), 0U);
    EXPECT_THAT(cells, IsEmpty());
    EXPECT_THAT(log.Texts(1), ElementsAre("Empty separator"));
}

// ---- Whole files against the model

std::vector<std::string> Flat(const std::vector<std::vector<std::string>>& lines, std::size_t from = 0)
{
    std::vector<std::string> cells;
    for (std::size_t i = from; i < lines.size(); ++i) {
        cells.insert(cells.end(), lines[i].begin(), lines[i].end());
    }
    return cells;
}

/// What the log says of a file that does not fit; nothing for one that does.
std::vector<std::string> Refusal(const ModelFile& model)
{
    if (model.raggedLine != 0) {
        return {"Index " + std::to_string(model.raggedLine) + " length is not match , last length " +
            std::to_string(model.ColumnCount()) + ", vec size " + std::to_string(model.raggedFields)};
    }
    return model.lines.empty() ? std::vector<std::string>{"Empty vector"} : std::vector<std::string>{};
}

void CompareCells(const ModelFile& model, const std::string& path, const std::string& separator)
{
    LogCapture log;
    DataFrame table;
    std::vector<std::string> cells;
    unsigned int columns = 77;
    ASSERT_EQ(table.GetCSVVec(path, separator, cells, columns), Refusal(model).empty() ? 0 : 2);
    ASSERT_EQ(log.Texts(1), Refusal(model));
    ASSERT_EQ(columns, model.lines.empty() ? 77 : model.ColumnCount());
    if (model.raggedLine == 0) {
        ASSERT_EQ(cells, Flat(model.lines));
    }
}

void CompareTable(const ModelFile& model, const std::string& path, const std::string& separator, bool hasHeader)
{
    LogCapture log;
    DataFrame table;
    const ErrorCode code = table.ReadCSV<std::string>(path, hasHeader, separator);
    std::vector<std::string> refusal = Refusal(model);
    if (!refusal.empty()) {
        refusal.emplace_back("Failed to read data form");
        ASSERT_EQ(code, 2);
        ASSERT_EQ(log.Texts(1), refusal);
        ASSERT_EQ(table.ColumnCount(), 0U);
        ASSERT_EQ(table.GetError().code, 0);
        return;
    }
    ASSERT_EQ(code, 0);
    ASSERT_EQ(log.Count(1), 0U);
    ASSERT_EQ(table.ColumnCount(), model.ColumnCount());
    ASSERT_EQ(table.RowCount(), model.lines.size() - (hasHeader ? 1 : 0));
    ASSERT_EQ(table.To1DVector<std::string>(), Flat(model.lines, hasHeader ? 1 : 0));
    std::vector<std::string> names = model.lines.front();
    for (std::size_t c = 0; c < names.size() && !hasHeader; ++c) {
        names[c] = "col_" + std::to_string(c);
    }
    if (std::set<std::string>(names.begin(), names.end()).size() == names.size()) { // else they are made unique
        ASSERT_EQ(table.GetColumnName(), names);
    }
}

TEST(CsvOfRandomTexts, IsReadAsTheModelReadsIt)
{
    const TemporaryFolder folder;
    CsvTexts random(3);
    for (int round = 0; round < 1500; ++round) {
        const std::string separator = random.Separator();
        const std::string text = round % 3 == 0 ? random.AnyText(separator, 1 + random.Below(60))
                                                : random.Lines(separator, 1 + random.Below(5), random.Below(12));
        const std::string path = folder.Write("random.csv", text);
        const ModelFile model(text, separator);
        ASSERT_NO_FATAL_FAILURE(CompareCells(model, path, separator)) << testing::PrintToString(text);
        ASSERT_NO_FATAL_FAILURE(CompareTable(model, path, separator, round % 2 == 0)) << testing::PrintToString(text);
    }
}

// ---- Value types: a file is read as its fields are cast

/// A text for any type; some are beyond all numbers, some are blank.
std::string CellText(CsvTexts& random, bool canFail)
{
    static const std::vector<std::string> ODD = {"", "0", "-0", "-1", "+7", " 12abc", "abc", "-", "1.5", "-2.5e3",
        "nan", "-inf", "1e-5", "00000000012", "4294967296", "-2147483649", "9223372036854775807", "2024-03-05 07:09:02",
        "1970-01-02", "12345678", "-12345678", "123456789", "1234567x", "2,5", "0x10"};
    static const std::vector<std::string> FAILING = {"99999999999999999999", "1e999", "  ", "-99999999999999999999"};
    if (canFail && random.Below(40) == 0) {
        return FAILING[random.Below(FAILING.size())];
    }
    return random.Below(3) == 0 ? ODD[random.Below(ODD.size())] : std::to_string(random.Below(1U << random.Below(31)));
}

/// Casts column after column of a table of strings, and stops as reading must.
void CastColumns(const DataFrame& strings, const Types& types, DataFrame& expected, Error& failure)
{
    DataFrame::Columns columns;
    for (unsigned int k = 0; k < types.size() && failure.code == 0; ++k) {
        const Func::TypeCast<CONTAINER_ARRAY, MERVO_TESSERA_TYPEID> cast(types[k]);
        const SeriesPtr& source = strings.GetColumn(k);
        SeriesPtr target = BuildSeries({source->Size(), CONTAINER_ARRAY, types[k]}, source->GetName());
        failure.code = cast.ProcessSeries(source->GetIterator(), target->GetIterator(), true).code;
        if (failure.code == 0) {
            columns.push_back(std::move(target));
        } else {
            failure.message = "Failed to cast string to " + GetTypeNameById(types[k]);
        }
    }
    expected = DataFrame(std::move(columns));
    expected.SetError(failure);
}

std::vector<std::string> WordsOfTheCast(const LogCapture& log)
{
    std::vector<std::string> words;
    for (const LogEntry& entry : log.entries) {
        if (entry.text.find("ypecast from string") != std::string::npos ||
            entry.text.find("Failed to cast time") != std::string::npos) {
            words.push_back(std::to_string(entry.level) + entry.text);
        }
    }
    return words;
}

TEST(CsvOfTypes, IsReadAsItsFieldsAreCast)
{
    const TemporaryFolder folder;
    CsvTexts random(4);
    int failures = 0;
    for (int round = 0; round < 600; ++round) {
        Types types(2 + random.Below(6));
        for (MERVO_TESSERA_TYPEID& type : types) {
            type = static_cast<MERVO_TESSERA_TYPEID>(random.Below(TESSERA_TYPE_END));
        }
        std::string text;
        for (std::size_t rows = random.Below(round % 20 == 0 ? 800 : 8) + 1; rows > 0; --rows) {
            for (std::size_t c = 0; c < types.size(); ++c) {
                text += (c == 0 ? "" : ";") + CellText(random, round % 2 == 0);
            }
            text += '\n';
        }
        const std::string path = folder.Write("typed.csv", text);
        DataFrame strings;
        ASSERT_EQ(strings.ReadCSV<std::string>(path, false, ";"), 0);
        DataFrame expected;
        Error failure;
        LogCapture castLog;
        CastColumns(strings, types, expected, failure);

        LogCapture log;
        DataFrame table;
        ASSERT_EQ(table.ReadCSV(path, types, false, ";"), failure.code) << text;
        ASSERT_TRUE(IsSameTable(table, expected)) << text;
        ASSERT_EQ(WordsOfTheCast(log), WordsOfTheCast(castLog)) << text;
        failures += failure.code;

        DataFrame fromCells;
        ASSERT_EQ(fromCells.ReadFormVec(
                      strings.To1DVector<std::string>(), static_cast<unsigned int>(types.size()), types, false),
            failure.code);
        ASSERT_TRUE(IsSameTable(fromCells, expected)) << text;
    }
    EXPECT_GT(failures, 50); // else the failing half of this test shows little
}

// ---- Real data; the sums were computed in decimal

double SumWithoutNan(const DataFrame& table, const char* name)
{
    double sum = 0.0;
    for (const double cell : table[name].To1DVector<double>()) {
        sum += cell == cell ? cell : 0.0;
    }
    return sum;
}

TEST(CsvOfRealData, SeattleWeather)
{
    const TimeZone utc("UTC0");
    const Types types = {
        TESSERA_DATETIME, TESSERA_DOUBLE, TESSERA_DOUBLE, TESSERA_DOUBLE, TESSERA_DOUBLE, TESSERA_STRING};
    DataFrame table;
    ASSERT_EQ(table.ReadCSV("examples/data/seattle-weather.csv", types, true, ","), 0);
    EXPECT_THAT(table.GetColumnName(), ElementsAre("date", "precipitation", "temp_max", "temp_min", "wind", "weather"));
    ASSERT_EQ(table.RowCount(), 1461U);
    EXPECT_NEAR(SumWithoutNan(table, "precipitation"), 4426.0, 1e-8);
    EXPECT_NEAR(SumWithoutNan(table, "temp_max"), 24017.5, 1e-8);
    EXPECT_NEAR(SumWithoutNan(table, "temp_min"), 12031.0, 1e-8);
    EXPECT_NEAR(SumWithoutNan(table, "wind"), 4735.3, 1e-8);
    long long stamps = 0;
    for (const DateTime& date : table["date"].To1DVector<DateTime>()) {
        stamps += date.TimeStamp();
    }
    EXPECT_EQ(stamps, 2028522528000);
    const std::vector<std::string> weather = table["weather"].To1DVector<std::string>();
    EXPECT_EQ(std::count(weather.begin(), weather.end(), "drizzle"), 54);
    EXPECT_EQ(std::count(weather.begin(), weather.end(), "sun"), 714);
}

} // namespace
} // namespace MERVO::Tessera
