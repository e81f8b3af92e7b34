// The file formats that this plug-in reads.
#include "plugins/libav/KnownFormats.h"

#include <algorithm>
#include <iterator>

#include "plugins/libav/LibavObjects.h"

namespace {

// Formats of libsndfile are here for the files of theirs that libsndfile does not read.
constexpr SKnownFormat kFormats[] = {
    {"aac", LS_END, TJ_COUNTED},
    {"ac3", LS_END, TJ_COUNTED},
    {"aea", LS_END, TJ_VAGUE},
    {"aiff", LS_END, TJ_BY_BYTES},
    {"amr", LS_END, TJ_COUNTED},
    {"ape", LS_FRAMES, TJ_COUNTED},
    {"asf", LS_END, TJ_TRUE},
    {"au", LS_END, TJ_BY_BYTES},
    {"avi", LS_END, TJ_COUNTED},
    {"caf", LS_END, TJ_COUNTED},
    {"dsf", LS_FRAMES, TJ_COUNTED},
    {"dss", LS_END, TJ_VAGUE},
    {"dts", LS_END, TJ_COUNTED},
    {"dtshd", LS_END, TJ_COUNTED},
    {"eac3", LS_END, TJ_COUNTED},
    {"flac", LS_FRAMES, TJ_TRUE},
    {"flv", LS_END, TJ_TRUE, FT_PICTURE_INDEX},
    {"iff", LS_FRAMES, TJ_COUNTED},
    {"loas", LS_END, TJ_COUNTED},
    {"matroska", LS_END, TJ_TRUE, FT_PICTURE_INDEX},
    {"mlp", LS_END, TJ_COUNTED},
    {"mov", LS_EDITS, TJ_TRUE},
    {"mp3", LS_END, TJ_COUNTED},
    {"mpc", LS_END, TJ_COUNTED},
    {"mpc8", LS_END, TJ_VAGUE},
    {"mpeg", LS_END, TJ_TRUE, FT_BROADCAST},
    {"mpegts", LS_END, TJ_TRUE, FT_BROADCAST},
    {"mxf", LS_END, TJ_TRUE},
    {"nut", LS_END, TJ_TRUE},
    {"ogg", LS_TIME, TJ_VAGUE},
    {"oma", LS_END, TJ_VAGUE},
    {"qcp", LS_END, TJ_VAGUE},
    {"rm", LS_END, TJ_VAGUE},
    {"shn", LS_END, TJ_VAGUE},
    {"tak", LS_FRAMES, TJ_COUNTED},
    {"truehd", LS_END, TJ_COUNTED},
    {"tta", LS_FRAMES, TJ_COUNTED},
    {"voc", LS_END, TJ_BY_BYTES},
    {"vqf", LS_END, TJ_VAGUE},
    {"w64", LS_END, TJ_BY_BYTES},
    {"wav", LS_END, TJ_BY_BYTES},
    {"wsd", LS_END, TJ_VAGUE},
    {"wv", LS_FRAMES, TJ_TRUE},
    {"xwma", LS_END, TJ_VAGUE},
};

constexpr const char* kExtensions[] = {
    "aac", "adts",  "m4a", "m4b",    "m4r", "mp4", "m4v",  "f4a",  "f4v",  "3gp",  "3g2",  "mov", "qt",   "wma",
    "wmv", "asf",   "ape", "wv",     "tta", "mpc", "mp+",  "mpp",  "dsf",  "dff",  "wsd",  "ac3", "eac3", "ec3",
    "dts", "dtshd", "thd", "truehd", "mlp", "mka", "mkv",  "webm", "avi",  "ts",   "m2ts", "mts", "mpg",  "mpeg",
    "vob", "shn",   "tak", "amr",    "awb", "3ga", "ra",   "rm",   "rmvb", "flv",  "oma",  "aa3", "at3",  "aea",
    "ogv", "ogm",   "spx", "vqf",    "qcp", "dss", "xwma", "mxf",  "nut",  "loas",
};

}  // namespace

const SKnownFormat* FindKnownFormat(const AVInputFormat& format) {
    const std::string names = format.name;
    const std::string name = names.substr(0, names.find(','));
    const auto* const found = std::find_if(std::begin(kFormats), std::end(kFormats),
                                           [&name](const SKnownFormat& known) { return name == known.m_strName; });
    return found != std::end(kFormats) ? found : nullptr;
}

std::vector<std::string> KnownExtensions() { return {std::begin(kExtensions), std::end(kExtensions)}; }
