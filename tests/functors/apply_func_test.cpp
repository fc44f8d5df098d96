#include "tessera/functors/apply_func.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tessera/functors/functor_factory.h"
#include "tests/support/log_capture.h"
#include "tests/support/sample_columns.h"

namespace MERVO::Tessera::Func {
namespace {

using Bits = std::vector<bool>;

BoolStep orStep = [](bool& accumulator, const bool& value) {
    accumulator = accumulator || value;
    return 0;
};
BoolStep andStep = [](bool& accumulator, const bool& value) {
    accumulator = accumulator && value;
    return 0;
};
BoolStep xorStep = [](bool& accumulator, const bool& value) {
    accumulator = accumulator != value;
    return 0;
};

TEST(ApplyFunc, FoldsIntoTheDestinationFromItsFirstBitOn)
{
    const Bits values = {true, false, false, true, true, false, true, false, false, true};
    const struct {
        const char* name;
        BoolStep* step;
        bool first; ///< bit of the destination, with which the accumulator starts
        Bits folded;
    } cases[] = {
        {"or from false", &orStep, false, Bits(10, true)},
        {"or from true", &orStep, true, Bits(10, true)},
        {"and from true", &andStep, true, {true, false, false, false, false, false, false, false, false, false}},
        {"and from false", &andStep, false, Bits(10, false)},
        {"xor from false", &xorStep, false, {true, true, true, false, true, true, false, false, false, true}},
        {"xor from true", &xorStep, true, {false, false, false, true, false, false, true, true, true, false}},
    };
    for (const auto& [name, step, first, folded] : cases) {
        SCOPED_TRACE(name);
        for (const ContainerID from : BOTH_CONTAINERS) {
            for (const ContainerID to : BOTH_CONTAINERS) {
                for (const std::uint32_t offset : {0U, 3U, 8U}) {
                    Bits padded(offset, true);
                    padded.insert(padded.end(), values.begin(), values.end());
                    const SeriesPtr source = Column<bool>("source", padded, from);
                    Bits expected(offset + 12, true);
                    expected[1 + offset] = first;
                    const SeriesPtr destination = Column<bool>("destination", expected, to);
                    const FunctorFactory<ApplyFunc, UnaryBase, BoolStep&> make(*step);
                    const Error outcome = make(CONTAINER_ARRAY)
                                              ->ProcessSeries(source->GetIterator(offset, offset + 10),
                                                  destination->GetIterator(offset + 1, offset + 11), true);
                    EXPECT_EQ(outcome.code, 0);
                    std::copy(folded.begin(), folded.end(), expected.begin() + 1 + offset);
                    EXPECT_EQ(CellsOf<bool>(destination->GetIterator()), expected);
                }
            }
        }
    }
}

TEST(ApplyFunc, AddsTheCodesOfAllSteps)
{
    int calls = 0;
    BoolStep step = [&calls](bool& accumulator, const bool& value) {
        ++calls;
        accumulator = value;
        return value ? 3 : 0;
    };
    const SeriesPtr source = Column<bool>("source", {true, false, true, true});
    const SeriesPtr destination = Column<bool>("destination", Bits(4));
    const ApplyFunc<CONTAINER_ARRAY> functor(step);
    const Error outcome = functor.ProcessSeries(source->GetIterator(), destination->GetIterator(), true);
    EXPECT_EQ(outcome.code, 9);
    EXPECT_EQ(outcome.message, "Error on calling functor: ApplyFunc");
    EXPECT_EQ(calls, 4) << "a failing step does not end the fold";
    EXPECT_EQ(CellsOf<bool>(destination->GetIterator()), (Bits{true, false, true, true}));
}

TEST(ApplyFunc, RefusesAllButBoolsOfOneLengthAndAnEmptyCallable)
{
    const SeriesPtr bits = Column<bool>("bits", Bits(3));
    const SeriesPtr ints = Column<std::int8_t>("ints", {1, 2, 3});
    const ApplyFunc<CONTAINER_ARRAY> functor(orStep);
    const SeriesAttr attr = functor.GetDstAttr(ints->GetIterator());
    EXPECT_EQ(attr.typeId, TESSERA_BOOL);
    EXPECT_EQ(attr.length, 3U);
    const LogCapture log;
    EXPECT_EQ(functor.ProcessSeries(ints->GetIterator(), bits->GetIterator(), true).code, 21);
    EXPECT_EQ(functor.ProcessSeries(bits->GetIterator(), ints->GetIterator(), true).code, 21);
    EXPECT_EQ(functor.ProcessSeries(bits->GetIterator(), bits->GetIterator(0, 2), true).code, 21);
    EXPECT_EQ(functor.ProcessSeries(bits->GetIterator(), bits->GetIterator(), true).code, 0);
    EXPECT_FALSE(log.Has(1, "calling empty call back is risky."));

    BoolStep empty;
    const Error outcome =
        ApplyFunc<CONTAINER_ARRAY>(empty).ProcessSeries(bits->GetIterator(), bits->GetIterator(), true);
    EXPECT_EQ(outcome.code, 21);
    EXPECT_TRUE(log.Has(1, "calling empty call back is risky."));
}

TEST(ApplyFunc, HasNoKernelButThatOfBools)
{
    const ApplyFunc<CONTAINER_ARRAY> functor(orStep);
    const SeriesPtr texts = Column<std::string>("texts", {"a"});
    const auto entry = Unary<ApplyFunc<CONTAINER_ARRAY>, MutableArgs::SOURCE>::transformTable[TESSERA_STRING];
    const LogCapture log;
    const UnaryBase* self = &functor;
    EXPECT_EQ(entry(self, texts->GetIterator(), texts->GetIterator()), 1);
    EXPECT_EQ(log.Count(), 0U) << "in silence";
}

} // namespace
} // namespace MERVO::Tessera::Func
