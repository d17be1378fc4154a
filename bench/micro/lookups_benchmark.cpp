// Lookups by type, and what a value with references costs beside the bare store operations that
// its references need. A benchmark whose answer is wrong is skipped with an error.

#include <benchmark/benchmark.h>

#include <stdexcept>

#include "config_parser.h"

namespace Tarnwick::Parser {
namespace {

const std::string kGroup = "Config";
const std::string kText = "a text of its own";

std::vector<std::string> baseKeys(std::int64_t count) {
    std::vector<std::string> keys;
    for (std::int64_t number = 0; number < count; ++number) {
        keys.push_back("Base" + std::to_string(number));
    }
    return keys;
}

void store(ConfigParser& parser, const std::string& key, const std::string& text) {
    ConfigValue value;
    if (!parser.parseTemplates(text, value)) {
        throw std::invalid_argument(text);
    }
    parser.appendValue(kGroup, key, std::move(value));
}

// "Drawn" refers to all of the keys, each with a plain text.
void storeReferences(ConfigParser& parser, const std::vector<std::string>& keys) {
    std::string text;
    for (const std::string& key : keys) {
        store(parser, key, kText);
        text += "${config:" + kGroup + '/' + key + "},";
    }
    store(parser, "Drawn", text);
}

std::string repeated(const std::string& text, std::int64_t times) {
    std::string all;
    for (std::int64_t count = 0; count < times; ++count) {
        all += text;
    }
    return all;
}

template <typename T>
T valueOf(const ConfigParser& parser, const std::string& key) {
    T value{};
    parser.getValue(kGroup, key, value);
    return value;
}

template <typename T>
void expect(benchmark::State& state, const T& value, const T& expected) {
    if (value != expected) {
        state.SkipWithError("The value is wrong.");
    }
}

template <typename T>
void looksUp(benchmark::State& state, const std::string& text, const T& expected) {
    ConfigParser parser(0);
    store(parser, "Key", text);
    expect(state, valueOf<T>(parser, "Key"), expected);
    for (auto _ : state) {
        T value = valueOf<T>(parser, "Key");
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
    expect(state, valueOf<std::vector<std::string>>(parser, "Key").size(),
           static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        benchmark::DoNotOptimize(valueOf<std::vector<std::string>>(parser, "Key").data());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void resolvesReferences(benchmark::State& state) {
    ConfigParser parser(0);
    storeReferences(parser, baseKeys(state.range(0)));
    expect(state, valueOf<std::string>(parser, "Drawn"), repeated(kText + ',', state.range(0)));
    for (auto _ : state) {
        benchmark::DoNotOptimize(valueOf<std::string>(parser, "Drawn").data());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

// What a value that refers to the keys cannot do without: for each one look for the key, and a
// copy of its text into the result.
std::string drawnTexts(ConfigParser& parser, const std::vector<std::string>& keys) {
    std::string text;
    for (const std::string& key : keys) {
        const std::vector<ConfigValue>& values = parser.valueList(kGroup, key);
        text += values.back().text;
    }
    return text;
}

void bareStoreOperations(benchmark::State& state) {
    const std::vector<std::string> keys = baseKeys(state.range(0));
    ConfigParser parser(0);
    for (const std::string& key : keys) {
        store(parser, key, kText);
    }
    expect(state, drawnTexts(parser, keys), repeated(kText, state.range(0)));
    for (auto _ : state) {
        benchmark::DoNotOptimize(drawnTexts(parser, keys).data());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void looksForAMissingKey(benchmark::State& state) {
    const ConfigParser parser(0);
    const std::string key = "Missing";
    expect(state, parser.hasKey(kGroup, key), false);
    for (auto _ : state) {
        benchmark::DoNotOptimize(parser.hasKey(kGroup, key));
    }
}

BENCHMARK_CAPTURE(looksUpText, oneValue, "/var/lib/storage", std::string("/var/lib/storage"));
BENCHMARK_CAPTURE(looksUpBool, oneValue, "true", true);
BENCHMARK_CAPTURE(looksUpInt, oneValue, "1234", 1234);
BENCHMARK_CAPTURE(looksUpDouble, oneValue, "12.5", 12.5);
BENCHMARK(looksUpAListOfTexts)->Arg(10)->Arg(1000);
BENCHMARK(looksForAMissingKey);
BENCHMARK(bareStoreOperations)->Arg(1)->Arg(10)->Arg(30);
BENCHMARK(resolvesReferences)->Arg(1)->Arg(10)->Arg(30);

}  // namespace
}  // namespace Tarnwick::Parser
