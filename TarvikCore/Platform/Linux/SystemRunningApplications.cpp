#include "Platform/Machine/RunningApplications.h"

namespace tarvik {

std::shared_ptr<const RunningApplications> makeSystemRunningApplications() {
    return makeProcessTableApplications({});
}

}  // namespace tarvik
