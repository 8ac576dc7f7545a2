// SPDX-License-Identifier: ISC
/// Linked into sanitizer builds: what the sanitizers must know of Mesa's software GL driver and of
/// the sound server's library.
#include <dlfcn.h>
#include <link.h>

#include <string_view>

/// The libraries have threads of their own and are not instrumented. Where a JACK server ends, its
/// library closes a socket that it still reads, and RtAudio does not join the thread that tells so.
extern "C" [[gnu::visibility("default")]] const char* __tsan_default_suppressions() {
    return "race:swrast_dri.so\n"
           "race:libjack.so\n"
           "thread:librtaudio.so\n";
}

/// Disables the lookup of thread-local variables on first use. If the driver's are at the start of
/// a page, the leak check of GCC 12 expects a header before them that only old C libraries had,
/// mistakes the address sanitizer's own for it, and crashes. The leak check still searches that
/// memory, as the dynamic linker's.
extern "C" [[gnu::visibility("default")]] const char* __asan_default_options() {
    return "intercept_tls_get_addr=0";
}

#ifdef __SANITIZE_ADDRESS__
/// Keeps drivers loaded when the last display is closed. They keep two tables in static pointers
/// (the processor's caches, memory for code), which would count as leaks once the library is
/// unloaded. No suppression would match, because unloaded code has no name.
extern "C" [[gnu::visibility("default")]] int dlclose(void* library) {
    static const auto next = reinterpret_cast<int (*)(void*)>(dlsym(RTLD_NEXT, "dlclose"));
    const link_map* map = nullptr;
    const bool is_known = dlinfo(library, RTLD_DI_LINKMAP, &map) == 0;
    return is_known && std::string_view(map->l_name).ends_with("_dri.so") ? 0 : next(library);
}
#endif
