#include "core/archive/StreamSequencerBuilder.h"
#include "pack/PackProgress.h"
#include "pack/Unpacker.h"
#include "pack/unpackPath.h"
#include "tests/core/archive/MemoryBuilder.h"
#include "tests/core/archive/golden.h"
#include "tests/pack/packing.h"
#include "tests/support/PrintText.h"

namespace {

using core::StreamDescriptor;
using support::contentOf;
using support::Lines;
using support::PackTest;

class Unpack : public PackTest {
protected:
    /// Writes a.rvl with files of these destinations; each holds its own.
    void WriteArchive(std::vector<std::u16string> const& destinations) {
        golden::Archive archive;
        for (std::u16string const& destination : destinations) {
            std::string const data(destination.begin(), destination.end());
            archive.files.push_back({u"", destination, u"", u"", u"", 0, 0, data});
        }
        folder_.Write("a.rvl", bytesOf(archive));
    }
};

TEST(UnpackPath, IsPlainAndBelowTheFolderOnEverySystemOrRefused) {
    struct Row {
        char const* verdict;  ///< the path, or "!" and why it is refused
        std::vector<char const*> destinations;
        char const* name = "name";
    };
    for (Row const& row : {
             Row{"name", {"", "/"}},
             Row{"a", {"a", "/a", "//a"}},
             Row{"a/b/name", {"/a/b/", "a//b/"}},
             Row{"x/y", {""}, "/x/y"},
             Row{"!it names no file", {"", "a/", "///"}, ""},
             Row{"!it leads upward", {"..", "../a", "a/../b", "a/..", "/.."}},
             Row{"!it leads upward", {"", "a/"}, "b/../../c"},
             Row{"!a name ends with a point or a blank", {".", "./a", "a./b", "a /b", "a..."}},
             Row{"!a name holds a character that not every system allows",
                 {"C:", "C:/a", "a:b", "..\\a", "\\\\host\\share", "a\nb", "a\x7F", "a*", "a?",
                  "\"a\"", "<a>", "a|b"}},
             Row{"!a name belongs to a device",
                 {"CON", "a/nul", "aux.tar.gz", "com1", "LPT9.txt", "com\u00B2", "prn .x", "conin$",
                  "x/con.d/../y"}},
             Row{"com", {"com"}},
             Row{"com10/console/nul-a/...a/.b", {"com10/console/nul-a/...a/.b"}},
             Row{"\u00FCber/\U0001F4E6", {"\u00FCber/\U0001F4E6"}},
         }) {
        for (char const* const destination : row.destinations) {
            core::StreamSequencerBuilder archive;
            StreamDescriptor& file = archive.AddFile("");
            file.SetText(StreamDescriptor::Text::name, row.name);
            file.SetText(StreamDescriptor::Text::destination, destination);
            core::String why;
            core::String const path = pack::unpackPath(file, why);
            EXPECT_EQ(path.IsEmpty() ? "!" + why : path, row.verdict) << destination;
        }
    }
}

TEST_F(Unpack, ExtractsNothingIfAnyPathIsRejected) {
    std::u16string const tooLong(256, u'n');
    std::string const inTheWay = ": another file stands where it needs a folder";
    struct Row {
        std::vector<std::u16string> destinations;
        Lines errors;
    };
    for (Row const& row : {
             Row{{u"good", u"../bad"}, {"[1], \"../bad\": it leads upward"}},
             Row{{u"good", u"bad\u0085\x1B[2J:"},
                 {"[1], \"bad??[2J:\": a name holds a character that not every system allows"}},
             Row{{u"dir/\u00C4", u"DIR/\u00E4"},
                 {"[1], \"DIR/\u00E4\": another file has the same path"}},
             Row{{u"x", u"/x"}, {"[1], \"/x\": another file has the same path"}},
             // One error a file, also of those below several others.
             Row{{u"x/y/z", u"X/Y", u"x!", u"x/y", u"X", u"x0", u"../x"},
                 {"[6], \"../x\": it leads upward", "[0], \"x/y/z\"" + inTheWay,
                  "[1], \"X/Y\"" + inTheWay, "[3], \"x/y\"" + inTheWay}},
             Row{{u"good", u"new/" + tooLong},
                 {"[1], \"new/" + std::string(256, 'n') +
                  "\": a name is too long for the file system"}},
             Row{{u"good", u"there"}, {"[1], \"there\": it is there already"}},
             Row{{u"good", u"there/x"}, {"[1], \"there/x\": Not a directory"}},
         }) {
        folder_.Write("there", "old");
        WriteArchive(row.destinations);
        Lines expected = row.errors;
        for (std::string& line : expected) {
            line.insert(0, "File not unpacked: file");
        }
        EXPECT_EQ(Errors("-x @a.rvl -d @@"), expected);
        EXPECT_EQ(FilesBelow(""), (Lines{"a.rvl", "there"}));
        EXPECT_EQ(contentOf(At("@there")), "old");
    }
    WriteArchive({u"new/" + tooLong});
    EXPECT_EQ(Errors("-x @a.rvl -d @none/new").size(), 1u);
    EXPECT_FALSE(std::filesystem::exists(At("@none")));
}

TEST_F(Unpack, WritesOnlyDataThatWereChecked) {
    WriteArchive({u"first", u"second", u"third"});
    std::string bytes = contentOf(At("@a.rvl"));
    auto const archive = support::memory(bytes);
    core::StreamSequencerReader reader;
    reader.SetStream(archive.Get());
    ASSERT_EQ(reader.Read(), 0);
    archive->Seek(static_cast<long long>(bytes.size()) - 16 - 11);  // the start of "second"
    archive->Write("S", 1);
    std::vector<core::Fault> errors;
    pack::PackProgress progress("");
    EXPECT_FALSE(pack::Unpacker(reader, errors).Unpack(At("@out").c_str(), false, progress));
    ASSERT_EQ(errors.size(), 1u);
    EXPECT_EQ(errors[0].message, "file[1], \"second\": it changed while it was read");
    EXPECT_EQ(FilesBelow("out"), Lines{"first"});
}

TEST_F(Unpack, ReplacesFilesOnlyWhenToldSoAndNeverFolders) {
    WriteArchive({u"dir/file", u"dir/other"});
    EXPECT_EQ(Pack("-x @a.rvl -d @new/folder", 0), Lines{"- Unpacked: 2 files"});
    folder_.Write("new/folder/dir/file", "mine");
    EXPECT_EQ(Pack("-x @a.rvl -d @new/folder", 1).size(), 3u);
    EXPECT_EQ(contentOf(At("@new/folder/dir/file")), "mine");
    EXPECT_EQ(Pack("-x @a.rvl -d @new/folder --force", 0), Lines{"- Unpacked: 2 files"});
    EXPECT_EQ(contentOf(At("@new/folder/dir/file")), "dir/file");
    WriteArchive({u"new/.unpacking-0", u"new/.copy-0"});
    EXPECT_EQ(Pack("-x @a.rvl -d @", 0), Lines{"- Unpacked: 2 files"});
    WriteArchive({u"dir"});
    EXPECT_EQ(Errors("-x @a.rvl -d @new/folder -f"),
              Lines{"File not unpacked: file[0], \"dir\": a folder has its name"});
}

TEST_F(Unpack, FollowsNoLink) {
    std::filesystem::create_directories(At("@out/real"));
    folder_.Write("outside", "mine");
    std::error_code failure;
    std::filesystem::create_directory_symlink(At("@@"), At("@out/link"), failure);
    std::filesystem::create_directory_symlink("real", At("@out/inner"), failure);
    std::filesystem::create_symlink(At("@outside"), At("@out/file"), failure);
    if (failure) {
        GTEST_SKIP() << "no links to be had here";
    }
    for (std::string const path : {"link/outside", "link/new", "inner/new", "link/a/b"}) {
        WriteArchive({u"good", std::u16string(path.begin(), path.end())});
        EXPECT_EQ(Pack("-x @a.rvl -d @out -f", 1), (Lines{"*** File not unpacked: file[1], \"" +
                                                              path + "\": a link stands in its way",
                                                          ""}));
    }
    EXPECT_EQ(FilesBelow(""), (Lines{"a.rvl", "out/file", "out/inner", "out/link", "outside"}));
    WriteArchive({u"file"});
    EXPECT_EQ(Pack("-x @a.rvl -d @out", 1).size(), 2u);
    EXPECT_EQ(
        Errors("-x @a.rvl -d @out -f"),
        Lines{"File not unpacked: file[0], \"file\": it is there already and is not a regular "
              "file"});
    EXPECT_EQ(contentOf(At("@outside")), "mine");
}

}  // namespace
