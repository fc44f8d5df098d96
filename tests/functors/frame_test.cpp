#include "tessera/functors/functor.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/functors/scripted_functors.h"
#include "tests/support/log_capture.h"

namespace MERVO::Tessera::Func {
namespace {

using testing::ElementsAre;

/// What the kernels of the probes below answer, and saw last.
struct Trace {
    ErrorCode simdCode = 1; ///< declines
    ErrorCode generalCode = 0;
    std::vector<int> types; ///< of the kernel that ran
    int simdRuns = 0;
    int generalRuns = 0;
    int checks = 0;
} trace;

ErrorCode NoteFastPath() { return ++trace.simdRuns, trace.simdCode; }

template <typename... T>
ErrorCode NoteKernel()
{
    trace.types = {static_cast<int>(TYPE_ID_OF<T>)...};
    ++trace.generalRuns;
    return trace.generalCode;
}

template <MutableArgs... ARGS>
class NullaryProbe final : public Nullary<NullaryProbe<ARGS...>, ARGS...> {
public:
    std::string GetName() const override { return "NullaryProbe"; }
    SeriesAttr GetDstAttr(const Cursor& cursor) const override { return cursor->GetAttr(); }
    bool CheckParams(const Cursor& cursor) const override { return cursor->Length() == 1; }
    template <typename... T>
    ErrorCode OnExecuteSIMD(const Cursor&) const
    {
        return NoteFastPath();
    }
    template <typename... T>
    ErrorCode OnExecute(const Cursor&) const
    {
        return NoteKernel<T...>();
    }
};

template <MutableArgs... ARGS>
class UnaryProbe final : public Unary<UnaryProbe<ARGS...>, ARGS...> {
public:
    std::string GetName() const override { return "UnaryProbe"; }
    bool CheckParams(const Cursor& src, const Cursor&) const override
    {
        ++trace.checks;
        return src->Length() == 1;
    }
    template <typename... T>
    ErrorCode OnExecuteSIMD(const Cursor&, const Cursor&) const
    {
        return NoteFastPath();
    }
    template <typename... T>
    ErrorCode OnExecute(const Cursor&, const Cursor&) const
    {
        return NoteKernel<T...>();
    }
};

/// As UnaryProbe over both types, of kernels that don't look at the destination's.
class RowProbe final : public Unary<RowProbe, MutableArgs::SOURCE, MutableArgs::DESTINATION> {
public:
    static constexpr bool kDestinationAltersKernel = false;
    std::string GetName() const override { return "RowProbe"; }
    template <typename S, typename>
    ErrorCode OnExecute(const Cursor&, const Cursor&) const
    {
        return NoteKernel<S>();
    }
};

/// As UnaryProbe, of one kernel for all types.
template <MutableArgs... ARGS>
class UntypedProbe final : public Unary<UntypedProbe<ARGS...>, ARGS...> {
public:
    static constexpr bool kValueTypesAlterKernel = false;
    std::string GetName() const override { return "UntypedProbe"; }
    template <typename...>
    ErrorCode OnExecute(const Cursor&, const Cursor&) const
    {
        return NoteKernel<>();
    }
};

template <MutableArgs... ARGS>
class BinaryProbe final : public Binary<BinaryProbe<ARGS...>, ARGS...> {
public:
    std::string GetName() const override { return "BinaryProbe"; }
    SeriesAttr GetDstAttr(const Cursor& lhs, const Cursor&) const override { return lhs->GetAttr(); }
    bool CheckParams(const Cursor& lhs, const Cursor&, const Cursor&) const override { return lhs->Length() == 1; }
    template <typename... T>
    ErrorCode OnExecuteSIMD(const Cursor&, const Cursor&, const Cursor&) const
    {
        return NoteFastPath();
    }
    template <typename... T>
    ErrorCode OnExecute(const Cursor&, const Cursor&, const Cursor&) const
    {
        return NoteKernel<T...>();
    }
};

constexpr MutableArgs SOURCE = MutableArgs::SOURCE;
constexpr MutableArgs SECOND = MutableArgs::SECOND;
constexpr MutableArgs DESTINATION = MutableArgs::DESTINATION;

static_assert(std::tuple_size_v<decltype(UnaryProbe<>::transformTable)> == 1);
static_assert(std::tuple_size_v<decltype(UnaryProbe<DESTINATION>::transformTable)> == 14);
static_assert(std::tuple_size_v<decltype(UnaryProbe<SOURCE, DESTINATION>::transformTable)> == 196);
static_assert(std::tuple_size_v<decltype(BinaryProbe<SECOND>::transformTable)> == 14);
static_assert(std::tuple_size_v<decltype(NullaryProbe<DESTINATION>::transformTable)> == 14);

SeriesPtr CellOf(int type, std::uint32_t length = 1)
{
    return BuildSeries({length, CONTAINER_ARRAY, static_cast<MERVO_TESSERA_TYPEID>(type)}, {});
}

// The value types of all three cursors differ, so that a table asked by the wrong one shows.
TEST(TransformTable, PicksTheKernelByTheArgumentsThatAreNamed)
{
    for (int source = 0; source < 14; ++source) {
        for (int other = 0; other < 14; ++other) {
            const int second = (source + other + 5) % 14;
            const SeriesPtr columns[] = {CellOf(source), CellOf(second), CellOf(other)};
            const Cursor src = columns[0]->GetIterator();
            const Cursor rhs = columns[1]->GetIterator();
            const Cursor dst = columns[2]->GetIterator();
            const auto kernelOf = [](const Error& outcome) {
                EXPECT_EQ(outcome.code, 0);
                EXPECT_EQ(outcome.message, "");
                return trace.types;
            };
            ASSERT_THAT(kernelOf(UnaryProbe<SOURCE>().ProcessSeries(src, dst, true)), ElementsAre(source));
            ASSERT_THAT(kernelOf(UnaryProbe<DESTINATION>().ProcessSeries(src, dst, true)), ElementsAre(other));
            const UnaryProbe<SOURCE, DESTINATION> both;
            ASSERT_THAT(kernelOf(both.ProcessSeries(src, dst, true)), ElementsAre(source, other));
            ASSERT_THAT(kernelOf(RowProbe().ProcessSeries(src, dst, true)), ElementsAre(source));
            ASSERT_THAT(kernelOf(UnaryProbe<>().ProcessSeries(src, dst, true)), ElementsAre());
            ASSERT_THAT(kernelOf(BinaryProbe<SOURCE>().ProcessSeries(src, rhs, dst)), ElementsAre(source));
            ASSERT_THAT(kernelOf(BinaryProbe<SECOND>().ProcessSeries(src, rhs, dst)), ElementsAre(second));
            ASSERT_THAT(kernelOf(BinaryProbe<DESTINATION>().ProcessSeries(src, rhs, dst)), ElementsAre(other));
            ASSERT_THAT(kernelOf(BinaryProbe<>().ProcessSeries(src, rhs, dst)), ElementsAre());
            ASSERT_THAT(kernelOf(NullaryProbe<SOURCE>().ProcessSeries(src)), ElementsAre(source));
            ASSERT_THAT(kernelOf(NullaryProbe<DESTINATION>().ProcessSeries(dst)), ElementsAre(other));
            ASSERT_THAT(kernelOf(NullaryProbe<>().ProcessSeries(dst)), ElementsAre());

            const auto entry = static_cast<std::size_t>(source * 14 + other);
            ASSERT_EQ(UnaryProbe<SOURCE>::transformTable.size(), 14U);
            ASSERT_EQ(RowProbe::transformTable[entry], RowProbe::transformTable[static_cast<std::size_t>(source * 14)])
                << "a row of kernels that ignore the destination is one kernel";
            ASSERT_THAT(kernelOf(UntypedProbe<SOURCE, DESTINATION>().ProcessSeries(src, dst, true)), ElementsAre());
            ASSERT_EQ((UntypedProbe<SOURCE, DESTINATION>::transformTable[entry]),
                (UntypedProbe<SOURCE, DESTINATION>::transformTable[0]));
            ASSERT_EQ(UntypedProbe<DESTINATION>::transformTable[static_cast<std::size_t>(other)],
                UntypedProbe<DESTINATION>::transformTable[0]);
        }
    }
}

TEST(UncheckedRun, UsesTheKernelOfTheLastCheckedOne)
{
    const SeriesPtr ints = CellOf(TESSERA_INT32);
    const SeriesPtr texts = CellOf(TESSERA_STRING);
    const SeriesPtr twoTexts = CellOf(TESSERA_STRING, 2);
    const UnaryProbe<SOURCE, DESTINATION> functor;
    const auto run = [&functor](const SeriesPtr& src, const SeriesPtr& dst, bool check) {
        const ErrorCode code = functor.ProcessSeries(src->GetIterator(), dst->GetIterator(), check).code;
        return code == 0 ? trace.types : std::vector<int>{-code};
    };
    EXPECT_THAT(run(texts, ints, false), ElementsAre(0, 0)) << "a fresh functor runs the kernel of bool";
    trace.checks = 0;
    EXPECT_THAT(run(texts, ints, true), ElementsAre(11, 5));
    EXPECT_THAT(run(ints, ints, false), ElementsAre(11, 5));
    EXPECT_THAT(run(twoTexts, ints, false), ElementsAre(11, 5)) << "would be refused by a check";
    EXPECT_EQ(trace.checks, 1);
    EXPECT_THAT(run(twoTexts, ints, true), ElementsAre(-21));
    EXPECT_THAT(run(ints, texts, false), ElementsAre(11, 5)) << "a refused run leaves the choice";
    EXPECT_THAT(run(ints, texts, true), ElementsAre(5, 11));
}

/// A cursor that notes who was asked whether it is contiguous.
class AskedCursor final : public IteratorInterface {
public:
    AskedCursor(std::string& asked, char letter, bool answer) : notes(asked), name(letter), isContiguous(answer) {}
    SeriesAttr GetAttr() const override { return {1, CONTAINER_ARRAY, TESSERA_INT32}; }
    std::uint32_t Length() const override { return 1; }
    bool IsMemoryContiguous() const override
    {
        notes += name;
        return isContiguous;
    }
    void Shift(long long) override {}

private:
    std::string& notes;
    char name;
    bool isContiguous;
};

struct PathCase {
    const char* contiguous; ///< of source, second source and destination: y or n
    ErrorCode simd;
    ErrorCode general;
    std::string asked;
    int simdRuns;
    int generalRuns;
    ErrorCode code;
};

// The destination is asked first, and the first no ends the asking.
const PathCase PATH_CASES[] = {
    {"yyy", 0, 9, "dlr", 1, 0, 0},
    {"yyy", 1, 0, "dlr", 1, 1, 0}, // a declined fast path is no failure
    {"yyy", 7, 9, "dlr", 1, 1, 9},
    {"yyn", 0, 0, "d", 0, 1, 0},
    {"nyy", 0, 9, "dl", 0, 1, 9},
    {"yny", 0, 0, "dlr", 0, 1, 0},
    {"nnn", 0, 0, "d", 0, 1, 0},
};

TEST(Caller, OffersTheFastPathToContiguousCursorsOnly)
{
    for (const PathCase& wanted : PATH_CASES) {
        SCOPED_TRACE(std::string(wanted.contiguous) + " " + std::to_string(wanted.simd));
        std::string asked;
        const auto cursor = [&](char name, int place) -> Cursor {
            return std::make_unique<AskedCursor>(asked, name, wanted.contiguous[place] == 'y');
        };
        const Cursor lhs = cursor('l', 0);
        const Cursor rhs = cursor('r', 1);
        const Cursor dst = cursor('d', 2);
        const auto expectRun = [&](auto&& run, const std::string& wantedAsked) {
            asked.clear();
            trace = {wanted.simd, wanted.general, {}};
            const Error outcome = run();
            EXPECT_EQ(outcome.code, wanted.code);
            EXPECT_EQ(outcome.message.substr(0, 26), outcome.code != 0 ? "Error on calling functor: " : "");
            EXPECT_EQ(asked, wantedAsked);
            EXPECT_EQ(trace.simdRuns, wanted.simdRuns);
            EXPECT_EQ(trace.generalRuns, wanted.generalRuns);
        };
        expectRun([&] { return BinaryProbe<SOURCE>().ProcessSeries(lhs, rhs, dst); }, wanted.asked);
        if (wanted.contiguous[1] == 'y') { // the unary frame has no second source
            expectRun([&] { return UnaryProbe<SOURCE>().ProcessSeries(lhs, dst, true); }, wanted.asked.substr(0, 2));
        }
        if (std::string(wanted.contiguous, 2) == "yy") {
            expectRun([&] { return NullaryProbe<SOURCE>().ProcessSeries(dst); }, "d");
        }
    }
    trace = {};
}

TEST(ProcessSeries, RefusesAnEmptyCursor)
{
    const SeriesPtr column = CellOf(TESSERA_INT32);
    const Cursor there = column->GetIterator();
    const Cursor none;
    Script script;
    const Scripted<CONTAINER_ARRAY, Script&> unary(script);
    const ScriptedMinus<CONTAINER_ARRAY, Script&> binary(script);
    const ScriptedRaise<CONTAINER_ARRAY, Script&> nullary(script);
    const struct {
        Error outcome;
        const char* message;
    } cases[] = {
        {unary.ProcessSeries(none, there, true), "nullptr error in unary functorScripted"},
        {unary.ProcessSeries(there, none, true), "nullptr error in unary functorScripted"},
        {unary.ProcessSeries(none, none, false), "nullptr error in unary functorScripted"},
        {binary.ProcessSeries(none, there, there), "nullptr error in binary functorMinus"},
        {binary.ProcessSeries(there, none, there), "nullptr error in binary functorMinus"},
        {binary.ProcessSeries(there, there, none), "nullptr error in binary functorMinus"},
        {nullary.ProcessSeries(none), "nullptr error in binary functorRaise"},
    };
    for (const auto& [outcome, message] : cases) {
        EXPECT_EQ(outcome.code, 5);
        EXPECT_EQ(outcome.message, message);
    }
    EXPECT_EQ(script.runs, 0);
}

TEST(ProcessSeries, TellsRefusalsAndFailuresOfAFunctor)
{
    const SeriesPtr ints = CellOf(TESSERA_INT32, 3);
    const SeriesPtr texts = CellOf(TESSERA_STRING, 2);
    const SeriesPtr doubles = CellOf(TESSERA_DOUBLE, 4);
    Script script;
    const Scripted<CONTAINER_ARRAY, Script&> unary(script);
    const ScriptedMinus<CONTAINER_ARRAY, Script&> binary(script);
    const ScriptedRaise<CONTAINER_ARRAY, Script&> nullary(script);
    const auto run = [&] {
        return std::vector<Error>{unary.ProcessSeries(ints->GetIterator(), texts->GetIterator(), true),
            binary.ProcessSeries(ints->GetIterator(), ints->GetIterator(), doubles->GetIterator()),
            nullary.ProcessSeries(texts->GetIterator())};
    };
    {
        script.isAccepting = false;
        const LogCapture log;
        const std::vector<Error> outcomes = run();
        EXPECT_THAT(log.Texts(1),
            ElementsAre("Functor Scripted check param error, src [size 3, type int32], dst [size 2, type string]",
                "Functor Minus check param error, lhs [size 3, type int32], rhs [size 3, type int32], dst [size 4, "
                "type "
                "double]",
                "Functor Raise check param error, dst [size 2, type 11]"));
        const char* const messages[] = {"Check param failed in functor: Scripted",
            "Check param failed in binary functorMinus", "Check param failed in functor: Raise"};
        for (std::size_t i = 0; i < 3; ++i) {
            EXPECT_EQ(outcomes[i].code, 21);
            EXPECT_EQ(outcomes[i].message, messages[i]);
        }
    }
    script.isAccepting = true;
    script.code = 12;
    const std::vector<Error> outcomes = run();
    const char* const names[] = {"Scripted", "Minus", "Raise"};
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(outcomes[i].code, 12);
        EXPECT_EQ(outcomes[i].message, std::string("Error on calling functor: ") + names[i]);
    }
}

/// A cursor of a value type that is none, as only a host's own can be.
class TypelessCursor final : public IteratorInterface {
public:
    explicit TypelessCursor(int number) : type(static_cast<MERVO_TESSERA_TYPEID>(number)) {}
    SeriesAttr GetAttr() const override { return {1, CONTAINER_ARRAY, type}; }
    std::uint32_t Length() const override { return 1; }
    bool IsMemoryContiguous() const override { return true; }
    void Shift(long long) override {}

private:
    MERVO_TESSERA_TYPEID type;
};

TEST(ProcessSeries, FindsNoKernelForWhatIsNoType)
{
    for (const int type : {-1, 14, 15, 196, 0x7FFFFFFF}) {
        const Cursor odd = std::make_unique<TypelessCursor>(type);
        const SeriesPtr column = CellOf(TESSERA_DATAFRAME);
        const Cursor there = column->GetIterator();
        trace = {};
        EXPECT_EQ(UnaryProbe<SOURCE>().ProcessSeries(odd, there, true).code, 1);
        EXPECT_EQ((UnaryProbe<SOURCE, DESTINATION>().ProcessSeries(there, odd, true).code), 1);
        EXPECT_EQ((UnaryProbe<SOURCE, DESTINATION>().ProcessSeries(odd, there, true).code), 1);
        EXPECT_EQ(BinaryProbe<SECOND>().ProcessSeries(there, odd, there).code, 1);
        EXPECT_EQ(NullaryProbe<SOURCE>().ProcessSeries(odd).code, 1);
        EXPECT_EQ(trace.generalRuns, 0);
    }
}

// What a functor gets that does not say its own: a reduction.
TEST(UnaryFrame, ReducesByDefault)
{
    const RowProbe functor;
    const SeriesPtr three = CellOf(TESSERA_INT16, 3);
    const SeriesPtr one = CellOf(TESSERA_INT16);
    const SeriesPtr none = CellOf(TESSERA_INT16, 0);
    EXPECT_EQ(functor.GetDstAttr(three->GetIterator()).length, 1U);
    EXPECT_EQ(functor.GetDstAttr(three->GetIterator()).typeId, TESSERA_INT16);
    EXPECT_TRUE(functor.CheckParams(three->GetIterator(), one->GetIterator()));
    EXPECT_FALSE(functor.CheckParams(none->GetIterator(), one->GetIterator()));
    EXPECT_FALSE(functor.CheckParams(three->GetIterator(), three->GetIterator()));
}

} // namespace
} // namespace MERVO::Tessera::Func
