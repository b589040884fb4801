#include "State/Threads/SizeAsync.h"

#include "Platform/Storage/SizingService.h"

namespace tarvik {

QCoro::Task<std::int64_t> sizeAsync(Host host, fs::path path, Priority priority, Cancellation cancellation) {
    const auto measure = [host = std::move(host), path = std::move(path), cancellation = std::move(cancellation)] {
        return SizingService::size(host, path, cancellation);
    };
    return inBackground(priority, measure);
}

}  // namespace tarvik
