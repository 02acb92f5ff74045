#include <benchmark/benchmark.h>
#include <libdeflate.h>
#include <zlib.h>

#include <string>
#include <vector>

#include "core/crc/crc32.h"
#include "core/crc/crc32Ways.h"

namespace {

// The CRC-32, each way that the CPU supports, and two libraries as baselines, with the same data.

std::vector<unsigned char> const& data(std::size_t size) {
    static std::vector<unsigned char> bytes;
    while (bytes.size() < size) {
        bytes.push_back(static_cast<unsigned char>(bytes.size() * 2654435761u >> 13));
    }
    return bytes;
}

template <class Sum>
void run(benchmark::State& state, Sum sum) {
    auto const size = static_cast<std::size_t>(state.range(0));
    unsigned char const* const bytes = data(size).data();
    for (auto _ : state) {
        benchmark::DoNotOptimize(sum(bytes, size));
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}

void Crc32(benchmark::State& state) {
    run(state, [](unsigned char const* bytes, std::size_t size) {
        return core::crc32::update(bytes, static_cast<int>(size), 0);
    });
}

void Crc32Zlib(benchmark::State& state) {
    run(state,
        [](unsigned char const* bytes, std::size_t size) { return ::crc32_z(0, bytes, size); });
}

void Crc32Libdeflate(benchmark::State& state) {
    run(state, [](unsigned char const* bytes, std::size_t size) {
        return libdeflate_crc32(0, bytes, size);
    });
}

void sizes(benchmark::internal::Benchmark* each) {
    each->Arg(4 << 10)->Arg(16 << 10)->Arg(256 << 20);
}

BENCHMARK(Crc32)->Apply(sizes);
BENCHMARK(Crc32Zlib)->Apply(sizes);
BENCHMARK(Crc32Libdeflate)->Apply(sizes);

[[maybe_unused]] bool const waysRegistered = [] {
    for (core::crc32::Way const& way : core::crc32::supportedWays()) {
        sizes(benchmark::RegisterBenchmark(
            (std::string("Crc32Way/") + way.name).c_str(), [&way](benchmark::State& state) {
                run(state, [&way](unsigned char const* bytes, std::size_t size) {
                    return way.update(bytes, size, 0);
                });
            }));
    }
    return true;
}();

}  // namespace
