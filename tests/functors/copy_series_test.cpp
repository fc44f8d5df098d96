#include "tessera/functors/copy_series.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tessera/functors/functor_factory.h"
#include "tests/support/log_capture.h"
#include "tests/support/sample_columns.h"

namespace MERVO::Tessera::Func {
namespace {

template <typename T>
class CopyOf : public testing::Test {
};
TYPED_TEST_SUITE(CopyOf, AllValueTypes);

// Every pair of places matters for bits, and lengths around the nine from which eight elements may go at a time.
TYPED_TEST(CopyOf, TakesARangeToAnyPlaceInAnyContainer)
{
    using T = TypeParam;
    constexpr std::uint32_t COUNT = 26;
    const std::vector<T> values = SampleValues<T>(COUNT);
    const std::vector<T> others(COUNT, SampleValue<T>(1000));
    const CopySeries<CONTAINER_ARRAY> copy;
    for (const ContainerID from : BOTH_CONTAINERS) {
        for (const ContainerID to : BOTH_CONTAINERS) {
            const SeriesPtr source = Column<T>("source", values, from);
            for (std::uint32_t first = 0; first < 9; ++first) {
                for (const std::uint32_t target : {0U, 1U, 3U, 4U, 7U, 8U}) {
                    for (const std::uint32_t length : {0U, 1U, 8U, 9U, 17U}) {
                        const SeriesPtr destination = Column<T>("destination", others, to);
                        const Error outcome = copy.ProcessSeries(source->GetIterator(first, first + length),
                            destination->GetIterator(target, target + length), true);
                        ASSERT_EQ(outcome.code, 0);
                        std::vector<T> expected = others;
                        std::copy_n(values.begin() + first, length, expected.begin() + target);
                        ASSERT_TRUE(AreSame(CellsOf<T>(destination->GetIterator()), expected))
                            << first << " to " << target << ", " << length << " of them";
                    }
                }
            }
            EXPECT_TRUE(AreSame(CellsOf<T>(source->GetIterator()), values));
        }
    }
}

TYPED_TEST(CopyOf, RefusesAnotherLengthOrType)
{
    using T = TypeParam;
    const SeriesPtr source = Column<T>("source", SampleValues<T>(5));
    const SeriesPtr same = Column<T>("same", SampleValues<T>(5));
    const SeriesPtr other =
        std::is_same_v<T, double> ? Column<float>("other", {1, 2, 3, 4, 5}) : Column<double>("other", {1, 2, 3, 4, 5});
    const CopySeries<CONTAINER_ARRAY> copy;
    const SeriesAttr attr = copy.GetDstAttr(source->GetIterator(1, 3));
    EXPECT_EQ(attr.length, 2U);
    EXPECT_EQ(attr.typeId, TYPE_ID_OF<T>);
    EXPECT_EQ(attr.containerId, CONTAINER_ARRAY);
    const LogCapture log;
    for (const Error& outcome : {copy.ProcessSeries(source->GetIterator(), same->GetIterator(0, 4), true),
             copy.ProcessSeries(source->GetIterator(0, 4), same->GetIterator(), true),
             copy.ProcessSeries(source->GetIterator(), other->GetIterator(), true),
             copy.ProcessSeries(other->GetIterator(), source->GetIterator(), true)}) {
        EXPECT_EQ(outcome.code, 21);
        EXPECT_EQ(outcome.message, "Check param failed in functor: CopySeries");
    }
}

TEST(CopySeries, CopiesNestedTablesDeeply)
{
    const SeriesPtr source = Column<DataFrame>("source", SampleValues<DataFrame>(2));
    const SeriesPtr destination = BuildSeries({2, CONTAINER_ARRAY, TESSERA_DATAFRAME}, {});
    const FunctorFactory<CopySeries, UnaryBase> make;
    ASSERT_EQ(make(CONTAINER_ARRAY)->ProcessSeries(source->GetIterator(), destination->GetIterator(), true).code, 0);
    const DataFrame& inner = CursorAs<CONTAINER_ARRAY, DataFrame>(source->GetIterator()).mHead[1];
    ASSERT_TRUE(SetValueToIterator<std::int32_t>(inner.GetColumn(0)->GetIterator(), 99, 0));
    const DataFrame copied = GetValueFromIterator<DataFrame>(destination->GetIterator(), 1);
    EXPECT_THAT(copied.To1DVector<std::int32_t>(), testing::ElementsAre(1, -5));
}

} // namespace
} // namespace MERVO::Tessera::Func
