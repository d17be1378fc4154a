// Lookups by type, and what a value with references costs beside the bare store operations that
// its references need.

#include <benchmark/benchmark.h>

#include "config_parser.h"

namespace Tarnwick::Parser {
namespace {

const std::string kGroup = "Config";

std::string baseKey(std::int64_t number) {
    return "Base" + std::to_string(number);
}

void store(ConfigParser& parser, const std::string& key, const std::string& text) {
    ConfigValue value;
    if (parser.parseTemplates(text, value)) {
        parser.appendValue(kGroup, key, std::move(value));
    }
}

// "Drawn" refers to `references` other keys, each with a plain text.
void storeReferences(ConfigParser& parser, std::int64_t references) {
    std::string text;
    for (std::int64_t number = 0; number < references; ++number) {
        store(parser, baseKey(number), "a text of its own");
        text += "${config:" + kGroup + '/' + baseKey(number) + "},";
    }
    store(parser, "Drawn", text);
}

template <typename T>
void looksUp(benchmark::State& state, const std::string& text) {
    ConfigParser parser(0);
    store(parser, "Key", text);
    for (auto _ : state) {
        T value{};
        parser.getValue(kGroup, "Key", value);
        benchmark::DoNotOptimize(value);
    }
}

constexpr auto looksUpText = looksUp<std::string>;
constexpr auto looksUpBool = looksUp<bool>;
constexpr auto looksUpInt = looksUp<int>;
constexpr auto looksUpDouble = looksUp<double>;

void looksUpAListOfTexts(benchmark::State& state) {
    ConfigParser parser(0);
    for (std::int64_t number = 0; number < state.range(0); ++number) {
        store(parser, "Key", "/dev/input/event" + std::to_string(number));
    }
    for (auto _ : state) {
        std::vector<std::string> values;
        parser.getValue(kGroup, "Key", values);
        benchmark::DoNotOptimize(values.data());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void resolvesReferences(benchmark::State& state) {
    ConfigParser parser(0);
    storeReferences(parser, state.range(0));
    for (auto _ : state) {
        std::string text;
        parser.getValue(kGroup, "Drawn", text);
        benchmark::DoNotOptimize(text.data());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void bareStoreOperations(benchmark::State& state) {
    ConfigParser parser(0);
    storeReferences(parser, state.range(0));
    std::vector<std::string> keys;
    for (std::int64_t number = 0; number < state.range(0); ++number) {
        keys.push_back(baseKey(number));
    }
    for (auto _ : state) {
        for (const std::string& key : keys) {
            if (parser.hasKey(kGroup, key)) {
                benchmark::DoNotOptimize(parser.valueList(kGroup, key).back().text.data());
            }
        }
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void looksForAMissingKey(benchmark::State& state) {
    const ConfigParser parser(0);
    const std::string key = "Missing";
    for (auto _ : state) {
        benchmark::DoNotOptimize(parser.hasKey(kGroup, key));
    }
}

BENCHMARK_CAPTURE(looksUpText, oneValue, std::string("/var/lib/storage"));
BENCHMARK_CAPTURE(looksUpBool, oneValue, std::string("true"));
BENCHMARK_CAPTURE(looksUpInt, oneValue, std::string("1234"));
BENCHMARK_CAPTURE(looksUpDouble, oneValue, std::string("12.5"));
BENCHMARK(looksUpAListOfTexts)->Arg(10)->Arg(1000);
BENCHMARK(looksForAMissingKey);
BENCHMARK(bareStoreOperations)->Arg(1)->Arg(10)->Arg(30);
BENCHMARK(resolvesReferences)->Arg(1)->Arg(10)->Arg(30);

}  // namespace
}  // namespace Tarnwick::Parser
