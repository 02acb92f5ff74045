#include "core/text/StringPool.h"

#include <mutex>

namespace core {

StringPool& StringPool::Instance() {
    static auto& pool = *new StringPool;
    return pool;
}

String::StringData* StringPool::Take() {
    std::lock_guard guarded(lock_);
    if (firstFree_ == nullptr) {
        addChunk();
    }
    String::StringData* const record = firstFree_;
    firstFree_ = record->nextFree;
    --freeCount_;
    record->count = 0;
    record->buffer = nullptr;
    return record;
}

void StringPool::Release(String::StringData* record) {
    delete[] record->buffer;
    std::lock_guard guarded(lock_);
    record->nextFree = firstFree_;
    firstFree_ = record;
    ++freeCount_;
    if (freeCount_ == chunks_.size() * RecordsPerChunk) {
        // A new vector, because clear() would keep the table of the chunks.
        chunks_ = decltype(chunks_)();
        firstFree_ = nullptr;
        freeCount_ = 0;
    }
}

int StringPool::ChunkCount() {
    std::lock_guard guarded(lock_);
    return static_cast<int>(chunks_.size());
}

void StringPool::addChunk() {
    chunks_.push_back(std::make_unique<String::StringData[]>(RecordsPerChunk));
    String::StringData* const records = chunks_.back().get();
    for (int i = RecordsPerChunk - 1; i >= 0; --i) {
        records[i].nextFree = firstFree_;
        firstFree_ = &records[i];
    }
    freeCount_ += RecordsPerChunk;
}

}  // namespace core
