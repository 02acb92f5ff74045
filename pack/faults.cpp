#include "pack/faults.h"

#include <cerrno>

#include "core/archive/archiveFormat.h"
#include "core/archive/descriptorRecord.h"
#include "core/text/message.h"
#include "pack/textNames.h"

namespace pack {

using core::StreamSequencerBuilder;
using core::String;

namespace {

using Cause = StreamSequencerBuilder::Cause;
using Failure = StreamSequencerBuilder::Failure;

/// How many units a text of a file may have.
int roomOf(StreamSequencerBuilder const& builder, core::StreamDescriptor::Text text) {
    for (auto const& slot : core::archive::descriptorSlots(builder.GetVersion())) {
        if (slot.text == text) {
            return slot.units;
        }
    }
    return 0;
}

/// What a manifest calls the text at fault.
String entryOf(Failure const& failure) {
    switch (failure.cause) {
        case Cause::sourceId:
            return "sourceId";
        case Cause::targetId:
            return "targetId";
        case Cause::attribute:
            return core::message("attribute[%1]", failure.index);
        default:
            return core::message("file[%1].%2", failure.index, nameOf(*failure.text));
    }
}

}  // namespace

String reasonOf(int result) {
    // The archive classes report a file that changed meanwhile as -EBUSY.
    return result == -EBUSY ? String("it changed while it was read")
                            : core::cLibraryErrorText(-result);
}

core::Fault fileFault(char const* title, String const& path, int result) {
    return core::fault(title, "\"%1\": %2", path, reasonOf(result));
}

core::Fault buildFault(StreamSequencerBuilder const& builder, String const& path, int result) {
    Failure const& failure = builder.GetFailure();
    // A cancelled build has no cause.
    if (failure.cause == Cause::target || failure.cause == Cause::none) {
        return fileFault("Archive not writable", path, result);
    }
    if (failure.cause == Cause::file && !failure.text) {
        return fileFault("File not readable", builder.File(failure.index).GetOriginalPath(),
                         result);
    }
    String const name = entryOf(failure);
    if (result == -EILSEQ) {
        return core::fault("Bad text", "%1 is not UTF-8", name);
    }
    int const room = failure.text ? roomOf(builder, *failure.text) : core::archive::textUnits;
    return room > 0
               ? core::fault("Text too long", "%1 may have %2 UTF-16 units", name, room)
               : core::fault("No room for text", "%1 is not part of this format version", name);
}

}  // namespace pack
