// The dialog when the memory for its context is not to be had. The program's own malloc stands before the C library's.
#include <cstdint>

#include "tests/dialog/DialogFixture.h"

namespace {

// No allocation has this size at first.
std::size_t g_nRefusedSize = SIZE_MAX;

// The dialog, three fields for each of three pages, the manager.
constexpr std::size_t kContextSize = 11 * sizeof(void*);

}  // namespace

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);

__attribute__((visibility("default"))) void* malloc(std::size_t size) {
    return size == g_nRefusedSize ? nullptr : __libc_malloc(size);
}

// An optimiser makes one call of an allocation that is zero-filled at once.
__attribute__((visibility("default"))) void* calloc(std::size_t count, std::size_t size) {
    return count * size == g_nRefusedSize ? nullptr : __libc_calloc(count, size);
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
