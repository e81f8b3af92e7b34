// Tags and index points of a source.
#include "com/InterfaceIds.h"
#include "portable/PortableFile.h"
#include "stream/ArtistTitle.h"
#include "stream/MetadataSettings.h"
#include "stream/SrcConvAggregator.h"
#include "stream/TruncateToUnsigned.h"

const SMetadataSettings* g_pMetadataSettings = nullptr;

namespace {

const char* TextOrEmpty(const char* text) { return text != nullptr ? text : ""; }

void Assign(CBasicString<char>& target, const std::string& text) { target = text.c_str(); }

// Fills what the tags lack from the name, in the order that the host says.
void CompleteFromName(const char* name, std::int32_t order, CBasicString<char>& artist, CBasicString<char>& title) {
    if (order == FNO_TITLE) {
        artist = "";
        title = name;
        return;
    }
    if (!artist.IsEmpty() && !title.IsEmpty()) return;
    const SNameParts parts = SplitArtistTitle(name);
    if (order == FNO_TITLE_ARTIST) {
        Assign(title, parts.m_strFirst);
        Assign(artist, parts.m_strSecond);
    } else if (order == FNO_ARTIST_TITLE) {
        const bool both = !parts.m_strSecond.empty();
        Assign(artist, both ? parts.m_strFirst : std::string());
        Assign(title, both ? parts.m_strSecond : parts.m_strFirst);
    }
}

}  // namespace

void CSrcConvAggregator::ObtainArtistTitle() {
    if (!m_pInfoReader) return;
    m_strTitle = TextOrEmpty(m_pInfoReader->GetTitle());
    m_strArtist = TextOrEmpty(m_pInfoReader->GetArtist());
    if (g_pMetadataSettings == nullptr) return;

    const std::int32_t mode = g_pMetadataSettings->m_nTagSourceMode;
    if (mode == TSM_FILE_NAME_ALWAYS) {
        m_strTitle = "";
        m_strArtist = "";
    } else if (mode != TSM_FILE_NAME_WHEN_MISSING || (!m_strTitle.IsEmpty() && !m_strArtist.IsEmpty())) {
        return;
    }
    const auto source = CComPtr<ISourceName>::Query(m_pDecoder.Get(), IID_ISourceName);
    const char* const sourceName = source ? source->GetSourceName() : nullptr;
    if (sourceName == nullptr || *sourceName == '\0') return;

    const CBasicString<char> fileName = CPortableFile::Split_GetFileWithoutExt(sourceName);
    CompleteFromName(fileName.GetText(), g_pMetadataSettings->m_nFileNameOrder, m_strArtist, m_strTitle);
    Assign(m_strArtist, TrimTag(m_strArtist.GetText()));
    Assign(m_strTitle, TrimTag(m_strTitle.GetText()));
}

const char* CSrcConvAggregator::GetArtist() {
    if (!m_pInfoReader) return nullptr;
    ObtainArtistTitle();
    return m_strArtist.GetText();
}

const char* CSrcConvAggregator::GetTitle() {
    if (!m_pInfoReader) return nullptr;
    ObtainArtistTitle();
    return m_strTitle.GetText();
}

const char* CSrcConvAggregator::GetAlbum() { return m_pInfoReader ? m_pInfoReader->GetAlbum() : nullptr; }

const char* CSrcConvAggregator::GetYear() { return m_pInfoReader ? m_pInfoReader->GetYear() : nullptr; }

const char* CSrcConvAggregator::GetGenre() { return m_pInfoReader ? m_pInfoReader->GetGenre() : nullptr; }

int CSrcConvAggregator::GetIndexNumber() { return m_pIndexArray ? m_pIndexArray->GetIndexNumber() : 0; }

std::uint64_t CSrcConvAggregator::GetIndex(int n) {
    const std::uint64_t position = m_pIndexArray ? m_pIndexArray->GetIndex(n) : kNoIndexPoint;
    if (position == kNoIndexPoint || !m_pConvertor) return position;
    return TruncateToUnsigned(static_cast<double>(position) / static_cast<double>(m_fRateRatio));
}
