#include "core/archive/StreamSequencerBuilder.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstring>

#include "core/archive/descriptorRecord.h"
#include "core/crc/crc32.h"
#include "core/stream/FileStream.h"
#include "core/text/MChar.h"

namespace core {

namespace {

int const copyChunkSize = 0x40000;

void putMagic(unsigned char* bytes) {
    std::memcpy(bytes, MChar8(archive::magic).ptr(), MChar8::Size);
}

}  // namespace

char const* StreamSequencerBuilder::ClassName() const {
    return "StreamSequencerBuilder";
}

StreamDescriptor& StreamSequencerBuilder::AddFile(String const& originalPath) {
    StreamDescriptor& file = AppendFile();
    file.SetOriginalPath(originalPath);
    return file;
}

unsigned StreamSequencerBuilder::CalculateCryptKey(unsigned number) {
    unsigned key = crc32::updatele(number, 0);
    for (unsigned shift = 0; shift < 32; shift += 8) {
        if ((key >> shift & 0xFF) == 0) {
            key |= 0xA5U << shift;
        }
    }
    return key;
}

int StreamSequencerBuilder::Write(Stream& target, ICopyCallback* callback) {
    failure_ = {};
    written_ = 0;
    if (GetVersion() < archive::oldestVersion || GetVersion() > archive::newestVersion) {
        return Fail(Cause::version, 0, -EINVAL);
    }
    if (Attributes().Count() > static_cast<int>(archive::attributeCountMask)) {
        return Fail(Cause::attributeCount, 0, -E2BIG);
    }
    int result = AssignOffsets();
    if (result == 0) {
        result = WriteHeaders(nullptr);
    }
    if (result == 0) {
        result = WriteHeaders(&target);
    }
    if (result == 0) {
        result = WriteData(target, callback);
    }
    return result == 0 ? WriteTrailer(target) : result;
}

ClassRef<Stream> StreamSequencerBuilder::OpenData(int index, int& result) {
    ClassRef<FileStream> const file(new FileStream);
    result = file->Open(File(index).GetOriginalPath(), sys::platform::openRead);
    return result == 0 ? file.Get() : nullptr;
}

/// Opens every file for its size, because all sizes precede the data of the first file.
int StreamSequencerBuilder::AssignOffsets() {
    dataSize_ = 0;
    for (int i = 0; i < FileCount(); ++i) {
        int result = 0;
        ClassRef<Stream> const data = OpenData(i, result);
        if (!data) {
            return Fail(Cause::file, i, result);
        }
        long long const size = data->Size();
        if (size < 0) {
            return Fail(Cause::file, i, static_cast<int>(size));
        }
        if (size > LLONG_MAX - dataSize_) {
            return Fail(Cause::file, i, -EFBIG);
        }
        File(i).SetExtent(static_cast<unsigned long long>(dataSize_),
                          static_cast<unsigned long long>(size));
        dataSize_ += size;
    }
    return 0;
}

/// Checks the texts only, if target is null.
int StreamSequencerBuilder::WriteHeaders(Stream* target) {
    ResetCRC();
    unsigned char header[archive::headerSize];
    putMagic(header);
    archive::putWord<std::uint32_t>(GetVersion(), header + 8);
    archive::putWord<std::uint32_t>(HeaderFlags(), header + 12);
    int result = WriteBytes(target, header, archive::headerSize);
    if (result == 0 && GetCryptMode() != CryptMode::None) {
        unsigned char block[archive::wordSize];
        archive::putWord<std::uint64_t>(GetCryptKeyBlock(), block);
        result = WriteBytes(target, block, archive::wordSize);
    }
    if (result == 0) {
        result = WriteIdentity(target);
    }
    return result == 0 ? WriteDescriptors(target) : result;
}

int StreamSequencerBuilder::WriteIdentity(Stream* target) {
    int result = 0;
    if (uniqueId) {
        unsigned char word[archive::wordSize];
        archive::putWord<std::uint64_t>(*uniqueId, word);
        result = WriteHeaderSection(target, word, archive::wordSize);
    }
    if (result == 0 && sourceId) {
        result = WriteText(target, *sourceId, Cause::sourceId);
    }
    if (result == 0 && targetId) {
        result = WriteText(target, *targetId, Cause::targetId);
    }
    for (int i = 0; result == 0 && i < Attributes().Count(); ++i) {
        result = WriteText(target, Attributes()[i], Cause::attribute, i);
    }
    return result;
}

int StreamSequencerBuilder::WriteDescriptors(Stream* target) {
    unsigned char word[archive::wordSize];
    archive::putWord<std::uint64_t>(static_cast<std::uint64_t>(FileCount()), word);
    int result = WriteHeaderSection(target, word, archive::wordSize);
    unsigned char record[archive::largestDescriptorSize];
    for (int i = 0; result == 0 && i < FileCount(); ++i) {
        StreamDescriptor::Text faulty{};
        archive::SlotResult const slot =
            archive::writeDescriptor(File(i), GetVersion(), record, faulty);
        if (slot != archive::SlotResult::written) {
            failure_.text = faulty;
            return FailText(slot, Cause::file, i);
        }
        result = WriteHeaderSection(target, record, archive::descriptorSize(GetVersion()));
    }
    return result;
}

int StreamSequencerBuilder::WriteData(Stream& target, ICopyCallback* callback) {
    std::vector<char> chunk(copyChunkSize);
    for (int i = 0; i < FileCount(); ++i) {
        int result = 0;
        ClassRef<Stream> const data = OpenData(i, result);
        result = data ? CopyFile(i, *data, target, chunk, callback) : Fail(Cause::file, i, result);
        if (result != 0) {
            return result;
        }
    }
    return 0;
}

int StreamSequencerBuilder::CopyFile(int index, Stream& source, Stream& target,
                                     std::vector<char>& chunk, ICopyCallback* callback) {
    StreamDescriptor const& file = File(index);
    for (unsigned long long position = 0;;) {
        // Write whole chunks of the target: whole pages are written faster to a file.
        int const got =
            source.Read(chunk.data(), copyChunkSize - static_cast<int>(written_ % copyChunkSize));
        if (got < 0) {
            return Fail(Cause::file, index, got);
        }
        if (got == 0 || static_cast<unsigned>(got) > file.GetSize() - position) {
            return got == 0 && position == file.GetSize() ? 0 : Fail(Cause::file, index, -EBUSY);
        }
        file.CryptBlock(chunk.data(), got, position);
        int const result = WriteBytes(&target, chunk.data(), got);
        if (result != 0) {
            return result;
        }
        position += static_cast<unsigned>(got);
        auto const done = static_cast<long long>(file.GetOffset() + position);
        if (callback != nullptr && !callback->Copied(done, dataSize_)) {
            return -ECANCELED;
        }
    }
}

int StreamSequencerBuilder::WriteTrailer(Stream& target) {
    unsigned char trailer[archive::trailerSize] = {};
    archive::putWord<std::uint32_t>(GetCRC(), trailer + 4);
    putMagic(trailer + 8);
    int const result = target.WriteAll(trailer, archive::trailerSize);
    return result == 0 ? 0 : Fail(Cause::target, 0, result);
}

unsigned StreamSequencerBuilder::HeaderFlags() const {
    unsigned flags = static_cast<unsigned>(Attributes().Count());
    flags |= uniqueId ? archive::uniqueIdFlag : 0U;
    flags |= sourceId ? archive::sourceIdFlag : 0U;
    flags |= targetId ? archive::targetIdFlag : 0U;
    flags |= IsCryptHeadersEnabled() ? archive::cryptHeadersFlag : 0U;
    flags |= IsCryptDataEnabled() ? archive::cryptDataFlag : 0U;
    return flags;
}

int StreamSequencerBuilder::WriteBytes(Stream* target, void const* bytes, int length) {
    if (target == nullptr) {
        return 0;
    }
    UpdateCRC(bytes, length);
    written_ += length;
    int const result = target->WriteAll(bytes, length);
    return result == 0 ? 0 : Fail(Cause::target, 0, result);
}

int StreamSequencerBuilder::WriteHeaderSection(Stream* target, void* bytes, int length) {
    if (IsCryptHeadersEnabled()) {
        CryptBlock(bytes, length, 0);
    }
    return WriteBytes(target, bytes, length);
}

int StreamSequencerBuilder::WriteText(Stream* target, String const& text, Cause cause, int index) {
    unsigned char slot[archive::textSize];
    archive::SlotResult const result = archive::writeTextSlot(text, slot, archive::textUnits);
    return result == archive::SlotResult::written
               ? WriteHeaderSection(target, slot, archive::textSize)
               : FailText(result, cause, index);
}

int StreamSequencerBuilder::FailText(archive::SlotResult slot, Cause cause, int index) {
    return Fail(cause, index, slot == archive::SlotResult::tooLong ? -ENAMETOOLONG : -EILSEQ);
}

int StreamSequencerBuilder::Fail(Cause cause, int index, int result) {
    failure_.cause = cause;
    failure_.index = index;
    return result;
}

}  // namespace core
