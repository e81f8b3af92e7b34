// The frame that tells the length of an MPEG Layer III file.
#include "plugins/sndfile/InfoFrame.h"

#include "plugins/shared/FileBytes.h"

namespace {

// Xing's header: name, flags, then the fields of the flags that are set, highest byte first.
constexpr std::size_t kNameBytes = 4;
constexpr std::uint64_t kHasFrames = 1;
constexpr std::uint64_t kHasBytes = 2;
constexpr std::uint64_t kHasSeekTable = 4;
constexpr std::uint64_t kHasQuality = 8;
constexpr std::size_t kSeekTableBytes = 100;

// LAME's extension: the encoder's name first, delay and padding of 12 bits each at byte 21.
constexpr std::size_t kDelayOffset = 21;
constexpr std::size_t kDelayBytes = 3;

// Takes fields from the front of the text; a field beyond its end is 0.
class CFields {
public:
    explicit CFields(std::string_view text) : m_text(text) {}

    std::uint64_t Number(std::size_t bytes) {
        const std::string_view field = Take(bytes);
        return field.size() == bytes ? FromBigEndian(field) : 0;
    }

    std::string_view Take(std::size_t bytes) {
        const std::string_view field = m_text.substr(0, bytes);
        m_text.remove_prefix(field.size());
        return field;
    }

private:
    std::string_view m_text;
};

std::string BigEndian(std::uint64_t value, int bytes) {
    std::string text;
    for (int i = bytes - 1; i >= 0; --i) text += static_cast<char>(value >> (8 * i));
    return text;
}

// ISO/IEC 11172-3, 2.4.1.7: side information of zeros is silence that takes nothing from the frames before it.
std::string FrameWith(const CMpegHeader& header, const std::string& mainData) {
    const CMpegHeader own = header.WithRoomFor(kMpegHeaderBytes + header.SideInfoBytes() + mainData.size());
    std::string frame = BigEndian(own.Word(), 4) + std::string(own.SideInfoBytes(), '\0') + mainData;
    frame.resize(own.FrameBytes(), '\0');
    return frame;
}

}  // namespace

std::optional<SInfoFrame> SInfoFrame::Parse(std::string_view frame, const CMpegHeader& header) {
    if (header.Layer() != 3) return std::nullopt;
    CFields fields(frame);
    fields.Take(kMpegHeaderBytes);
    const std::string_view side = fields.Take(header.SideInfoBytes());
    // The codec asks for silence here too, apart from a CRC.
    if (side.substr(2).find_first_not_of('\0') != std::string_view::npos) return std::nullopt;
    const std::string_view name = fields.Take(kNameBytes);
    if (name != "Xing" && name != "Info") return std::nullopt;

    SInfoFrame info;
    const std::uint64_t flags = fields.Number(4);
    if ((flags & kHasFrames) != 0) info.m_nFrames = fields.Number(4);
    if ((flags & kHasBytes) != 0) info.m_nBytes = fields.Number(4);
    if ((flags & kHasSeekTable) != 0) fields.Take(kSeekTableBytes);
    if ((flags & kHasQuality) != 0) fields.Take(4);
    const std::string_view encoder = fields.Take(kDelayOffset);
    const std::uint64_t delays = fields.Number(kDelayBytes);
    if (encoder.empty() || encoder[0] == '\0') return info;
    info.m_nDelay = delays >> 12;
    info.m_nPadding = delays & 0xFFF;
    return info;
}

std::string SInfoFrame::Bytes(const CMpegHeader& header) const {
    std::string fields =
        "Xing" + BigEndian(kHasFrames | kHasBytes, 4) + BigEndian(m_nFrames, 4) + BigEndian(m_nBytes, 4);
    if (m_nDelay != 0 || m_nPadding != 0) {
        std::string extension = "LAME";
        extension.resize(kDelayOffset, '\0');
        fields += extension + BigEndian(m_nDelay << 12 | m_nPadding, kDelayBytes);
        fields.resize(fields.size() + 12, '\0');
    }
    return FrameWith(header, fields);
}

std::string SilentFrame(const CMpegHeader& header) { return FrameWith(header, ""); }
