// Where the chapters of a media file begin.
#include "plugins/libav/Chapters.h"

#include <algorithm>

std::vector<std::uint64_t> ChapterStartsOf(const AVFormatContext& context, int sampleRate, std::int64_t begin) {
    std::vector<std::uint64_t> starts;
    for (unsigned int i = 0; i < context.nb_chapters; ++i) {
        const AVChapter& chapter = *context.chapters[i];
        const std::int64_t start = av_rescale_q(chapter.start, chapter.time_base, {1, sampleRate});
        starts.push_back(static_cast<std::uint64_t>(std::max(start, begin) - begin));
    }
    std::sort(starts.begin(), starts.end());
    return starts;
}
