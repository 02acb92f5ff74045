#pragma once

#include "core/archive/StreamDescriptor.h"
#include "core/archive/StreamSequencer.h"

/// The names of texts and crypt modes in manifests, listings and messages.
namespace pack {

inline constexpr core::StreamDescriptor::Text allTexts[] = {
    core::StreamDescriptor::Text::name,        core::StreamDescriptor::Text::destination,
    core::StreamDescriptor::Text::owner,       core::StreamDescriptor::Text::group,
    core::StreamDescriptor::Text::commandLine,
};
inline constexpr core::StreamSequencer::CryptMode allModes[] = {
    core::StreamSequencer::CryptMode::None,
    core::StreamSequencer::CryptMode::Headers,
    core::StreamSequencer::CryptMode::Data,
    core::StreamSequencer::CryptMode::All,
};

inline char const* nameOf(core::StreamDescriptor::Text text) {
    static constexpr char const* names[] = {"name", "destination", "owner", "group", "command"};
    return names[static_cast<int>(text)];
}

inline char const* nameOf(core::StreamSequencer::CryptMode mode) {
    static constexpr char const* names[] = {"None", "Headers", "Data", "All"};
    return names[static_cast<int>(mode)];
}

}  // namespace pack
