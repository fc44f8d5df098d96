#pragma once

#include <cstddef>
#include <random>
#include <string>
#include <vector>

namespace MERVO::Tessera {

/// The fields of a line, found byte by byte.
inline std::vector<std::string> ModelFields(std::string line, const std::string& separator)
{
    while (!line.empty() && (line.back() == '\r' || line.back() == '\n')) {
        line.pop_back();
    }
    if (line.empty()) {
        return {};
    }
    std::vector<std::string> fields(1);
    for (std::size_t i = 0; i < line.size();) {
        if (line.compare(i, separator.size(), separator) == 0) {
            fields.emplace_back();
            i += separator.size();
        } else {
            fields.back() += line[i++];
        }
    }
    return fields;
}

/// A file's text as lines of fields, up to the first line that is ragged.
struct ModelFile {
    ModelFile(const std::string& text, const std::string& separator)
    {
        std::string line;
        std::size_t number = 0;
        for (std::size_t i = 0; i <= text.size() && raggedLine == 0; ++i) {
            if (i < text.size() && text[i] != '\n') {
                line += text[i];
                continue;
            }
            ++number;
            std::vector<std::string> fields = ModelFields(line, separator);
            if (!fields.empty()) {
                if (!lines.empty() && fields.size() != lines.front().size()) {
                    raggedLine = number;
                    raggedFields = fields.size();
                }
                lines.push_back(std::move(fields));
            }
            line.clear();
        }
    }

    std::size_t ColumnCount() const { return lines.empty() ? 0 : lines.front().size(); }

    std::vector<std::vector<std::string>> lines; ///< those with content, the ragged one among them
    std::size_t raggedLine = 0;                  ///< counted from 1, empty lines included
    std::size_t raggedFields = 0;
};

/// Random texts, in which what CSV is made of is frequent.
class CsvTexts {
public:
    explicit CsvTexts(unsigned int seed) : random(seed) {}

    std::size_t Below(std::size_t end) { return random() % end; }

    std::string Separator()
    {
        static const std::vector<std::string> SEPARATORS = {
            ",", ";", "\t", "\r", "\n", "-", "||", "aab", ".*", ",\r", std::string(1, '\0'), std::string(70, '=')};
        return SEPARATORS[Below(SEPARATORS.size())];
    }

    /// Anything, from bytes of the separator, letters and line ends.
    std::string AnyText(const std::string& separator, std::size_t longest)
    {
        const std::string bytes = "ab1\r\r\n\n" + separator.substr(0, 3);
        std::string text;
        while (text.size() < longest && Below(longest) != 0) {
            text += Below(4) == 0 ? separator : std::string(1, bytes[Below(bytes.size())]);
        }
        return text;
    }

    /// Lines of a number of fields, between which empty lines may stand. Seldom one line is ragged.
    std::string Lines(const std::string& separator, std::size_t columns, std::size_t lines)
    {
        const std::string end = Below(2) == 0 ? "\n" : "\r\n";
        std::string text;
        for (std::size_t line = 0; line < lines; ++line) {
            const std::size_t count = Below(8 * lines) == 0 ? Below(columns + 3) : columns;
            for (std::size_t i = 0; i < count; ++i) {
                text += (i == 0 ? "" : separator) + std::string(Below(9) == 0 ? Below(90) : Below(6), 'x');
            }
            text += end + (Below(9) == 0 ? end : "");
        }
        if (Below(2) == 0 && !text.empty()) {
            text.erase(text.size() - end.size());
        }
        return text;
    }

private:
    std::mt19937 random;
};

} // namespace MERVO::Tessera
