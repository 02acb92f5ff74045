// String operations and, as baselines, the same work with the standard library.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "core/text/String.h"
#include "core/text/StringArray.h"
#include "core/text/message.h"

namespace {

using core::String;

constexpr char const* address = "192.168.100.200";
constexpr char const* longText = "a text that is too long for the short form of a standard string";
constexpr char const* listText = "alpha,beta,,gamma,delta,epsilon,zeta,eta,theta,iota,kappa,lambda";

void FormatConnecting(benchmark::State& state) {
    String const host(address);
    int port = 3007;
    for (auto _ : state) {
        benchmark::DoNotOptimize(port);
        String text = String::format("- Connecting to: %1:%2 ...").argi(1, host).argi(2, port);
        benchmark::DoNotOptimize(text);
    }
}
BENCHMARK(FormatConnecting);

void MessageConnecting(benchmark::State& state) {
    String const host(address);
    int port = 3007;
    for (auto _ : state) {
        benchmark::DoNotOptimize(port);
        String text = core::message("- Connecting to: %1:%2 ...", host, port);
        benchmark::DoNotOptimize(text);
    }
}
BENCHMARK(MessageConnecting);

void FormatConnectingSnprintf(benchmark::State& state) {
    std::string const host(address);
    int port = 3007;
    for (auto _ : state) {
        benchmark::DoNotOptimize(port);
        char buffer[128];
        std::snprintf(buffer, sizeof buffer, "- Connecting to: %s:%d ...", host.c_str(), port);
        std::string text(buffer);
        benchmark::DoNotOptimize(text);
    }
}
BENCHMARK(FormatConnectingSnprintf);

void ByteSize(benchmark::State& state) {
    long long bytes = 123456789;
    for (auto _ : state) {
        benchmark::DoNotOptimize(bytes);
        String text = core::FormatByteSize(bytes, false);
        benchmark::DoNotOptimize(text);
    }
}
BENCHMARK(ByteSize);

void ByteSizeSnprintf(benchmark::State& state) {
    long long bytes = 123456789;
    for (auto _ : state) {
        benchmark::DoNotOptimize(bytes);
        char buffer[64];
        std::snprintf(buffer, sizeof buffer, "%0.1f %s",
                      std::ldexp(static_cast<double>(bytes), -20), "MB");
        std::string text(buffer);
        benchmark::DoNotOptimize(text);
    }
}
BENCHMARK(ByteSizeSnprintf);

template <class Text>
void Copy(benchmark::State& state) {
    Text const original(longText);
    for (auto _ : state) {
        Text copy(original);
        benchmark::DoNotOptimize(copy);
    }
}
BENCHMARK(Copy<String>);
BENCHMARK(Copy<std::string>);

template <class Text>
void AppendTen(benchmark::State& state) {
    Text const part("a part of a text;");
    for (auto _ : state) {
        Text text;
        for (int i = 0; i < 10; ++i) {
            text += part;
        }
        benchmark::DoNotOptimize(text);
    }
}
BENCHMARK(AppendTen<String>);
BENCHMARK(AppendTen<std::string>);

void Split(benchmark::State& state) {
    String const text(listText);
    String const delimiters(",");
    for (auto _ : state) {
        core::StringArray list(16);
        benchmark::DoNotOptimize(text.Split(list, delimiters));
    }
}
BENCHMARK(Split);

void SplitStandard(benchmark::State& state) {
    std::string const text(listText);
    for (auto _ : state) {
        std::vector<std::string> list;
        for (std::size_t start = 0; start < text.size();) {
            std::size_t const end = std::min(text.find(',', start), text.size());
            list.push_back(text.substr(start, end - start));
            start = end + 1;
        }
        benchmark::DoNotOptimize(list);
    }
}
BENCHMARK(SplitStandard);

void Replace(benchmark::State& state) {
    String const text(listText);
    String const find(",");
    String const with("; ");
    for (auto _ : state) {
        String result = text.Replace(find, with);
        benchmark::DoNotOptimize(result);
    }
}
BENCHMARK(Replace);

void ReplaceStandard(benchmark::State& state) {
    std::string const text(listText);
    for (auto _ : state) {
        std::string result(text);
        for (std::size_t at = result.find(','); at != std::string::npos;
             at = result.find(',', at + 2)) {
            result.replace(at, 1, "; ");
        }
        benchmark::DoNotOptimize(result);
    }
}
BENCHMARK(ReplaceStandard);

// Long lists, of a size and of four times that size, to compare their times.

constexpr int many = 500'000;
// For fast work: the heap keeps this much memory, so that page faults do not count.
constexpr int manySmall = 125'000;

void GrowList(benchmark::State& state) {
    String const entry("an entry");
    for (auto _ : state) {
        core::StringArray list;
        for (int i = 0; i < state.range(0); ++i) {
            list.Add(entry);
        }
        benchmark::DoNotOptimize(list);
    }
}
BENCHMARK(GrowList)->Arg(manySmall)->Arg(4 * manySmall);

void SplitMany(benchmark::State& state) {
    String const text = String::OfChar(',', static_cast<int>(state.range(0)));
    for (auto _ : state) {
        core::StringArray list;
        benchmark::DoNotOptimize(text.Split(list, ','));
    }
}
BENCHMARK(SplitMany)->Arg(manySmall)->Arg(4 * manySmall);

template <void (core::StringArray::*Load)(String const&)>
void LoadText(benchmark::State& state) {
    core::StringArray pairs;
    for (int i = 0; i < state.range(0); ++i) {
        pairs.Add(core::message("entry[%1]", i), "");
    }
    String const text = pairs.AsString();
    for (auto _ : state) {
        core::StringArray list;
        (list.*Load)(text);
        benchmark::DoNotOptimize(list);
    }
}
BENCHMARK(LoadText<&core::StringArray::LoadFrom>)->Name("LoadLines")->Arg(many)->Arg(4 * many);
BENCHMARK(LoadText<&core::StringArray::LoadAsConfFileFrom>)
    ->Name("LoadConfFile")
    ->Arg(many)
    ->Arg(4 * many);

}  // namespace
