#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "core/text/message.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/lines.h"
#include "tests/support/run.h"

namespace support {

using Lines = std::vector<std::string>;

/// The closing CRC of an archive as the program writes it.
inline std::string crcOf(std::string const& bytes) {
    unsigned crc = 0;
    for (std::size_t i = 9; i < 13; ++i) {
        crc = crc << 8 | static_cast<unsigned char>(bytes[bytes.size() - i]);
    }
    return core::hex(crc, 8).getCString();
}

/// A test that runs ravelink-pack in a fresh folder, which stands for "@" in its words.
class PackTest : public testing::Test {
protected:
    std::string At(std::string const& text) const {
        return replaced(replaced(text, "@@", folder_.Path()), "@", folder_.Path() + "/");
    }

    /// What the program says behind its banner, and its exit status; "@" hides the folder.
    Lines Pack(std::string const& arguments, int status) const {
        Ran ran = run(RAVELINK_PACK " " + At(arguments));
        EXPECT_EQ(ran.status, status) << arguments;
        if (!ran.lines.empty() && ran.lines[0] == "ravelink-pack " RAVELINK_VERSION
                                                  " (Halvoren) - Update Archives") {
            ran.lines.erase(ran.lines.begin());
        }
        for (std::string& line : ran.lines) {
            // As JSON writes it as well.
            for (std::string const& path :
                 {folder_.Path(), replaced(folder_.Path(), "\\", "\\\\")}) {
                line = replaced(replaced(line, path + "/", "@"), path + "\\", "@");
            }
        }
        return ran.lines;
    }

    /// What is behind the "*** " of a run that fails.
    Lines Errors(std::string const& arguments) const {
        Lines lines = Pack(arguments, 1);
        EXPECT_TRUE(!lines.empty() && lines.back().empty()) << arguments;
        lines.resize(std::max<std::size_t>(lines.size(), 1) - 1);
        for (std::string& line : lines) {
            EXPECT_EQ(line.substr(0, 4), "*** ");
            line.erase(0, 4);
        }
        return lines;
    }

    /// The names of all files below a folder, sorted.
    Lines FilesBelow(std::string const& name) const {
        namespace fs = std::filesystem;
        fs::path const top = folder_.PathOf(name);
        Lines names;
        if (fs::exists(top)) {
            for (auto const& entry : fs::recursive_directory_iterator(top)) {
                if (entry.is_symlink() || !entry.is_directory()) {
                    names.push_back(entry.path().lexically_relative(top).generic_string());
                }
            }
        }
        std::sort(names.begin(), names.end());
        return names;
    }

    TemporaryFolder folder_;
};

}  // namespace support
