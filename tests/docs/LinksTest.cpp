#include <algorithm>
#include <cctype>
#include <set>

#include "tests/docs/document.h"

namespace {

namespace fs = std::filesystem;

/// What a "#" in a link to the document may be followed by: its headings, as readers make anchors
/// of them.
std::set<std::string> anchorsOf(fs::path const& document) {
    std::set<std::string> anchors;
    for (std::string const& line : support::linesOf(support::contentOf(document.string()))) {
        if (line.starts_with("#")) {
            std::string anchor = std::regex_replace(line, std::regex("^#+ |[^\\w -]"), "");
            std::transform(anchor.begin(), anchor.end(), anchor.begin(),
                           [](unsigned char c) { return c == ' ' ? '-' : std::tolower(c); });
            anchors.insert(anchor);
        }
    }
    return anchors;
}

TEST(Links, LeadSomewhere) {
    fs::path const root = RAVELINK_SOURCE;
    std::vector<fs::path> documents = {root / "README.md", root / "CHANGELOG.md"};
    std::copy(fs::directory_iterator(root / "docs"), {}, std::back_inserter(documents));
    int checked = 0;
    for (fs::path const& document : documents) {
        std::string const text = support::contentOf(document.string());
        std::regex const link(R"(\]\(([^):#]*)#?([^):]*)\))");
        for (std::sregex_iterator i(text.begin(), text.end(), link), end; i != end;
             ++i, ++checked) {
            bool const elsewhere = (*i)[1].length() > 0;
            fs::path const target = elsewhere ? document.parent_path() / i->str(1) : document;
            EXPECT_TRUE(fs::exists(target)) << document << ": " << i->str();
            EXPECT_TRUE(i->length(2) == 0 || anchorsOf(target).contains(i->str(2)))
                << document << ": " << i->str();
        }
    }
    EXPECT_GT(checked, 40);
}

}  // namespace
