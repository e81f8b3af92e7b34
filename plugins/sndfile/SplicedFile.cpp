// A file as the codec is to see it: some of its bytes replaced.
#include "plugins/sndfile/SplicedFile.h"

#include <algorithm>
#include <cstdio>

#include "plugins/shared/FileBytes.h"

CSplicedFile::CSplicedFile(int descriptor, SSplice splice)
    : m_nDescriptor(descriptor),
      m_splice(std::move(splice)),
      m_nLength(
          static_cast<sf_count_t>(CFileBytes(descriptor).Size() - m_splice.m_nDropped + m_splice.m_strBytes.size())) {}

SNDFILE* CSplicedFile::OpenHandle(SF_INFO& info) {
    SF_VIRTUAL_IO operations = {Length, Seek, Read, nullptr, Tell};
    m_nPosition = 0;
    return sf_open_virtual(&operations, SFM_READ, &info, this);
}

sf_count_t CSplicedFile::Length(void* self) { return static_cast<CSplicedFile*>(self)->m_nLength; }

sf_count_t CSplicedFile::Seek(sf_count_t offset, int whence, void* self) {
    auto& file = *static_cast<CSplicedFile*>(self);
    const sf_count_t base = whence == SEEK_SET ? 0 : whence == SEEK_CUR ? file.m_nPosition : file.m_nLength;
    if (offset < -base || offset > SF_COUNT_MAX - base) return -1;
    return file.m_nPosition = base + offset;
}

sf_count_t CSplicedFile::Read(void* buffer, sf_count_t count, void* self) {
    auto& file = *static_cast<CSplicedFile*>(self);
    sf_count_t total = 0;
    while (total < count) {
        const sf_count_t step = file.ReadPiece(static_cast<char*>(buffer) + total, count - total);
        if (step <= 0) break;
        file.m_nPosition += step;
        total += step;
    }
    return total;
}

// Bytes of one of the three pieces: before the splice, the splice, behind it.
sf_count_t CSplicedFile::ReadPiece(char* buffer, sf_count_t count) {
    const auto from = static_cast<sf_count_t>(m_splice.m_nAt);
    const sf_count_t to = from + static_cast<sf_count_t>(m_splice.m_strBytes.size());
    if (m_nPosition >= from && m_nPosition < to) {
        const sf_count_t step = std::min(count, to - m_nPosition);
        m_splice.m_strBytes.copy(buffer, static_cast<std::size_t>(step), static_cast<std::size_t>(m_nPosition - from));
        return step;
    }
    const bool before = m_nPosition < from;
    const sf_count_t step = std::min(count, (before ? from : m_nLength) - m_nPosition);
    const sf_count_t moved = before ? 0 : static_cast<sf_count_t>(m_splice.m_nDropped) - (to - from);
    if (step <= 0) return 0;
    return ReadFully(m_nDescriptor, buffer, static_cast<std::size_t>(step),
                     static_cast<std::uint64_t>(m_nPosition + moved));
}

sf_count_t CSplicedFile::Tell(void* self) { return static_cast<CSplicedFile*>(self)->m_nPosition; }
