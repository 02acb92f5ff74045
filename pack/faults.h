#pragma once

#include "core/archive/StreamSequencerBuilder.h"
#include "core/text/String.h"

namespace pack {

// What went wrong, as title "=" message.

/// A failed call on the file at path; result is its negative error code.
core::String fileFault(char const* title, core::String const& path, int result);

/// Why the builder's Write failed with result, in the words of a manifest; path is that of the
/// archive.
core::String buildFault(core::StreamSequencerBuilder const& builder, core::String const& path,
                        int result);

}  // namespace pack
