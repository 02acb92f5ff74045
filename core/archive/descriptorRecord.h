#pragma once

#include <span>

#include "core/archive/StreamDescriptor.h"
#include "core/archive/archiveFormat.h"

namespace core::archive {

/// A text in the record of a descriptor.
struct DescriptorSlot {
    StreamDescriptor::Text text;
    int offset;
    int units;
};

/// The texts that a descriptor has room for.
std::span<DescriptorSlot const> descriptorSlots(unsigned version);

/// Reads only offset and size into file.
void readExtent(unsigned char const* record, StreamDescriptor& file);
/// Fills file from a record of descriptorSize(version) bytes.
void readDescriptor(unsigned char const* record, unsigned version, StreamDescriptor& file);
/// Fills the record. Unless every text fits, the result says what is wrong with the first that does
/// not, which is stored in faulty; a text that the version has no slot for is too long.
[[nodiscard]] SlotResult writeDescriptor(StreamDescriptor const& file, unsigned version,
                                         unsigned char* record, StreamDescriptor::Text& faulty);

}  // namespace core::archive
