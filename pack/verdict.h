#pragma once

#include "core/archive/StreamSequencerReader.h"
#include "core/text/String.h"

namespace pack {

/// What is wrong with an archive that was read with the given result, as title "=" message with the
/// offset of the first thing that is wrong; empty when nothing is.
core::String verdict(core::StreamSequencerReader const& reader, int result);

}  // namespace pack
