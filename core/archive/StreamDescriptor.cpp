#include "core/archive/StreamDescriptor.h"

#include "core/archive/StreamSequencer.h"
#include "core/archive/archiveFormat.h"

namespace core {

bool StreamDescriptor::IsCryptEnabled() const {
    if ((flags_ & archive::alwaysScrambled) != 0) {
        return true;
    }
    return (flags_ & archive::neverScrambled) == 0 && owner_.IsCryptDataEnabled();
}

void StreamDescriptor::CryptBlock(void* data, int length, unsigned long long position) const {
    if (IsCryptEnabled() && owner_.GetCryptMode() != StreamSequencer::CryptMode::None) {
        owner_.CryptBlock(data, length, position);
    }
}

}  // namespace core
