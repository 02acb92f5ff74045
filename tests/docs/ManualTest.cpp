#include <set>

#include "device/usage.h"
#include "pack/usage.h"
#include "tests/docs/document.h"
#include "tests/support/run.h"
#include "update/usage.h"

namespace {

using Names = std::set<std::string>;
using std::string;
using support::sourceText;

string part(string const& text, string const& begin, string const& end) {
    std::size_t const at = text.find(begin);
    return text.substr(at, text.find(end, at) - at);
}

/// What the pattern finds, put down as format says; a third group adds a "=".
Names found(string const& text, string const& pattern, char const* format = "$1") {
    Names names;
    std::regex const regex(pattern);
    for (std::sregex_iterator i(text.begin(), text.end(), regex), end; i != end; ++i) {
        names.insert(i->format(format) + ((*i)[3].matched ? "=" : ""));
    }
    return names;
}

/// The same in the first column of tables.
Names inTables(string const& text, char const* pattern) {
    return found(std::regex_replace(text, std::regex(R"(\n(\|[^|\n]+)?.*)"), "\n$1"), pattern);
}

/// Completes the last of the words behind it: what bash offers, separated by commas.
string const bash = R"(bash -c 'source "$0/completions/ravelink.bash"; known=($(complete -p $1))
    COMP_WORDS=("$@") COMP_CWORD=$(($# - 1)) last=${!#}; ${known[2]} $1 "${last#=}"
    IFS=,; echo "${COMPREPLY[*]}"' ')" RAVELINK_SOURCE "' ";

TEST(Manual, AllThatTellsOfOptionsTellsTheSame) {
    for (auto const& [name, grammar, showUsage] :
         {std::make_tuple("ravelink", update::optionGrammar, update::showUsage),
          std::make_tuple("ravelink-pack", pack::optionGrammar, pack::showUsage),
          std::make_tuple("ravelink-device", device::optionGrammar, device::showUsage)}) {
        string const page = sourceText(string("docs/") + name + ".md");
        EXPECT_EQ(found(page, R"(`-(.)`, `--(\w+)`( \*[A-Z]+\*|,| and)?)", "$1|$2"),
                  found(grammar, R"((.)\|(\w+)=(?:0|(1)))", "$1|$2"));
        string const zsh = part(sourceText("completions/_ravelink"), name + string(")"), ";;");
        EXPECT_EQ(found(zsh, R"(\{-(.)(?=,--\w+\}|=,.+=\})=?,--(\w+)(=)?\})", "$1|$2"),
                  found(page, R"(\n\| `-(.)`, `--(\w+)`( \*[A-Z]+\*)? \|)", "$1|$2"));
        Names const shown = found(page, R"(\n\| `-(.)`, `--(\w+)`)", "$1|$2");
        EXPECT_EQ(found(support::outputOf(showUsage), R"(\n\t-(.), --(\w+) )", "$1|$2"), shown);
        string const offered = support::run(bash + name + " -").lines.at(0);
        EXPECT_EQ(found(offered, R"(-(.),--(\w+))", "$1|$2"), shown);
        for (string const& word : found(offered, "[^,]+", "$&")) {
            bool const plain = support::run(bash + name + " " + word + " ''").lines[0] == offered;
            EXPECT_EQ(found(page, "\n\\|[^|]*`" + word + "`[^|*]*\\|").size(), plain) << word;
        }
    }
}

TEST(Manual, TheReadmeShowsTheUsageScreen) {
    string screen = support::replaced(support::outputOf(update::showUsage), "\t", "        ");
    screen.pop_back();
    EXPECT_NE(sourceText("README.md").find("```text\n" + screen + "```\n"), string::npos) << screen;
}

TEST(Manual, TellsTheNamesOfManifestsAndScenarios) {
    string const source = sourceText("pack/Manifest.cpp") + sourceText("pack/textNames.cpp");
    EXPECT_EQ(inTables(part(sourceText("docs/ravelink-pack.md"), "\n| Name", "\n\n"),
                       R"([`\]]\.?([a-z][\w.]*))"),
              found(source, R"re([({+,] ?"\.?([a-z][\w.]*)["\[])re"));
    EXPECT_EQ(inTables(sourceText("docs/rehearsing.md"), R"(`(\w+)[^`]*`)"),
              found(sourceText("device/loadScenario.cpp"), R"re([({]"(\w+)")re"));
}

TEST(Manual, NamesOfFilesAreCompleted) {
    support::TemporaryFolder const folder;
    string const there = "cd " + folder.Path() + "; mkdir -p sub; touch 'a b.rvl' c.conf d.txt; ";
    EXPECT_EQ(support::run(there + bash + "ravelink --origin = a").lines[0], "a b.rvl");
    EXPECT_EQ(support::run(there + bash + "ravelink -o =").lines[0], "sub,a b.rvl");
    EXPECT_EQ(support::run(there + bash + "ravelink -a 10.0.0.7 :").lines[0], "");
    EXPECT_EQ(support::run(there + bash + "ravelink-device -s ''").lines[0], "sub,c.conf");
    EXPECT_EQ(support::run(there + bash + "ravelink-device -d ''").lines[0], "sub");
}

}  // namespace
