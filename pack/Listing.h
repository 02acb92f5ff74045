#pragma once

#include "core/archive/StreamSequencerReader.h"
#include "core/text/String.h"

namespace pack {

/// Prints what an archive says of itself and of its files, as a table for people.
void printTable(core::StreamSequencerReader const& reader);

/// Prints the same as one JSON object on one line; path is that of the archive.
void printJson(core::String const& path, core::StreamSequencerReader const& reader);
/// The object for an archive that cannot be listed: path, and the error of title "=" message.
void printJsonError(core::String const& path, core::String const& error);

}  // namespace pack
