#pragma once

#include <concepts>
#include <cstddef>
#include <initializer_list>
#include <optional>

#include "core/text/String.h"
#include "core/text/message.h"

namespace core {

/// Returns text as a JSON string, with its quotes. Control characters (see isControl) are escaped;
/// invalid UTF-8 becomes U+FFFD.
[[nodiscard]] String jsonString(String const& text);

/// A value as JSON: a string, a truth value, a number, null or an object.
class JsonValue {
public:
    JsonValue(String const& text) : json_(jsonString(text)) {}
    JsonValue(char const* text) : json_(jsonString(text)) {}
    JsonValue(bool value) : json_(value ? "true" : "false") {}
    template <std::integral Number>
    JsonValue(Number number) : json_(message("%1", number)) {}

    JsonValue(std::nullptr_t) : json_("null") {}
    template <class Value>
    JsonValue(std::optional<Value> const& value)
        : JsonValue(value ? JsonValue(*value) : JsonValue(nullptr)) {}
    /// Returns the number of thousandths as a number with three decimals.
    static JsonValue Thousandths(long long number);
    static JsonValue Object(std::initializer_list<struct JsonMember> members);

    String const& AsString() const { return json_; }

private:
    String json_;
};

/// A member of a JSON object. The name must not need escapes.
struct JsonMember {
    char const* name;
    JsonValue value;
};

/// Returns the members as JSON, separated by commas and without the braces of the object.
[[nodiscard]] String jsonMembers(std::initializer_list<JsonMember> members);

}  // namespace core
