// Log records that are dropped, and records that are written to a file.

#include <benchmark/benchmark.h>

#include "logging/log_record.h"
#include "logging/logger_config.h"

namespace Tarnwick::Parser::Logging {
namespace {

std::shared_ptr<LoggerConfig> loggerWithoutOutput(const char* identity) {
    auto logger = LoggerConfig::create(identity, LoggerConfig::LogWarning);
    logger->setTarget(std::string("/dev/null"));
    return logger;
}

const std::shared_ptr<LoggerConfig>& benchmarkLogger() {
    static const auto kLogger = loggerWithoutOutput("com.vexmoor.tarnwick.Benchmark");
    return kLogger;
}

void dropsATextRecord(benchmark::State& state) {
    const std::shared_ptr<LoggerConfig>& logger = benchmarkLogger();
    const std::string name = "USER";
    for (auto _ : state) {
        logDebug(logger) << "Failed to read '" << name << "' from environment variables";
    }
}

void writesATextRecord(benchmark::State& state) {
    const std::shared_ptr<LoggerConfig>& logger = benchmarkLogger();
    const std::string name = "USER";
    for (auto _ : state) {
        logError(logger) << "No such template '" << name << "'";
    }
}

void writesANumber(benchmark::State& state) {
    const std::shared_ptr<LoggerConfig>& logger = benchmarkLogger();
    for (auto _ : state) {
        logError(logger) << 123456;
    }
}

void writesAListOfNumbers(benchmark::State& state) {
    const std::shared_ptr<LoggerConfig>& logger = benchmarkLogger();
    const std::vector<int> numbers(100, 123456);
    for (auto _ : state) {
        logError(logger) << numbers;
    }
    state.SetItemsProcessed(state.iterations() * 100);
}

void asksWhetherALevelIsEnabled(benchmark::State& state) {
    const std::shared_ptr<LoggerConfig>& logger = benchmarkLogger();
    for (auto _ : state) {
        benchmark::DoNotOptimize(logger->isEnabled(LoggerConfig::LogDebug));
    }
}

BENCHMARK(dropsATextRecord);
BENCHMARK(writesATextRecord);
BENCHMARK(writesANumber);
BENCHMARK(writesAListOfNumbers);
BENCHMARK(asksWhetherALevelIsEnabled);

}  // namespace
}  // namespace Tarnwick::Parser::Logging
