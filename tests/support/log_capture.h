#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace MERVO::Tessera {

/// One call of the logger.
struct LogEntry {
    int level; ///< 1 error, 2 warning, 3 notice, 4 dump
    std::string tag;
    std::string text;
};

/**
 * Keeps what the library logs on this thread while the object lives. The test program is the host here: it defines the
 * logger itself, so this also shows that a host's definition wins. Of nested captures the innermost one hears a
 * message.
 *
 * Without a capture, messages are dropped; with TESSERA_LOG_LEVEL set in the environment they go to standard error, as
 * those of the library's own logger do, whether they are captured or not.
 */
class LogCapture {
public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    /// Whether a message of this level has `text` in it.
    [[nodiscard]] bool Has(int level, const std::string& text) const;

    /// How many messages came, of all levels or of one.
    [[nodiscard]] std::size_t Count() const { return entries.size(); }
    [[nodiscard]] std::size_t Count(int level) const;

    /// The whole texts of one level, in order.
    [[nodiscard]] std::vector<std::string> Texts(int level) const;

    std::vector<LogEntry> entries;

private:
    LogCapture* outer;
};

} // namespace MERVO::Tessera
