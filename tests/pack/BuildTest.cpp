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
    std::string const file = "file.count = 1\nfile[0].origin = f\n";
    std::string const nul("file.count = 0\ntargetId = a\0b", 29);
    std::string const other = "file.count = 1\nfile[0].origin = ";
    std::string const bad = "Bad manifest: ";
    std::string const number = " must be a number from 0 to ";
    std::string const range = bad + "version must be from 1.0 to 2.0";
    std::string const x65(65, 'x');
    std::string const x260 = x65 + x65 + x65 + x65;
    std::pair<std::string, Lines> const rows[] = {
        {"", {bad + "file.count is missing"}},
        {"file.count = 2\nfile[0].origin = f", {bad + "file[1].origin is missing"}},
        {"file.count = 3000000000", {bad + "file.count" + number + "2147483647"}},
        {"file.count = 0\nfile[0].name = f", {bad + "file[0].name means nothing here"}},
        {file + "FILE.COUNT = 1", {bad + "FILE.COUNT is there twice"}},
        {file + "nonsense", {bad + "nonsense is no pair of name and value"}},
        {file + "\x1B[2J\u061C=\xFF = 1", {bad + "?[2j? means nothing here"}},
        {nul, {bad + "line 2 contains a NUL character"}},
        {file + "version = 2.1", {range}},
        {file + "version = 1.", {range}},
        {file + "version = 0x1\nkey = 1", {range, bad + "key has no use without crypt"}},
        {file + "crypt = Some", {bad + "crypt must be None, Headers, Data or All"}},
        {file + "uniqueId = -1", {bad + "uniqueId" + number + "18446744073709551615"}},
        {file + "crypt = All\nkey = 0x100000000", {bad + "key" + number + "4294967295"}},
        {file + "attribute.count = 1024", {bad + "attribute.count" + number + "1023"}},
        {file + "attribute.count = 1", {bad + "attribute[0] must hold a name and a value"}},
        {file + "file[0].attributes = 8",
         {bad + "file[0].attributes must be an octal number from 0 to 37777777777"}},
        {file + "file[0].flags = 1 2", {bad + "file[0].flags" + number + "4294967295"}},
        {file + "version = 1.0\nfile[0].owner = root",
         {"No room for text: file[0].owner is not part of this format version"}},
        {file + "targetId = " + x65, {"Text too long: targetId may have 64 UTF-16 units"}},
        {file + "file[0].name = " + x260,
         {"Text too long: file[0].name may have 256 UTF-16 units"}},
        {file + "attribute.count = 1\nattribute[0] = a=\xFF",
         {"Bad text: attribute[0] is not UTF-8"}},
        {other + "none", {"File not readable: \"@none\": No such file or directory"}},
        {other + ".", {"File not readable: \"@.\": Is a directory"}}};
    for (auto const& [manifest, errors] : rows) {
        folder_.Write("a.rvl", "old");
        folder_.Write("m.conf", manifest);
        EXPECT_EQ(Errors("-b @m.conf -o @a.rvl"), errors);
        EXPECT_EQ(contentOf(At("@a.rvl")), "old");
        EXPECT_EQ(FilesBelow(""), (Lines{"a.rvl", "f", "m.conf"})) << "nothing is left behind";
    }
    EXPECT_EQ(Errors("-b @no=ne -o @a.rvl"),
              Lines{"Manifest not readable: \"@no=ne\": No such file or directory"});
    folder_.Write("m.conf", file);
    std::error_code noLinks;
    std::filesystem::create_hard_link(At("@f"), At("@link"), noLinks);
    for (auto const& [target, source] :
         {std::pair{"m.conf", "m.conf"}, {"f", "f"}, {noLinks ? "f" : "link", "f"}}) {
        EXPECT_EQ(Errors(std::string("-b @m.conf -o @") + target),
                  Lines{std::string("Archive not writable: \"@") + target +
                        "\" is the same file as \"@" + source + "\", which it is made from"});
    }
    EXPECT_EQ(contentOf(At("@f")) + contentOf(At("@m.conf")), "data" + file);
    EXPECT_EQ(Errors("-b @m.conf -o @no/a.rvl"),
              Lines{"Archive not writable: \"@no/a.rvl\": No such file or directory"});
}

TEST_F(Build, CommandLinesThatMakeNoSense) {
    std::string const none = "Nothing to do: Please provide one of the options -b, -l, -c and -x";
    for (auto const& [arguments, error] : std::vector<std::pair<std::string, std::string>>{
             {"", none},
             {"-j", none},
             {"-l a -c a", none},
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
