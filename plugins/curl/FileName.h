// The name of the local file for a fetched source.
#pragma once

#include <string>

// What a transfer told. The headers are empty where the server sent none.
struct SNameSources {
    std::string m_strURL;
    std::string m_strFinalURL;  // after redirects
    std::string m_strContentDisposition;
    std::string m_strContentType;
};

// A name without folders that a person recognises, well-formed UTF-8: hosts complete title and artist from it. Never
// empty; without an extension where nothing tells one. [any thread]
std::string ChooseFileName(const SNameSources& sources);
