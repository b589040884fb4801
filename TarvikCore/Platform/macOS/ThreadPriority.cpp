#include "Platform/Processes/ThreadPriority.h"

#include <pthread/qos.h>

namespace tarvik {

void ThreadPriority::lower() noexcept {
    ::pthread_set_qos_class_self_np(QOS_CLASS_UTILITY, 0);
}

}  // namespace tarvik
