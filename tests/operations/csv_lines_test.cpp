#include "tessera/operations/csv_lines.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/operations/csv_model.h"

namespace MERVO::Tessera {
namespace {

std::string Guarded(const std::string& text) { return text + std::string(RowSplitter::GUARD, '\n'); }

TEST(LineCounter, CountsWhatComesInPieces)
{
    CsvTexts random(1);
    for (int round = 0; round < 3000; ++round) {
        // Texts longer than the stretches in which counting goes, at times without a CR, so that the fast way is taken.
        const std::size_t longest = round % 50 == 0 ? 20000 : 60;
        const std::string text = round % 3 == 0 ? random.Lines(",", 2, longest / 6) : random.AnyText(",", longest);
        LineCounter counter;
        for (std::size_t size = 0; size < text.size();) {
            size = std::min(size + 1 + random.Below(longest), text.size());
            const std::string moved = text.substr(0, size);
            counter.Advance(moved);
        }
        const std::string notInText = "|";
        ASSERT_EQ(counter.Finish(text), ModelFile(text, notInText).lines.size()) << testing::PrintToString(text);
    }
}

/// Splits a text in blocks of a given size, and holds rows, fields and the line that does not fit against the model.
void CompareWithModel(const std::string& text, const std::string& separator, RowSplitter::BlockSize blockSize)
{
    const ModelFile model(text, separator);
    if (model.ColumnCount() == 0) {
        return;
    }
    const std::string guarded = Guarded(text);
    RowSplitter rows(
        LineWalk(std::string_view(guarded).substr(0, text.size())), separator, model.ColumnCount(), blockSize);
    std::vector<std::vector<std::string>> found;
    while (rows.Next()) {
        ASSERT_LE((rows.RowCount() - 1) * (model.ColumnCount() + 1), blockSize.positions);
        for (std::size_t row = 0; row < rows.RowCount(); ++row) {
            found.emplace_back();
            for (std::size_t c = 0; c < model.ColumnCount(); ++c) {
                found.back().emplace_back(rows.Column(c)[row]);
            }
        }
    }
    ASSERT_EQ(rows.GetMisfit().lineNumber, model.raggedLine);
    ASSERT_EQ(rows.GetMisfit().fieldCount, model.raggedFields);
    if (model.raggedLine == 0) {
        ASSERT_EQ(found, model.lines);
    }
}

TEST(RowSplitter, SplitsAsTheModelInBlocksOfAnySize)
{
    CsvTexts random(2);
    for (int round = 0; round < 6000; ++round) {
        const std::string separator = random.Separator();
        const std::string text = round % 2 == 0 ? random.AnyText(separator, 1 + random.Below(400))
                                                : random.Lines(separator, 1 + random.Below(6), 1 + random.Below(30));
        const RowSplitter::BlockSize blockSize{1 + random.Below(40), 1 + random.Below(300)};
        ASSERT_NO_FATAL_FAILURE(CompareWithModel(text, separator, blockSize))
            << testing::PrintToString(text) << " by " << testing::PrintToString(separator);
    }
}

TEST(RowSplitter, FindsAMisfitFarLongerThanARow)
{
    for (const char* separator : {",", ", "}) {
        std::string text = std::string("a") + separator + "b\n";
        for (int i = 0; i < 1000; ++i) {
            text += separator;
        }
        ASSERT_NO_FATAL_FAILURE(CompareWithModel(text, separator, {}));
    }
}

} // namespace
} // namespace MERVO::Tessera
