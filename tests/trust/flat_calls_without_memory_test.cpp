// Memory runs out anywhere in any flat call.

#include <fstream>
#include <iostream>
#include <set>

#include <gmock/gmock.h>

#include "tests/support/shortage.h"

namespace MERVO::Tessera {
namespace {

using Context = MERVO_TSR_CONTEXT;

constexpr std::uint32_t FIRST_TWO[] = {0, 1};
constexpr std::uint32_t RANGE[] = {1, 3};
const char* const NAMES[] = {"doubles", "key"};
const char* const NEW_NAMES[] = {"a name that is long enough", "another name that is long", "key"};

/// A call that fills dst from one source.
Operation Of(const char* name, int32_t (*call)(Context*, const Context*), const Handle Scene::*source = &Scene::numbers)
{
    return {name, [=](Scene& scene) { return call(scene.dst.Get(), (scene.*source).Get()); }};
}

template <typename T>
Operation Loading(const char* name, int32_t (*call)(Context*, const T*, const MERVO_TSR_SHAPE*))
{
    return {name, [call](Scene& scene) {
                static const T cells[6] = {1, 0, 1, 1, 0, 1};
                constexpr MERVO_TESSERA_TYPEID TYPES[] = {TYPE_ID_OF<T>, TESSERA_STRING};
                const MERVO_TSR_SHAPE shape{3, 2, TYPES};
                return call(scene.dst.Get(), cells, &shape);
            }};
}

template <typename T>
Operation Reading(const char* name, int32_t (*call)(Context*, MERVO_TSR_RESULT*))
{
    using Cells = std::array<T, 4>;
    const auto prepare = [](Scene& scene) {
        const auto cells = std::make_shared<Cells>();
        scene.dst.Table() = TableOf(Column("a", SampleValues<T>(2)), Column("b", SampleValues<T>(2)));
        scene.room = {cells.get()->data(), cells.get()->data() + 2};
        scene.tell = [cells] { return TableOf(Column("read", std::vector<T>(cells->begin(), cells->end()))); };
    };
    return {name,
        [call](Scene& scene) {
            MERVO_TSR_RESULT result{scene.room.data(), 0, 0};
            return call(scene.dst.Get(), &result);
        },
        prepare};
}

/// A call that makes what it gives back; null for the code of a failure.
ErrorCode Keep(Context*& kept, Context* made) { return (kept = made) == nullptr ? 3 : 0; }
ErrorCode Keep(MERVO_TSR_GROUP_ARRAY*& kept, MERVO_TSR_GROUP_ARRAY* made) { return (kept = made) == nullptr ? 3 : 0; }

const Operation FLAT_CALLS[] = {
    {"MERVO_TSR_CreateDF", [](Scene& s) { return Keep(s.made, MERVO_TSR_CreateDF()); }},
    {"MERVO_TSR_Release", [](Scene& s) { return MERVO_TSR_Release(&s.made); },
        [](Scene& s) { s.made = MERVO_TSR_CreateDF(); }},
    Loading<bool>("ReadDataBool", &ReadDataBool),
    Loading<std::int8_t>("ReadDataInt8", &ReadDataInt8),
    Loading<std::uint8_t>("ReadDataUint8", &ReadDataUint8),
    Loading<std::int16_t>("ReadDataInt16", &ReadDataInt16),
    Loading<std::uint16_t>("ReadDataUint16", &ReadDataUint16),
    Loading<std::int32_t>("ReadDataInt32", &ReadDataInt32),
    Loading<std::uint32_t>("ReadDataUint32", &ReadDataUint32),
    Loading<std::int64_t>("ReadDataInt64", &ReadDataInt64),
    Loading<std::uint64_t>("ReadDataUint64", &ReadDataUint64),
    Loading<float>("ReadDataFloat", &ReadDataFloat),
    Loading<double>("ReadDataDouble", &ReadDataDouble),
    {"ReadDataString",
        [](Scene& s) {
            static const char* const texts[] = {"1", "a text that is long enough", "3", "another text, long as well"};
            constexpr MERVO_TESSERA_TYPEID TYPES[] = {TESSERA_INT32, TESSERA_STRING};
            const MERVO_TSR_SHAPE shape{2, 2, TYPES};
            return ReadDataString(s.dst.Get(), texts, &shape);
        }},
    Reading<bool>("MERVO_TSR_GetResultBool", &MERVO_TSR_GetResultBool),
    Reading<std::int8_t>("MERVO_TSR_GetResultInt8", &MERVO_TSR_GetResultInt8),
    Reading<std::uint8_t>("MERVO_TSR_GetResultUint8", &MERVO_TSR_GetResultUint8),
    Reading<std::int16_t>("MERVO_TSR_GetResultInt16", &MERVO_TSR_GetResultInt16),
    Reading<std::uint16_t>("MERVO_TSR_GetResultUint16", &MERVO_TSR_GetResultUint16),
    Reading<std::int32_t>("MERVO_TSR_GetResultInt32", &MERVO_TSR_GetResultInt32),
    Reading<std::uint32_t>("MERVO_TSR_GetResultUint32", &MERVO_TSR_GetResultUint32),
    Reading<std::int64_t>("MERVO_TSR_GetResultInt64", &MERVO_TSR_GetResultInt64),
    Reading<std::uint64_t>("MERVO_TSR_GetResultUint64", &MERVO_TSR_GetResultUint64),
    Reading<float>("MERVO_TSR_GetResultFloat", &MERVO_TSR_GetResultFloat),
    Reading<double>("MERVO_TSR_GetResultDouble", &MERVO_TSR_GetResultDouble),
    Reading<std::string>("MERVO_TSR_GetResultString", &MERVO_TSR_GetResultString),
    Reading<DateTime>("MERVO_TSR_GetResultDateTime", &MERVO_TSR_GetResultDateTime),
    Reading<DataFrame>("MERVO_TSR_GetResultDataFrame", &MERVO_TSR_GetResultDataFrame),
    Of("MERVO_TSR_DeepCopy", &MERVO_TSR_DeepCopy, &Scene::mixed),
    {"MERVO_TSR_TypeCast", [](Scene& s) { return MERVO_TSR_TypeCast(s.dst.Get(), s.numbers.Get(), TESSERA_STRING); }},
    Of("MERVO_TSR_TypeCastBool", &MERVO_TSR_TypeCastBool),
    Of("MERVO_TSR_TypeCastInt8", &MERVO_TSR_TypeCastInt8, &Scene::texts),
    Of("MERVO_TSR_TypeCastUint8", &MERVO_TSR_TypeCastUint8, &Scene::texts),
    Of("MERVO_TSR_TypeCastInt16", &MERVO_TSR_TypeCastInt16, &Scene::texts),
    Of("MERVO_TSR_TypeCastUint16", &MERVO_TSR_TypeCastUint16, &Scene::texts),
    Of("MERVO_TSR_TypeCastInt32", &MERVO_TSR_TypeCastInt32, &Scene::texts),
    Of("MERVO_TSR_TypeCastUint32", &MERVO_TSR_TypeCastUint32, &Scene::texts),
    Of("MERVO_TSR_TypeCastInt64", &MERVO_TSR_TypeCastInt64, &Scene::texts),
    Of("MERVO_TSR_TypeCastUint64", &MERVO_TSR_TypeCastUint64, &Scene::texts),
    Of("MERVO_TSR_TypeCastFloat", &MERVO_TSR_TypeCastFloat, &Scene::texts),
    Of("MERVO_TSR_TypeCastDouble", &MERVO_TSR_TypeCastDouble, &Scene::texts),
    Of("MERVO_TSR_TypeCastString", &MERVO_TSR_TypeCastString, &Scene::texts),
    Of("MERVO_TSR_TypeCastDateTime", &MERVO_TSR_TypeCastDateTime),
    Of("MERVO_TSR_TypeCastDataFrame", &MERVO_TSR_TypeCastDataFrame, &Scene::texts),
    {"MERVO_TSR_Transpose", [](Scene& s) { return MERVO_TSR_Transpose(s.dst.Get(), s.texts.Get()); }},
    {"MERVO_TSR_Show",
        [](Scene& s) {
            std::cout.setstate(std::ios::failbit); // which keeps it quiet
            MERVO_TSR_Show(s.mixed.Get());
            std::cout.clear();
            return 0;
        }},
    {"MERVO_TSR_Slice", [](Scene& s) { return Keep(s.made, MERVO_TSR_Slice(s.mixed.Get(), RANGE, RANGE, 2, 2)); }},
    {"MERVO_TSR_DropRowByBool",
        [](Scene& s) { return MERVO_TSR_DropRowByBool(s.dst.Get(), s.mixed.Get(), s.rowMarks.Get()); }},
    {"MERVO_TSR_DropRowByIndex",
        [](Scene& s) { return MERVO_TSR_DropRowByIndex(s.dst.Get(), s.mixed.Get(), FIRST_TWO, 2); }},
    {"MERVO_TSR_DropColByBool",
        [](Scene& s) { return MERVO_TSR_DropColByBool(s.dst.Get(), s.mixed.Get(), s.columnMarks.Get()); }},
    {"MERVO_TSR_DropColByIndex",
        [](Scene& s) { return MERVO_TSR_DropColByIndex(s.dst.Get(), s.mixed.Get(), FIRST_TWO, 2); }},
    {"MERVO_TSR_DropColByName", [](Scene& s) { return MERVO_TSR_DropColByName(s.dst.Get(), s.mixed.Get(), NAMES, 2); }},
    {"MERVO_TSR_InsertColInplace", [](Scene& s) { return MERVO_TSR_InsertColInplace(s.dst.Get(), s.mixed.Get(), 2); },
        &PutMixedIntoDst},
    {"MERVO_TSR_SetColumnName", [](Scene& s) { return MERVO_TSR_SetColumnName(s.dst.Get(), NEW_NAMES, 3); },
        [](Scene& s) { s.dst.Table() = s.numbers.Table(); }},
    {"MERVO_TSR_DropNanRow", [](Scene& s) { return MERVO_TSR_DropNanRow(s.dst.Get(), s.numbers.Get(), true); }},
    {"MERVO_TSR_DropNanCol", [](Scene& s) { return MERVO_TSR_DropNanCol(s.dst.Get(), s.numbers.Get(), false); }},
    {"MERVO_TSR_SortValue", [](Scene& s) { return MERVO_TSR_SortValue(s.dst.Get(), s.numbers.Get(), true); }},
    {"MERVO_TSR_SortValue integers", [](Scene& s) { return MERVO_TSR_SortValue(s.dst.Get(), s.places.Get(), false); }},
    {"MERVO_TSR_Reorder", [](Scene& s) { return MERVO_TSR_Reorder(s.dst.Get(), s.places.Get(), s.mixed.Get()); }},
    {"MERVO_TSR_Unique", [](Scene& s) { return MERVO_TSR_Unique(s.dst.Get(), s.mixed.Get(), 1); }},
    {"MERVO_TSR_GroupBy", [](Scene& s) { return Keep(s.array, MERVO_TSR_GroupBy(s.dst.Get(), FIRST_TWO, 2)); },
        &PutMixedIntoDst},
    {"MERVO_TSR_GroupBy_Transform",
        [](Scene& s) { return Keep(s.array, MERVO_TSR_GroupBy_Transform(s.dst.Get(), FIRST_TWO, 1, 2)); },
        [](Scene& s) {
            s.dst.Table() = TableOf(Column<std::int32_t>("k", {1, 2, 1}), Column<double>("v", {1, 2, 3}));
        }},
    {"MERVO_TSR_Resample",
        [](Scene& s) { return Keep(s.array, MERVO_TSR_Resample(s.mixed.Get(), 2, 60, true, false)); }},
    {"MERVO_TSR_ReleaseGroupArray", [](Scene& s) { return MERVO_TSR_ReleaseGroupArray(&s.array), 0; },
        [](Scene& s) { s.array = MERVO_TSR_Resample(s.mixed.Get(), 2, 600, true, false); }},
    {"MERVO_TSR_Merge",
        [](Scene& s) {
            const MERVO_TSR_MERGE_KEYS keys{FIRST_TWO, FIRST_TWO, 2};
            return static_cast<ErrorCode>(MERVO_TSR_Merge(s.dst.Get(), s.mixed.Get(), s.mixed.Get(), &keys, 3));
        }},
    Of("MERVO_TSR_Sum", &MERVO_TSR_Sum),
    Of("MERVO_TSR_Mean", &MERVO_TSR_Mean),
    Of("MERVO_TSR_Max", &MERVO_TSR_Max),
    Of("MERVO_TSR_Max texts", &MERVO_TSR_Max, &Scene::texts),
    Of("MERVO_TSR_Min", &MERVO_TSR_Min),
    Of("MERVO_TSR_Ptp", &MERVO_TSR_Ptp),
    Of("MERVO_TSR_IdxMax", &MERVO_TSR_IdxMax),
    {"MERVO_TSR_Var", [](Scene& s) { return MERVO_TSR_Var(s.dst.Get(), s.numbers.Get(), 1); }},
    {"MERVO_TSR_Std", [](Scene& s) { return MERVO_TSR_Std(s.dst.Get(), s.places.Get(), 1); }},
    {"MERVO_TSR_Moment", [](Scene& s) { return MERVO_TSR_Moment(s.dst.Get(), s.numbers.Get(), 3); }},
    {"MERVO_TSR_Kstat", [](Scene& s) { return MERVO_TSR_Kstat(s.dst.Get(), s.places.Get(), 4); }},
    {"MERVO_TSR_Skew", [](Scene& s) { return MERVO_TSR_Skew(s.dst.Get(), s.numbers.Get(), true, false); }},
    {"MERVO_TSR_Kurt", [](Scene& s) { return MERVO_TSR_Kurt(s.dst.Get(), s.numbers.Get(), true, false); }},
    {"MERVO_TSR_RollingSum", [](Scene& s) { return MERVO_TSR_RollingSum(s.dst.Get(), s.numbers.Get(), 3, true, 2); }},
    {"MERVO_TSR_RollingMean", [](Scene& s) { return MERVO_TSR_RollingMean(s.dst.Get(), s.places.Get(), 2, false, 1); }},
    Of("MERVO_TSR_IsNan", &MERVO_TSR_IsNan),
    {"MERVO_TSR_FillNan", [](Scene& s) { return MERVO_TSR_FillNan(s.dst.Get(), s.numbers.Get(), "bfill", 6); }},
    {"MERVO_TSR_ReplaceNan", [](Scene& s) { return MERVO_TSR_ReplaceNan(s.dst.Get(), s.numbers.Get(), "7.5", 3); }},
    Of("MERVO_TSR_Interpolate", &MERVO_TSR_Interpolate),
    {"MERVO_TSR_ReplaceBool",
        [](Scene& s) { return MERVO_TSR_ReplaceBool(s.dst.Get(), s.numbers.Get(), true, false); }},
    {"MERVO_TSR_ReplaceInt8", [](Scene& s) { return MERVO_TSR_ReplaceInt8(s.dst.Get(), s.numbers.Get(), 1, 2); }},
    {"MERVO_TSR_ReplaceUint8", [](Scene& s) { return MERVO_TSR_ReplaceUint8(s.dst.Get(), s.numbers.Get(), 1, 2); }},
    {"MERVO_TSR_ReplaceInt16", [](Scene& s) { return MERVO_TSR_ReplaceInt16(s.dst.Get(), s.numbers.Get(), 1, 2); }},
    {"MERVO_TSR_ReplaceUint16", [](Scene& s) { return MERVO_TSR_ReplaceUint16(s.dst.Get(), s.numbers.Get(), 1, 2); }},
    {"MERVO_TSR_ReplaceInt32", [](Scene& s) { return MERVO_TSR_ReplaceInt32(s.dst.Get(), s.numbers.Get(), 1, 2); }},
    {"MERVO_TSR_ReplaceUint32", [](Scene& s) { return MERVO_TSR_ReplaceUint32(s.dst.Get(), s.numbers.Get(), 1, 2); }},
    {"MERVO_TSR_ReplaceInt64", [](Scene& s) { return MERVO_TSR_ReplaceInt64(s.dst.Get(), s.numbers.Get(), 1, 2); }},
    {"MERVO_TSR_ReplaceUint64", [](Scene& s) { return MERVO_TSR_ReplaceUint64(s.dst.Get(), s.numbers.Get(), 1, 2); }},
    {"MERVO_TSR_ReplaceFloat", [](Scene& s) { return MERVO_TSR_ReplaceFloat(s.dst.Get(), s.numbers.Get(), 1, 2); }},
    {"MERVO_TSR_ReplaceDouble", [](Scene& s) { return MERVO_TSR_ReplaceDouble(s.dst.Get(), s.numbers.Get(), 1, 2); }},
    {"MERVO_TSR_ReplaceString",
        [](Scene& s) {
            return MERVO_TSR_ReplaceString(
                s.dst.Get(), s.texts.Get(), "0000000000000000000000000000007", "a text that is quite a bit longer");
        }},
    {"MERVO_TSR_Round", [](Scene& s) { return MERVO_TSR_Round(s.dst.Get(), s.numbers.Get(), 0); }},
    {"MERVO_TSR_Diff", [](Scene& s) { return MERVO_TSR_Diff(s.dst.Get(), s.numbers.Get(), -1); }},
    {"MERVO_TSR_IsIn", [](Scene& s) { return MERVO_TSR_IsIn(s.texts.Get(), s.texts.Get(), s.dst.Get()); }},
    {"MERVO_TSR_InsertRow", [](Scene& s) { return MERVO_TSR_InsertRow(s.mixed.Get(), s.mixed.Get(), s.dst.Get(), 3); }},
};

class FlatCallsWithoutMemory : public testing::TestWithParam<std::tuple<Operation, Shortage>> {};

INSTANTIATE_TEST_SUITE_P(Calls, FlatCallsWithoutMemory,
    testing::Combine(testing::ValuesIn(FLAT_CALLS), testing::Values(Shortage::PASSING, Shortage::LASTING)),
    ShortageCaseName);

TEST_P(FlatCallsWithoutMemory, GiveACodeAndHarmNothing)
{
    const auto& [operation, shortage] = GetParam();
    FailEachAllocation(operation, shortage, false);
}

TEST(FlatCallsWithoutMemory, AreAll)
{
    std::set<std::string> exported;
    std::ifstream symbols("tests/exported_symbols.txt");
    for (std::string symbol; std::getline(symbols, symbol);) {
        if (symbol.starts_with("MERVO_TSR_") || symbol.starts_with("ReadData")) {
            exported.insert(symbol);
        }
    }
    std::set<std::string> tested;
    for (const Operation& operation : FLAT_CALLS) {
        const std::string name = operation.name;
        tested.insert(name.substr(0, name.find(' ')));
    }
    EXPECT_EQ(tested, exported);
}

} // namespace
} // namespace MERVO::Tessera
