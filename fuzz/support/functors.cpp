#include "fuzz/support/functors.h"

#include <iterator>
#include <string_view>

namespace MERVO::Tessera::Fuzz {
namespace {

template <typename T>
T Draw(Inputs& inputs)
{
    if constexpr (std::is_same_v<T, MERVO_TESSERA_TYPEID>) {
        return inputs.Type();
    } else if constexpr (std::is_same_v<T, std::uint32_t>) {
        return inputs.Index(10);
    } else if constexpr (std::is_same_v<T, std::string_view>) { // outlives the functor
        return std::array{"ffill", "bfill", "1.5", "nan", "12abc", "", "1e400"}[inputs.Below(7)];
    } else if constexpr (std::is_same_v<T, std::string>) {
        return inputs.Text();
    } else {
        return inputs.Cell<T>();
    }
}

/// The factory of a functor whose arguments have these types.
template <typename Base, template <ContainerID, typename...> class F, typename... A>
std::function<FunctorPtr<Base>(ContainerID)> Made(Inputs& inputs)
{
    const std::tuple<A...> arguments{Draw<A>(inputs)...};
    return std::apply(
        [](const A&... argument) { return Func::FunctorFactory<F, Base, A...>{A(argument)...}; }, arguments);
}

template <template <ContainerID, typename...> class F, typename... A>
UnaryFactory Unary(Inputs& inputs)
{
    return Made<Func::UnaryBase, F, A...>(inputs);
}

template <template <ContainerID, typename...> class F, typename... A>
BinaryFactory Binary(Inputs& inputs)
{
    return Made<Func::BinaryBase, F, A...>(inputs);
}

using Count = std::uint32_t;

constexpr UnaryFactory (*UNARY_FUNCTORS[])(Inputs&) = {Unary<Func::Sum>, Unary<Func::Mean>, Unary<Func::Max>,
    Unary<Func::Min>, Unary<Func::Ptp>, Unary<Func::IdxMax>, Unary<Func::Var, Count>, Unary<Func::Std, Count>,
    Unary<Func::Moment, Count>, Unary<Func::Kstat, Count>, Unary<Func::Skew, bool, bool>, Unary<Func::Kurt, bool, bool>,
    Unary<Func::RollingSum, Count, bool, Count>, Unary<Func::RollingMean, Count, bool, Count>, Unary<Func::IsNan>,
    Unary<Func::IsNanInt>, Unary<Func::FillNan, std::string_view>, Unary<Func::ReplaceNan, std::string_view>,
    Unary<Func::Interpolate>, Unary<Func::Replace, std::int32_t, std::int32_t>, Unary<Func::Replace, double, double>,
    Unary<Func::Replace, std::string, std::string>, Unary<Func::Round, Count>, Unary<Func::Diff, std::int32_t>,
    Unary<Func::SortValue, bool>, Unary<Func::TypeCast, MERVO_TESSERA_TYPEID>, Unary<Func::CopySeries>,
    Unary<Func::Not>, Unary<Func::Any>, Unary<Func::All>};

constexpr BinaryFactory (*BINARY_FUNCTORS[])(Inputs&) = {Binary<Func::Add>, Binary<Func::Sub>, Binary<Func::Mul>,
    Binary<Func::Div>, Binary<Func::Mod>, Binary<Func::Equal>, Binary<Func::Greater>, Binary<Func::Less>,
    Binary<Func::GreaterEqual>, Binary<Func::LessEqual>, Binary<Func::And>, Binary<Func::Or>, Binary<Func::IsIn>,
    Binary<Func::InsertRow, Count>, Binary<Func::Reorder>};

} // namespace

UnaryFactory DrawUnary(Inputs& inputs)
{
    UnaryFactory factory = UNARY_FUNCTORS[inputs.Below(std::size(UNARY_FUNCTORS))](inputs);
    LogDump("==== functor %s", factory(CONTAINER_ARRAY)->GetName().c_str());
    return factory;
}

BinaryFactory DrawBinary(Inputs& inputs)
{
    BinaryFactory factory = BINARY_FUNCTORS[inputs.Below(std::size(BINARY_FUNCTORS))](inputs);
    LogDump("==== functor %s", factory(CONTAINER_ARRAY)->GetName().c_str());
    return factory;
}

} // namespace MERVO::Tessera::Fuzz
