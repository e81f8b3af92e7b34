// The name of a source as the person gave it and as the manager takes it.
#pragma once

#include <string>

class CSourceName {
public:
    // A relative path becomes absolute at once: plug-ins may change the current directory.
    explicit CSourceName(std::string given);

    const std::string& GetGiven() const { return m_strGiven; }
    const char* GetURL() const { return m_strURL.c_str(); }
    bool IsRemote() const { return m_bRemote; }

    // Why the file cannot be had where the system says `error`: an address may have been taken for its name.
    std::string FailureTextOf(int error) const;

private:
    std::string m_strGiven;
    bool m_bRemote;
    std::string m_strURL;
};
