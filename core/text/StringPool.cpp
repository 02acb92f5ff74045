#include "core/text/StringPool.h"

#include <mutex>

namespace core {

StringPool& StringPool::Instance() {
    static auto& pool = *new StringPool;
    return pool;
}

String::StringData* StringPool::Take() {
    std::lock_guard guarded(lock_);
    String::StringData* record = firstFree_;
    if (record != nullptr) {
        firstFree_ = record->nextFree;
    } else {
        record = TakeUnused();
    }
    ++used_;
    record->count = 0;
    record->buffer = nullptr;
    return record;
}

void StringPool::Release(String::StringData* record) {
    delete[] record->buffer;
    std::lock_guard guarded(lock_);
    record->nextFree = firstFree_;
    firstFree_ = record;
    if (--used_ == 0) {
        DeleteChunks();
    }
}

int StringPool::ChunkCount() {
    std::lock_guard guarded(lock_);
    return chunkCount_;
}

/// Does not link the records of a new chunk: a single string would pay for all of them.
String::StringData* StringPool::TakeUnused() {
    if (firstUnused_ == RecordsPerChunk) {
        auto* const chunk = new Chunk;
        chunk->next = chunks_;
        chunks_ = chunk;
        ++chunkCount_;
        firstUnused_ = 0;
    }
    return &chunks_->records[firstUnused_++];
}

void StringPool::DeleteChunks() {
    while (chunks_ != nullptr) {
        Chunk* const chunk = chunks_;
        chunks_ = chunk->next;
        delete chunk;
        --chunkCount_;
    }
    firstUnused_ = RecordsPerChunk;
    firstFree_ = nullptr;
}

}  // namespace core
