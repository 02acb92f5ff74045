#include <cstdint>

#include "core/text/StringArray.h"
#include "core/text/message.h"
#include "core/text/parseNumber.h"
#include "device/Scenario.h"
#include "sys/ConfFile.h"
#include "sys/file.h"
#include "sys/process.h"
#include "update/protocol/names.h"

namespace device {

using core::String;
using core::StringArray;

namespace {

struct StepName {
    char const* name;
    Step step;
};

constexpr StepName stepNames[] = {
    {"connect", Step::connect},
    {"request", Step::request},
    {"header", Step::header},
    {"data", Step::data},
    {"trailer", Step::trailer},
    {"checked", Step::checked},
    {"processing", Step::processing},
    {"complete", Step::complete},
    {"busy", Step::busy},
};

struct Range {
    std::uint32_t smallest;
    std::uint32_t largest;  ///< 0: the action has no such number
};

constexpr Range absent = {0, 0};
constexpr Range ms = {0, 86'400'000};
constexpr Range bytes = {1, 1'000'000'000};
constexpr Range times = {1, 1'000'000'000};
constexpr Range lessThanRecord = {1, update::recordSize - 1};

enum class Records { none, one, some };

struct ActionSyntax {
    char const* name;
    ActionType type;
    Range numbers[2];
    Records records;
};

constexpr ActionSyntax actionSyntaxes[] = {
    {"notify", ActionType::notify, {absent, absent}, Records::some},
    {"together", ActionType::together, {absent, absent}, Records::some},
    {"drip", ActionType::drip, {ms, absent}, Records::some},
    {"cut", ActionType::cut, {lessThanRecord, absent}, Records::one},
    {"wrongMagic", ActionType::wrongMagic, {absent, absent}, Records::some},
    {"wrongCrc", ActionType::wrongCrc, {absent, absent}, Records::some},
    {"garbage", ActionType::garbage, {bytes, absent}, Records::none},
    {"repeat", ActionType::repeat, {times, ms}, Records::some},
    {"flood", ActionType::flood, {absent, absent}, Records::some},
    {"wait", ActionType::wait, {ms, absent}, Records::none},
    {"silent", ActionType::silent, {absent, absent}, Records::none},
    {"slow", ActionType::slow, {bytes, ms}, Records::none},
    {"close", ActionType::close, {absent, absent}, Records::none},
    {"reset", ActionType::reset, {absent, absent}, Records::none},
};

ActionSyntax const* syntaxOf(String const& name) {
    for (ActionSyntax const& syntax : actionSyntaxes) {
        if (name.CompareIC(syntax.name) == 0) {
            return &syntax;
        }
    }
    return nullptr;
}

bool readUint32(String const& text, std::uint32_t& number) {
    unsigned long long value = 0;
    bool const read = core::parseWhole(text.View(), 0, UINT32_MAX, value);
    number = static_cast<std::uint32_t>(value);
    return read;
}

/// Returns the number in text, or the number that find returns for a name.
template <class Find>
std::optional<std::uint32_t> numberOrName(String const& text, Find find) {
    std::uint32_t number = 0;
    return readUint32(text, number) ? number : find(text.View());
}

/// Reads a notification: "Code" or "Code:Value".
std::optional<ScenarioRecord> readRecord(String const& text) {
    bool const hasValue = text.Find(':') >= 0;
    auto const code = numberOrName(hasValue ? text.LeftOf(':') : text, update::codeOfName);
    auto const value = hasValue ? numberOrName(text.RightOf(':'), update::valueOfName)
                                : std::optional<std::uint32_t>();
    if (!code || (hasValue && !value)) {
        return {};
    }
    return ScenarioRecord{*code, value};
}

/// Reads an action from its words. Returns an error message, or an empty string.
String readAction(StringArray const& words, ActionSyntax const& syntax, Action& action) {
    int next = 1;
    for (std::size_t i = 0; i < action.numbers.size() && syntax.numbers[i].largest > 0;
         ++i, ++next) {
        Range const& range = syntax.numbers[i];
        std::uint32_t& number = action.numbers[i];
        if (next >= words.Count() || !readUint32(words[next], number) || number < range.smallest ||
            number > range.largest) {
            return core::message("%1 needs a number from %2 to %3", syntax.name, range.smallest,
                                 range.largest);
        }
    }
    for (; next < words.Count(); ++next) {
        auto const record = readRecord(words[next]);
        if (!record || syntax.records == Records::none) {
            return core::message("%1 cannot be followed by %2", syntax.name, words[next]);
        }
        action.records.push_back(*record);
    }
    bool const enough = syntax.records == Records::none || !action.records.empty();
    if (!enough || (syntax.records == Records::one && action.records.size() > 1)) {
        return core::message(
            enough ? "%1 accepts only one notification" : "%1 needs a notification", syntax.name);
    }
    return {};
}

/// Reads the actions of a step.
std::vector<Action> readActions(String const& text, String const& step, sys::ConfFile& file) {
    std::vector<Action> actions;
    StringArray parts;
    text.Split(parts, ',');
    std::uint32_t after = 1;
    for (int i = 0; i < parts.Count(); ++i) {
        StringArray words;
        parts[i].Trim().Split(words, " \t");
        bool const isAfter = words.Count() > 0 && words[0].CompareIC("after") == 0;
        if (isAfter) {
            if (words.Count() != 2 || !readUint32(words[1], after) || after < 1 || step != "data") {
                file.AddError(step + ":", "after needs a positive number and works in data only");
            }
            continue;
        }
        ActionSyntax const* const syntax = words.Count() > 0 ? syntaxOf(words[0]) : nullptr;
        if (syntax == nullptr) {
            file.AddError(step + ":", core::message("unknown action \"%1\"", parts[i].Trim()));
            continue;
        }
        Action action;
        action.type = syntax->type;
        action.after = after;
        String const fault = readAction(words, *syntax, action);
        if (!fault.IsEmpty()) {
            file.AddError(step + ":", fault);
        }
        actions.push_back(std::move(action));
    }
    return actions;
}

void takeNumber(char const* name, std::uint32_t largest, sys::ConfFile& file,
                std::uint32_t& number) {
    if (unsigned long long value = 0; file.TakeNumber(name, 0, largest, value)) {
        number = static_cast<std::uint32_t>(value);
    }
}

}  // namespace

String findScenario(String const& name) {
    if (name.FindPathDelimiter() >= 0 || sys::file::exists(name)) {
        return name;
    }
    String const directory =
        sys::env::getProgramPath().GetFilePath().AppendNewPath(RAVELINK_SCENARIOS);
    for (char const* const extension : {"", ".conf"}) {
        if (String path = directory.AppendNewPath(name + extension); sys::file::exists(path)) {
            return path;
        }
    }
    return name;
}

bool loadScenario(String const& path, Scenario& scenario, std::vector<core::Fault>& errors) {
    std::size_t const before = errors.size();
    sys::ConfFile file("Bad scenario", errors);
    int const result = file.Load(path);
    if (result != 0) {
        errors.push_back(core::fault("Scenario not readable", "\"%1\": %2", path,
                                     core::cLibraryErrorText(-result)));
        return false;
    }
    for (StepName const& row : stepNames) {
        String text;
        if (file.Take(row.name, text)) {
            scenario.steps[row.step] = readActions(text, row.name, file);
        }
    }
    takeNumber("seed", UINT32_MAX, file, scenario.seed);
    takeNumber("receiveBuffer", bytes.largest, file, scenario.receiveBuffer);
    file.RejectUnknown();
    return errors.size() == before;
}

}  // namespace device
