#pragma once

#include <cstddef>

#include "core/text/String.h"
#include "sys/platform/locker.h"

namespace core {

/// The records of all texts of the process, handed out from chunks, so that a short-lived text
/// costs no allocation for its record. One lock guards it; it gives all memory back when the last
/// text is gone.
class StringPool {
public:
    static constexpr int RecordsPerChunk = 128;

    /// The one pool. It is never destroyed: static texts may outlive anything.
    static StringPool& Instance();

    /// A record with count 0 and no buffer.
    String::StringData* Take();
    /// Frees the record's buffer (new char[]) and takes the record back.
    void Release(String::StringData* record);

    /// Chunks held now: 0 while there is no text.
    int ChunkCount();

private:
    struct Chunk {
        Chunk* next;
        String::StringData records[RecordsPerChunk];
    };

    StringPool() { lock_.init(); }
    String::StringData* takeFresh();
    void deleteChunks();

    // Made once and never torn down: another thread could be waiting for it at that moment.
    sys::locker lock_;
    /// The newest chunk; its records from fresh_ on were never handed out.
    Chunk* chunks_ = nullptr;
    int fresh_ = RecordsPerChunk;
    int chunkCount_ = 0;
    String::StringData* firstFree_ = nullptr;
    /// Records handed out and not yet taken back.
    std::size_t used_ = 0;
};

}  // namespace core
