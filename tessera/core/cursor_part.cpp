#include "tessera/core/cursor_part.h"

#include "tessera/core/data_frame.h"
#include "tessera/core/date_time.h"

namespace MERVO::Tessera {
namespace {

template <ContainerID CID, typename T>
Cursor MakePart(const Cursor& whole, std::uint32_t first, std::uint32_t count)
{
    const auto head = CursorAs<CID, T>(whole).mHead + first;
    return std::make_unique<Iterator<CID, T>>(head, head + count, WithLength(whole->GetAttr(), count));
}

template <ContainerID CID, typename T>
void MovePart(const Cursor& place, std::int64_t distance, const Cursor& part, std::uint32_t count)
{
    auto& head = CursorAs<CID, T>(place).mHead;
    head += static_cast<decltype(head - head)>(distance);
    CursorAs<CID, T>(part).MoveTo(head, head + count);
}

struct PartFunctions {
    Cursor (*make)(const Cursor& whole, std::uint32_t first, std::uint32_t count);
    void (*move)(const Cursor& place, std::int64_t distance, const Cursor& part, std::uint32_t count);
};

constexpr auto FUNCTIONS = ForEachValueType([](auto number) {
    using T = ValueTypes::At<number()>;
    return std::array<PartFunctions, CONTAINER_END>{{{&MakePart<CONTAINER_ARRAY, T>, &MovePart<CONTAINER_ARRAY, T>},
        {&MakePart<CONTAINER_LIST, T>, &MovePart<CONTAINER_LIST, T>}}};
});

const PartFunctions& FunctionsFor(const Cursor& cursor)
{
    const std::size_t container = cursor->IsMemoryContiguous() ? CONTAINER_ARRAY : CONTAINER_LIST;
    return FUNCTIONS[static_cast<std::size_t>(cursor->GetAttr().typeId)][container];
}

} // namespace

Cursor PartOf(const Cursor& whole, std::uint32_t first, std::uint32_t count)
{
    return FunctionsFor(whole).make(whole, first, count);
}

MovingPart::MovingPart(const Cursor& whole)
    : place(PartOf(whole, 0, 0)), part(PartOf(whole, 0, 0)), move(FunctionsFor(whole).move)
{
}

} // namespace MERVO::Tessera
