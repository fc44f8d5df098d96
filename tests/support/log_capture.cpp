#include "tests/support/log_capture.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <new>

#include "tessera/platform/logger.h"

namespace MERVO::Tessera {
namespace {

thread_local LogCapture* innermost = nullptr;

} // namespace

LogCapture::LogCapture() : outer(innermost) { innermost = this; }

LogCapture::~LogCapture() { innermost = outer; }

bool LogCapture::Has(int level, const std::string& text) const
{
    return std::any_of(entries.begin(), entries.end(),
        [&](const LogEntry& entry) { return entry.level == level && entry.text.find(text) != std::string::npos; });
}

std::size_t LogCapture::Count(int level) const { return Texts(level).size(); }

std::vector<std::string> LogCapture::Texts(int level) const
{
    std::vector<std::string> texts;
    for (const LogEntry& entry : entries) {
        if (entry.level == level) {
            texts.push_back(entry.text);
        }
    }
    return texts;
}

} // namespace MERVO::Tessera

extern "C" void ORLELogStr(int level, const char* tag, const char* format, ...)
try {
    MERVO::Tessera::LogCapture* const capture = MERVO::Tessera::innermost;
    const char* const levelShown = std::getenv("TESSERA_LOG_LEVEL");
    if (capture == nullptr && levelShown == nullptr) {
        return; // and take no memory, which a test of the library may just be short of
    }
    va_list arguments;
    va_list again;
    va_start(arguments, format);
    va_copy(again, arguments);
    std::string text(static_cast<std::size_t>(std::vsnprintf(nullptr, 0, format, arguments)), ' ');
    std::vsnprintf(text.data(), text.size() + 1, format, again);
    va_end(again);
    va_end(arguments);
    if (levelShown != nullptr && level <= std::atoi(levelShown)) {
        std::fprintf(stderr, "[%s] %s\n", tag, text.c_str());
    }
    if (capture != nullptr) {
        capture->entries.push_back({level, tag, text});
    }
} catch (const std::bad_alloc&) {
    // A host's logger must not throw.
}
