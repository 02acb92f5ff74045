#pragma once

#include "core/archive/StreamSequencerBuilder.h"
#include "core/text/message.h"

namespace pack {

/// Returns the reason of a failed call in words; result is its negative errno value.
core::String reasonOf(int result);

/// A failed call on the file at path; result is its negative errno value.
core::Fault fileFault(char const* title, core::String const& path, int result);

/// Why the builder's Write failed with result, in the words of a manifest; path is that of the
/// archive.
core::Fault buildFault(core::StreamSequencerBuilder const& builder, core::String const& path,
                       int result);

}  // namespace pack
