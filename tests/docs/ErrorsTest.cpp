#include "tests/docs/document.h"

namespace {

using std::regex;
using std::string;
using support::contentOf;
using support::replaced;
using support::sourceText;

/// The ways to report: their look in a source, with ` for a quote within a text, and their line.
/// Any other text must be documented too, but steps, progress, names of programs, single words.
string const ways[][2] = {
    {R"re(rrors\.Add\("([^"]+)", shown)re", "$1: ..."},
    {R"re((?:QuitWithError|rrors_?\.Add|\bfault)\(\s*"([^"]+)",[^";]*"([^"]+)")re", "$1: $2"},
    {R"re("([A-Z>][^"=%]*)=([^"]+)")re", "$1: $2"},
    {R"re(fileFault\("([^"]+)")re", "$1: `...`: ..."},
    {R"re("((?:it (?!changed)|a |another )[^"]+)")re", "File not unpacked: file[...], `...`: $1"},
    {R"re((?:Wrong\(step \+ ":",[^";]*|(?="%1 [a-z]+ ))"([^"]+)")re", "Bad scenario: ...: $1"},
    {R"re(Wrong\([^;"]*(?:"[^"]+")?,[^";]*"([^"]+)")re", "Bad CONF: ... $1"},
};
regex const nothing("(- | |>  )[^]*|[^]*\\\\n|((?![A-Za-z] [A-Za-z])[^])*");

/// All files of a folder, but for the screens of usage and listing.
string allIn(string const& folder) {
    string all;
    for (auto const& entry :
         std::filesystem::recursive_directory_iterator(RAVELINK_SOURCE "/" + folder)) {
        string const path = entry.path().generic_string();
        bool const counts = regex_match(path, regex(".*/(?!usage|Listing)[^/]+[.](cpp|h|conf)"));
        all += counts ? contentOf(path) : "";
    }
    return all;
}

/// What format makes of each place in text that looks like pattern.
std::vector<string> found(string const& text, string const& pattern, string const& format) {
    regex const compiled(pattern), number("%\\d");
    std::vector<string> all;
    for (std::sregex_iterator at(text.begin(), text.end(), compiled), end; at != end; ++at) {
        all.push_back(replaced(regex_replace(at->format(format), number, "..."), "`", "\""));
    }
    return all;
}

TEST(Errors, EachIsDocumentedOnceAndNothingElse) {
    string const document = sourceText("docs/errors.md");
    std::map<string, int> missing;  ///< how often a line is missing in the document
    string const shared = sourceText("sys/ConfFile.cpp") + sourceText("core/text/message.cpp");
    string const programs[][4] = {{"ravelink", "update", "", ""},
                                  {"ravelink-pack", "pack", shared, "manifest"},
                                  {"ravelink-device", "device", shared, "scenario"}};
    for (auto const& [program, folder, more, conf] : programs) {
        string code = allIn(folder) + more + sourceText("core/runtime/ApplicationOptions.cpp");
        code =
            regex_replace(replaced(code, "\\\"", "`"), regex("//.*|#include.*|'\"'|\"\\s*\""), "");
        missing[program + ": " + program] = 1;
        for (auto const& [source, line] : ways) {
            for (string const& one : found(code, source, line)) {
                missing[program + ": " + replaced(one, "CONF", conf)] = 1;
            }
            code = regex_replace(code, regex(source), "");
        }
        for (string const& rest : found(code, "\"([^\"]*)\"", "$1")) {
            EXPECT_TRUE(regex_match(rest, nothing) || document.find(rest) != string::npos) << rest;
        }
    }
    for (string const& end : found(allIn("examples/scenarios"), "\\*{3} (.*)", "ravelink: $1")) {
        EXPECT_TRUE(missing.contains(regex_replace(end, regex("FILE|5(?= min)"), "..."))) << end;
    }
    string section;
    for (string const& one : found(document, "\n## (ravelink\\S*)|`\\*{3} ([^`]*)`", "$1$2")) {
        section = one.starts_with("ravelink") ? one : section;
        --missing[section + ": " + one];
    }
    for (auto const& [line, times] : missing) {
        EXPECT_EQ(times, 0) << line;
    }

    // Whoever stands beside a device wants to know all of that, of every line.
    string const updater = document.substr(0, document.find("\n## ravelink-pack"));
    auto const lines = found(updater, "\n`\\*{3} ", "").size();
    for (char const* const label : {"Means", "Step", "Next", "Switch off"}) {
        EXPECT_EQ(found(updater, string("\n- ") + label + ": ", "").size(), lines) << label;
    }
}

}  // namespace
