#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace MERVO::Tessera {

/// Texts on both sides of the lengths from which a key holds other bytes, zero bytes among them; many come twice, and
/// others differ in any one or two of their bytes.
inline std::vector<std::string> RandomTexts(std::uint32_t count)
{
    std::mt19937 random(5);
    std::vector<std::string> texts;
    for (std::uint32_t i = 0; i < count; ++i) {
        std::string text(random() % 24, '\0');
        for (auto changes = random() % 3; changes != 0 && !text.empty(); --changes) {
            text[random() % text.size()] = static_cast<char>(random());
        }
        texts.push_back(text);
    }
    return texts;
}

} // namespace MERVO::Tessera
