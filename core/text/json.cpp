#include "core/text/json.h"

#include "core/text/TextBuilder.h"
#include "core/text/printable.h"
#include "core/text/unicode.h"

namespace core {

String jsonString(String const& text) {
    TextBuilder json;
    json.Append('"');
    for (std::string_view rest = text.View(); !rest.empty();) {
        char32_t codePoint = 0;
        unicode::decodeCodePoint(rest, codePoint);
        if (isControl(codePoint)) {
            json.Append(String::format("\\u%1").argi(1, unsigned{codePoint}, 4, 16).View());
            continue;
        }
        if (codePoint == U'"' || codePoint == U'\\') {
            json.Append('\\');
        }
        unicode::appendCodePoint(codePoint, json);
    }
    json.Append('"');
    return json.AsString();
}

JsonValue JsonValue::Thousandths(long long number) {
    long long const decimals = number % 1000;
    JsonValue value(nullptr);
    value.json_ = message(decimals < 10    ? "%1.00%2"
                          : decimals < 100 ? "%1.0%2"
                                           : "%1.%2",
                          number / 1000, decimals);
    return value;
}

JsonValue JsonValue::Object(std::initializer_list<JsonMember> members) {
    JsonValue value(nullptr);
    value.json_ = message("{%1}", jsonMembers(members));
    return value;
}

String jsonMembers(std::initializer_list<JsonMember> members) {
    TextBuilder json;
    for (JsonMember const& member : members) {
        json.Append(json.View().empty() ? "\"" : ",\"");
        json.Append(member.name);
        json.Append("\":");
        json.Append(member.value.AsString().View());
    }
    return json.AsString();
}

}  // namespace core
