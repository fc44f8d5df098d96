#pragma once

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace MERVO::Tessera {

/// A folder of its own that goes when the object does.
class TemporaryFolder {
public:
    TemporaryFolder()
    {
        std::string pattern = testing::TempDir() + "tessera-test-XXXXXX";
        EXPECT_NE(::mkdtemp(pattern.data()), nullptr);
        folder = std::filesystem::canonical(pattern);
    }
    ~TemporaryFolder() { std::filesystem::remove_all(folder); }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    [[nodiscard]] std::string Path(const std::string& name) const { return (folder / name).string(); }

    /// Makes a file, in place of one that is there, and gives its path.
    std::string Write(const std::string& name, const std::string& content) const
    {
        std::filesystem::remove(Path(name)); // to overwrite it would make some systems wait for the disk
        std::ofstream(Path(name), std::ios::binary) << content;
        return Path(name);
    }

    [[nodiscard]] std::string Read(const std::string& name) const
    {
        std::ifstream stream(Path(name), std::ios::binary);
        EXPECT_TRUE(stream.is_open()) << Path(name);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

    /// What lies in the folder, in order.
    [[nodiscard]] std::vector<std::string> Names() const
    {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            names.push_back(entry.path().filename().string());
        }
        std::sort(names.begin(), names.end());
        return names;
    }

private:
    std::filesystem::path folder;
};

} // namespace MERVO::Tessera
