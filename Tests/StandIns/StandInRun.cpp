#include "StandIns/StandInRun.h"

#include "Platform/Processes/CommandRunner.h"
#include "Support/World.h"

#include <gtest/gtest.h>

#include <chrono>

namespace tarvik::test {

CommandResult runStandIn(const std::string& name, const std::vector<std::string>& arguments) {
    auto result = CommandRunner::run(programOfThisBuild("stand-ins/" + name), arguments, std::chrono::minutes(1));
    EXPECT_FALSE(result.timedOut) << name;
    return result;
}

}  // namespace tarvik::test
