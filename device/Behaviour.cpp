#include "device/Behaviour.h"

namespace device {

Behaviour::~Behaviour() = default;

bool Behaviour::OnStep(StepContext const& context, DeviceConnection& connection) {
    return !context.defaultReply || connection.Notify(*context.defaultReply);
}

}  // namespace device
