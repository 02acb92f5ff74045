#include <algorithm>
#include <array>

#include "core/text/TextBuilder.h"
#include "core/time/Time.h"
#include "core/time/calendar.h"

namespace core {

namespace {

enum Field { Year, Month, Day, Hour, Minute, Second, Millisecond, FieldCount };

/// The fields in the order of Field.
using Values = std::array<int, FieldCount>;

struct Rule {
    std::string_view letters;
    int lowest;
    int highest;
};

/// The day is also held against its month.
constexpr std::array<Rule, FieldCount> rules{{{"yyyy", INT_MIN, INT_MAX},
                                              {"mm", 1, 12},
                                              {"dd", 1, 31},
                                              {"HH", 0, 23},
                                              {"MM", 0, 59},
                                              {"SS", 0, 59},
                                              {"zzz", 0, 999}}};

/// The rule whose letters stand at the front of pattern; rules.end() for plain text.
auto ruleAt(std::string_view pattern) {
    return std::find_if(rules.begin(), rules.end(),
                        [&](Rule const& rule) { return pattern.starts_with(rule.letters); });
}

/// How many characters of text are the field's: its width, but all digits and the sign of a year
/// that stands alone.
std::size_t fieldLength(std::string_view text, Rule const& rule, bool fieldFollows) {
    if (rule.lowest >= 0 || fieldFollows) {
        return std::min(rule.letters.size(), text.size());
    }
    std::size_t const sign = text.starts_with('-') ? 1 : 0;
    std::size_t const digits = text.substr(sign).find_first_not_of("0123456789");
    return digits != std::string_view::npos ? sign + digits : text.size();
}

/// Takes one field away from the front of text; false if it is not a number in range.
bool takeField(std::string_view& text, Rule const& rule, bool fieldFollows, int& value) {
    String const field(text.substr(0, fieldLength(text, rule, fieldFollows)));
    bool const signAllowed = rule.lowest < 0 && !fieldFollows;
    bool const signWrong = !signAllowed && !String::IsNumeric(field.FirstChar());
    auto const length = static_cast<std::size_t>(field.GetLength());
    if (signWrong || length < rule.letters.size() || !field.IsDecimal32()) {
        return false;
    }
    value = field.ToDecimal32();
    text.remove_prefix(length);
    return value >= rule.lowest && value <= rule.highest;
}

}  // namespace

String Time::Format(String const& pattern) const {
    std::tm const fields = TM();
    auto const ms = static_cast<int>(calendar::floorRemainder(milliseconds_, 1000));
    Values const values{fields.tm_year + 1900,
                        fields.tm_mon + 1,
                        fields.tm_mday,
                        fields.tm_hour,
                        fields.tm_min,
                        fields.tm_sec,
                        ms};
    TextBuilder result;
    std::string_view rest = pattern.View();
    while (!rest.empty()) {
        auto const* const rule = ruleAt(rest);
        if (rule == rules.end()) {
            result.Append(rest.front());
            rest.remove_prefix(1);
            continue;
        }
        auto const width = static_cast<int>(rule->letters.size());
        int const value = values[static_cast<std::size_t>(rule - rules.begin())];
        result.Append(
            String::format("%1").argi(1, value, width, 10, String::AlignRight, '0').View());
        rest.remove_prefix(rule->letters.size());
    }
    return result.AsString();
}

bool Time::FromString(String const& text, String const& pattern) {
    Values values{1970, 1, 1, 0, 0, 0, 0};
    std::string_view rest = text.View();
    std::string_view expected = pattern.View();
    bool anyField = false;
    while (!expected.empty()) {
        auto const* const rule = ruleAt(expected);
        if (rule == rules.end()) {
            if (!rest.starts_with(expected.front())) {
                return false;
            }
            rest.remove_prefix(1);
            expected.remove_prefix(1);
            continue;
        }
        expected.remove_prefix(rule->letters.size());
        bool const fieldFollows = ruleAt(expected) != rules.end();
        if (!takeField(rest, *rule, fieldFollows,
                       values[static_cast<std::size_t>(rule - rules.begin())])) {
            return false;
        }
        anyField = true;
    }
    if (!anyField || !rest.empty() ||
        values[Day] > calendar::daysInMonth(values[Year], values[Month])) {
        return false;
    }
    *this = encode(values[Year], values[Month], values[Day], values[Hour], values[Minute],
                   values[Second], values[Millisecond]);
    return true;
}

}  // namespace core
