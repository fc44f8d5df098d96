// Element transforms by flat call: what the tables of other unary calls don't show, and the calls of two tables.

#include <gmock/gmock.h>

#include <functional>

#include "tests/support/handle.h"
#include "tests/support/log_capture.h"
#include "tests/support/sample_columns.h"

namespace MERVO::Tessera {
namespace {

using testing::ElementsAre;
using Context = MERVO_TSR_CONTEXT;

/// The argument is one that no call of another type would take as it is.
TEST(FlatReplace, TakesArgumentsOfItsOwnType)
{
    struct Case {
        const char* name;
        std::function<int32_t(Context*, Context*)> call;
        std::string oldText;
        std::string newText;
    };
    const Case cases[] = {
        {"Bool", [](auto dst, auto src) { return MERVO_TSR_ReplaceBool(dst, src, true, false); }, "1", ""},
        {"Int8", [](auto dst, auto src) { return MERVO_TSR_ReplaceInt8(dst, src, -128, 127); }, "-128", "127"},
        {"Uint8", [](auto dst, auto src) { return MERVO_TSR_ReplaceUint8(dst, src, 255, 128); }, "255", "128"},
        {"Int16", [](auto dst, auto src) { return MERVO_TSR_ReplaceInt16(dst, src, -32768, 129); }, "-32768", "129"},
        {"Uint16", [](auto dst, auto src) { return MERVO_TSR_ReplaceUint16(dst, src, 65535, 1); }, "65535", "1"},
        {"Int32", [](auto dst, auto src) { return MERVO_TSR_ReplaceInt32(dst, src, INT32_MIN, 65536); }, "-2147483648",
            "65536"},
        {"Uint32", [](auto dst, auto src) { return MERVO_TSR_ReplaceUint32(dst, src, UINT32_MAX, 2); }, "4294967295",
            "2"},
        {"Int64", [](auto dst, auto src) { return MERVO_TSR_ReplaceInt64(dst, src, INT64_MIN, 1LL << 40); },
            "-9223372036854775808", "1099511627776"},
        {"Uint64", [](auto dst, auto src) { return MERVO_TSR_ReplaceUint64(dst, src, UINT64_MAX, 3); },
            "18446744073709551615", "3"},
        {"Float", [](auto dst, auto src) { return MERVO_TSR_ReplaceFloat(dst, src, 0.1F, 1e9F); }, "1.00000e-01",
            "1.00000e+09"},
        {"Double", [](auto dst, auto src) { return MERVO_TSR_ReplaceDouble(dst, src, 1e300, -0.5); }, "1.00000e+300",
            "-5.00000e-01"},
        {"String", [](auto dst, auto src) { return MERVO_TSR_ReplaceString(dst, src, "kept", "as it is"); }, "kept",
            "as it is"},
    };
    for (const Case& wanted : cases) {
        const Handle src(TableOf(Column<std::string>("a", {"other", wanted.oldText})));
        const Handle dst;
        EXPECT_EQ(wanted.call(dst.Get(), src.Get()), 0) << wanted.name;
        EXPECT_THAT(dst.Table().To1DVector<std::string>(), ElementsAre("other", wanted.newText)) << wanted.name;
        const LogCapture log;
        EXPECT_EQ(wanted.call(nullptr, src.Get()), 33);
        EXPECT_THAT(log.Texts(1),
            ElementsAre(wanted.name == std::string("String") ? "[MERVO_TSR_ReplaceString] Input is nullptr"
                                                             : "[MERVO_TSR_Replace] Input is nullptr"));
    }
}

TEST(FlatReplace, RefusesTextsThatAreNull)
{
    const Handle table(TableOf(Column<double>("a", {1.0})));
    const LogCapture log;
    EXPECT_EQ(MERVO_TSR_ReplaceString(table.Get(), table.Get(), nullptr, "1"), 33);
    EXPECT_EQ(MERVO_TSR_ReplaceString(table.Get(), table.Get(), "1", nullptr), 33);
    EXPECT_EQ(log.Count(1), 2U);
    EXPECT_TRUE(log.Has(1, "[MERVO_TSR_ReplaceString] Input is nullptr"));
}

TEST(FlatRound, TakesTheNumberOfDecimals)
{
    const Handle src(TableOf(Column<double>("a", {2.345678, 1e300})));
    const Handle dst;
    const LogCapture log;
    EXPECT_EQ(MERVO_TSR_Round(dst.Get(), src.Get(), 3), 0);
    EXPECT_THAT(dst.Table().To1DVector<double>(), ElementsAre(2.346, 1e300));
    ASSERT_EQ(log.Count(), 1U);
    EXPECT_EQ(log.entries[0].level, 0);
    EXPECT_EQ(log.entries[0].tag, "MERVO_TSR");
    EXPECT_EQ(log.entries[0].text, "QVR-ZLTArray");
    EXPECT_EQ(MERVO_TSR_Round(dst.Get(), src.Get(), 11), 4);
    EXPECT_EQ(dst.Table().GetError().message, "Error on calling functor: Round");
}

struct PairCase {
    const char* name;
    const char* refusal;
    std::function<int32_t(const Context* first, const Context* second, Context* dst)> call;
    std::vector<std::int32_t> expected; ///< as int32, of the two columns of dst by row
};

const PairCase PAIR_CASES[] = {
    {"IsIn", "[MERVO_TSR_IsIn] Input is nullptr",
        [](auto first, auto second, auto dst) { return MERVO_TSR_IsIn(first, second, dst); }, {0, 0, 1, 1}},
    {"InsertRow", "[MERVO_TSR_InsertRow] Input is nullptr",
        [](auto first, auto second, auto dst) { return MERVO_TSR_InsertRow(first, second, dst, 1); },
        {2, 5, 1, 4, 2, 5, 2, 6, 3, 7}},
};

class FlatPairs : public testing::TestWithParam<PairCase> {
protected:
    static int32_t Call(const Handle& dst) { return GetParam().call(First().Get(), Second().Get(), dst.Get()); }
    static void ExpectResult(const DataFrame& table)
    {
        const Handle whole(table);
        const Handle numbers;
        ASSERT_EQ(MERVO_TSR_TypeCastInt32(numbers.Get(), whole.Get()), 0);
        EXPECT_EQ(numbers.Table().To1DVector<std::int32_t>(), GetParam().expected);
    }
    static const Handle& First()
    {
        static const Handle handle(TableOf(Column<std::int32_t>("a", {1, 2}), Column<std::int32_t>("b", {4, 5})));
        return handle;
    }
    static const Handle& Second()
    {
        static const Handle handle(TableOf(Column<std::int32_t>("c", {2, 2, 3}), Column<std::int32_t>("d", {5, 6, 7})));
        return handle;
    }
};

INSTANTIATE_TEST_SUITE_P(
    Calls, FlatPairs, testing::ValuesIn(PAIR_CASES), [](const auto& pair) { return std::string(pair.param.name); });

TEST_P(FlatPairs, FillTheThirdHandleFromTheFirstTwo)
{
    const Handle dst(TableOf(Column<std::string>("old", {"x"})));
    EXPECT_EQ(Call(dst), 0);
    ExpectResult(dst.Table());
    EXPECT_THAT(dst.Table().GetColumnName(), ElementsAre("a", "b"));
}

TEST_P(FlatPairs, MayWriteOverEitherSource)
{
    const Handle first(First().Table());
    EXPECT_EQ(GetParam().call(first.Get(), Second().Get(), first.Get()), 0);
    ExpectResult(first.Table());
    const Handle second(Second().Table());
    EXPECT_EQ(GetParam().call(First().Get(), second.Get(), second.Get()), 0);
    ExpectResult(second.Table());
}

TEST_P(FlatPairs, RefuseHandlesThatHoldNothing)
{
    for (int bad = 0; bad < 3; ++bad) {
        const Handle dst;
        const LogCapture log;
        EXPECT_EQ(GetParam().call(bad == 0 ? nullptr : First().Get(), bad == 1 ? nullptr : Second().Get(),
                      bad == 2 ? nullptr : dst.Get()),
            33);
        EXPECT_THAT(log.Texts(1), ElementsAre(GetParam().refusal));
    }
}

TEST(FlatInsertRow, TellsOfAnIndexBehindTheTable)
{
    const Handle table(TableOf(Column<std::int32_t>("a", {1, 2})));
    const Handle dst;
    EXPECT_EQ(MERVO_TSR_InsertRow(table.Get(), table.Get(), dst.Get(), 2), 0);
    EXPECT_THAT(dst.Table().To1DVector<std::int32_t>(), ElementsAre(1, 2, 1, 2));
    const LogCapture log;
    EXPECT_EQ(MERVO_TSR_InsertRow(table.Get(), table.Get(), dst.Get(), 3), 5);
    EXPECT_TRUE(log.Has(1, "index 3 error, rhs->Length() 2"));
}

} // namespace
} // namespace MERVO::Tessera
