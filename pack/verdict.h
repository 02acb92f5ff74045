#pragma once

#include <optional>

#include "core/archive/StreamSequencerReader.h"
#include "core/text/message.h"

namespace pack {

/// Returns the error of an archive that was read with the given result, with the offset of the
/// first invalid part; none for a valid archive.
std::optional<core::Fault> verdict(core::StreamSequencerReader const& reader, int result);

}  // namespace pack
