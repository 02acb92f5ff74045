#include "tests/core/archive/golden.h"
#include "tests/pack/packing.h"

namespace {

using support::Lines;
using support::PackTest;

class Check : public PackTest {};

TEST_F(Check, SaysInWordsWhatIsWrongAndWhere) {
    golden::Archive archive;
    archive.files = {{u"a", u"", u"", u"", u"", 0, 0, "first"},
                     {u"b", u"", u"", u"", u"", 0, 0, "second"}};
    std::string const sound = bytesOf(archive);
    std::string const crc = support::crcOf(sound);
    std::size_t const trailer = 24 + 2 * 4096 + 11;
    ASSERT_EQ(sound.size(), trailer + 16);
    auto const changed = [&](std::size_t at, std::string const& bytes) {
        return std::string(sound).replace(at, bytes.size(), bytes);
    };
    struct Row {
        std::string bytes;
        std::string line;
    };
    for (Row const& row : {
             Row{"",
                 "Archive cut short: It ends at offset 0, in the header, which begins at "
                 "offset 0 and has 16 bytes"},
             Row{sound.substr(0, 5000),
                 "Archive cut short: It ends at offset 5000, in the "
                 "descriptor of file[1], which begins at offset 4120 and "
                 "has 4096 bytes"},
             Row{sound.substr(0, trailer - 1),
                 "Archive cut short: It ends at offset 8226, in the data of file[1], which begins "
                 "at offset 8221 and has 6 bytes"},
             Row{changed(4, "x"), "No archive: The eight bytes at offset 0 are not \"QXRB5129\""},
             Row{changed(10, std::string(1, '\0')),
                 "Format too old: The format version at offset 8 is 0x00000000, below 0x00010000"},
             Row{changed(8, "\x01"),
                 "Format too new: The format version at offset 8 is 0x00020001, above 0x00020000"},
             Row{changed(trailer + 4, golden::number(0xABCDEF, 4)),
                 "Wrong CRC: The CRC-32 at offset 8231 is 0x00ABCDEF, that of the bytes before "
                 "the trailer is " +
                     crc},
             Row{changed(trailer + 8, "x"),
                 "Wrong trailer: The eight bytes at offset 8235 are not \"QXRB5129\""},
             Row{golden::withSoundCrc(changed(4120, golden::number(4, 8))),
                 "Wrong offset: The descriptor of file[1], at offset 4120, lays its data at 4 "
                 "behind the descriptors, but they are at 5"},
         }) {
        folder_.Write("a.rvl", row.bytes);
        EXPECT_EQ(Errors("-c @a.rvl"), Lines{row.line});
        EXPECT_EQ(Errors("-x @a.rvl -d @out"), Lines{row.line});
        EXPECT_FALSE(std::filesystem::exists(At("@out"))) << "a bad archive unpacks nothing";
    }
    folder_.Write("a.rvl", sound + "...");
    EXPECT_EQ(Pack("-c @a.rvl", 0),
              (Lines{"- The archive is sound: 2 files, 8.0 KB, CRC-32 " + crc,
                     "- Behind its end at offset 8243 are 3 bytes that are no part of it"}));
}

TEST_F(Check, ListsAsATableAndAsOneLineOfJson) {
    golden::Archive archive = golden::sample(0x00020000, 3);
    archive.files.resize(3);
    archive.files[1] = {u"\x1B[1m\"\\\u0085\u202E", u"etc/empty", {0xD800}, u"", u"", 0, 0644, ""};
    folder_.Write("a.rvl", bytesOf(archive));
    EXPECT_EQ(Pack("-l @a.rvl", 0),
              (Lines{
                  "- Format version: 2.0",
                  "- Scrambled: All, key 0x90000011",
                  "- Unique ID: 0xFEDCBA9876543210",
                  "- Source ID: plant 7",
                  "- Target ID: ",
                  "- Attribute: release=1.2=3",
                  "- Attribute: \u00FCber=\U0001F680",
                  "- Files: 3",
                  "Size  Mode  Flags       Owner  Group  Name      Destination  Command",
                  "  27  0755  0xABCD0100  root   wheel  app.bin   /opt/app/    restart app",
                  "   0  0644  0x00000000  \uFFFD             ?[1m\"\\??  etc/empty",
                  "3000  0777  0x00000020  o      g      caf\u00E9-\U0001F4E6                 c",
              }));
    EXPECT_EQ(
        Pack("-l @a.rvl -j", 0),
        Lines{R"({"archive":"@a.rvl","version":"0x00020000","crypt":"All","key":"0x90000011",)"
              R"("uniqueId":"0xFEDCBA9876543210","sourceId":"plant 7","targetId":"",)"
              "\"attributes\":[\"release=1.2=3\",\"\u00FCber=\U0001F680\"],\"files\":["
              R"({"name":"app.bin","destination":"/opt/app/","owner":"root","group":"wheel",)"
              R"("command":"restart app","attributes":"0755","flags":"0xABCD0100",)"
              R"("scrambled":true,"offset":0,"size":27},)"
              R"({"name":"\u001B[1m\"\\\u0085\u202E","destination":"etc/empty","owner":")"
              "\uFFFD"
              R"(","group":"","command":"","attributes":"0644","flags":"0x00000000",)"
              R"("scrambled":true,"offset":27,"size":0},)"
              "{\"name\":\"caf\u00E9-\U0001F4E6\","
              R"("destination":"","owner":"o","group":"g","command":"c","attributes":"0777",)"
              R"("flags":"0x00000020","scrambled":false,"offset":27,"size":3000}],)"
              "\"crc\":\"" +
              support::crcOf(bytesOf(archive)) + "\"}"});
    folder_.Write("bad.rvl", "no archive at all");
    EXPECT_EQ(Pack("-l @bad.rvl -j", 1),
              Lines{R"({"archive":"@bad.rvl","error":{"title":"No archive","message":)"
                    R"("The eight bytes at offset 0 are not \"QXRB5129\""}})"});
    EXPECT_EQ(Errors("-l @none"),
              Lines{"Archive not readable: \"@none\": No such file or directory"});
}

TEST_F(Check, ReportsLongWork) {
    folder_.Write("m.conf", "file.count = 1\nfile[0].origin = big\n");
    folder_.Write("big", "");
    std::filesystem::resize_file(At("@big"), 70'000'000);
    EXPECT_EQ(Pack("-b @m.conf -o @a.rvl", 0),
              (Lines{">   Packed by now: 32.0 MB of 66.8 MB",
                     ">   Packed by now: 64.0 MB of 66.8 MB          ",
                     "- Archive made: 1 file, 66.8 MB          "}));
    EXPECT_EQ(Pack("-x @a.rvl -d @out", 0).back(), "- Unpacked: 1 file          ");
    EXPECT_EQ(std::filesystem::file_size(At("@out/big")), 70'000'000u);
}

}  // namespace
