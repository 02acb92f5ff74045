#pragma once

#include <cstddef>

#include "core/text/String.h"
#include "sys/platform/locker.h"

namespace core {

/// Allocates the records of all strings in chunks, so that a short-lived string needs no allocation
/// for its record, nor for its characters if it is short. Thread-safe. Frees all memory with the
/// last string.
class StringPool {
public:
    static constexpr int RecordsPerChunk = 128;

    /// Returns the process-wide pool, which is never destroyed: static strings are released at
    /// exit.
    static StringPool& Instance() {
        static auto& pool = *new StringPool;
        return pool;
    }

    /// Returns a record with count 1 and a buffer for at least capacity characters and a NUL. Their
    /// values and the length are undefined.
    String::StringData* Take(std::size_t capacity);
    /// Replaces the buffer of a record by one from new char[], for capacity characters and a NUL.
    static void SetBuffer(String::StringData& record, char* buffer, std::size_t capacity);
    /// Frees the record and its buffer.
    void Release(String::StringData* record);

    /// Returns the number of chunks: 0 while there is no string.
    int ChunkCount();

private:
    struct Chunk {
        Chunk* next;
        String::StringData records[RecordsPerChunk];
    };

    StringPool() { lock_.init(); }
    static void FreeBuffer(String::StringData& record);
    String::StringData* TakeRecord();
    void DeleteChunks();

    // Never destroyed with the last string: another thread could be waiting for the lock.
    sys::locker lock_;
    /// The newest chunk; its records from firstUnused_ on have never been taken.
    Chunk* chunks_ = nullptr;
    int firstUnused_ = RecordsPerChunk;
    int chunkCount_ = 0;
    String::StringData* firstFree_ = nullptr;
    /// Records taken and not yet released.
    std::size_t used_ = 0;
};

}  // namespace core
