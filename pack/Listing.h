#pragma once

#include "core/archive/StreamSequencerReader.h"
#include "core/text/message.h"

namespace pack {

/// Prints the headers of an archive and the table of its files.
void printTable(core::StreamSequencerReader const& reader);

/// Prints them as a JSON object on one line; path is that of the archive.
void printJson(core::String const& path, core::StreamSequencerReader const& reader);
/// Prints the JSON object of an archive that cannot be listed: its path and the error.
void printJsonError(core::String const& path, core::Fault const& error);

}  // namespace pack
