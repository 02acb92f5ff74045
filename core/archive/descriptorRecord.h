#pragma once

#include <span>

#include "core/archive/StreamDescriptor.h"
#include "core/archive/archiveFormat.h"

namespace core::archive {

/// The position of a text in the record of a descriptor.
struct DescriptorSlot {
    StreamDescriptor::Text text;
    int offset;  ///< in bytes
    int units;   ///< capacity in UTF-16 units
};

/// Returns the slots of a descriptor in this format version.
std::span<DescriptorSlot const> descriptorSlots(unsigned version);

/// Reads the offset and size of the data from a record into file.
void readExtent(unsigned char const* record, StreamDescriptor& file);
/// Reads all of file from a record of descriptorSize(version) bytes.
void readDescriptor(unsigned char const* record, unsigned version, StreamDescriptor& file);
/// Fills a record of descriptorSize(version) bytes. If a text does not fit, stores the first such
/// text in faulty and returns its result, which is tooLong if the version has no slot for it.
[[nodiscard]] SlotResult writeDescriptor(StreamDescriptor const& file, unsigned version,
                                         unsigned char* record, StreamDescriptor::Text& faulty);

}  // namespace core::archive
