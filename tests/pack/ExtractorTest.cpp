#include <gtest/gtest.h>

#include "core/archive/StreamSequencerBuilder.h"
#include "pack/Extractor.h"
#include "pack/extractionPaths.h"
#include "tests/core/archive/MemoryBuilder.h"
#include "tests/core/archive/golden.h"
#include "tests/support/CopyWatcher.h"
#include "tests/support/PrintText.h"
#include "tests/support/TemporaryDirectory.h"

namespace {

using core::StreamDescriptor;

TEST(ExtractionPath, IsPlainAndBelowTheDirectoryOnEveryPlatform) {
    struct Row {
        char const* result;  ///< the path, or "!" and the error
        std::vector<char const*> destinations;
        char const* name = "name";
    };
    for (Row const& row : {
             Row{"name", {"", "/"}},
             Row{"a", {"a", "/a", "//a"}},
             Row{"a/b/name", {"/a/b/", "a//b/"}},
             Row{"x/y", {""}, "/x/y"},
             Row{"!it does not name a file", {"", "a/", "///"}, ""},
             Row{"!it contains ..", {"..", "../a", "a/../b", "a/..", "/.."}},
             Row{"!it contains ..", {"", "a/"}, "b/../../c"},
             Row{"!a name ends with a dot or space", {".", "./a", "a./b", "a /b", "a..."}},
             Row{"!a name has a non-portable character",
                 {"C:", "C:/a", "a:b", "..\\a", "\\\\host\\share", "a\x1Fz", "a\x7F", "a*", "a?",
                  "\"a\"", "<a>", "a|b"}},
             Row{"!a name is reserved",
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
            core::String error;
            core::String const path = pack::extractionPath(file, error);
            EXPECT_EQ(path.IsEmpty() ? "!" + error : path, row.result) << destination;
        }
    }
}

TEST(Extractor, WritesOnlyDataThatWasChecked) {
    golden::Archive content;
    for (char const* const data : {"first", "second", "third"}) {
        std::string const text = data;
        content.files.push_back({{text.begin(), text.end()}, u"", u"", u"", u"", 0, 0, text});
    }
    std::string const bytes = golden::bytesOf(content);
    auto const archive = support::memory(bytes);
    core::StreamSequencerReader reader;
    reader.SetStream(archive.Get());
    ASSERT_EQ(reader.Read(), 0);
    support::TemporaryDirectory const directory;
    core::String const path = directory.PathOf("out").c_str();
    std::vector<core::Fault> errors;
    auto const keep = pack::Extractor::Existing::keep;
    support::CopyWatcher progress;
    progress.most = -1;
    EXPECT_FALSE(pack::Extractor(reader, errors).Extract(path, keep, progress));
    EXPECT_TRUE(std::filesystem::is_empty(path.getCString()));
    archive->Seek(static_cast<long long>(bytes.size()) - 16 - 16);  // the start of "first"
    archive->Write("F", 1);
    errors.clear();
    progress.most = LLONG_MAX;
    EXPECT_FALSE(pack::Extractor(reader, errors).Extract(path, keep, progress));
    ASSERT_EQ(errors.size(), 1u);
    EXPECT_EQ(errors[0].message, "file[0], \"first\": it changed while it was read");
    EXPECT_TRUE(std::filesystem::is_empty(path.getCString()));
}

}  // namespace
