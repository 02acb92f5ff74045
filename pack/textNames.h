#pragma once

#include "core/archive/StreamDescriptor.h"
#include "core/archive/StreamSequencer.h"

/// The words of manifests, listings and messages for what an archive holds.
namespace pack {

/// "name", "destination", "owner", "group", "command".
char const* nameOf(core::StreamDescriptor::Text text);
/// "None", "Headers", "Data", "All".
char const* nameOf(core::StreamSequencer::CryptMode mode);

/// The texts of a file and the modes, to go through.
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

}  // namespace pack
