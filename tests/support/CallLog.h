// What fakes were called for, in order.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace support {

// Shared by the fakes of one test. [stream-thread]
class CCallLog {
public:
    void Note(std::string line) { m_vLines.push_back(std::move(line)); }
    void Clear() { m_vLines.clear(); }

    const std::vector<std::string>& Lines() const { return m_vLines; }

    // The lines that begin with `prefix`, without it.
    std::vector<std::string> After(std::string_view prefix) const {
        std::vector<std::string> found;
        for (const std::string& line : m_vLines) {
            if (line.compare(0, prefix.size(), prefix) == 0) found.push_back(line.substr(prefix.size()));
        }
        return found;
    }

    int Count(std::string_view line) const {
        return static_cast<int>(std::count(m_vLines.begin(), m_vLines.end(), line));
    }

private:
    std::vector<std::string> m_vLines;
};

}  // namespace support
