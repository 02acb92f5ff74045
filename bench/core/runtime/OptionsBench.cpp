// Long command lines, of a size and of four times that size, to compare their times.
#include <benchmark/benchmark.h>

#include <vector>

#include "core/runtime/Application.h"
#include "core/text/StringArray.h"

namespace {

constexpr int many = 500'000;

core::Application& application() {
    // Not a directory, so that no status file can be created.
    core::AppStatus::SetDirectory("/dev/null");
    static core::Application theApplication("bench");
    return theApplication;
}

void OptionArguments(benchmark::State& state) {
    std::vector<char const*> arguments(static_cast<std::size_t>(state.range(0)), "argument");
    arguments[1] = "-o";
    for (auto _ : state) {
        core::StringArray errors;
        benchmark::DoNotOptimize(application().CommandLinePrepare(
            static_cast<int>(arguments.size()), arguments.data(), "o|origin=1", errors));
    }
}
BENCHMARK(OptionArguments)->Arg(many)->Arg(4 * many);

}  // namespace
