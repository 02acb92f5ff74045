// Long command lines, at a size and at four times as much, to compare the two.
#include <benchmark/benchmark.h>

#include <vector>

#include "core/runtime/Application.h"
#include "core/text/StringArray.h"

namespace {

constexpr int many = 500'000;

core::Application& application() {
    // No directory can be there, so that no status file is left.
    core::AppStatus::SetDirectory("/dev/null");
    static core::Application theApplication("bench");
    return theApplication;
}

void OptionWords(benchmark::State& state) {
    std::vector<char const*> words(static_cast<std::size_t>(state.range(0)), "word");
    words[1] = "-o";
    for (auto _ : state) {
        core::StringArray errors;
        benchmark::DoNotOptimize(application().CommandLinePrepare(
            static_cast<int>(words.size()), words.data(), "o|origin=1", errors));
    }
}
BENCHMARK(OptionWords)->Arg(many)->Arg(4 * many);

}  // namespace
