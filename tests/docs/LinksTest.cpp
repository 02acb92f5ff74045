#include <cctype>

#include "tests/docs/document.h"

namespace {

namespace fs = std::filesystem;
using support::contentOf;

/// Whether the document has a heading that readers reach under that anchor.
bool hasAnchor(std::string const& document, std::string const& anchor) {
    std::regex const heading("\n#+ ([^\n]+)");
    for (std::sregex_iterator i(document.begin(), document.end(), heading), end; i != end; ++i) {
        std::string slug;
        for (char const c : (*i)[1].str()) {
            if (std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '-' || c == '_') {
                slug += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
            } else if (c == ' ') {
                slug += '-';
            }
        }
        if (slug == anchor) {
            return true;
        }
    }
    return false;
}

TEST(Links, LeadSomewhere) {
    fs::path const root = RAVELINK_SOURCE;
    std::vector<fs::path> documents = {root / "README.md", root / "CHANGELOG.md"};
    for (auto const& entry : fs::directory_iterator(root / "docs")) {
        documents.push_back(entry.path());
    }
    std::regex const link(R"(\]\(([^):#]*)#?([^):]*)\))");
    int checked = 0;
    for (fs::path const& document : documents) {
        std::string const text = document.extension() == ".md" ? contentOf(document.string()) : "";
        for (std::sregex_iterator i(text.begin(), text.end(), link), end; i != end;
             ++i, ++checked) {
            fs::path const target =
                (*i)[1].length() == 0 ? document : document.parent_path() / (*i)[1].str();
            EXPECT_TRUE(fs::exists(target)) << document << ": " << i->str();
            EXPECT_TRUE((*i)[2].length() == 0 || hasAnchor(contentOf(target.string()), (*i)[2]))
                << document << ": " << i->str();
        }
    }
    EXPECT_GT(checked, 40);
}

}  // namespace
