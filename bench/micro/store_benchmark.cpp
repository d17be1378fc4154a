// The store's operations, one key each, on stores of different sizes.

#include <benchmark/benchmark.h>

#include "config_parser.h"

namespace Tarnwick::Parser {
namespace {

constexpr std::int64_t kSmall = 100;
constexpr std::int64_t kLarge = 100'000;

ConfigValue plainValue(const std::string& text) {
    ConfigValue value;
    value.text = text;
    return value;
}

std::vector<std::string> keyNames(std::int64_t count) {
    std::vector<std::string> names;
    for (std::int64_t number = 0; number < count; ++number) {
        names.push_back("Key" + std::to_string(number));
    }
    return names;
}

void fill(ConfigParser& parser, const std::vector<std::string>& keys) {
    for (const std::string& key : keys) {
        parser.appendValue("Config", key, plainValue("a value"));
    }
}

void fillsAStore(benchmark::State& state) {
    const std::vector<std::string> keys = keyNames(state.range(0));
    for (auto _ : state) {
        ConfigParser parser(0);
        fill(parser, keys);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void replacesAValue(benchmark::State& state) {
    const std::vector<std::string> keys = keyNames(state.range(0));
    ConfigParser parser(0);
    fill(parser, keys);
    std::size_t next = 0;
    for (auto _ : state) {
        parser.replaceValues("Config", keys[next++ % keys.size()], plainValue("another value"));
    }
}

void removesAndAddsAKey(benchmark::State& state) {
    const std::vector<std::string> keys = keyNames(state.range(0));
    ConfigParser parser(0);
    fill(parser, keys);
    std::size_t next = 0;
    for (auto _ : state) {
        const std::string& key = keys[next++ % keys.size()];
        parser.removeKey("Config", key);
        parser.appendValue("Config", key, plainValue("a value"));
    }
}

void findsAMode(benchmark::State& state) {
    const std::vector<std::string> keys = keyNames(state.range(0));
    ConfigParser parser(0);
    for (const std::string& key : keys) {
        parser.addKey("Config", key, KeyMode::Append);
    }
    std::size_t next = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(parser.keyMode("Config", keys[next++ % keys.size()]));
    }
}

BENCHMARK(fillsAStore)->Arg(kSmall)->Arg(kLarge);
BENCHMARK(replacesAValue)->Arg(kSmall)->Arg(kLarge);
BENCHMARK(removesAndAddsAKey)->Arg(kSmall)->Arg(kLarge);
BENCHMARK(findsAMode)->Arg(5)->Arg(kLarge);

}  // namespace
}  // namespace Tarnwick::Parser
