#include "MovePlan/MoveJob.h"

#include "Platform/Basics/Identifier.h"

#include <utility>

namespace tarvik {

MoveJob::MoveJob(std::string jobLabel, fs::path from, fs::path to, JobStatus jobStatus, std::int64_t total,
                 std::int64_t copied)
    : id(newIdentifier()),
      label(std::move(jobLabel)),
      source(std::move(from)),
      destination(std::move(to)),
      status(std::move(jobStatus)),
      bytesTotal(total),
      bytesCopied(copied) {}

}  // namespace tarvik
