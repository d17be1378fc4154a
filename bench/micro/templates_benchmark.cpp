// Expanding one value's templates at load time.

#include <benchmark/benchmark.h>

#include "config_parser.h"

namespace Tarnwick::Parser {
namespace {

void expand(benchmark::State& state, const std::string& text) {
    ConfigParser parser(1000);
    parser.setVariable("HOME", "/home/someone");
    parser.setVariable("INSTANCE", "default");
    for (auto _ : state) {
        ConfigValue value;
        if (!parser.parseTemplates(text, value)) {
            state.SkipWithError("The text cannot be expanded.");
            break;
        }
        benchmark::DoNotOptimize(value.text.data());
    }
}

BENCHMARK_CAPTURE(expand, shortPlainText, std::string("true"));
BENCHMARK_CAPTURE(expand, longPlainText, std::string(200, 'x'));
BENCHMARK_CAPTURE(expand, doubledDollar, std::string("costs $$5"));
BENCHMARK_CAPTURE(expand, oneVariable, std::string("${HOME}/.local/share"));
BENCHMARK_CAPTURE(expand, fourVariables, std::string("${HOME}/${INSTANCE}/${HOME}/${INSTANCE}"));
BENCHMARK_CAPTURE(expand, oneReference, std::string("${config:Config/StoragePath}/data"));
BENCHMARK_CAPTURE(expand, environmentVariable, std::string("${env:PATH}"));
BENCHMARK_CAPTURE(expand, realPath, std::string("${realpath:/usr/bin/..}"));

}  // namespace
}  // namespace Tarnwick::Parser
