// Cutting a text into pieces: as strings of their own, and as views for the loader.

#include <benchmark/benchmark.h>

#include "support/split_string.h"

namespace Tarnwick::Parser {
namespace {

std::string piecesOf(std::int64_t count) {
    std::string text;
    for (std::int64_t piece = 0; piece < count; ++piece) {
        text += "/dev/input/event" + std::to_string(piece) + ';';
    }
    return text;
}

void splitsIntoStrings(benchmark::State& state) {
    const std::string text = piecesOf(state.range(0));
    for (auto _ : state) {
        benchmark::DoNotOptimize(splitString(text, ';', kNoSplitLimit, KeepEmpty).data());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void takesPiecesAsViews(benchmark::State& state) {
    const std::string text = piecesOf(state.range(0));
    for (auto _ : state) {
        std::string_view rest = text;
        std::string_view piece;
        while (takePiece(rest, ';', piece)) {
            benchmark::DoNotOptimize(piece.data());
        }
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

BENCHMARK(splitsIntoStrings)->Arg(1)->Arg(10)->Arg(100);
BENCHMARK(takesPiecesAsViews)->Arg(1)->Arg(10)->Arg(100);

}  // namespace
}  // namespace Tarnwick::Parser
