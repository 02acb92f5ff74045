#include <algorithm>
#include <limits>
#include <string>
#include <string_view>

#include "core/runtime/Application.h"

namespace core {

namespace {

int const growthStep = 16;

/// Whether two names are equal, ignoring case; an empty name equals no other.
bool sameName(String const& one, String const& other) {
    return one.GetLength() > 0 && one.CompareIC(other) == 0;
}

/// Returns the number of values that an entry of a grammar requires. Without a number every use of
/// the option is an error, so a forgotten one is found at the first try.
int valueCount(String const& text) {
    return text.GetLength() == 0 ? std::numeric_limits<int>::max()
                                 : std::max(text.ToDecimal32(0), 0);
}

/// Returns the index of the option's entry in the grammar, or -1.
int findInGrammar(StringArray const& grammar, String const& key) {
    for (int i = 0; i < grammar.Count(); ++i) {
        if (Application::SameOption(grammar.GetNameByIndex(i), key)) {
            return i;
        }
    }
    return -1;
}

/// An option whose values are still being collected.
struct PendingOption {
    String key;          ///< "short|" or "|long"; empty before the first option
    std::string values;  ///< joined by "|"; a std::string, because it grows in place

    void Begin(String const& word, bool isLong) {
        int const equals = word.Find('=', 0);
        String const name = equals > 0 ? word.Left(equals) : word;
        values = equals > 0 ? word.View().substr(static_cast<std::size_t>(equals) + 1) : "";
        key = isLong ? String("|").AppendNew(name) : name.AppendNew('|');
    }

    void AddValue(std::string_view word) {
        if (key.GetLength() == 0) {
            // There are no positional arguments: drop arguments before the first option.
            return;
        }
        values.append(values.empty() ? "" : "|").append(word);
    }
};

}  // namespace

bool Application::CommandLinePrepare(int argc, char const* const* argv, String const& grammar,
                                     StringArray& errors) {
    Options().Clear();
    StringArray entries(growthStep);
    grammar.Split(entries, '>');

    PendingOption pending;
    auto const commit = [&] {
        if (pending.key.GetLength() > 0) {
            AddToArguments(pending.key, String(pending.values), entries, errors);
        }
    };
    for (int i = 1; i < argc; ++i) {
        if (argv[i] == nullptr) {
            continue;
        }
        String const word(argv[i]);
        bool const isLong = word.StartsWith("--");
        if (!isLong && !word.StartsWith("-")) {
            pending.AddValue(word.View());
            continue;
        }
        commit();
        pending.Begin(word.Copy(isLong ? 2 : 1, -1), isLong);
    }
    commit();
    return true;
}

int Application::AddToArguments(String const& key, String const& values, StringArray const& grammar,
                                StringArray& errors) {
    String const shown = Requote(key).AppendNew(' ');
    int const entry = findInGrammar(grammar, key);
    if (entry < 0) {
        errors.Add("Invalid option", shown.AppendNew(values));
        return -1;
    }
    Application* const application = Instance();
    String const name = grammar.GetNameByIndex(entry);
    int const stored = application != nullptr ? application->FindOptionIndex(name) : -1;
    String gathered = values;
    if (stored >= 0) {
        String const before = application->options_->GetValueByIndex(stored);
        if (before.GetLength() > 0) {
            gathered = before.AppendNew('|').AppendNew(values);
        }
    }
    int const given = gathered.GetLength() > 0 ? gathered.CountChars('|') + 1 : 0;
    if (given != valueCount(grammar.GetValueByIndex(entry))) {
        errors.Add("Invalid number of arguments", shown.AppendNew(gathered.Replace("|", " ")));
        return -1;
    }
    if (application == nullptr) {
        return -1;
    }
    if (stored < 0) {
        return application->Options().Add(name, gathered);
    }
    application->options_->SetValueByIndex(stored, gathered);
    return stored;
}

StringArray& Application::Options() {
    if (!options_) {
        options_.Set(new StringArray(growthStep));
    }
    return *options_;
}

bool Application::FindOption(String const& query) const {
    return FindOptionIndex(query) >= 0;
}

bool Application::GetOptionValues(String const& query, String& values) const {
    int const index = FindOptionIndex(query);
    if (index < 0) {
        return false;
    }
    values = options_->GetValueByIndex(index);
    return true;
}

int Application::FindOptionIndex(String const& query) const {
    String queryShort;
    String queryLong;
    SplitOption(query, queryShort, queryLong);
    if (query.Find('|', 0) < 0) {
        queryLong = queryShort;
    }
    for (int i = 0; i < CountOptions(); ++i) {
        String shortName;
        String longName;
        SplitOption(options_->GetNameByIndex(i), shortName, longName);
        if (sameName(shortName, queryShort) || sameName(longName, queryLong)) {
            return i;
        }
    }
    return -1;
}

int Application::CountOptions() const {
    return options_ ? options_->Count() : 0;
}

bool Application::GetOption(int index, String& shortName, String& longName, String& values) const {
    if (index < 0 || index >= CountOptions()) {
        return false;
    }
    SplitOption(options_->GetNameByIndex(index), shortName, longName);
    values = options_->GetValueByIndex(index);
    return true;
}

void Application::SplitOption(String const& option, String& shortName, String& longName) {
    int const bar = option.Find('|', 0);
    shortName = bar < 0 ? option : option.Left(bar);
    longName = bar < 0 ? String() : option.Copy(bar + 1, -1);
}

bool Application::SameOption(String const& one, String const& other) {
    String oneShort;
    String oneLong;
    String otherShort;
    String otherLong;
    SplitOption(one, oneShort, oneLong);
    SplitOption(other, otherShort, otherLong);
    return oneShort.CompareIC(otherShort) == 0 || oneLong.CompareIC(otherLong) == 0;
}

String Application::Requote(String const& option) {
    String shortName;
    String longName;
    SplitOption(option, shortName, longName);
    if (longName.GetLength() > 0) {
        return String("--").AppendNew(longName);
    }
    return shortName.GetLength() > 0 ? String("-").AppendNew(shortName) : String();
}

}  // namespace core
