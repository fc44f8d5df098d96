#include <algorithm>
#include <bit>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tessera/core/series_cast.h"
#include "tessera/tessera.hpp"
#include "tests/support/log_capture.h"
#include "tests/support/sample_columns.h"

namespace MERVO::Tessera {
namespace {

using CastFactory = Func::FunctorFactory<Func::TypeCast, Func::UnaryBase, MERVO_TESSERA_TYPEID>;

// ---- Cells whose results are known, to hold the oracle too

template <typename S, typename D>
D CastCell(const S& value)
{
    const SeriesPtr source = Column<S>("source", {value});
    const SeriesPtr target = BuildSeries({1, CONTAINER_ARRAY, TYPE_ID_OF<D>}, "target");
    EXPECT_EQ(CastSeries(source, target).code, 0);
    return GetValueFromIterator<D>(target->GetIterator(), 0);
}

TEST(TypeCast, KnownCells)
{
    EXPECT_EQ((CastCell<std::string, std::int32_t>("")), 0);
    EXPECT_EQ((std::bit_cast<std::uint64_t>(CastCell<std::string, double>(""))), 0x7ff8000000000000U);
    EXPECT_EQ((std::bit_cast<std::uint32_t>(CastCell<std::string, float>(""))), 0x7fc00000U);
    EXPECT_EQ((CastCell<std::string, std::int32_t>("12abc")), 12);
    EXPECT_EQ((CastCell<std::string, std::int32_t>("abc")), 0);
    EXPECT_EQ((CastCell<std::string, std::uint8_t>("-1")), 255);
    EXPECT_EQ((CastCell<std::string, std::uint64_t>("-1")), std::numeric_limits<std::uint64_t>::max());
    EXPECT_EQ(
        (CastCell<std::string, std::uint64_t>("18446744073709551615")), std::numeric_limits<std::uint64_t>::max());
    EXPECT_EQ((CastCell<std::string, double>("68.323580")), 68.32358);
    EXPECT_EQ((CastCell<double, std::string>(1.5)), "1.50000e+00");
    EXPECT_EQ((CastCell<float, std::string>(-0.1F)), "-1.00000e-01");
    EXPECT_EQ((CastCell<std::int64_t, std::string>(std::numeric_limits<std::int64_t>::min())), "-9223372036854775808");
    EXPECT_EQ(
        (CastCell<std::uint64_t, std::string>(std::numeric_limits<std::uint64_t>::max())), "18446744073709551615");
    EXPECT_EQ((CastCell<bool, std::string>(false)), "");
    EXPECT_EQ((CastCell<bool, std::string>(true)), "1");
    EXPECT_TRUE((CastCell<double, bool>(std::nan(""))));
    EXPECT_FALSE((CastCell<double, bool>(1e-20)));
    EXPECT_FALSE((CastCell<double, bool>(-0x1p-52)));
    EXPECT_TRUE((CastCell<float, bool>(0x1.000002p-23F)));
    EXPECT_EQ((CastCell<double, std::int32_t>(std::nan(""))), 0);
    EXPECT_EQ((CastCell<double, std::int32_t>(1e10)), 2147483647);
    EXPECT_EQ((CastCell<double, std::uint32_t>(-1.0)), 0U);
    EXPECT_EQ((CastCell<double, std::int8_t>(300.7)), 44);
    EXPECT_EQ((CastCell<float, std::int64_t>(-1e30F)), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ((CastCell<std::int64_t, DateTime>(4294967297)).TimeStamp(), 1);
    EXPECT_EQ((CastCell<double, DateTime>(1e10)).TimeStamp(), 2147483647);
    EXPECT_EQ((CastCell<DateTime, std::uint64_t>(DateTime(-1))), std::numeric_limits<std::uint64_t>::max());
}

// ---- Texts that can't be cast

template <typename T>
class TypeCastOfBadText : public testing::Test {
};

using ParsedTypes = testing::Types<std::int8_t, std::uint8_t, std::int16_t, std::uint16_t, std::int32_t, std::uint32_t,
    std::int64_t, std::uint64_t, float, double>;
TYPED_TEST_SUITE(TypeCastOfBadText, ParsedTypes);

TYPED_TEST(TypeCastOfBadText, StopsThereAndKeepsTheCellsBefore)
{
    const std::vector<std::string> badTexts = std::is_floating_point_v<TypeParam>
        ? std::vector<std::string>{"1e400", "-1e400", "1e-310"}
        : std::is_signed_v<TypeParam> ? std::vector<std::string>{"9223372036854775808", "-9223372036854775809"}
                                      : std::vector<std::string>{"18446744073709551616", "-99999999999999999999"};
    for (const std::string& bad : badTexts) {
        for (const ContainerID container : BOTH_CONTAINERS) {
            const SeriesPtr source = Column<std::string>("source", {"7", "8", bad, "9"}, container);
            const SeriesPtr target = Column<TypeParam>("target", {1, 2, 3, 4}, container);
            LogCapture log;
            const Error error = CastSeries(source, target);
            EXPECT_EQ(error.code, 1) << bad;
            EXPECT_EQ(error.message, "Error on calling functor: TypeCast");
            EXPECT_THAT(log.Texts(1),
                testing::ElementsAre("typecast from string to arithmetic int has error: " + std::to_string(ERANGE)));
            EXPECT_THAT(CellsOf<TypeParam>(target->GetIterator()), testing::ElementsAre(7, 8, 3, 4)) << bad;
        }
    }
}

TEST(TypeCast, RefusesBlanksAsATime)
{
    const SeriesPtr source = Column<std::string>("source", {"", "  ", ""});
    const SeriesPtr target = Column<DateTime>("target", {DateTime(5), DateTime(6), DateTime(7)});
    EXPECT_EQ(CastSeries(source, target).code, 1);
    EXPECT_TRUE(AreSame<DateTime>(CellsOf<DateTime>(target->GetIterator()), {DateTime(0), DateTime(6), DateTime(7)}));
}

// What 1 to 8 digits around a point become is the C library's business.
TEST(TypeCast, DecimalsOfAllLengthsParseAsInTheCLibrary)
{
    std::mt19937 random(7);
    std::vector<std::string> texts;
    std::vector<double> wanted;
    for (int i = 0; i < 20000; ++i) {
        char text[64] = {};
        std::snprintf(text, sizeof(text), "%.*f", static_cast<int>(random() % 10),
            (static_cast<double>(random()) - 2e9) * std::pow(10.0, -static_cast<double>(random() % 11)));
        texts.push_back(text);
        wanted.push_back(std::strtod(text, nullptr));
    }
    const SeriesPtr source = Column<std::string>("source", texts);
    const SeriesPtr target = Column<double>("target", std::vector<double>(texts.size()));
    ASSERT_EQ(CastSeries(source, target).code, 0);
    EXPECT_EQ(CellsOf<double>(target->GetIterator()), wanted);
}

// Short texts are parsed several at a time, whatever else stands among them.
TEST(TypeCast, TextsOfAColumnParseAsEachAlone)
{
    std::mt19937 random(8);
    const auto below = [&random](std::size_t bound) { return static_cast<std::size_t>(random()) % bound; };
    std::vector<std::string> texts(4000);
    for (std::string& text : texts) {
        const std::string characters = below(8) == 0 ? "0123456789-. x/:" : "0123456789";
        text.resize(below(8) == 0 ? below(18) : 1 + below(8));
        std::generate(text.begin(), text.end(), [&] { return characters[below(characters.size())]; });
        if (below(4) == 0) {
            text.insert(text.begin(), '-');
        }
        if (below(2) == 0) {
            text.insert(text.begin() + static_cast<std::ptrdiff_t>(below(text.size() + 1)), '.');
        }
        text.shrink_to_fit();
    }
    const SeriesPtr source = Column<std::string>("source", texts);
    const SeriesPtr whole = BuildSeries({4000, CONTAINER_ARRAY, TESSERA_INT32}, "whole");
    const SeriesPtr real = BuildSeries({4000, CONTAINER_ARRAY, TESSERA_DOUBLE}, "real");
    ASSERT_EQ(CastSeries(source, whole).code, 0);
    ASSERT_EQ(CastSeries(source, real).code, 0);
    for (std::uint32_t i = 0; i < texts.size(); ++i) {
        ASSERT_EQ(GetValueFromIterator<std::int32_t>(whole->GetIterator(), i),
            (CastCell<std::string, std::int32_t>(texts[i])))
            << texts[i];
        ASSERT_EQ(std::bit_cast<std::uint64_t>(GetValueFromIterator<double>(real->GetIterator(), i)),
            std::bit_cast<std::uint64_t>(CastCell<std::string, double>(texts[i])))
            << texts[i];
    }
}

TEST(TypeCast, FourTextsWithOneOtherCharacterParseAsEachAlone)
{
    for (int character = 1; character < 128; ++character) {
        const std::vector<std::string> texts{"12", std::string("1") + static_cast<char>(character) + "3", "5", "-7"};
        const SeriesPtr source = Column<std::string>("source", texts);
        const SeriesPtr whole = BuildSeries({4, CONTAINER_ARRAY, TESSERA_INT32}, "whole");
        ASSERT_EQ(CastSeries(source, whole).code, 0);
        EXPECT_EQ(GetValueFromIterator<std::int32_t>(whole->GetIterator(), 1),
            (CastCell<std::string, std::int32_t>(texts[1])))
            << texts[1];
    }
}

// ---- The functor and its forms

TEST(TypeCast, TellsNameAndShape)
{
    const Func::TypeCast<CONTAINER_ARRAY, MERVO_TESSERA_TYPEID> cast(TESSERA_FLOAT);
    const SeriesPtr source = Column<std::int8_t>("source", {1, 2, 3, 4}, CONTAINER_LIST);
    const SeriesAttr attr = cast.GetDstAttr(source->GetIterator(1, 3));
    EXPECT_EQ(cast.GetName(), "TypeCast");
    EXPECT_EQ(attr.length, 2U);
    EXPECT_EQ(attr.containerId, CONTAINER_LIST);
    EXPECT_EQ(attr.typeId, TESSERA_FLOAT);
}

TEST(TypeCast, RefusesADestinationOfAnotherType)
{
    const SeriesPtr source = Column<std::int32_t>("source", {1});
    const SeriesPtr target = Column<double>("target", {5.0});
    LogCapture log;
    const Func::TypeCast<CONTAINER_ARRAY, MERVO_TESSERA_TYPEID> cast(TESSERA_FLOAT);
    const Error error = cast.ProcessSeries(source->GetIterator(), target->GetIterator(), true);
    EXPECT_EQ(error.code, 21);
    EXPECT_EQ(error.message, "Check param failed in functor: TypeCast");
    EXPECT_TRUE(log.Has(1, "Functor TypeCast check param error, src [size 1, type int32], dst [size 1, type double]"));
}

template <typename Argument>
class TypeCastForm : public testing::Test {
};

using Forms = testing::Types<MERVO_TESSERA_TYPEID, MERVO_TESSERA_TYPEID&, const MERVO_TESSERA_TYPEID&>;
TYPED_TEST_SUITE(TypeCastForm, Forms);

TYPED_TEST(TypeCastForm, CastsATable)
{
    MERVO_TESSERA_TYPEID type = TESSERA_STRING;
    const Func::FunctorFactory<Func::TypeCast, Func::UnaryBase, TypeParam> make(type);
    const DataFrame source = TableOf(Column<std::int32_t>("a", {1, -2}), Column<bool>("b", {true, false}));
    DataFrame result;
    ASSERT_EQ(result.ApplyInplace(make, source), 0);
    EXPECT_THAT(result.GetColumnName(), testing::ElementsAre("a", "b"));
    EXPECT_THAT(result.To1DVector<std::string>(), testing::ElementsAre("1", "1", "-2", ""));
}

// ---- Through tables

TEST(TypeCast, HasNoResultForANumberThatIsNoType)
{
    for (const int type : {-1, 14, 15, 99, -2147483647}) {
        DataFrame table = TableOf(Column<std::int32_t>("a", {1, 2}));
        EXPECT_EQ(table.ApplyInplace(CastFactory(static_cast<MERVO_TESSERA_TYPEID>(type)), table), 5);
        EXPECT_EQ(table.GetError().message, "nullptr error in unary functorTypeCast");
        EXPECT_THAT(CellsOf<std::int32_t>(table.GetColumn(0)->GetIterator()), testing::ElementsAre(1, 2));
    }
}

} // namespace
} // namespace MERVO::Tessera
