#pragma once

#include "core/archive/StreamSequencerReader.h"
#include "core/text/message.h"

namespace pack {

/// Prints the headers of an archive and the table of its files; of a damaged archive those that
/// were read, so nothing if its header is invalid.
void printTable(core::StreamSequencerReader const& reader);

/// Prints them as a JSON object on one line, with the path of the archive and, unless it is null,
/// the error of a damaged archive.
void printJson(core::String const& path, core::StreamSequencerReader const& reader,
               core::Fault const* error);

}  // namespace pack
