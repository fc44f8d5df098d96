// What the functors on numbers take and refuse, for every value type of source and destination.

#include <gmock/gmock.h>

#include <functional>

#include "tests/numeric/statistics.h"
#include "tests/support/log_capture.h"

namespace MERVO::Tessera {
namespace {

using Func::FunctorFactory;
using Func::RollingParam;
using Func::ShapeParam;
using Func::UnaryBase;
using testing::ElementsAre;

constexpr int NONE = -1;
/// By value type of the source: bool, eight integers, float, double, string, DateTime, table.
using ByType = std::array<int, ValueTypes::COUNT>;

constexpr ByType SUMS = {7, 10, 10, 10, 10, 10, 10, 10, 10, 9, 10, NONE, 12, NONE};
constexpr ByType MEANS = {10, 10, 10, 10, 10, 10, 10, 10, 10, 9, 10, NONE, 12, NONE};
constexpr ByType SAME = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13};
constexpr ByType POSITIONS = {6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6};
constexpr ByType REALS = {10, 10, 10, 10, 10, 10, 10, 10, 10, 9, 10, NONE, NONE, NONE};
constexpr ByType ROLLED = {0, 10, 10, 10, 10, 10, 10, 10, 10, 9, 10, 11, 12, 13};

struct Contract {
    std::shared_ptr<UnaryBase> functor;
    std::function<ErrorCode(const Cursor& src, const Cursor& dst)> kernel; ///< without what comes before it
    ByType results;
    std::vector<int> unserved; ///< value types without a kernel
    bool needsRows;
    bool checksType = true;
};

/// Base is the class whose table of kernels it is.
template <typename Base, typename... Args>
Contract ContractOf(const ByType& results, std::vector<int> unserved, bool needsRows, Args... args)
{
    auto functor = std::make_shared<Base>(args...);
    const auto kernel = [functor](const Cursor& src, const Cursor& dst) {
        const auto type = static_cast<std::size_t>(src->GetAttr().typeId);
        const std::size_t rows = functor->transformTable.size() / ValueTypes::COUNT; // 14 or 1
        return functor->transformTable[rows == 1 ? type : type * ValueTypes::COUNT](functor.get(), src, dst);
    };
    return {functor, kernel, results, std::move(unserved), needsRows};
}

std::vector<Contract> Contracts()
{
    constexpr ContainerID ARRAY = CONTAINER_ARRAY;
    std::vector<Contract> contracts = {ContractOf<Func::Max<ARRAY>>(SAME, {13}, true),
        ContractOf<Func::Min<ARRAY>>(SAME, {11, 13}, true), ContractOf<Func::Ptp<ARRAY>>(SAME, {11, 13}, true)};
    for (Contract& contract : contracts) {
        contract.checksType = false;
    }
    contracts.push_back(ContractOf<Func::Sum<ARRAY>>(SUMS, {11, 13}, false));
    contracts.push_back(ContractOf<Func::Mean<ARRAY>>(MEANS, {11, 13}, false));
    contracts.push_back(ContractOf<Func::IdxMax<ARRAY>>(POSITIONS, {13}, true));
    contracts.push_back(ContractOf<Func::VarBase<ARRAY>>(REALS, {11, 12, 13}, false, 0U));
    contracts.push_back(ContractOf<Func::StdBase<ARRAY>>(REALS, {11, 12, 13}, false, 0U));
    contracts.push_back(ContractOf<Func::MomentBase<ARRAY>>(REALS, {11, 12, 13}, false, 2U));
    contracts.push_back(ContractOf<Func::KstatBase<ARRAY>>(REALS, {0, 11, 12, 13}, true, 2U));
    contracts.push_back(ContractOf<Func::SkewBase<ARRAY>>(REALS, {0, 11, 12, 13}, false, ShapeParam{true, true}));
    contracts.push_back(ContractOf<Func::KurtBase<ARRAY>>(REALS, {0, 11, 12, 13}, false, ShapeParam{true, true}));
    return contracts;
}

constexpr auto NUMBERED_TYPE = [](int number) { return static_cast<MERVO_TESSERA_TYPEID>(number); };

SeriesPtr ColumnOf(int type, std::uint32_t length, ContainerID container = CONTAINER_ARRAY)
{
    return BuildSeries({length, container, NUMBERED_TYPE(type)}, "column");
}

TEST(NumericFunctors, SayWhatTheirDestinationIs)
{
    for (const Contract& contract : Contracts()) {
        for (int type = 0; type < TESSERA_TYPE_END; ++type) {
            const LogCapture log;
            const SeriesPtr source = ColumnOf(type, 3, CONTAINER_LIST);
            const SeriesAttr attr = contract.functor->GetDstAttr(source->GetIterator());
            const std::string name = contract.functor->GetName();
            const auto result = contract.results[static_cast<std::size_t>(type)];
            EXPECT_EQ(static_cast<int>(attr.typeId), result) << name << " of " << type;
            EXPECT_EQ(attr.length, 1U) << name;
            EXPECT_EQ(attr.containerId, CONTAINER_LIST) << name;
            const bool isTold = type > TESSERA_DOUBLE && (name == "Skew" || name == "Kurt");
            const char* const words = name == "Skew" ? "doesn't match" : "doesn't satisfy";
            const std::string text = std::string("the input data type ") + words + " needs of functor";
            EXPECT_EQ(log.Texts(1), isTold ? std::vector{text} : std::vector<std::string>{}) << type;
        }
    }
}

TEST(NumericFunctors, CheckTheirDestination)
{
    for (const Contract& contract : Contracts()) {
        for (int type = 0; type < TESSERA_TYPE_END; ++type) {
            const SeriesPtr source = ColumnOf(type, 3);
            const auto result = contract.results[static_cast<std::size_t>(type)];
            for (int other = 0; other < TESSERA_TYPE_END; ++other) {
                const SeriesPtr target = ColumnOf(other, 2);
                const auto accepts = [&](std::uint32_t rows, std::uint32_t cells) {
                    const LogCapture log; // of Skew and Kurt
                    return contract.functor->CheckParams(source->GetIterator(0, rows), target->GetIterator(0, cells));
                };
                const bool fits = !contract.checksType || result == other;
                const std::string told =
                    contract.functor->GetName() + " of " + std::to_string(type) + " into " + std::to_string(other);
                EXPECT_EQ(accepts(3, 1), fits) << told;
                EXPECT_EQ(accepts(0, 1), fits && !contract.needsRows) << told;
                EXPECT_FALSE(accepts(3, 2)) << told;
                EXPECT_FALSE(accepts(3, 0)) << told;
            }
        }
    }
}

TEST(NumericFunctors, HaveAKernelForTheTypesTheyServe)
{
    for (const Contract& contract : Contracts()) {
        for (int type = 0; type < TESSERA_TYPE_END; ++type) {
            const std::string told = contract.functor->GetName() + " of " + std::to_string(type);
            const bool isServed =
                std::find(contract.unserved.begin(), contract.unserved.end(), type) == contract.unserved.end();
            const auto result = contract.results[static_cast<std::size_t>(type)];
            const SeriesPtr source = ColumnOf(type, 3, CONTAINER_LIST); // whose cells start at zero
            const SeriesPtr target = ColumnOf(result == NONE ? type : result, 1);
            const LogCapture log;
            EXPECT_EQ(contract.kernel(source->GetIterator(), target->GetIterator()), isServed ? 0 : 1) << told;
            const bool isTold = !isServed && contract.functor->GetName() == "IdxMax";
            EXPECT_EQ(log.Count(), isTold ? 1U : 0U) << told;
            EXPECT_EQ(log.Has(1, "this type donnot support IdxMax functor"), isTold);
            // What a caller without a check brings must hold the type that is written.
            const SeriesPtr other = Column<std::string>("other", {"kept"});
            if (result != TESSERA_STRING) {
                EXPECT_EQ(contract.kernel(source->GetIterator(), other->GetIterator()), 1) << told;
                EXPECT_THAT(CellsOf<std::string>(other->GetIterator()), ElementsAre("kept")) << told;
            }
        }
    }
}

TEST(NumericFunctors, RefuseAnEmptyRangeAlsoWithoutACheck)
{
    const SeriesPtr full = Column<double>("full", {4.0});
    for (const Contract& contract : Contracts()) {
        const bool isPosition = contract.functor->GetName() == "IdxMax";
        const SeriesPtr target = ColumnOf(isPosition ? TESSERA_UINT32 : TESSERA_DOUBLE, 1);
        ASSERT_EQ(contract.functor->ProcessSeries(full->GetIterator(), target->GetIterator(), true).code, 0);
        const ErrorCode code =
            contract.functor->ProcessSeries(full->GetIterator(1, 1), target->GetIterator(), false).code;
        EXPECT_EQ(code != 0, contract.needsRows) << contract.functor->GetName();
    }
}

TEST(RollingFunctors, TakeAllButBoolsAndServeNumbers)
{
    const Func::RollingBase<CONTAINER_ARRAY, true> mean({2, false, 1});
    for (int type = 0; type < TESSERA_TYPE_END; ++type) {
        const SeriesPtr source = ColumnOf(type, 3);
        const auto result = ROLLED[static_cast<std::size_t>(type)];
        const SeriesAttr attr = mean.GetDstAttr(source->GetIterator());
        EXPECT_EQ(static_cast<int>(attr.typeId), result) << type;
        EXPECT_EQ(attr.length, 3U);
        for (int other = 0; other < TESSERA_TYPE_END; ++other) {
            const SeriesPtr target = ColumnOf(other, 3);
            const bool fits = type != TESSERA_BOOL && result == other;
            EXPECT_EQ(mean.CheckParams(source->GetIterator(), target->GetIterator()), fits) << type << other;
        }
        const bool isServed = type != TESSERA_BOOL && type <= TESSERA_DOUBLE;
        const SeriesPtr target = ColumnOf(result, 3);
        const SeriesPtr texts = Column<std::string>("texts", {"x", "y", "z"});
        const LogCapture log;
        EXPECT_EQ(RunKernel(mean, source->GetIterator(), target->GetIterator()), isServed ? 0 : 1) << type;
        EXPECT_EQ(RunKernel(mean, source->GetIterator(), texts->GetIterator()), 1) << type;
        EXPECT_EQ(log.Count(), 0U);
    }
}

/// Ways to hand over the same arguments.
using Forms = std::vector<UnaryFactory>;

TEST(NumericFunctors, TakeTheirArgumentsInAnyForm)
{
    std::uint32_t number = 3;
    bool yes = true;
    bool no = false;
    using Count = std::uint32_t;
    using ConstCount = const std::uint32_t&;
    using ConstFlag = const bool&;
    const auto forms = [&]<template <ContainerID, typename...> class F>() {
        return Forms{FunctorFactory<F, UnaryBase, Count>{number}, FunctorFactory<F, UnaryBase, Count&>{number},
            FunctorFactory<F, UnaryBase, ConstCount>{number}};
    };
    const Forms all[] = {forms.operator()<Func::Var>(), forms.operator()<Func::Std>(), forms.operator()<Func::Moment>(),
        forms.operator()<Func::Kstat>(),
        {FunctorFactory<Func::Std, UnaryBase>{}, FunctorFactory<Func::Std, UnaryBase, Count>{1}},
        {FunctorFactory<Func::Skew, UnaryBase, bool, bool>{yes, no},
            FunctorFactory<Func::Skew, UnaryBase, bool&, bool&>{yes, no},
            FunctorFactory<Func::Skew, UnaryBase, ConstFlag, ConstFlag>{yes, no}},
        {FunctorFactory<Func::Kurt, UnaryBase, bool, bool>{yes, no},
            FunctorFactory<Func::Kurt, UnaryBase, bool&, bool&>{yes, no},
            FunctorFactory<Func::Kurt, UnaryBase, ConstFlag, ConstFlag>{yes, no}},
        {FunctorFactory<Func::RollingSum, UnaryBase, RollingParam>{RollingParam{3, true, 3}},
            FunctorFactory<Func::RollingSum, UnaryBase, Count, bool, Count>{number, yes, number},
            FunctorFactory<Func::RollingSum, UnaryBase, ConstCount, ConstFlag, ConstCount>{number, yes, number}},
        {FunctorFactory<Func::RollingMean, UnaryBase, RollingParam>{RollingParam{3, true, 3}},
            FunctorFactory<Func::RollingMean, UnaryBase, Count, bool, Count>{number, yes, number},
            FunctorFactory<Func::RollingMean, UnaryBase, ConstCount, ConstFlag, ConstCount>{number, yes, number}}};
    const std::vector<double> cells{1.0, 2.0, 4.0, std::nan(""), 9.5};
    const auto source = WindowOf(cells, CONTAINER_ARRAY, 1);
    for (const Forms& ways : all) {
        Error error;
        const auto wanted =
            CellsOf<double>(RunOn(*ways[0](CONTAINER_ARRAY), source.Range(), CONTAINER_ARRAY, error)->GetIterator());
        for (const UnaryFactory& make : ways) {
            EXPECT_TRUE(Gives(*make(CONTAINER_ARRAY), source.Range(), wanted));
        }
    }
}

} // namespace
} // namespace MERVO::Tessera
