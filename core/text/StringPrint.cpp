#include <algorithm>
#include <cstdio>

#include "core/text/String.h"
#include "core/text/TextBuilder.h"

namespace core {

String String::GetAligned(int width, Align align, char fill) const {
    std::string_view const text = View();
    if (width <= static_cast<int>(text.size())) {
        return *this;
    }
    TextBuilder result;
    result.AppendAligned(text, width, align, fill);
    return result.AsString();
}

String String::sprintf(char const* format, ...) {
    va_list args;
    va_start(args, format);
    String result = vsprintf(format, args);
    va_end(args);
    return result;
}

String String::vsprintf(char const* format, va_list args) {
    if (format == nullptr) {
        return {};
    }
    char text[512];
    va_list again;
    va_copy(again, args);
    // The checker does not see that the caller started args.
    // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized)
    int const length = std::vsnprintf(text, sizeof text, format, args);
    String result;
    if (length < static_cast<int>(sizeof text)) {
        result.SetString(text, std::max(length, 0));
    } else {
        int const room = std::min(length, MaxLength);
        char* const buffer = result.GetBuffer(room);
        std::vsnprintf(buffer, static_cast<std::size_t>(room) + 1, format, again);
    }
    va_end(again);
    return result;
}

String String::FormatByteSize(long long bytes, bool roundUp) {
    struct Unit {
        double bytes;
        char const* name;
    };
    static constexpr Unit units[] = {{1099511627776.0, "TB"},
                                     {1073741824.0, "GB"},
                                     {1048576.0, "MB"},
                                     {1024.0, "KB"},
                                     {1.0, "B"}};

    auto const value = static_cast<double>(bytes);
    auto const* const unit = std::find_if(std::begin(units), std::end(units) - 1,
                                          [&](Unit each) { return value > 1.5 * each.bytes; });
    double const scaled = value / unit->bytes;
    char text[64];
    if (roundUp) {
        // Not std::ceil: it alone would load the mathematical library at each start.
        auto const whole = static_cast<long long>(scaled);
        int const rest = static_cast<double>(whole) < scaled ? 1 : 0;
        std::snprintf(text, sizeof text, "%lli %s", whole + rest, unit->name);
    } else {
        std::snprintf(text, sizeof text, "%0.1f %s", scaled, unit->name);
    }
    return text;
}

String FormatByteSize(long long bytes, bool roundUp) {
    return String::FormatByteSize(bytes, roundUp);
}

}  // namespace core
