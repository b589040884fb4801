#include "State/SizeAsync.h"

#include "Platform/SizingService.h"

namespace tarvik {

QCoro::Task<std::int64_t> sizeAsync(Host host, fs::path path, Priority priority, Cancellation cancellation) {
    const auto measure = [host = std::move(host), path = std::move(path), cancellation] {
        return SizingService::size(host, path, cancellation);
    };
    return inBackground(priority, measure);
}

}  // namespace tarvik
