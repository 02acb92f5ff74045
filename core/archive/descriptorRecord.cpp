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

int const sizeAt = 8;
int const flagsAt = 16;
int const attributesAt = 20;

DescriptorSlot const* slotOf(Text text, unsigned version) {
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
    file.SetExtent(getWord<std::uint64_t>(record), getWord<std::uint64_t>(record + sizeAt));
}

void readDescriptor(unsigned char const* record, unsigned version, StreamDescriptor& file) {
    readExtent(record, file);
    file.SetFlags(getWord<std::uint32_t>(record + flagsAt));
    file.SetAttributes(getWord<std::uint32_t>(record + attributesAt));
    for (DescriptorSlot const& slot : descriptorSlots(version)) {
        file.SetText(slot.text, readTextSlot(record + slot.offset, slot.units));
    }
}

SlotResult writeDescriptor(StreamDescriptor const& file, unsigned version, unsigned char* record,
                           Text& faulty) {
    std::memset(record, 0, static_cast<std::size_t>(descriptorSize(version)));
    putWord<std::uint64_t>(file.GetOffset(), record);
    putWord<std::uint64_t>(file.GetSize(), record + sizeAt);
    putWord<std::uint32_t>(file.GetFlags(), record + flagsAt);
    putWord<std::uint32_t>(file.GetAttributes(), record + attributesAt);
    for (int i = 0; i < StreamDescriptor::textCount; ++i) {
        faulty = static_cast<Text>(i);
        DescriptorSlot const* const slot = slotOf(faulty, version);
        SlotResult const result =
            slot != nullptr
                ? writeTextSlot(file.GetText(faulty), record + slot->offset, slot->units)
            : file.GetText(faulty).IsEmpty() ? SlotResult::written
                                             : SlotResult::tooLong;
        if (result != SlotResult::written) {
            return result;
        }
    }
    return SlotResult::written;
}

}  // namespace core::archive
