#pragma once

#include <optional>

#include "core/archive/StreamSequencerBuilder.h"
#include "core/archive/StreamSequencerReader.h"
#include "core/text/message.h"

/// The errors of ravelink-pack. A result is a negative errno value.
namespace pack {

/// Returns the reason of a failed call.
core::String reasonOf(int result);

/// Returns the error of a failed call on the file at path.
core::Fault fileError(char const* title, core::String const& path, int result);

/// The list of an archive's files.
enum class Source { manifest, tree };

/// Returns the error of the builder's last Write, which failed with result, in terms of the source;
/// path is that of the archive.
core::Fault buildError(core::StreamSequencerBuilder const& builder, Source source,
                       core::String const& path, int result);

/// Returns the error of an archive that was read with this StreamSequencerReader::Result, with the
/// offset of the first invalid part; none for a valid archive.
std::optional<core::Fault> archiveError(core::StreamSequencerReader const& reader, int result);

}  // namespace pack
