#pragma once

namespace core::crc {

/// Makes the checksums ready; 0 when they are. Programs call it once at start-up.
/// The tables are part of the program, so that no update can ever meet empty ones.
int init();

}  // namespace core::crc
