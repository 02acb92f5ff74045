#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>

#include "sys/dir.h"
#include "sys/file.h"
#include "tests/support/PrintText.h"
#include "tests/support/TemporaryFolder.h"

namespace {

namespace dir = sys::dir;
namespace file = sys::file;

class DirTest : public testing::Test {
protected:
    core::String Path(std::string const& name) const { return folder_.PathOf(name).c_str(); }

    support::TemporaryFolder folder_;
};

TEST_F(DirTest, CreatesOneOrAll) {
    folder_.Write("file", "");
    std::filesystem::create_symlink("nowhere", folder_.PathOf("dangling"));
    struct Row {
        core::String path;
        int alone;
        int recursive;
    };
    for (Row const& row :
         {Row{Path("new"), 0, 0}, Row{Path("a/b/c"), -ENOENT, 0}, Row{Path("a//d///"), 0, 0},
          Row{Path("x/../y"), -ENOENT, 0}, Row{Path("%1/\n=\xff"), -ENOENT, 0},
          Row{Path("file"), -EEXIST, -ENOTDIR}, Row{Path("file/x"), -ENOTDIR, -ENOTDIR},
          Row{Path("dangling"), -EEXIST, -EEXIST}, Row{"", -ENOENT, -ENOENT}, Row{"/", -EEXIST, 0},
          Row{"/dev/null/x", -ENOTDIR, -ENOTDIR},
          Row{Path(std::string(300, 'n')), -ENAMETOOLONG, -ENAMETOOLONG}}) {
        EXPECT_EQ(dir::create(row.path, false), row.alone) << row.path.getCString();
        EXPECT_EQ(dir::create(row.path, true), row.recursive) << row.path.getCString();
        EXPECT_EQ(file::isDirectory(row.path), row.recursive == 0) << row.path.getCString();
    }
    EXPECT_EQ(dir::create(core::String::OfChar('/', 1'000'000) + "a", false), -ENAMETOOLONG);
    EXPECT_EQ(dir::create(core::String::OfChar('/', 1'000'000) + "a", true), -ENAMETOOLONG);
}

TEST_F(DirTest, CreatesTheFolderOfAFile) {
    EXPECT_EQ(file::createPathOfFile(Path("p/q/file")), 0);
    EXPECT_TRUE(file::isDirectory(Path("p/q")));
    EXPECT_EQ(file::getType(Path("p/q/file")), file::Type::none);
    EXPECT_EQ(file::createPathOfFile("file"), 0) << "the working folder is there";
    EXPECT_EQ(file::createPathOfFile("/file"), 0);
    folder_.Write("f", "");
    EXPECT_EQ(file::createPathOfFile(Path("f/q/file")), -ENOTDIR);
}

TEST_F(DirTest, ChangesTheWorkingFolder) {
    ASSERT_EQ(dir::create(Path("in \xff"), false), 0);
    ASSERT_EQ(dir::change(Path("in \xff")), 0);
    EXPECT_EQ(dir::current(), std::filesystem::canonical(folder_.PathOf("in \xff")).c_str());
    EXPECT_EQ(dir::change("none"), -ENOENT);
    EXPECT_EQ(dir::change(""), -ENOENT);
    folder_.Write("f", "");
    EXPECT_EQ(dir::change("../f"), -ENOTDIR);
    EXPECT_EQ(dir::create("made/here", true), 0);
    EXPECT_EQ(file::setFileContents("made/here/f", "relative", true), 0);
    EXPECT_EQ(file::copy("made/here/f", "g", false, false, nullptr), 0);
    EXPECT_EQ(file::getFileContents(Path("in \xff/g")), "relative");
    std::filesystem::remove_all(folder_.PathOf("in \xff"));
    EXPECT_EQ(dir::current(), "");
}

}  // namespace
