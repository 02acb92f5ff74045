#include "core/archive/descriptorRecord.h"

#include <cstdint>
#include <cstring>

namespace core::archive {

namespace {

using Text = StreamDescriptor::Text;

constexpr DescriptorSlot newestSlots[] = {
    {Text::name, 128, 256},
    {Text::destination, 640, 1536},
    {Text::owner, 3712, textUnits},
    {Text::group, 3840, textUnits},
    {Text::commandLine, 3968, textUnits},
};
constexpr DescriptorSlot olderSlots[] = {
    {Text::name, 256, 256},
    {Text::destination, 768, 1536},
};

int const sizeOffset = 8;
int const flagsOffset = 16;
int const attributesOffset = 20;

DescriptorSlot const* findSlot(Text text, unsigned version) {
    for (DescriptorSlot const& slot : descriptorSlots(version)) {
        if (slot.text == text) {
            return &slot;
        }
    }
    return nullptr;
}

}  // namespace

std::span<DescriptorSlot const> descriptorSlots(unsigned version) {
    if (version == newestVersion) {
        return newestSlots;
    }
    return olderSlots;
}

void readExtent(unsigned char const* record, StreamDescriptor& file) {
    file.SetExtent(getWord<std::uint64_t>(record), getWord<std::uint64_t>(record + sizeOffset));
}

void readDescriptor(unsigned char const* record, unsigned version, StreamDescriptor& file) {
    readExtent(record, file);
    file.SetFlags(getWord<std::uint32_t>(record + flagsOffset));
    file.SetAttributes(getWord<std::uint32_t>(record + attributesOffset));
    for (DescriptorSlot const& slot : descriptorSlots(version)) {
        file.SetText(slot.text, readTextSlot(record + slot.offset, slot.units));
    }
}

SlotResult writeDescriptor(StreamDescriptor const& file, unsigned version, unsigned char* record,
                           Text& faulty) {
    std::memset(record, 0, static_cast<std::size_t>(descriptorSize(version)));
    putWord<std::uint64_t>(file.GetOffset(), record);
    putWord<std::uint64_t>(file.GetSize(), record + sizeOffset);
    putWord<std::uint32_t>(file.GetFlags(), record + flagsOffset);
    putWord<std::uint32_t>(file.GetAttributes(), record + attributesOffset);
    for (int i = 0; i < StreamDescriptor::textCount; ++i) {
        faulty = static_cast<Text>(i);
        DescriptorSlot const* const slot = findSlot(faulty, version);
        if (slot == nullptr && file.GetText(faulty).IsEmpty()) {
            continue;
        }
        SlotResult const result =
            slot != nullptr
                ? writeTextSlot(file.GetText(faulty), record + slot->offset, slot->units)
                : SlotResult::tooLong;
        if (result != SlotResult::written) {
            return result;
        }
    }
    return SlotResult::written;
}

}  // namespace core::archive
