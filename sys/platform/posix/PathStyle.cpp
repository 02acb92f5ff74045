#include "sys/platform/PathStyle.h"

namespace sys {

PathStyle const& pathStyle() {
    return posixPathStyle;
}

}  // namespace sys
