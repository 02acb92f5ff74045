#include "tests/core/archive/golden.h"
#include "tests/pack/packing.h"

namespace {

using support::contentOf;
using support::Lines;
using support::PackTest;

class Build : public PackTest {};

/// The manifest of golden::sample.
std::string manifest(unsigned version, unsigned crypt) {
    std::string text =
        "# a comment\n ; another\n"
        "uniqueId = 0xFEDCBA9876543210\nSOURCEID=plant 7\ntargetId =\n"
        "attribute.count = 2\nattribute[0] = release=1.2=3\nattribute[1] = \u00FCber=\U0001F680\n"
        "file.count = 4\n"
        "file[0].origin = in/0\nfile[0].name = app.bin\nfile[0].destination = /opt/app/\n"
        "file[0].flags = 0xABCD0100\nfile[0].attributes = 0755\n"
        "file[1].origin = in/empty\nfile[1].destination = etc/empty\n"
        "file[2].origin = in/2\nfile[2].name = caf\u00E9-\U0001F4E6\nfile[2].flags = 32\n"
        "file[2].attributes = 777\n"
        "file[3].origin = in/3\nfile[3].name =\nfile[3].destination = always\n"
        "file[3].flags = 0x10\nfile[3].attributes = 0\n";
    text += "crypt = " + std::string(std::vector{"None", "headers", "Data", "ALL"}[crypt]) + "\n";
    text += crypt != 0 ? "key = 0x90000011\n" : "";
    if (version == 0x00020000) {
        text +=
            "file[0].owner = root\nfile[0].group = wheel\nfile[0].command = restart app\n"
            "file[2].owner = o\nfile[2].group = g\nfile[2].command = c\n";
    } else {
        text += version == 0x00010000 ? "version = 1\n" : "version = 0x0001000A\n";
    }
    return text;
}

TEST_F(Build, MakesTheGoldenArchivesAndUnpacksWhatWentIn) {
    std::filesystem::create_directory(At("@in"));
    for (unsigned const version : {0x00010000u, 0x0001000Au, 0x00020000u}) {
        for (unsigned const crypt : {0u, 1u, 2u, 3u}) {
            golden::Archive archive = golden::sample(version, crypt);
            archive.keyBlock = crypt != 0 ? 0x8080000000000082 : 0;
            auto const& files = archive.files;
            for (std::size_t i = 0; i < files.size(); ++i) {
                folder_.Write(i == 1 ? "in/empty" : "in/" + std::to_string(i), files[i].data);
            }
            folder_.Write("m.conf", manifest(version, crypt));
            EXPECT_EQ(Pack("-b @m.conf -o @a.rvl", 0).size(), 1u);
            EXPECT_EQ(contentOf(At("@a.rvl")), golden::bytesOf(archive)) << version << crypt;
            EXPECT_EQ(Pack("--extract=@a.rvl -d @out -f", 0), Lines{"- Unpacked: 4 files"});
            EXPECT_EQ(contentOf(At("@out/opt/app/app.bin")), files[0].data);
            EXPECT_EQ(contentOf(At("@out/always")), files[3].data);
            EXPECT_EQ(FilesBelow("out"),
                      (Lines{"always", "caf\u00E9-\U0001F4E6", "etc/empty", "opt/app/app.bin"}));
        }
    }
}

TEST_F(Build, TellsEveryMistakeOfAManifestAndLeavesTheOldArchive) {
    folder_.Write("f", "data");
    std::string const one = "file.count = 1\nfile[0].origin = f\n";
    std::string const long65(65, 'x');
    struct Row {
        std::string manifest;
        Lines errors;  ///< what follows "*** "
    };
    std::string const bad = "Bad manifest: ";
    std::string const number = " must be a number from 0 to ";
    for (Row const& row : {
             Row{"", {bad + "file.count is missing"}},
             Row{"file.count = 2\nfile[0].origin = f\n", {bad + "file[1].origin is missing"}},
             Row{"file.count = 99999999999\n", {bad + "file.count" + number + "2147483647"}},
             Row{"file.count = 0\nfile[0].origin = f\n",
                 {bad + "file[0].origin means nothing here"}},
             Row{one + "file[0].onwer = x\n", {bad + "file[0].onwer means nothing here"}},
             Row{one + "FILE.COUNT = 1\n", {bad + "FILE.COUNT is there twice"}},
             Row{one + "nonsense\n", {bad + "nonsense is no pair of name and value"}},
             Row{one + "version = 2.1\n", {bad + "version must be from 1.0 to 2.0"}},
             Row{one + "version = 1.\n", {bad + "version must be from 1.0 to 2.0"}},
             Row{one + "version = 0x1\n", {bad + "version must be from 1.0 to 2.0"}},
             Row{one + "crypt = Some\nuniqueId = -1\n",
                 {bad + "uniqueId" + number + "18446744073709551615",
                  bad + "crypt must be None, Headers, Data or All"}},
             Row{one + "key = 1\n", {bad + "key has no use without crypt"}},
             Row{one + "crypt = All\nkey = 0x100000000\n", {bad + "key" + number + "4294967295"}},
             Row{one + "attribute.count = 1024\n", {bad + "attribute.count" + number + "1023"}},
             Row{one + "attribute.count = 1\nattribute[0] = x\n",
                 {bad + "attribute[0] must hold a name and a value"}},
             Row{one + "file[0].attributes = 8\n",
                 {bad + "file[0].attributes must be an octal number from 0 to 37777777777"}},
             Row{one + "file[0].flags = 1 2\n", {bad + "file[0].flags" + number + "4294967295"}},
             Row{one + "version = 1.0\nfile[0].owner = root\n",
                 {"No room for text: file[0].owner is not part of this format version"}},
             Row{one + "targetId = " + long65 + "\n",
                 {"Text too long: targetId may have 64 UTF-16 units"}},
             Row{one + "file[0].name = " + long65 + long65 + long65 + long65 + "\n",
                 {"Text too long: file[0].name may have 256 UTF-16 units"}},
             Row{one + "attribute.count = 1\nattribute[0] = a=\xFF\n",
                 {"Bad text: attribute[0] is not UTF-8"}},
             Row{"file.count = 1\nfile[0].origin = none\n",
                 {"File not readable: \"@none\": No such file or directory"}},
             Row{"file.count = 1\nfile[0].origin = .\n",
                 {"File not readable: \"@.\": Is a directory"}},
         }) {
        folder_.Write("a.rvl", "old");
        folder_.Write("m.conf", row.manifest);
        Lines expected;
        for (std::string const& error : row.errors) {
            expected.push_back("*** " + error);
        }
        expected.push_back("");
        EXPECT_EQ(Pack("-b @m.conf -o @a.rvl", 1), expected);
        EXPECT_EQ(contentOf(At("@a.rvl")), "old");
        EXPECT_EQ(FilesBelow(""), (Lines{"a.rvl", "f", "m.conf"})) << "nothing is left behind";
    }
    EXPECT_EQ(Pack("-b @none -o @a.rvl", 1),
              (Lines{"*** Manifest not readable: \"@none\": No such file or directory", ""}));
    folder_.Write("m.conf", one);
    EXPECT_EQ(Pack("-b @m.conf -o @no/a.rvl", 1),
              (Lines{"*** Archive not writable: \"@no/a.rvl\": No such file or directory", ""}));
}

TEST_F(Build, CommandLinesThatMakeNoSense) {
    for (auto const& [arguments, error] : std::vector<std::pair<std::string, std::string>>{
             {"", "Nothing to do: Please provide one of the options -b, -l, -c and -x"},
             {"-j", "Nothing to do: Please provide one of the options -b, -l, -c and -x"},
             {"-l a -c a", "Nothing to do: Please provide one of the options -b, -l, -c and -x"},
             {"-b m", "Option missing: Option -b needs -o"},
             {"-x a", "Option missing: Option -x needs -d"},
             {"-c a -j", "Option without use: Option -c takes no -j"},
             {"-l a -f", "Option without use: Option -l takes no -f"},
             {"-z", "Invalid option: -z "},
             {"-c", "Invalid number of arguments: -c "},
         }) {
        Lines const lines = Pack(arguments, 2);
        ASSERT_GT(lines.size(), 3u);
        EXPECT_EQ(lines[0], "*** " + error);
        EXPECT_EQ(lines[2], "Usage:");
    }
    EXPECT_EQ(Pack("--help", 0)[0], "Usage:");
}

}  // namespace
