#pragma once

#include "core/archive/StreamSequencerReader.h"
#include "core/text/message.h"

namespace pack {

/// Prints what an archive says of itself and of its files, as a table for people.
void printTable(core::StreamSequencerReader const& reader);

/// Prints the same as one JSON object on one line; path is that of the archive.
void printJson(core::String const& path, core::StreamSequencerReader const& reader);
/// The object for an archive that cannot be listed: its path and the error.
void printJsonError(core::String const& path, core::Fault const& error);

}  // namespace pack
