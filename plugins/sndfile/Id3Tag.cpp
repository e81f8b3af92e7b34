// The tag in front of an MP3 file.
#include "plugins/sndfile/Id3Tag.h"

namespace {

// id3.org, ID3v2.4.0 6.2: seven bits in each byte, highest first.
std::string SynchSafe(std::size_t size) {
    std::string bytes;
    for (int shift = 21; shift >= 0; shift -= 7) bytes += static_cast<char>(size >> shift & 0x7F);
    return bytes;
}

// ID3v2.4.0 4 and 4.2: name, size, two bytes of flags, the character set (3 is UTF-8), the text.
std::string Frame(const char* name, const std::string& text) {
    if (text.empty()) return {};
    return name + SynchSafe(text.size() + 1) + std::string("\0\0\x03", 3) + text;
}

}  // namespace

std::string Id3Tag(const STags& tags) {
    const std::string frames = Frame("TIT2", tags.m_strTitle) + Frame("TPE1", tags.m_strArtist) +
                               Frame("TALB", tags.m_strAlbum) + Frame("TDRC", tags.m_strYear) +
                               Frame("TCON", tags.m_strGenre);
    return frames.empty() ? frames : std::string("ID3\x04\0\0", 6) + SynchSafe(frames.size()) + frames;
}
