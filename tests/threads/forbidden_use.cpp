// What loggers do not allow, see logger_config.h: the thread sanitizer must report it.

#include <array>
#include <atomic>
#include <cstdlib>
#include <iostream>
#include <string_view>

#include "crowd.h"
#include "tarnwick/logging/log_record.h"
#include "tarnwick/logging/logger_config.h"

using namespace Tarnwick::Parser::Logging;
using Logger = std::shared_ptr<LoggerConfig>;

namespace {

constexpr int kRounds = 1000;
constexpr const char* kIdentity = "threads.forbidden";

// Does `work` in one thread, and all the while sets the target in another one.
template <typename Work>
void changeTargetDuring(const Logger& logger, const Work& work) {
    std::atomic<bool> isDone = false;
    runCrowd(2, [&](int thread) {
        if (thread == 0) {
            while (!isDone.load(std::memory_order_relaxed)) {
                logger->setTarget(LoggerConfig::TargetStderr);
            }
            return;
        }
        for (int round = 0; round < kRounds; ++round) {
            work();
        }
        isDone.store(true, std::memory_order_relaxed);
    });
}

void changeTargetWhileLogging(const Logger& logger) {
    changeTargetDuring(logger, [&] { logCritical(logger) << "record"; });
}

// Says in a record of the logger that it is there already.
void changeTargetWhileCreatingAgain(const Logger& logger) {
    changeTargetDuring(logger,
                       [] { (void)LoggerConfig::create(kIdentity, LoggerConfig::LogDebug); });
}

// Says in a record of the logger what it refuses.
void changeTargetWhileRefusingALevel(const Logger& logger) {
    changeTargetDuring(logger, [&] { (void)logger->setLevel("no level"); });
}

void writeFileFromTwoThreads(const Logger& logger) {
    logger->setTarget("/dev/null");
    runCrowd(2, [&](int) {
        for (int round = 0; round < kRounds; ++round) {
            logCritical(logger) << "record";
        }
    });
}

struct Use {
    std::string_view name;
    void (*make)(const Logger& logger);
};
constexpr std::array kUses{
    Use{"target-while-logging", changeTargetWhileLogging},
    Use{"target-while-creating-again", changeTargetWhileCreatingAgain},
    Use{"target-while-refusing-a-level", changeTargetWhileRefusingALevel},
    Use{"file-from-two-threads", writeFileFromTwoThreads},
};

}  // namespace

int main(int count, char** arguments) {
    const std::string_view name = count == 2 ? arguments[1] : "";
    for (const Use& use : kUses) {
        if (use.name == name) {
            use.make(LoggerConfig::create(kIdentity, LoggerConfig::LogDebug));
            return EXIT_SUCCESS;
        }
    }
    std::cerr << "no such use: " << name << '\n';
    return EXIT_FAILURE;
}
