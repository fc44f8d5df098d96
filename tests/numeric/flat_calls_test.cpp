// Every flat call from one table to another: it must do what its functor does through the classes. What all of them
// have in common, the skeleton, has tests of its own.

#include <gmock/gmock.h>

#include <functional>

#include "tests/support/handle.h"
#include "tests/support/log_capture.h"
#include "tests/support/same_tables.h"

namespace MERVO::Tessera {
namespace {

using testing::ElementsAre;
using Context = MERVO_TSR_CONTEXT;

struct FlatCase {
    const char* name;
    std::function<int32_t(Context* dst, const Context* src)> call;
    UnaryFactory make; ///< the functor with the same arguments; each of these alters the results
    const char* refusal = "Input is nullptr";
};

template <template <ContainerID, typename...> class F, typename... Args>
UnaryFactory Make(Args... args)
{
    return Func::FunctorFactory<F, Func::UnaryBase, Args...>{args...};
}

UnaryFactory CastTo(MERVO_TESSERA_TYPEID type) { return Make<Func::TypeCast, MERVO_TESSERA_TYPEID>(type); }

const FlatCase FLAT_CASES[] = {
    {"TypeCast", [](auto dst, auto src) { return MERVO_TSR_TypeCast(dst, src, TESSERA_INT64); }, CastTo(TESSERA_INT64)},
    {"TypeCastBool", &MERVO_TSR_TypeCastBool, CastTo(TESSERA_BOOL)},
    {"TypeCastInt8", &MERVO_TSR_TypeCastInt8, CastTo(TESSERA_INT8)},
    {"TypeCastUint8", &MERVO_TSR_TypeCastUint8, CastTo(TESSERA_UINT8)},
    {"TypeCastInt16", &MERVO_TSR_TypeCastInt16, CastTo(TESSERA_INT16)},
    {"TypeCastUint16", &MERVO_TSR_TypeCastUint16, CastTo(TESSERA_UINT16)},
    {"TypeCastInt32", &MERVO_TSR_TypeCastInt32, CastTo(TESSERA_INT32)},
    {"TypeCastUint32", &MERVO_TSR_TypeCastUint32, CastTo(TESSERA_UINT32)},
    {"TypeCastInt64", &MERVO_TSR_TypeCastInt64, CastTo(TESSERA_INT64)},
    {"TypeCastUint64", &MERVO_TSR_TypeCastUint64, CastTo(TESSERA_UINT64)},
    {"TypeCastFloat", &MERVO_TSR_TypeCastFloat, CastTo(TESSERA_FLOAT)},
    {"TypeCastDouble", &MERVO_TSR_TypeCastDouble, CastTo(TESSERA_DOUBLE)},
    {"TypeCastString", &MERVO_TSR_TypeCastString, CastTo(TESSERA_STRING)},
    {"TypeCastDateTime", &MERVO_TSR_TypeCastDateTime, CastTo(TESSERA_DATETIME)},
    {"TypeCastDataFrame", &MERVO_TSR_TypeCastDataFrame, CastTo(TESSERA_DATAFRAME)},
    {"Sum", &MERVO_TSR_Sum, Make<Func::Sum>()},
    {"Mean", &MERVO_TSR_Mean, Make<Func::Mean>()},
    {"Max", &MERVO_TSR_Max, Make<Func::Max>()},
    {"Min", &MERVO_TSR_Min, Make<Func::Min>()},
    {"Ptp", &MERVO_TSR_Ptp, Make<Func::Ptp>()},
    {"IdxMax", &MERVO_TSR_IdxMax, Make<Func::IdxMax>()},
    {"Var", [](auto dst, auto src) { return MERVO_TSR_Var(dst, src, 2); }, Make<Func::Var, uint32_t>(2)},
    {"Std", [](auto dst, auto src) { return MERVO_TSR_Std(dst, src, 0); }, Make<Func::Std, uint32_t>(0)},
    {"Moment", [](auto dst, auto src) { return MERVO_TSR_Moment(dst, src, 3); }, Make<Func::Moment, uint32_t>(3),
        "Invalid input"},
    {"Kstat", [](auto dst, auto src) { return MERVO_TSR_Kstat(dst, src, 3); }, Make<Func::Kstat, uint32_t>(3)},
    {"Skew", [](auto dst, auto src) { return MERVO_TSR_Skew(dst, src, true, false); },
        Make<Func::Skew, bool, bool>(true, false)},
    {"Kurt", [](auto dst, auto src) { return MERVO_TSR_Kurt(dst, src, false, true); },
        Make<Func::Kurt, bool, bool>(false, true)},
    {"RollingSum", [](auto dst, auto src) { return MERVO_TSR_RollingSum(dst, src, 3, true, 2); },
        Make<Func::RollingSum, uint32_t, bool, uint32_t>(3, true, 2)},
    {"RollingMean", [](auto dst, auto src) { return MERVO_TSR_RollingMean(dst, src, 2, false, 1); },
        Make<Func::RollingMean, uint32_t, bool, uint32_t>(2, false, 1)},
    {"IsNan", &MERVO_TSR_IsNan, Make<Func::IsNan>()},
    {"FillNan", [](auto dst, auto src) { return MERVO_TSR_FillNan(dst, src, "bfill", 6); },
        Make<Func::FillNan, std::string_view>("bfill")},
    {"ReplaceNan", [](auto dst, auto src) { return MERVO_TSR_ReplaceNan(dst, src, "7.55", 3); },
        Make<Func::ReplaceNan, std::string_view>("7.5")},
    {"Interpolate", &MERVO_TSR_Interpolate, Make<Func::Interpolate>()},
    {"Round", [](auto dst, auto src) { return MERVO_TSR_Round(dst, src, 0); }, Make<Func::Round, uint32_t>(0)},
    {"Diff", [](auto dst, auto src) { return MERVO_TSR_Diff(dst, src, -1); }, Make<Func::Diff, int32_t>(-1)},
};

DataFrame Source()
{
    constexpr double NO_VALUE = std::numeric_limits<double>::quiet_NaN();
    return TableOf(Column<double>("a", {1.0, 2.0, 3.0, 7.0, -5.5}), Column<double>("b", {-1.0, 0, 1.0, NO_VALUE, 9.0}));
}

class FlatCalls : public testing::TestWithParam<FlatCase> {
protected:
    static DataFrame Expected(const DataFrameRef& source)
    {
        DataFrame result;
        EXPECT_EQ(result.ApplyInplace(GetParam().make, source), 0);
        return result;
    }
};

INSTANTIATE_TEST_SUITE_P(
    Calls, FlatCalls, testing::ValuesIn(FLAT_CASES), [](const auto& flat) { return std::string(flat.param.name); });

TEST_P(FlatCalls, DoWhatTheirFunctorDoes)
{
    const DataFrame source = Source();
    const Handle src(source);
    const Handle dst(TableOf(Column<std::string>("old", {"x", "y"}))); // what it held before goes
    ASSERT_EQ(GetParam().call(dst.Get(), src.Get()), 0);
    EXPECT_TRUE(IsSameTable(dst.Table(), Expected(source)));
    EXPECT_TRUE(IsSameTable(src.Table(), source));

    const Handle window(source.Slice({1, 5}, {0, 2}));
    ASSERT_EQ(GetParam().call(dst.Get(), window.Get()), 0);
    EXPECT_TRUE(IsSameTable(dst.Table(), Expected(source.Slice({1, 5}, {0, 2}))));

    ASSERT_EQ(GetParam().call(src.Get(), src.Get()), 0);
    EXPECT_TRUE(IsSameTable(src.Table(), Expected(source))) << "a table into itself";
}

TEST_P(FlatCalls, RefuseUnfitHandlesByTheirName)
{
    const Handle good(Source());
    Context neither{nullptr, nullptr};
    const LogCapture log;
    EXPECT_EQ(GetParam().call(&neither, good.Get()), 33);
    EXPECT_EQ(GetParam().call(good.Get(), nullptr), 33);
    const std::string text = "[MERVO_TSR_" + std::string(GetParam().name) + "] " + GetParam().refusal;
    EXPECT_THAT(log.Texts(1), ElementsAre(text, text));
}

} // namespace
} // namespace MERVO::Tessera
