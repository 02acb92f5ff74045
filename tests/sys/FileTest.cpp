#include <filesystem>
#include <vector>

#include "core/crc/crc32.h"
#include "sys/FileDirectory.h"
#include "tests/support/CopyWatcher.h"
#include "tests/support/system.h"
#include "tests/sys/ListedDirectoryTest.h"

namespace {

using FileTest = ListedDirectoryTest;
namespace file = sys::file;
namespace fs = std::filesystem;

TEST_F(FileTest, MeasuresSizesAndChecksums) {
    for (std::size_t const size : {0u, 1u, 9u, 4095u, 4096u, 4097u, 100'000u}) {
        std::string const content = std::string("123456789") + std::string(size, '\x80');
        directory_.Write("f", content.substr(0, size));
        EXPECT_EQ(file::getFileSize(Path("f")), static_cast<long long>(size));
        EXPECT_EQ(file::calculatesCRC32(Path("f")),
                  core::crc32::update(content.data(), static_cast<int>(size), 0));
    }
    fs::resize_file(directory_.PathOf("f"), 5'000'000'000);
    EXPECT_EQ(file::getFileSize(Path("f")), 5'000'000'000);
}

TEST_F(FileTest, CreatesTemporaryFiles) {
    char const* const variable = support::onWindows() ? "TMP" : "TMPDIR";
    std::string const delimiter = support::onWindows() ? "\\" : "/";
    for (std::string const& suffix : {std::string(), delimiter, delimiter + delimiter}) {
        support::setVariable(variable, (directory_.Path() + suffix).c_str());
        EXPECT_EQ(file::getTempPath(), (directory_.Path() + delimiter).c_str());
    }
    core::String const first = file::getTempFileName();
    core::String const second = file::getTempFileName();
    EXPECT_NE(first, second);
    EXPECT_TRUE(first.StartsWith(file::getTempPath() + "Vorx-"));
    EXPECT_EQ(file::getFileSize(first) + file::getFileSize(second), 0);
    support::setVariable(variable, directory_.PathOf("none").c_str());
    EXPECT_EQ(file::getTempFileName(), "");
    support::setVariable(variable, "");
    EXPECT_NE(file::getTempPath(), delimiter.c_str());
    support::setVariable(variable, nullptr);
    EXPECT_TRUE(file::isDirectory(file::getTempPath()));
}

TEST_F(FileTest, AcceptsUnusualNames) {
    // A path of two of these exceeds the usual limit of Windows.
    std::string const longest(200, 'd');
    std::vector<char const*> names = {
        "%1", "a=b", "-rf", "[x]", "~", longest.c_str(), "\xc3\xa4 \xe6\x97\xa5\xf0\x9f\x94\xa7"};
    if (!support::onWindows()) {
        names.insert(names.end(), {"\x01\x1b[31m", "\xff\xfe", "a\nb", "a\\b", "*?"});
    }
    for (char const* name : names) {
        core::String const directory = Path(name);
        core::String const path = directory.AppendNewPath(name);
        EXPECT_EQ(file::createPathOfFile(path), 0) << name;
        EXPECT_EQ(file::setFileContents(path, "42", true), 0);
        EXPECT_EQ(file::copy(path, path + "2", false, false, nullptr), 0);
        EXPECT_EQ(file::rename(path + "2", path, true), 0);
        EXPECT_EQ(file::setFileAttributes(path, 1) + file::setFileOwnership(path, name, name), 0);
        file::sync();
        EXPECT_EQ(file::getFileContentsAsInt32(path, -1, -1), 42);
        EXPECT_EQ(file::search(directory.AppendNewPath("*"), false, true).AsString(),
                  path + "\r\n");
        EXPECT_EQ(file::remove(path), 0);
    }
}

TEST_F(FileTest, CopiesEveryByte) {
    std::string content(200'001, '\0');
    content[70'000] = '\xff';
    directory_.Write("from", content);
    unsigned const crc = file::calculatesCRC32(Path("from"));
    for (int flags = 0; flags < 4; ++flags) {
        directory_.Write("to", std::string(300'000, 'o'));
        support::CopyWatcher watcher;
        EXPECT_EQ(file::copy(Path("from"), Path("to"), (flags & 1) != 0, flags > 1, &watcher), 0);
        EXPECT_EQ(file::calculatesCRC32(Path("to")), crc);
        EXPECT_EQ(watcher.done, 200'001);
    }
    EXPECT_EQ(file::copy(Path("from"), Path("from"), true, false, nullptr), 0) << "to itself";
    EXPECT_EQ(file::calculatesCRC32(Path("from")), crc);
    EXPECT_EQ(Names(), "from to ");
}

TEST_F(FileTest, RenameReplacesOnlyIfRequested) {
    directory_.Write("a", "A");
    directory_.Write("b", "B");
    fs::create_directory(directory_.PathOf("directory"));
    EXPECT_EQ(file::rename(Path("a"), Path("b"), false), -EEXIST);
    EXPECT_EQ(file::getFileContents(Path("b")), "B");
    EXPECT_EQ(file::rename(Path("a"), Path("b"), true), 0);
    EXPECT_EQ(file::getFileContents(Path("b")), "A");
    EXPECT_LT(file::rename(Path("directory"), Path("directory/in"), false), 0);
    EXPECT_EQ(Names(), "b directory ");
}

TEST(Pattern, MatchesWholeNames) {
    using Row = std::tuple<char const*, char const*, bool>;
    for (auto const& [pattern, name, expected] :
         {Row{"*", "", true}, Row{"*", ".hidden", true}, Row{"", "a", false}, Row{"?", "", false},
          Row{"?", "\xff", true}, Row{"?", "ab", false}, Row{"a*", "a", true},
          Row{"a*b", "ab", true}, Row{"a*c", "abcbc", true}, Row{"a*c", "abcb", false},
          Row{"*.rvl", "x.RVL", false}, Row{"**?**", "", false}, Row{"*ab?d*", "aabcd", true},
          Row{"[a]", "a", false}}) {
        EXPECT_EQ(sys::matchesPattern(name, pattern), expected) << pattern << " on " << name;
    }
    std::string stars;
    for (int i = 0; i < 100; ++i) {
        stars += "*a";
    }
    EXPECT_FALSE(sys::matchesPattern(std::string(20'000, 'a') + "b", stars))
        << "in polynomial time";
}

}  // namespace
