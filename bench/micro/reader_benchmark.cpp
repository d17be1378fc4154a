// The line reader with the file iterator: what one line of each kind costs.

#include <benchmark/benchmark.h>

#include "config_file.h"
#include "scratch_file.h"

namespace Tarnwick::Parser {
namespace {

constexpr int kLines = 10'000;

std::string repeated(const std::string& line) {
    std::string text;
    for (int count = 0; count < kLines; ++count) {
        text += line;
    }
    return text;
}

void readAll(benchmark::State& state, const std::string& line) {
    const ScratchFile scratch(repeated(line));
    for (auto _ : state) {
        ConfigFile file(scratch.path());
        ConfigFileIterator entry(file);
        while (entry.hasEntry()) {
            benchmark::DoNotOptimize(entry.value().data());
            ++entry;
        }
    }
    state.SetItemsProcessed(state.iterations() * kLines);
}

void opensAnEmptyFile(benchmark::State& state) {
    const ScratchFile scratch("");
    for (auto _ : state) {
        ConfigFile file(scratch.path());
        benchmark::DoNotOptimize(ConfigFileIterator(file).hasEntry());
    }
}

BENCHMARK_CAPTURE(readAll, keysWithShortValues, std::string("CameraEnabled=true\n"));
BENCHMARK_CAPTURE(readAll, keysWithLongValues, "CodecXmlSuffix=" + std::string(200, 'x') + "\n");
BENCHMARK_CAPTURE(readAll, groupHeaders, std::string("[Features]\n"));
BENCHMARK_CAPTURE(readAll, comments, std::string("# What the next key is good for.\n"));
BENCHMARK(opensAnEmptyFile);

}  // namespace
}  // namespace Tarnwick::Parser
