// A host that meets every functor by its class: what a header leaves to the library has to be exported by it, whether
// the compiler inlines the rest or not.
#include <cstdio>
#include <set>
#include <string>
#include <type_traits>
#include <vector>

#include "tessera/tessera.hpp"

using namespace MERVO::Tessera;
using namespace MERVO::Tessera::Func;

namespace {

constexpr ContainerID ARRAY = CONTAINER_ARRAY;
int failures = 0;

/// Calls all that a functor has, past the table of virtual functions where its class is final.
template <typename F>
void Meet(const char* name, const F& functor)
{
    const SeriesPtr column = BuildSeries({1, ARRAY, TESSERA_DATETIME}, "times");
    const Cursor cell = column->GetIterator();
    const Cursor none;
    bool isMet = functor.GetName() == name && functor.transformTable.back() != nullptr &&
        dynamic_cast<const F*>(static_cast<const FunctorBase*>(&functor)) != nullptr;
    if constexpr (std::is_base_of_v<NullaryBase, F>) {
        isMet &= functor.ProcessSeries(none).code == 5;
        isMet &= functor.GetDstAttr(cell).length < 2 || functor.CheckParams(cell);
    } else if constexpr (std::is_base_of_v<UnaryBase, F>) {
        isMet &= functor.ProcessSeries(none, none, true).code == 5;
        isMet &= functor.GetDstAttr(cell).length < 2 || functor.CheckParams(cell, cell);
    } else {
        isMet &= functor.ProcessSeries(none, none, none).code == 5;
        isMet &= functor.GetDstAttr(cell, cell).length < 3 || functor.CheckParams(cell, cell, cell);
    }
    if (!isMet) {
        std::fprintf(stderr, "not as it should be: %s\n", name);
        ++failures;
    }
}

} // namespace

int main()
{
    std::vector<std::uint32_t> positions{0};
    std::vector<std::uint32_t> counts{1};
    std::vector<std::int32_t> rows{0};
    std::vector<std::uint8_t> flags{0};
    std::set<std::uint32_t> dropped{0};
    BoolStep step = [](bool&, const bool&) -> ErrorCode { return 0; };
    bool yes = true;
    DateTime gap(60);
    using Positions = std::vector<std::uint32_t>&;
    using Rows = std::vector<std::int32_t>&;

    Meet("ErrorNullaryFunctor", ErrorNullaryFunctor<ARRAY>());
    Meet("ErrorUnaryFunctor", ErrorUnaryFunctor<ARRAY>());
    Meet("ErrorBinaryFunctor", ErrorBinaryFunctor<ARRAY>());
    Meet("ApplyFunc", ApplyFunc<ARRAY>(step));
    Meet("CopySeries", CopySeries<ARRAY>());
    Meet("TypeCast", TypeCast<ARRAY, MERVO_TESSERA_TYPEID>(TESSERA_INT32));
    Meet("ToArray", ToArray<ARRAY, void*, std::uint32_t>(rows.data(), 1));
    Meet("Add", Add<ARRAY>());
    Meet("Sub", Sub<ARRAY>());
    Meet("Mul", Mul<ARRAY>());
    Meet("Div", Div<ARRAY>());
    Meet("Mod", Mod<ARRAY>());
    Meet("Equal", Equal<ARRAY>());
    Meet("Greater", Greater<ARRAY>());
    Meet("Less", Less<ARRAY>());
    Meet("GreaterEqual", GreaterEqual<ARRAY>());
    Meet("LessEqual", LessEqual<ARRAY>());
    Meet("And", And<ARRAY>());
    Meet("Or", Or<ARRAY>());
    Meet("Not", Not<ARRAY>());
    Meet("Any", Any<ARRAY>());
    Meet("All", All<ARRAY>());
    Meet("Sum", Sum<ARRAY>());
    Meet("Mean", Mean<ARRAY>());
    Meet("Max", Max<ARRAY>());
    Meet("Min", Min<ARRAY>());
    Meet("Ptp", Ptp<ARRAY>());
    Meet("IdxMax", IdxMax<ARRAY>());
    Meet("Var", Var<ARRAY, std::uint32_t>(1));
    Meet("Std", Std<ARRAY>());
    Meet("Skew", Skew<ARRAY, bool, bool>(true, true));
    Meet("Kurt", Kurt<ARRAY, bool, bool>(true, true));
    Meet("Moment", Moment<ARRAY, std::uint32_t>(2));
    Meet("Kstat", Kstat<ARRAY, std::uint32_t>(2));
    Meet("RollingSum", RollingSum<ARRAY, std::uint32_t, bool, std::uint32_t>(2, false, 1));
    Meet("RollingMean", RollingMean<ARRAY, std::uint32_t, bool, std::uint32_t>(2, false, 1));
    Meet("IsNan", IsNan<ARRAY>());
    Meet("IsNanInt", IsNanInt<ARRAY>());
    Meet("FillNan", FillNan<ARRAY, std::string_view>("ffill"));
    Meet("ReplaceNan", ReplaceNan<ARRAY, std::string_view>("0"));
    Meet("Interpolate", Interpolate<ARRAY>());
    Meet("Replace", Replace<ARRAY, double, double>(1.0, 2.0));
    Meet("Round", Round<ARRAY, std::uint32_t>(2));
    Meet("Diff", Diff<ARRAY, std::int32_t>(1));
    Meet("IsIn", IsIn<ARRAY>());
    Meet("InsertRow", InsertRow<ARRAY, std::uint32_t>(0));
    Meet("SelectRow", SelectRow<ARRAY, Positions>(positions));
    Meet("DropRow", DropRow<ARRAY, std::set<std::uint32_t>&>(dropped));
    Meet("SelectRowByBool", SelectRowByBool<ARRAY>());
    Meet("DropRowByBool", DropRowByBool<ARRAY>());
    Meet("Reorder", Reorder<ARRAY>());
    Meet("SortIndex", SortIndex<ARRAY, Positions, bool>(positions, true));
    Meet("SortValue", SortValue<ARRAY, bool&>(yes));
    Meet("Unique", Unique<ARRAY, Positions>(positions));
    Meet("GroupIndex", GroupIndex<ARRAY, std::vector<std::uint8_t>&>(flags));
    Meet("AssignIndex", AssignIndex<ARRAY, const std::vector<std::uint32_t>&>(positions));
    Meet("FillKey", FillKey<ARRAY, Positions, Positions>(positions, counts));
    Meet("GroupTransform", GroupTransform<ARRAY, Positions>(positions));
    Meet("NanRows", NanRows<ARRAY>());
    Meet("ApplyGroupOtherCol", ApplyGroupOtherCol<ARRAY, Rows>(rows));
    Meet("ApplyGroupTimeLabel",
        ApplyGroupTimeLabel<ARRAY, Rows, Positions, bool&, bool&, DateTime&>(rows, counts, yes, yes, gap));
    Meet("TimeResample",
        TimeResample<ARRAY, Positions, const DateTime&, bool&, Rows, Positions>(positions, gap, yes, rows, counts));
    return failures;
}
