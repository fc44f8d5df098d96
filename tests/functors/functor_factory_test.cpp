#include "tessera/functors/functor_factory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/functors/scripted_functors.h"
#include "tests/support/failing_allocation.h"
#include "tests/support/log_capture.h"

namespace MERVO::Tessera::Func {
namespace {

TEST(ErrorFunctors, TellTheirTextsAndRefuse)
{
    const SeriesPtr array = Column<std::int32_t>({}, {0});
    const SeriesPtr list = Column<std::int32_t>({}, {0}, CONTAINER_LIST);
    const Cursor a = array->GetIterator();
    const Cursor l = list->GetIterator();
    const auto nullary = GetErrorFunctor<NullaryBase>();
    const auto unary = GetErrorFunctor<UnaryBase>();
    const auto binary = GetErrorFunctor<BinaryBase>();
    const auto runNullary = [&](const Cursor& cursor) {
        const NullaryBase* self = nullary.get();
        return ErrorNullaryFunctor<CONTAINER_ARRAY>::transformTable[0](self, cursor);
    };
    const auto runUnary = [&](const Cursor& src, const Cursor& dst) {
        const UnaryBase* self = unary.get();
        return ErrorUnaryFunctor<CONTAINER_ARRAY>::transformTable[0](self, src, dst);
    };
    const auto runBinary = [&](const Cursor& lhs, const Cursor& rhs, const Cursor& dst) {
        const BinaryBase* self = binary.get();
        return ErrorBinaryFunctor<CONTAINER_ARRAY>::transformTable[0](self, lhs, rhs, dst);
    };
    const auto codeOf = [](const Error& outcome, const std::string& message) {
        EXPECT_EQ(outcome.message, message);
        return outcome.code;
    };
    const auto isNone = [](const SeriesAttr& attr) {
        return attr.length == 0 && attr.containerId == -1 && attr.typeId == TESSERA_INVALID ? 0 : 1;
    };
    EXPECT_EQ(nullary->GetName(), "ErrorNullaryFunctor");
    EXPECT_EQ(unary->GetName(), "ErrorUnaryFunctor");
    EXPECT_EQ(binary->GetName(), "ErrorBinaryFunctor");
    using Texts = std::vector<std::string>;
    const struct {
        std::function<ErrorCode()> use;
        ErrorCode code;
        Texts texts;
    } cases[] = {
        {[&] { return isNone(nullary->GetDstAttr(a)); }, 0, {"Trying to get attribute of an error functor"}},
        {[&] { return isNone(unary->GetDstAttr(a)); }, 0, {"Trying to get an error functor's attribute"}},
        {[&] { return isNone(binary->GetDstAttr(a, a)); }, 0,
            {"Trying to get attribute of an error functor for getting DstAttr"}},
        {[&] { return nullary->CheckParams(a); }, 0, {"Trying to get check params of an error functor"}},
        {[&] { return unary->CheckParams(a, a); }, 0, {"Trying to get an error functor's check params"}},
        {[&] { return binary->CheckParams(a, a, a); }, 0,
            {"Trying to get check params of an error functor in checking params"}},
        {[&] { return runNullary(a); }, 1,
            {"Trying to execute simd code in an error functor", "Trying to execute an error functor"}},
        {[&] { return runNullary(l); }, 1, {"Trying to execute an error functor"}},
        {[&] { return runUnary(a, a); }, 1,
            {"Trying to execute simd code in an error functor on executing SIMD",
                "Trying to execute an error functor on executing"}},
        {[&] { return runUnary(l, a); }, 1, {"Trying to execute an error functor on executing"}},
        {[&] { return runBinary(a, a, a); }, 1,
            {"Try to execute simd code in an error functor", "Try to execute an error functor"}},
        {[&] { return runBinary(a, l, a); }, 1, {"Try to execute an error functor"}},
        {[&] { return codeOf(nullary->ProcessSeries(a), "Check param failed in functor: ErrorNullaryFunctor"); }, 21,
            {"Trying to get check params of an error functor",
                "Functor ErrorNullaryFunctor check param error, dst [size 1, type 5]"}},
        {[&] { return codeOf(unary->ProcessSeries(a, l, true), "Check param failed in functor: ErrorUnaryFunctor"); },
            21,
            {"Trying to get an error functor's check params",
                "Functor ErrorUnaryFunctor check param error, src [size 1, type int32], dst [size 1, type int32]"}},
        {[&] {
             return codeOf(binary->ProcessSeries(a, a, a), "Check param failed in binary functorErrorBinaryFunctor");
         },
            21,
            {"Trying to get check params of an error functor in checking params",
                "Functor ErrorBinaryFunctor check param error, lhs [size 1, type int32], rhs [size 1, type int32], dst "
                "[size 1, type int32]"}},
    };
    for (const auto& [use, code, texts] : cases) {
        const LogCapture log;
        EXPECT_EQ(use(), code) << texts[0];
        EXPECT_EQ(log.Texts(1), texts);
    }
}

TEST(FunctorFactory, MakesFunctorsForArraysAlone)
{
    Script script;
    const ScriptedFactory make(script);
    EXPECT_EQ(make(CONTAINER_ARRAY)->GetName(), "Scripted");
    EXPECT_NE(make(CONTAINER_ARRAY).get(), make.Create(CONTAINER_ARRAY).get());
    EXPECT_TRUE(make(CONTAINER_ARRAY).get_deleter().isOwner);
    for (const int container : {1, 2, -1}) {
        const auto functor = make(static_cast<ContainerID>(container));
        EXPECT_EQ(functor.get(), GetErrorFunctor<UnaryBase>().get());
        EXPECT_FALSE(functor.get_deleter().isOwner);
        EXPECT_EQ(MinusFactory(script)(static_cast<ContainerID>(container))->GetName(), "ErrorBinaryFunctor");
        EXPECT_EQ(RaiseFactory(script)(static_cast<ContainerID>(container))->GetName(), "ErrorNullaryFunctor");
    }
    const FailingAllocation failing(0);
    EXPECT_EQ(make(CONTAINER_ARRAY).get(), GetErrorFunctor<UnaryBase>().get()) << "without memory";
}

/// Keeps a number as its factory hands it on.
template <ContainerID CID, typename NUMBER>
class Keeper final : public Unary<Keeper<CID, NUMBER>, MutableArgs::SOURCE> {
public:
    explicit Keeper(NUMBER wanted) : number(wanted) {}
    std::string GetName() const override { return std::to_string(number); }
    template <typename T>
    ErrorCode OnExecute(const Cursor&, const Cursor&) const
    {
        return 0;
    }

private:
    NUMBER number;
};

TEST(FunctorFactory, KeepsArgumentsAsTheyAreDeclared)
{
    int number = 1;
    const FunctorFactory<Keeper, UnaryBase, int> byValue(number);
    const FunctorFactory<Keeper, UnaryBase, int&> byReference(number);
    const auto early = byReference(CONTAINER_ARRAY);
    number = 2;
    EXPECT_EQ(byValue(CONTAINER_ARRAY)->GetName(), "1");
    EXPECT_EQ(byReference(CONTAINER_ARRAY)->GetName(), "2");
    EXPECT_EQ(early->GetName(), "2");
}

} // namespace
} // namespace MERVO::Tessera::Func
