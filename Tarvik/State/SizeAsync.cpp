#include "State/SizeAsync.h"

#include "Move/SizingService.h"

namespace tarvik {

QCoro::Task<std::int64_t> sizeAsync(Host host, fs::path path, Priority priority, Cancellation cancellation) {
    return inBackground(priority, [host = std::move(host), path = std::move(path), cancellation] {
        return SizingService::size(host, path, cancellation);
    });
}

}  // namespace tarvik
