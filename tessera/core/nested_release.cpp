#include "tessera/core/nested_release.h"

#include <memory>
#include <vector>

namespace MERVO::Tessera {
namespace {

constexpr unsigned int MOST_ON_STACK = 50;

thread_local unsigned int depth = 0;
thread_local std::vector<DataFrame>* waiting = nullptr; // the outermost release's

} // namespace

bool NestedRelease::IsFarDown() noexcept { return ++depth > MOST_ON_STACK; }

bool NestedRelease::Postpone(DataFrame& table) noexcept
try {
    if (waiting == nullptr) {
        waiting = new std::vector<DataFrame>;
    }
    waiting->push_back(std::move(table)); // which shares the columns until the cell is gone
    return true;
} catch (...) {
    return false;
}

NestedRelease::~NestedRelease()
{
    if (!hasBegun) {
        return;
    }
    if (depth == 1) {
        for (std::unique_ptr<std::vector<DataFrame>> list; waiting != nullptr; list.reset()) {
            list.reset(std::exchange(waiting, nullptr)); // its tables' own cells may make a new one
        }
    }
    --depth;
}

} // namespace MERVO::Tessera
