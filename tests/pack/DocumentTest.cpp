#include <sstream>

#include "tests/pack/packing.h"

namespace {

using support::contentOf;
using support::PackTest;

class Document : public PackTest {
protected:
    std::string const text_ = contentOf(RAVELINK_SOURCE "/docs/archive-format.md");

    /// The lines between "```kind" and "```".
    std::string Block(std::string const& kind) const {
        std::size_t const begin = text_.find("```" + kind + "\n");
        EXPECT_NE(begin, std::string::npos) << kind;
        std::size_t const start = text_.find('\n', begin) + 1;
        return text_.substr(start, text_.find("```", start) - start);
    }
};

/// The bytes of a dump: an offset, then up to 16 bytes, the characters behind "|"; "*" repeats the
/// line before it up to the next offset.
std::string bytesOf(std::string const& dump) {
    std::string bytes;
    for (std::string line : support::linesOf(dump)) {
        if (line == "*") {
            continue;
        }
        std::istringstream words(line.substr(0, line.find('|')));
        std::size_t offset = 0;
        words >> std::hex >> offset;
        while (bytes.size() < offset) {
            bytes += bytes.substr(bytes.size() - 16);
        }
        EXPECT_EQ(bytes.size(), offset) << line;
        for (unsigned byte = 0; words >> byte;) {
            bytes += static_cast<char>(byte);
        }
    }
    return bytes;
}

TEST_F(Document, ItsExampleIsWhatItsManifestGives) {
    folder_.Write("hello.txt", "Hello, device!\n");
    folder_.Write("m.conf", Block("ini"));
    std::string const example = bytesOf(Block("hexdump"));
    Pack("-b @m.conf -o @a.rvl", 0);
    EXPECT_EQ(contentOf(At("@a.rvl")), example);
    folder_.Write("example.rvl", example);
    EXPECT_EQ(Pack("-x @example.rvl -d @out", 0), support::Lines{"- Unpacked: 1 file"});
    EXPECT_EQ(contentOf(At("@out/opt/hello.txt")), "Hello, device!\n");
}

}  // namespace
