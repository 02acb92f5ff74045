#include "core/console/ConsolePiece.h"

#include <utility>

namespace core {

ConsolePiece ConsolePiece::TakeFrom(std::string_view& text) {
    constexpr std::string_view start = "\x1B[";

    std::size_t const found = text.find(start);
    if (found == std::string_view::npos) {
        return {std::exchange(text, {}), {}, '\0'};
    }
    ConsolePiece piece{text.substr(0, found), {}, '\0'};
    std::string_view const sequence = text.substr(found + start.size());
    std::size_t const end = sequence.find_first_not_of("0123456789;");
    if (end == std::string_view::npos) {
        text = {};
        return piece;
    }
    piece.parameters = sequence.substr(0, end);
    piece.command = sequence[end];
    text = sequence.substr(end + 1);
    return piece;
}

}  // namespace core
