#include <benchmark/benchmark.h>
#include <zlib.h>

#include <string>

#include "core/archive/StreamSequencerBuilder.h"
#include "core/archive/StreamSequencerReader.h"
#include "core/stream/MemoryStream.h"

namespace {

// The baselines are the least possible work: a pass over the bytes, or their CRC-32 by zlib.

int const size = 16 << 20;  ///< of the only file in the archive, in bytes

std::string content() {
    std::string bytes(size, '\0');
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = static_cast<char>(i * 2654435761u >> 13);
    }
    return bytes;
}

core::ClassRef<core::MemoryStream> memory(std::string const& bytes) {
    return new core::MemoryStream(core::Buffer(bytes.data(), static_cast<int>(bytes.size())));
}

class Builder : public core::StreamSequencerBuilder {
public:
    Builder() { AddFile("").SetText(core::StreamDescriptor::Text::name, "content"); }

protected:
    core::ClassRef<core::Stream> OpenData(int, int&) override {
        data_->Seek(0);
        return data_.Get();
    }

private:
    core::ClassRef<core::MemoryStream> const data_ = memory(content());
};

/// Discards all data, so that the growth of memory is not measured.
class NullStream : public core::Stream {
public:
    int Read(void*, int) override { return 0; }
    int Write(void const*, int count) override { return count; }
};

void setBytesProcessed(benchmark::State& state) {
    state.SetBytesProcessed(state.iterations() * size);
}

void Scramble(benchmark::State& state) {
    Builder builder;
    builder.SetCryptMode(Builder::CryptMode::All);
    builder.SetCryptKey(0x12345678);
    std::string bytes = content();
    for (auto _ : state) {
        builder.CryptBlock(bytes.data(), size, 0);
        benchmark::ClobberMemory();
    }
    setBytesProcessed(state);
}

void ScrambleWithOneByte(benchmark::State& state) {
    std::string bytes = content();
    for (auto _ : state) {
        for (char& byte : bytes) {
            byte = static_cast<char>(byte ^ 0x5A);
        }
        benchmark::ClobberMemory();
    }
    setBytesProcessed(state);
}

void Write(benchmark::State& state) {
    Builder builder;
    for (auto _ : state) {
        NullStream target;
        benchmark::DoNotOptimize(builder.Write(target, nullptr));
    }
    setBytesProcessed(state);
}

void Read(benchmark::State& state) {
    Builder builder;
    core::MemoryStream archive;
    builder.Write(archive, nullptr);
    for (auto _ : state) {
        archive.Seek(0);
        core::StreamSequencerReader reader;
        reader.SetStream(&archive);
        if (reader.Read() != 0) {
            state.SkipWithError("the archive is not valid");
        }
    }
    setBytesProcessed(state);
}

void Zlib(benchmark::State& state) {
    std::string const bytes = content();
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            crc32_z(0, reinterpret_cast<unsigned char const*>(bytes.data()), bytes.size()));
    }
    setBytesProcessed(state);
}

BENCHMARK(Scramble);
BENCHMARK(ScrambleWithOneByte);
BENCHMARK(Write);
BENCHMARK(Read);
BENCHMARK(Zlib);

}  // namespace
