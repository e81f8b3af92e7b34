// How artist and title are completed from the name of a source.
#pragma once

#include <cstdint>

// Values other than those listed: the tags alone (mode), never the file name (order).
enum ETagSourceMode : std::int32_t {
    TSM_FILE_NAME_WHEN_MISSING = 0,
    TSM_FILE_NAME_ALWAYS = 2,
};

enum EFileNameOrder : std::int32_t {
    FNO_ARTIST_TITLE = 0,
    FNO_TITLE_ARTIST = 1,
    FNO_TITLE = 2,
};

// Held by the manager. [host set-up]
struct SMetadataSettings {
    std::int32_t m_nTagSourceMode = TSM_FILE_NAME_WHEN_MISSING;
    std::int32_t m_nFileNameOrder = FNO_ARTIST_TITLE;
};

// The settings of the process's manager, null while there is none; published by the manager.
extern const SMetadataSettings* g_pMetadataSettings;
