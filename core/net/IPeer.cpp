#include "core/net/IPeer.h"

namespace core {

IPeer::~IPeer() = default;

}  // namespace core
