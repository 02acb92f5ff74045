#include "program/usage.h"

#include <algorithm>

#include "core/console/Console.h"
#include "core/console/lines.h"
#include "core/text/TextBuilder.h"

namespace program::usage {

using core::Console;
using core::String;

namespace {

// By number: the names of the enumerators are those of the codes 30 to 37 and 90 to 97.
constexpr auto grey = Console::Color{7};
constexpr auto headingColor = Console::Color{11};
constexpr auto optionColor = Console::Color{14};
constexpr auto white = Console::Color{15};

}  // namespace

String heading(String const& text) {
    return Console::color(text, headingColor);
}

String literal(String const& text) {
    return Console::color(text, white);
}

String optional(String const& text) {
    return Console::color(text, grey);
}

void print(std::initializer_list<Line> lines) {
    int longest = 0;
    for (Line const& line : lines) {
        longest = std::max(longest, line.meaning.IsEmpty() ? 0 : line.text.GetLength());
    }
    // Print the screen in one write: with one for each line, programs would start slower.
    core::TextBuilder screen;
    for (Line const& line : lines) {
        if (line.meaning.IsEmpty()) {
            screen.Append(line.text.View());
        } else {
            String const padding = String::OfChar(' ', longest + 2 - line.text.GetLength());
            screen.Append('\t');
            screen.Append(Console::color(line.text + padding, optionColor).View());
            screen.Append(": ");
            screen.Append(line.meaning.View());
        }
        screen.Append('\n');
    }
    core::printLine(screen.AsString());
}

}  // namespace program::usage
