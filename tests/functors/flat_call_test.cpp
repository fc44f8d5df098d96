#include "tessera/core/flat_call.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "tessera/core/handles.h"
#include "tessera/functors/copy_series.h"
#include "tests/functors/scripted_functors.h"
#include "tests/support/log_capture.h"

namespace MERVO::Tessera {
namespace {

TEST(ApplyUnary, RefusesUnfitHandlesOnEitherSide)
{
    DataFrame table = LetteredTable(1);
    DataFrameRef window(table);
    MERVO_TSR_CONTEXT good{&table, nullptr};
    MERVO_TSR_CONTEXT neither{nullptr, nullptr};
    MERVO_TSR_CONTEXT both{&table, &window};
    Script script;
    for (MERVO_TSR_CONTEXT* bad : {static_cast<MERVO_TSR_CONTEXT*>(nullptr), &neither, &both}) {
        const LogCapture log;
        EXPECT_EQ(ApplyUnary("MERVO_TSR_Call", bad, &good, ScriptedFactory(script)), 33);
        EXPECT_EQ(ApplyUnary("MERVO_TSR_Call", &good, bad, ScriptedFactory(script)), 33);
        EXPECT_EQ(log.Texts(1), std::vector<std::string>(2, "[MERVO_TSR_Call] Input is nullptr"));
    }
    EXPECT_EQ(script.runs, 0);
    EXPECT_EQ(table.GetError().code, 0);
}

TEST(ApplyUnary, ServesTablesAndWindowsOnEitherSide)
{
    for (const bool isTargetWindow : {false, true}) {
        for (const bool isSourceWindow : {false, true}) {
            DataFrame target = LetteredTable(2);
            DataFrame source = LetteredTable(2);
            DataFrameRef targetWindow(target);
            DataFrameRef sourceWindow(source);
            MERVO_TSR_CONTEXT dst{isTargetWindow ? nullptr : &target, isTargetWindow ? &targetWindow : nullptr};
            const MERVO_TSR_CONTEXT src{isSourceWindow ? nullptr : &source, isSourceWindow ? &sourceWindow : nullptr};
            Script script;
            EXPECT_EQ(ApplyUnary("call", &dst, &src, ScriptedFactory(script)), 0);
            EXPECT_EQ(ColumnsOf(target)[1], (std::vector<std::int32_t>{200, 202, 204, 206, 208}));
        }
    }
}

TEST(ApplyUnary, ReportsWhatTheReceivingTableHasStored)
{
    DataFrame table = LetteredTable(1);
    DataFrame empty;
    MERVO_TSR_CONTEXT dst{&table, nullptr};
    const MERVO_TSR_CONTEXT src{&empty, nullptr};
    Script script;
    const LogCapture log;
    EXPECT_EQ(ApplyUnary("call", &dst, &src, ScriptedFactory(script)), 0) << "7 is told by the log, not stored";
    EXPECT_TRUE(log.Has(3, "Input dataFrame is zero-column when applying unary functor: Scripted."));
    script.code = 12;
    EXPECT_EQ(ApplyUnary("call", &dst, &dst, ScriptedFactory(script)), 12);
    script.code = 0;
    EXPECT_EQ(ApplyUnary("call", &dst, &dst, ScriptedFactory(script)), 12) << "an earlier failure stays";
}

TEST(FlatCall, LetsNoExceptionOut)
{
    DataFrame table = LetteredTable(1);
    MERVO_TSR_CONTEXT handle{&table, nullptr};
    const LogCapture log;
    const auto throwing = [](ContainerID) -> FunctorPtr<Func::UnaryBase> { throw std::length_error("too long"); };
    EXPECT_EQ(ApplyUnary("MERVO_TSR_Call", &handle, &handle, throwing), 3);
    EXPECT_TRUE(log.Has(1, "out of memory"));
    EXPECT_EQ(Guarded("call", []() -> std::int32_t { throw 5; }), 3); // NOLINT: of any kind
    EXPECT_EQ(Guarded("call", [] { return 8; }), 8);
    EXPECT_EQ(ColumnsOf(table), ColumnsOf(LetteredTable(1)));
}

} // namespace
} // namespace MERVO::Tessera
