// Numbers in the place of keys, held against the order of the keys themselves.

#include <gtest/gtest.h>

#include "tessera/grouping/dense_keys.h"
#include "tests/support/random.h"
#include "tests/support/sample_columns.h"

namespace MERVO::Tessera {
namespace {

constexpr std::uint32_t MOST = 100000;
constexpr std::uint32_t NONE = 0xFFFFFFFF; ///< the bound of no keys

template <typename T>
std::unique_ptr<DenseKeys> KeysFor(const std::vector<T>& left, const std::vector<T>& right, std::uint32_t most = MOST)
{
    static SeriesPtr columns[2]; // which outlive the keys
    columns[0] = Column<T>("", left);
    columns[1] = Column<T>("", right);
    return DenseKeysOf(columns[0]->GetIterator(), columns[1]->GetIterator(), most);
}

std::vector<std::uint64_t> NumbersOf(const DenseKeys& keys, std::uint32_t leftCount, std::uint32_t rightCount)
{
    std::vector<std::uint64_t> numbers(leftCount + rightCount);
    for (const auto& [side, first, count] :
        {std::tuple(DenseKeys::LEFT, 0U, leftCount), std::tuple(DenseKeys::RIGHT, leftCount, rightCount)}) {
        for (std::uint32_t row = 0; row < count; row += DenseKeys::BLOCK) {
            const std::uint32_t length = std::min(count - row, DenseKeys::BLOCK);
            keys.Read(side, row, length, numbers.data() + first + row);
        }
    }
    return numbers;
}

// Two or three values for each byte, those of the ends among them, at no more bytes than numbers have room for.
TEST(DenseKeys, AreInTheOrderOfTextsOfOneSize)
{
    constexpr char BYTES[] = {'\x7F', '\0', '\x80', '\xFF', 'a', 'b', 'c'};
    Random random(23);
    for (std::size_t size = 4; size <= 16; ++size) {
        for (std::size_t from = 0; from < size; from += 3) {
            std::vector<std::string> texts;
            for (int i = 0; i < 700; ++i) {
                std::string& text = texts.emplace_back(size, '-');
                for (std::size_t k = from; k < std::min(from + 5, size); ++k) {
                    text[k] = k % 4 == 3 && k < from + 4 ? BYTES[random.Below(2)] : BYTES[4 + random.Below(3)];
                }
            }
            const std::vector<std::string> right(texts.begin() + 600, texts.end());
            const auto keys = KeysFor({texts.begin(), texts.begin() + 600}, right);
            ASSERT_NE(keys, nullptr) << size << ' ' << from;
            const std::vector<std::uint64_t> numbers = NumbersOf(*keys, 600, 100);
            for (std::size_t i = 0; i < texts.size(); ++i) {
                ASSERT_LT(numbers[i], keys->Bound());
                ASSERT_EQ(texts[i] < texts[i / 2], numbers[i] < numbers[i / 2]) << size << ' ' << from << ' ' << i;
                ASSERT_EQ(texts[i] == texts[i / 2], numbers[i] == numbers[i / 2]) << size << ' ' << from << ' ' << i;
            }
        }
    }
}

TEST(DenseKeys, AreThereOnlyForKeysCloseTogether)
{
    using Texts = std::vector<std::string>;
    struct Case {
        int line;
        std::unique_ptr<DenseKeys> keys;
        std::uint32_t bound;
    };
    const std::string full(16, '\xFF');
    const Case cases[] = {
        {__LINE__, KeysFor<std::int64_t>({-7, 5}, {40, 0}, 48), 48},
        {__LINE__, KeysFor<std::int64_t>({-7, 5}, {40, 0}, 47), NONE},
        {__LINE__, KeysFor<std::int64_t>({3}, {}, 1), 1},
        {__LINE__, KeysFor<std::int64_t>({}, {3}), NONE},
        {__LINE__, KeysFor<std::uint64_t>({0}, {~std::uint64_t{0}}), NONE},
        {__LINE__, KeysFor<bool>({true, true}, {false}), 2},
        {__LINE__, KeysFor<double>({1.0}, {1.0}), NONE},
        {__LINE__, KeysFor<std::string>({"k10", "k11"}, {"k12"}), NONE},
        {__LINE__, KeysFor<std::string>({"k001"}, {"k019"}, 18), 18},
        {__LINE__, KeysFor<std::string>({"k001"}, {"k019"}, 17), NONE},
        {__LINE__, KeysFor<std::string>({"k001"}, {}), 1},
        {__LINE__, KeysFor<std::string>({"k001"}, {"k001", "k01"}), NONE},
        {__LINE__, KeysFor<std::string>({"k001"}, {"k0010"}), NONE},
        {__LINE__, KeysFor<std::string>({std::string(17, 'k')}, {}), NONE},
        {__LINE__, KeysFor<std::string>(Texts(600, full), {std::string(16, '\0')}), NONE},
    };
    for (const Case& expected : cases) {
        EXPECT_EQ(expected.keys == nullptr ? NONE : expected.keys->Bound(), expected.bound) << expected.line;
    }
}

} // namespace
} // namespace MERVO::Tessera
