#include "tessera/grouping/dense_keys.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>
#include <string>
#include <utility>

#include "tessera/core/text_digits.h"
#include "tessera/operations/sort_keys.h"

namespace MERVO::Tessera {
namespace {

template <typename T>
using Sides = std::array<T, 2>;

class DenseNumbers final : public DenseKeys {
public:
    DenseNumbers(Sides<std::unique_ptr<SortKeys>> sides, std::uint64_t lowestKey, std::uint32_t keyBound)
        : DenseKeys(keyBound), cells(std::move(sides)), lowest(lowestKey)
    {
    }
    void Read(Side side, std::uint32_t first, std::uint32_t count, std::uint64_t* numbers) const override
    {
        cells[side]->ReadRange(first, count, lowest, numbers);
    }

private:
    Sides<std::unique_ptr<SortKeys>> cells;
    std::uint64_t lowest;
};

class DenseTexts final : public DenseKeys {
public:
    DenseTexts(const Sides<std::span<const std::string>>& sides, const TextDigits& textDigits)
        : DenseKeys(static_cast<std::uint32_t>(textDigits.Bound())), cells(sides), digits(textDigits)
    {
    }
    void Read(Side side, std::uint32_t first, std::uint32_t count, std::uint64_t* numbers) const override
    {
        static_assert(BLOCK <= TextDigits::MOST);
        digits.Read(cells[side].subspan(first, count), numbers);
    }

private:
    Sides<std::span<const std::string>> cells;
    TextDigits digits;
};

std::unique_ptr<DenseKeys> DenseNumbersOf(const Cursor& left, const Cursor& right, std::uint32_t most)
{
    Sides<std::unique_ptr<SortKeys>> sides{KeysOf(left), KeysOf(right)};
    if (sides[0]->MayHaveNan()) {
        return nullptr;
    }
    auto [lowest, highest] = sides[0]->BoundsOf(left->Length());
    if (right->Length() != 0) {
        const auto [rightLowest, rightHighest] = sides[1]->BoundsOf(right->Length());
        lowest = std::min(lowest, rightLowest);
        highest = std::max(highest, rightHighest);
    }
    if (highest - lowest >= most) {
        return nullptr;
    }
    const auto bound = static_cast<std::uint32_t>(highest - lowest) + 1;
    return std::make_unique<DenseNumbers>(std::move(sides), lowest, bound);
}

std::unique_ptr<DenseKeys> DenseTextsOf(const Cursor& left, const Cursor& right, std::uint32_t most)
{
    const auto textsOf = [](const Cursor& column) {
        return std::span<const std::string>(CursorAs<CONTAINER_ARRAY, std::string>(column).mHead, column->Length());
    };
    const Sides<std::span<const std::string>> sides{textsOf(left), textsOf(right)};
    TextDigits digits(sides[0].front().size());
    if (!digits.Meet(sides[0], most) || !digits.Meet(sides[1], most)) {
        return nullptr;
    }
    digits.Settle();
    return std::make_unique<DenseTexts>(sides, digits);
}

} // namespace

std::unique_ptr<DenseKeys> DenseKeysOf(const Cursor& left, const Cursor& right, std::uint32_t most)
{
    if (left->Length() == 0 || most == 0) {
        return nullptr;
    }
    return left->GetAttr().typeId == TESSERA_STRING ? DenseTextsOf(left, right, most)
                                                    : DenseNumbersOf(left, right, most);
}

} // namespace MERVO::Tessera
