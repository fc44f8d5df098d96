#include <atomic>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tessera/operations/file_replacement.h"
#include "tessera/tessera.hpp"
#include "tests/support/child_process.h"
#include "tests/support/log_capture.h"
#include "tests/support/sample_columns.h"
#include "tests/support/temporary_folder.h"

namespace MERVO::Tessera {
namespace {

using testing::ElementsAre;
using testing::EndsWith;

DataFrame SmallTable() { return TableOf(Column<std::int32_t>("n", {1, 2}), Column<std::string>("s", {"a", "b"})); }
const std::string SMALL_TEXT = "n,s\n1,a\n2,b\n";

DataFrame LargeTable() { return TableOf(Column("n", SampleValues<std::int64_t>(200000))); }

class CsvFiles : public testing::Test {
protected:
    const TemporaryFolder folder;
};

/// Takes the rights of the superuser from a process that has them, for whom all files are open.
void BecomeOrdinary()
{
    constexpr unsigned int NOBODY = 65534;
    if (::geteuid() == 0 && (::setgid(NOBODY) != 0 || ::setuid(NOBODY) != 0)) {
        ::_exit(99);
    }
}

constexpr int OTHER_WORDS = 98; // of a child whose log lacks what it should say

// ---- Paths

TEST_F(CsvFiles, PathCheckResolves)
{
    folder.Write("file.csv", "1");
    std::filesystem::create_directory(folder.Path("sub"));
    std::filesystem::create_symlink("file.csv", folder.Path("link.csv"));
    std::string path = folder.Path("sub/../link.csv");
    EXPECT_TRUE(DataFrameRef::PathCheck(path));
    EXPECT_EQ(path, folder.Path("file.csv"));

    for (const std::string& bad : {std::string(), folder.Path("missing"), folder.Path("file.csv") + "/x",
             folder.Path("file.csv") + std::string("\0.txt", 5), "/" + std::string(4096, '/')}) {
        std::string unchanged = bad;
        EXPECT_FALSE(DataFrameRef::PathCheck(unchanged)) << bad;
        EXPECT_EQ(unchanged, bad);
    }
}

// ---- Files that can't be read

TEST_F(CsvFiles, WhatIsNoFileIsNotRead)
{
    struct {
        const char* path;
        const char* word;
    } const cases[] = {{"", "Is a directory"}, {"/dev/zero", "Invalid argument"}};
    for (const auto& [path, word] : cases) {
        const LogCapture log;
        DataFrame table;
        EXPECT_EQ(table.ReadCSV<double>(*path == '\0' ? folder.Path(".") : path, false, ","), 2);
        EXPECT_THAT(log.Texts(1), ElementsAre(EndsWith(word), "Failed to read data form"));
        EXPECT_EQ(table.GetError().code, 0);
    }
}

TEST_F(CsvFiles, WhatIsForbiddenIsNotRead)
{
    const std::string path = folder.Write("secret.csv", "1\n");
    std::filesystem::permissions(folder.Path(""), std::filesystem::perms::all);
    std::filesystem::permissions(path, std::filesystem::perms::none);
    EXPECT_EQ(InChild([&] {
        BecomeOrdinary();
        const LogCapture log;
        DataFrame table;
        const ErrorCode code = table.ReadCSV<double>(path, false, ",");
        return log.Has(1, "Failed to open " + path + ": Permission denied") ? code : OTHER_WORDS;
    }),
        2);
}

TEST_F(CsvFiles, BinaryContentIsReadAsBytes)
{
    std::string bytes;
    for (int i = 0; i < 256; ++i) {
        bytes += static_cast<char>(i); // an LF and a CR within
    }
    DataFrame table;
    ASSERT_EQ(table.ReadCSV<std::string>(folder.Write("binary", bytes), false, "no such bytes"), 0);
    EXPECT_THAT(table.To1DVector<std::string>(), ElementsAre(bytes.substr(0, 10), bytes.substr(11)));
}

TEST_F(CsvFiles, ALongLineIsOneRow)
{
    const std::string field(40'000'000, 'x');
    const std::string path = folder.Write("long.csv", "a,b\n" + field + ",1\r\n2," + field);
    DataFrame table;
    ASSERT_EQ(table.ReadCSV<std::string>(path, true, ","), 0);
    ASSERT_EQ(table.RowCount(), 2U);
    const std::vector<std::string> cells = table.To1DVector<std::string>();
    EXPECT_TRUE(cells[0] == field && cells[1] == "1" && cells[2] == "2" && cells[3] == field);
}

TEST_F(CsvFiles, APipeIsReadToItsEnd)
{
    const std::string path = folder.Path("pipe");
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    const DataFrame written = LargeTable(); // more than a pipe holds, so the two take turns
    ErrorCode writing = -1;
    std::thread writer([&] { writing = written.ToCSV(path, true, ","); });
    DataFrame table;
    const ErrorCode reading = table.ReadCSV<std::int64_t>(path, true, ",");
    writer.join();
    EXPECT_EQ(writing, 0);
    ASSERT_EQ(reading, 0);
    EXPECT_EQ(table.To1DVector<std::int64_t>(), written.To1DVector<std::int64_t>());
}

#if defined(__SANITIZE_ADDRESS__)
constexpr bool HAS_OWN_ALLOCATOR = true; // which ends the process where memory is short
#else
constexpr bool HAS_OWN_ALLOCATOR = false;
#endif

TEST_F(CsvFiles, AFileLargerThanMemoryIsRefused)
{
    constexpr bool IS_32_BIT = sizeof(void*) == 4;
    const std::string path = folder.Write("sparse.csv", "1,2\n");
    const off_t size = IS_32_BIT ? off_t{0x7FFFFFFF} : static_cast<off_t>(std::int64_t{1} << 30);
    if (HAS_OWN_ALLOCATOR || ::truncate(path.c_str(), size) != 0) {
        GTEST_SKIP();
    }
    EXPECT_EQ(InChild([&] {
        const rlimit small{300 << 20, 300 << 20};
        ::setrlimit(RLIMIT_AS, &small);
        const LogCapture log;
        DataFrame table;
        const ErrorCode code = table.ReadCSV<double>(path, false, ",");
        return log.Has(1, "Failed to read " + path + ": Cannot allocate memory") ? code : OTHER_WORDS;
    }),
        3);
}

TEST_F(CsvFiles, AFileOfTheSystemIsReadThoughItTellsNoSize)
{
    DataFrame table;
    ASSERT_EQ(table.ReadCSV<std::string>("/proc/self/status", false, "no such bytes"), 0);
    EXPECT_THAT(table.To1DVector<std::string>(), testing::Contains(testing::StartsWith("Pid:")));
}

/// Whenever the file is cut off or written anew, what is read is no more than it ever held; a system may give zeros for
/// what is being cut off.
TEST_F(CsvFiles, AFileThatShrinksAndGrowsEndsWithAnAnswer)
{
    std::string text;
    for (int i = 0; i < 500000; ++i) {
        text += "1\n";
    }
    const std::string path = folder.Write("changing.csv", text);
    std::atomic<bool> isOver = false;
    std::thread writer([&] {
        const int file = ::open(path.c_str(), O_WRONLY);
        for (off_t part = 2; !isOver; part = part * 7 % 1000000 / 2 * 2) {
            EXPECT_EQ(::ftruncate(file, part), 0);
            EXPECT_GT(::pwrite(file, text.data(), text.size(), 0), 0);
        }
        ::close(file);
    });
    for (int round = 0; round < 20; ++round) {
        DataFrame table;
        const ErrorCode code = table.ReadCSV<std::int8_t>(path, false, ",");
        EXPECT_TRUE(code == 0 || code == 2) << code;
        EXPECT_LE(table.RowCount(), 500000U);
        EXPECT_EQ(table.RowCount() == 0, code == 2);
    }
    isOver = true;
    writer.join();
}

TEST_F(CsvFiles, APipeWithoutEndIsRefusedOnceMemoryIsFull)
{
    const std::string path = folder.Path("pipe");
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    if (HAS_OWN_ALLOCATOR) {
        GTEST_SKIP();
    }
    EXPECT_EQ(InChild([&] {
        ::signal(SIGPIPE, SIG_IGN);
        std::thread writer([&] {
            const std::string block(1 << 16, '1');
            const int pipe = ::open(path.c_str(), O_WRONLY);
            while (::write(pipe, block.data(), block.size()) > 0) {
            }
            ::close(pipe);
        });
        const rlimit small{400 << 20, 400 << 20};
        ::setrlimit(RLIMIT_AS, &small);
        const LogCapture log;
        DataFrame table;
        const ErrorCode code = table.ReadCSV<double>(path, false, ",");
        writer.join();
        return log.Has(1, ": Cannot allocate memory") ? code : OTHER_WORDS;
    }),
        3);
}

// ---- Where to write

TEST_F(CsvFiles, ANewFileHasThePermissionsOfTheProcess)
{
    const mode_t before = ::umask(027);
    EXPECT_EQ(SmallTable().ToCSV(folder.Path("new.csv"), true, ","), 0);
    ::umask(before);
    struct stat status {};
    ASSERT_EQ(::stat(folder.Path("new.csv").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0640U);
    EXPECT_EQ(folder.Read("new.csv"), SMALL_TEXT);
    EXPECT_THAT(folder.Names(), ElementsAre("new.csv"));
}

TEST_F(CsvFiles, AnExistingFileKeepsItsPermissions)
{
    for (const mode_t permissions : {0600U, 0664U, 0755U}) {
        const std::string path = folder.Write("old.csv", "something longer than what replaces it");
        ASSERT_EQ(::chmod(path.c_str(), permissions), 0);
        EXPECT_EQ(SmallTable().ToCSV(path, true, ","), 0);
        struct stat status {};
        ASSERT_EQ(::stat(path.c_str(), &status), 0);
        EXPECT_EQ(status.st_mode & 07777, permissions);
        EXPECT_EQ(folder.Read("old.csv"), SMALL_TEXT);
    }
    EXPECT_THAT(folder.Names(), ElementsAre("old.csv"));
}

TEST_F(CsvFiles, ALinkStaysALink)
{
    std::filesystem::create_directory(folder.Path("sub"));
    folder.Write("sub/old.csv", "old");
    std::filesystem::create_symlink("sub/old.csv", folder.Path("link.csv"));
    std::filesystem::create_symlink("sub/new.csv", folder.Path("dangling.csv"));
    for (const char* name : {"link.csv", "dangling.csv"}) {
        EXPECT_EQ(SmallTable().ToCSV(folder.Path(name), true, ","), 0);
        EXPECT_TRUE(std::filesystem::is_symlink(folder.Path(name)));
    }
    EXPECT_EQ(folder.Read("sub/old.csv"), SMALL_TEXT);
    EXPECT_EQ(folder.Read("sub/new.csv"), SMALL_TEXT);
}

TEST_F(CsvFiles, ANameAloneIsInTheWorkingFolder)
{
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(folder.Path(""));
    EXPECT_EQ(SmallTable().ToCSV("bare.csv", true, ","), 0);
    DataFrame table;
    EXPECT_EQ(table.ReadCSV("bare.csv", {TESSERA_INT32, TESSERA_STRING}, true, ","), 0);
    std::filesystem::current_path(before);
    EXPECT_EQ(folder.Read("bare.csv"), SMALL_TEXT);
    EXPECT_EQ(table.RowCount(), 2U);
}

struct TargetCase {
    const char* name;
    std::string path; ///< in the folder
    std::string lastWord;
};

const TargetCase TARGET_CASES[] = {
    {"NoSuchFolder", "none/out.csv", "ToCSV Error: File does not exist"},
    {"FileAsFolder", "kept.csv/out.csv", "Invalid file path after checking file open or not"},
    {"Folder", "sub", "Invalid file path after checking file open or not"},
    {"SlashAtTheEnd", "sub/", "Invalid file path after checking file open or not"},
    {"NameTooLong", std::string(256, 'n'), "Invalid file path after checking file open or not"},
    {"NulInTheName", std::string("kept.csv\0.csv", 13), "Invalid file path after checking file open or not"},
    {"NulInTheFolder", std::string("sub\0/out.csv", 12), "ToCSV Error: File does not exist"},
};

class CsvTargets : public testing::TestWithParam<TargetCase> {};

TEST_P(CsvTargets, AreRefused)
{
    const TemporaryFolder folder;
    folder.Write("kept.csv", "kept");
    std::filesystem::create_directory(folder.Path("sub"));
    const LogCapture log;
    EXPECT_EQ(SmallTable().ToCSV(folder.Path("") + GetParam().path, true, ","), 2);
    EXPECT_EQ(log.Texts(1).back(), GetParam().lastWord);
    EXPECT_THAT(folder.Names(), ElementsAre("kept.csv", "sub"));
    EXPECT_EQ(folder.Read("kept.csv"), "kept");
}

INSTANTIATE_TEST_SUITE_P(Cases, CsvTargets, testing::ValuesIn(TARGET_CASES),
    [](const auto& tested) { return std::string(tested.param.name); });

TEST(CsvTargetWithoutName, IsRefused)
{
    const LogCapture log;
    EXPECT_EQ(SmallTable().ToCSV("", true, ","), 2);
    EXPECT_EQ(log.Texts(1).back(), "Invalid file path after checking file open or not");
}

// ---- Writes that fail

TEST_F(CsvFiles, WhatMayNotBeWrittenStays)
{
    const std::string readOnly = folder.Write("readonly.csv", "kept");
    std::filesystem::create_directory(folder.Path("closed"));
    folder.Write("closed/open.csv", "kept");
    ASSERT_EQ(::chmod(folder.Path("").c_str(), 0777), 0);
    ASSERT_EQ(::chmod(readOnly.c_str(), 0444), 0);
    ASSERT_EQ(::chmod(folder.Path("closed/open.csv").c_str(), 0666), 0);
    ASSERT_EQ(::chmod(folder.Path("closed").c_str(), 0555), 0);
    for (const char* name : {"readonly.csv", "closed/new.csv", "closed/open.csv"}) {
        EXPECT_EQ(InChild([&] {
            BecomeOrdinary();
            const LogCapture log;
            const ErrorCode code = SmallTable().ToCSV(folder.Path(name), true, ",");
            return log.Has(1, ": Permission denied") ? code : OTHER_WORDS;
        }),
            2)
            << name;
    }
    EXPECT_EQ(folder.Read("readonly.csv"), "kept");
    EXPECT_EQ(folder.Read("closed/open.csv"), "kept");
    EXPECT_FALSE(std::filesystem::exists(folder.Path("closed/new.csv")));
}

TEST_F(CsvFiles, AFullDeviceIsTold)
{
    const LogCapture log;
    EXPECT_EQ(SmallTable().ToCSV("/dev/full", true, ","), 2);
    EXPECT_THAT(log.Texts(1), ElementsAre("Failed to write /dev/full: No space left on device"));
    EXPECT_TRUE(std::filesystem::is_character_file("/dev/full"));
}

/// The size limit of files stands in for a full disk; its signal, at its default, would end the process.
TEST_F(CsvFiles, WithoutRoomTheOldFileStays)
{
    folder.Write("kept.csv", "kept");
    std::filesystem::create_symlink("kept.csv", folder.Path("link.csv"));
    std::filesystem::create_symlink("new.csv", folder.Path("dangling.csv"));
    for (const char* name : {"kept.csv", "new.csv", "link.csv", "dangling.csv"}) {
        EXPECT_EQ(InChild([&] {
            const rlimit small{100000, 100000};
            ::setrlimit(RLIMIT_FSIZE, &small);
            const LogCapture log;
            const ErrorCode code = LargeTable().ToCSV(folder.Path(name), true, ",");
            return log.Has(1, ": File too large") ? code : OTHER_WORDS;
        }),
            2)
            << name;
    }
    EXPECT_THAT(folder.Names(), ElementsAre("dangling.csv", "kept.csv", "link.csv"));
    EXPECT_EQ(folder.Read("kept.csv"), "kept");
}

/// Somebody makes a folder of the name while the file is written.
TEST_F(CsvFiles, WhatCannotBeReplacedStays)
{
    const LogCapture log;
    {
        FileReplacement file;
        ASSERT_TRUE(file.Open(folder.Path("taken.csv")) && file.Write("1", 1));
        std::filesystem::create_directories(folder.Path("taken.csv/within"));
        EXPECT_FALSE(file.Commit());
    }
    EXPECT_TRUE(log.Has(1, "Failed to replace " + folder.Path("taken.csv")));
    EXPECT_THAT(folder.Names(), ElementsAre("taken.csv"));
}

TEST_F(CsvFiles, ALinkToItselfIsRefused)
{
    std::filesystem::create_symlink("circle.csv", folder.Path("circle.csv"));
    const LogCapture log;
    DataFrame table;
    EXPECT_EQ(SmallTable().ToCSV(folder.Path("circle.csv"), true, ","), 2);
    EXPECT_EQ(table.ReadCSV<double>(folder.Path("circle.csv"), true, ","), 2);
    EXPECT_THAT(folder.Names(), ElementsAre("circle.csv"));
}

TEST_F(CsvFiles, AReaderThatLeavesDoesNotEndTheWriter)
{
    const std::string path = folder.Path("pipe");
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    EXPECT_EQ(InChild([&] {
        std::thread reader([&path] {
            const int pipe = ::open(path.c_str(), O_RDONLY);
            char byte = 0;
            static_cast<void>(::read(pipe, &byte, 1));
            ::close(pipe);
        });
        const LogCapture log;
        const ErrorCode code = LargeTable().ToCSV(path, true, ",");
        reader.join();
        sigset_t mask;
        ::pthread_sigmask(SIG_SETMASK, nullptr, &mask);
        sigset_t pending;
        ::sigpending(&pending);
        const bool isUndisturbed = ::sigismember(&mask, SIGPIPE) == 0 && ::sigismember(&pending, SIGPIPE) == 0;
        return isUndisturbed && log.Has(1, "Broken pipe") ? code : OTHER_WORDS;
    }),
        2);
}

} // namespace
} // namespace MERVO::Tessera
