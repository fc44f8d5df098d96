// A host in C++ that goes beyond calls: it derives a functor from the frame, runs it over tables, meets functors of the
// library behind the same pointers, and throws through the library.
#include <cstdio>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "tessera/tessera.hpp"

using namespace MERVO::Tessera;

namespace {

/// Counts the cells of a column that lie above a limit. Nested tables are where it throws.
template <ContainerID CID, typename Limit>
class CountAbove final : public Func::Unary<CountAbove<CID, Limit>, Func::MutableArgs::SOURCE> {
public:
    explicit CountAbove(Limit limit) : limit(limit) {}

    std::string GetName() const override { return "CountAbove"; }
    SeriesAttr GetDstAttr(const Cursor& src) const override
    {
        return WithType(WithLength(src->GetAttr(), 1), TESSERA_UINT32);
    }

    template <typename T>
    ErrorCode OnExecute(const Cursor& src, const Cursor& dst) const
    {
        if constexpr (std::is_same_v<T, DataFrame>) {
            throw std::runtime_error("no limit for tables");
        } else if constexpr (Arithmetic<T>) {
            std::uint32_t count = 0;
            Func::ForEachElement<T>(src, [&](const T& cell) { count += static_cast<double>(cell) > limit ? 1U : 0U; });
            return SetValueToIterator<std::uint32_t>(dst, count, 0) ? ERROR_NONE : ERROR_GENERAL;
        } else {
            return ERROR_GENERAL;
        }
    }

private:
    Limit limit;
};

using CountAboveFactory = Func::FunctorFactory<CountAbove, Func::UnaryBase, double>;

int failures = 0;

void Expect(bool holds, const char* what)
{
    if (!holds) {
        std::fprintf(stderr, "not so: %s\n", what);
        ++failures;
    }
}

void RunOwnFunctor()
{
    DataFrame readings;
    DataFrame counts;
    Expect(readings.ReadVector<double>({21.5, 40, 19.0, 55, 23.5, 38}, {3, 2}, {TESSERA_DOUBLE, TESSERA_INT16}) == 0,
        "two value types are loaded");
    Expect(counts.ApplyInplace(CountAboveFactory{21.0}, readings) == 0, "the functor runs");
    Expect(counts.To1DVector<std::uint32_t>() == std::vector<std::uint32_t>{2, 3}, "it counts");

    std::ostringstream text;
    text << counts;
    Expect(text.str().find("col_1") != std::string::npos, "the result can be printed");
}

void ReadRefusal()
{
    DataFrame names;
    DataFrame counts;
    Expect(names.ReadVector<std::string>({"a", "b"}, {2, 1}) == 0, "texts are loaded");
    Expect(counts.ApplyInplace(CountAboveFactory{0.0}, names) == ERROR_GENERAL, "texts are refused");
    Expect(counts.GetError().message == "Error on calling functor: CountAbove", "the table says by whom");
}

void MeetTheLibrarysFunctor()
{
    const CountAboveFactory factory{1.0};
    const auto own = factory(CONTAINER_ARRAY);
    const auto error = factory(CONTAINER_LIST);
    using Own = CountAbove<CONTAINER_ARRAY, double>;
    Expect(dynamic_cast<const Own*>(own.get()) != nullptr, "the host finds its class again");
    Expect(dynamic_cast<const Own*>(error.get()) == nullptr, "the library's error functor is another class");
    Expect(dynamic_cast<const Func::FunctorBase*>(error.get()) != nullptr, "and yet one of the same frame");
    Expect(error->GetName() == "ErrorUnaryFunctor", "it tells its name");
}

void ThrowThroughTheLibrary()
{
    DataFrame inner;
    DataFrame outer;
    DataFrame counts;
    Expect(inner.ReadVector<double>({1.0}, {1, 1}) == 0, "a table for a cell is loaded");
    Expect(outer.ReadVector<DataFrame>({inner}, {1, 1}) == 0, "a table of tables is loaded");
    try {
        const ErrorCode code = counts.ApplyInplace(CountAboveFactory{0.0}, outer);
        Expect(code != 0, "a swallowed exception would at least be a code");
        Expect(false, "the exception of a host's kernel reaches the host");
    } catch (const std::runtime_error& error) {
        Expect(std::string(error.what()) == "no limit for tables", "and is the one that was thrown");
    }
}

} // namespace

int main()
{
    RunOwnFunctor();
    ReadRefusal();
    MeetTheLibrarysFunctor();
    ThrowThroughTheLibrary();
    return failures;
}
