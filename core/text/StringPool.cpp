#include "core/text/StringPool.h"

#include <memory>
#include <mutex>

namespace core {

String::StringData* StringPool::Take(std::size_t capacity) {
    bool const isShort = capacity <= String::StringData::shortCapacity;
    std::unique_ptr<char[]> buffer(isShort ? nullptr : new char[capacity + 1]);
    String::StringData* const record = TakeRecord();
    record->count = 1;
    record->buffer = isShort ? record->shortBuffer : buffer.release();
    record->capacity = static_cast<int>(isShort ? record->shortCapacity : capacity);
    return record;
}

void StringPool::FreeBuffer(String::StringData& record) {
    if (record.buffer != record.shortBuffer) {
        delete[] record.buffer;
    }
}

void StringPool::SetBuffer(String::StringData& record, char* buffer, std::size_t capacity) {
    FreeBuffer(record);
    record.buffer = buffer;
    record.capacity = static_cast<int>(capacity);
}

void StringPool::Release(String::StringData* record) {
    FreeBuffer(*record);
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

String::StringData* StringPool::TakeRecord() {
    std::lock_guard guarded(lock_);
    if (firstFree_ != nullptr) {
        ++used_;
        return std::exchange(firstFree_, firstFree_->nextFree);
    }
    // Do not link the records of a new chunk: a single string would pay for all of them.
    if (firstUnused_ == RecordsPerChunk) {
        auto* const chunk = new Chunk;
        chunk->next = chunks_;
        chunks_ = chunk;
        ++chunkCount_;
        firstUnused_ = 0;
    }
    ++used_;
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
