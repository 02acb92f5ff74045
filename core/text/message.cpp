#include "core/text/message.h"

#include <string>
#include <system_error>

#include "core/text/TextBuilder.h"
#include "core/text/printable.h"
#include "sys/platform/Process.h"

namespace core {

namespace {

std::size_t const maxLines = 20;
int const maxDescriptionLength = 2048;

}  // namespace

String fillMessage(char const* pattern, std::span<MessageValue const> values) {
    TextBuilder text;
    for (std::string_view rest = pattern; !rest.empty();) {
        std::size_t const percent = rest.find('%');
        text.Append(rest.substr(0, percent));
        if (percent == rest.npos) {
            break;
        }
        rest.remove_prefix(percent);
        // '0' wraps around and so is out of range, like every other character.
        auto const index = rest.size() > 1 ? static_cast<unsigned char>(rest[1] - '1') : 9U;
        bool const filled = index < 9 && index < values.size();
        text.Append(filled ? values[index].View() : rest.substr(0, 1));
        rest.remove_prefix(filled ? 2 : 1);
    }
    return text.AsString();
}

String hex(unsigned long long value, int digits) {
    return String::format("0x%1").argi(1, value, digits, 16);
}

String errnoDescription(int number) {
    return String(sys::platform::errorText(number).c_str(), maxDescriptionLength);
}

String cLibraryErrorText(int number) {
    return String(std::generic_category().message(number).c_str(), maxDescriptionLength);
}

std::vector<Fault> faultsFromEntries(StringArray const& entries) {
    std::vector<Fault> errors;
    errors.reserve(static_cast<std::size_t>(entries.Count()));
    for (int i = 0; i < entries.Count(); ++i) {
        errors.push_back({entries[i].LeftOf('='), entries[i].RightOf('=')});
    }
    return errors;
}

String faultLine(Fault const& error) {
    return message("*** %1: %2", printable(error.title), printable(error.message));
}

std::vector<String> faultLines(std::vector<Fault> const& errors) {
    std::vector<String> lines;
    for (std::size_t i = 0; i < errors.size() && i < maxLines; ++i) {
        lines.push_back(faultLine(errors[i]));
    }
    if (errors.size() > maxLines) {
        lines.push_back(
            faultLine(fault("More errors", "There are %1 more", errors.size() - maxLines)));
    }
    return lines;
}

}  // namespace core
