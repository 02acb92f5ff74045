#include "core/console/UsageText.h"

#include "core/console/Console.h"

namespace core::usage {

namespace {

// The values rule, not the everyday names of the colours: they count in the order of the
// terminal's own.
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

String option(String const& names, String const& meaning) {
    return String("\t").AppendNew(Console::color(names, optionColor)).AppendNew(meaning);
}

}  // namespace core::usage
