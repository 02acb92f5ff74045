#include <algorithm>
#include <climits>

#include "core/text/TextBuilder.h"
#include "core/time/Time.h"
#include "core/time/calendar.h"

namespace core {

namespace {

struct Fields {
    int year = 1970;
    int month = 1;
    int day = 1;
    int hour = 0;
    int minute = 0;
    int second = 0;
    int millisecond = 0;
};

struct Rule {
    std::string_view letters;  ///< as many as the least number of characters
    int Fields::*field;
    int lowest;
    int highest;
};

/// FromString also compares the day with its month.
constexpr Rule rules[] = {{"yyyy", &Fields::year, INT_MIN, INT_MAX},
                          {"mm", &Fields::month, 1, 12},
                          {"dd", &Fields::day, 1, 31},
                          {"HH", &Fields::hour, 0, 23},
                          {"MM", &Fields::minute, 0, 59},
                          {"SS", &Fields::second, 0, 59},
                          {"zzz", &Fields::millisecond, 0, 999}};

/// Returns the rule whose letters pattern begins with, null for plain text.
Rule const* findRule(std::string_view pattern) {
    for (Rule const& rule : rules) {
        if (pattern.starts_with(rule.letters)) {
            return &rule;
        }
    }
    return nullptr;
}

/// Returns the number of characters of a field at the start of text: its width or, for a year that
/// no field follows, the sign and all digits.
std::size_t fieldLength(std::string_view text, Rule const& rule, bool fieldFollows) {
    if (rule.lowest >= 0 || fieldFollows) {
        return std::min(rule.letters.size(), text.size());
    }
    std::size_t const sign = text.starts_with('-') ? 1 : 0;
    std::size_t const digits = text.substr(sign).find_first_not_of("0123456789");
    return digits != std::string_view::npos ? sign + digits : text.size();
}

/// Removes a field from the start of text and stores its value. Returns false if it is not a number
/// in the field's range.
bool parseField(std::string_view& text, Rule const& rule, bool fieldFollows, Fields& fields) {
    String const field(text.substr(0, fieldLength(text, rule, fieldFollows)));
    bool const signAllowed = rule.lowest < 0 && !fieldFollows;
    bool const signWrong = !signAllowed && !String::IsNumeric(field.FirstChar());
    auto const length = static_cast<std::size_t>(field.GetLength());
    if (signWrong || length < rule.letters.size() || !field.IsDecimal32()) {
        return false;
    }
    int const value = field.ToDecimal32();
    text.remove_prefix(length);
    fields.*rule.field = value;
    return value >= rule.lowest && value <= rule.highest;
}

}  // namespace

String Time::Format(String const& pattern) const {
    std::tm const tm = TM();
    auto const ms = static_cast<int>(calendar::floorRemainder(milliseconds_, 1000));
    Fields const fields{tm.tm_year + 1900, tm.tm_mon + 1, tm.tm_mday, tm.tm_hour,
                        tm.tm_min,         tm.tm_sec,     ms};
    TextBuilder result;
    std::string_view rest = pattern.View();
    while (!rest.empty()) {
        Rule const* const rule = findRule(rest);
        if (rule == nullptr) {
            result.Append(rest.front());
            rest.remove_prefix(1);
            continue;
        }
        auto const width = static_cast<int>(rule->letters.size());
        result.Append(String::format("%1")
                          .argi(1, fields.*rule->field, width, 10, String::AlignRight, '0')
                          .View());
        rest.remove_prefix(rule->letters.size());
    }
    return result.AsString();
}

bool Time::FromString(String const& text, String const& pattern) {
    Fields fields;
    std::string_view rest = text.View();
    std::string_view expected = pattern.View();
    bool hasField = false;
    while (!expected.empty()) {
        Rule const* const rule = findRule(expected);
        if (rule == nullptr) {
            if (!rest.starts_with(expected.front())) {
                return false;
            }
            rest.remove_prefix(1);
            expected.remove_prefix(1);
            continue;
        }
        expected.remove_prefix(rule->letters.size());
        bool const fieldFollows = findRule(expected) != nullptr;
        if (!parseField(rest, *rule, fieldFollows, fields)) {
            return false;
        }
        hasField = true;
    }
    if (!hasField || !rest.empty() ||
        fields.day > calendar::daysInMonth(fields.year, fields.month)) {
        return false;
    }
    *this = encode(fields.year, fields.month, fields.day, fields.hour, fields.minute, fields.second,
                   fields.millisecond);
    return true;
}

}  // namespace core
