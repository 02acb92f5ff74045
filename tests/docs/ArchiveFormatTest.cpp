#include "tests/docs/document.h"
#include "tests/pack/packing.h"

namespace {

using support::contentOf;

using ArchiveFormat = support::PackTest;

TEST_F(ArchiveFormat, ItsExampleIsWhatItsManifestGives) {
    std::string const text = support::sourceText("docs/archive-format.md");
    folder_.Write("hello.txt", "Hello, device!\n");
    folder_.Write("m.conf", support::blocksOf(text, "ini"));
    std::string const example = support::bytesOf(support::blocksOf(text, "hexdump"));
    Pack("-b @m.conf -o @a.rvl", 0);
    EXPECT_EQ(contentOf(At("@a.rvl")), example);
    folder_.Write("example.rvl", example);
    EXPECT_EQ(Pack("-x @example.rvl -d @out", 0), support::Lines{"- Unpacked: 1 file"});
    EXPECT_EQ(contentOf(At("@out/opt/hello.txt")), "Hello, device!\n");
}

}  // namespace
