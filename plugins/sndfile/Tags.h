// Descriptive tags of a sound file.
#pragma once

#include <sndfile.h>

#include <string>

// UTF-8; empty where the file has no such tag.
struct STags {
    std::string m_strTitle;
    std::string m_strArtist;
    std::string m_strAlbum;
    std::string m_strYear;  // the date as the file has it
    std::string m_strGenre;
};

STags TagsOf(SNDFILE* file);
