// Reference counts of fakes that their test owns.
#pragma once

#include <atomic>

namespace support {

// Counts references without ever deleting itself; starts without any. A test compares the counts. [any thread]
class CPlainCount {
public:
    unsigned int Increment() { return ++m_nReferences; }
    unsigned int Decrement() { return --m_nReferences; }
    unsigned int Value() const { return m_nReferences; }

private:
    std::atomic<unsigned int> m_nReferences{0};
};

}  // namespace support
