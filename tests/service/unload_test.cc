// A library that was loaded at run time and closed again, while a thread that has used it lives on.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <thread>

namespace {

TEST(Unload, AThreadEndsAfterTheLibraryWasClosed) {
  std::thread([] {
    void* const library = dlopen(PEXQUO_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(library, nullptr) << dlerror();
    const auto get_mode = reinterpret_cast<uint32_t (*)()>(dlsym(library, "_pexGetMode"));
    ASSERT_NE(get_mode, nullptr);
    EXPECT_EQ(get_mode(), 0x1A02);
    EXPECT_EQ(dlclose(library), 0);
  }).join();  // its state is freed here
}

}  // namespace
