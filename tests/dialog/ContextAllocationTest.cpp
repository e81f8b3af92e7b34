// The memory of the dialog's context: refused, and given back. The program's own malloc stands before the C library's.
#include <algorithm>
#include <cstdint>

#include "tests/dialog/DialogFixture.h"

namespace {

// No allocation has this size at first.
std::size_t g_nRefusedSize = SIZE_MAX;

// The dialog, three fields for each of three pages, the manager.
constexpr std::size_t kContextSize = 11 * sizeof(void*);

// Blocks of the context's size that were handed out and not given back.
std::vector<void*>* g_pKeptBlocks = nullptr;

void* Note(void* block, std::size_t size) {
    if (g_pKeptBlocks != nullptr && size == kContextSize) g_pKeptBlocks->push_back(block);
    return block;
}

}  // namespace

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void __libc_free(void* block);

__attribute__((visibility("default"))) void* malloc(std::size_t size) {
    return size == g_nRefusedSize ? nullptr : Note(__libc_malloc(size), size);
}

// An optimiser makes one call of an allocation that is zero-filled at once.
__attribute__((visibility("default"))) void* calloc(std::size_t count, std::size_t size) {
    return count * size == g_nRefusedSize ? nullptr : Note(__libc_calloc(count, size), count * size);
}

__attribute__((visibility("default"))) void free(void* block) {
    if (g_pKeptBlocks != nullptr) {
        g_pKeptBlocks->erase(std::remove(g_pKeptBlocks->begin(), g_pKeptBlocks->end(), block), g_pKeptBlocks->end());
    }
    __libc_free(block);
}
}

TEST_F(DialogTest, YieldsNullAndNothingElseWithoutMemoryForItsContext) {
    ASSERT_NE(Build(), nullptr);
    Destroy();
    g_nRefusedSize = kContextSize;
    GtkWidget* const dialog = Build();
    g_nRefusedSize = SIZE_MAX;
    EXPECT_EQ(dialog, nullptr);
    GList* const windows = gtk_window_list_toplevels();
    EXPECT_EQ(windows, nullptr);
    g_list_free(windows);
}

TEST_F(DialogTest, GivesItsContextBackWhenItIsDestroyed) {
    // The first dialog brings what the toolkit keeps.
    Build();
    Destroy();
    std::vector<void*> kept;
    kept.reserve(4096);
    g_pKeptBlocks = &kept;
    Build();
    const std::size_t whileOpen = kept.size();
    Destroy();
    const std::size_t afterwards = kept.size();
    g_pKeptBlocks = nullptr;
    EXPECT_GE(whileOpen, 1U);
    EXPECT_EQ(afterwards, 0U);
}
