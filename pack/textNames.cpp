#include "pack/textNames.h"

namespace pack {

char const* nameOf(core::StreamDescriptor::Text text) {
    static constexpr char const* names[] = {"name", "destination", "owner", "group", "command"};
    return names[static_cast<int>(text)];
}

char const* nameOf(core::StreamSequencer::CryptMode mode) {
    static constexpr char const* names[] = {"None", "Headers", "Data", "All"};
    return names[static_cast<int>(mode)];
}

}  // namespace pack
