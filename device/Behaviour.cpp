#include "device/Behaviour.h"

namespace device {

Behaviour::~Behaviour() = default;

bool Behaviour::Act(Moment const& moment, Wire& wire) {
    return !moment.answer || wire.Notify(*moment.answer);
}

}  // namespace device
