#include <algorithm>
#include <vector>

#include "core/runtime/Application.h"
#include "fuzz/Input.h"
#include "fuzz/require.h"
#include "tests/support/StatusDirectory.h"

namespace {

using core::Application;
using core::String;
using core::StringArray;

struct FuzzedApplication : private support::StatusDirectory, public Application {
    FuzzedApplication() : Application("options") {}
};

Application& application() {
    static FuzzedApplication theApplication;
    return theApplication;
}

struct Stored {
    String shortName;
    String longName;
    String values;
};

std::vector<Stored> storedOptions() {
    std::vector<Stored> all(static_cast<std::size_t>(application().CountOptions()));
    for (std::size_t i = 0; i < all.size(); ++i) {
        Stored& each = all[i];
        require(application().GetOption(static_cast<int>(i), each.shortName, each.longName,
                                        each.values));
    }
    return all;
}

/// Whether the grammar has the option and lets it have so many values.
bool allows(StringArray const& grammar, Stored const& option) {
    int const given = option.values.IsEmpty() ? 0 : option.values.CountChars('|') + 1;
    for (int i = 0; i < grammar.Count(); ++i) {
        String shortName;
        String longName;
        Application::SplitOption(grammar.GetNameByIndex(i), shortName, longName);
        if (shortName == option.shortName && longName == option.longName &&
            std::max(grammar.GetValueByIndex(i).ToDecimal32(), 0) == given) {
            return true;
        }
    }
    return false;
}

/// Whether no word can mean two entries: each has both its names, and shares none.
bool isClear(StringArray const& grammar) {
    for (int i = 0; i < grammar.Count(); ++i) {
        String shortName;
        String longName;
        Application::SplitOption(grammar.GetNameByIndex(i), shortName, longName);
        if (shortName.IsEmpty() || longName.IsEmpty()) {
            return false;
        }
        for (int other = 0; other < i; ++other) {
            if (Application::SameOption(grammar.GetNameByIndex(other), grammar.GetNameByIndex(i))) {
                return false;
            }
        }
    }
    return true;
}

void requireSense(String const& grammar, std::vector<Stored> const& options,
                  StringArray const& errors, std::size_t given) {
    StringArray entries;
    grammar.Split(entries, '>');
    bool const clear = isClear(entries);
    for (Stored const& option : options) {
        require(!clear || allows(entries, option));
        String values;
        require(option.shortName.IsEmpty() ||
                application().GetOptionValues(option.shortName, values));
    }
    for (int i = 0; i < errors.Count(); ++i) {
        String const title = errors.GetNameByIndex(i);
        require(title == "Invalid option" || title == "Invalid number of arguments");
    }
    std::size_t const accountedFor = options.size() + static_cast<std::size_t>(errors.Count());
    require(accountedFor <= given && (accountedFor > 0 || given == 0));
}

}  // namespace

/// A line with a grammar, then a line for each word.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    Input input(data, size);
    String const grammar(input.Line().c_str());
    std::vector<std::string> lines = {"program"};
    while (!input.IsEmpty()) {
        lines.push_back(input.Line());
    }
    std::vector<char const*> words;
    for (std::string const& line : lines) {
        words.push_back(line.c_str());
    }

    // The second time shows that nothing is left of the first.
    for (int round = 0; round < 2; ++round) {
        StringArray errors;
        require(application().CommandLinePrepare(static_cast<int>(words.size()), words.data(),
                                                 grammar, errors));
        auto const given = std::count_if(lines.begin(), lines.end(),
                                         [](auto const& line) { return line.starts_with('-'); });
        requireSense(grammar, storedOptions(), errors, static_cast<std::size_t>(given));
    }
    return 0;
}
