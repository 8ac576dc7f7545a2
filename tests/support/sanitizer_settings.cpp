// SPDX-License-Identifier: ISC
/// Linked into programs with sanitizers: what these have to know of Mesa's software GL driver.
#include <dlfcn.h>
#include <link.h>

#include <string_view>

/// The driver draws on threads of its own and is not instrumented.
extern "C" [[gnu::visibility("default")]] const char* __tsan_default_suppressions() {
    return "race:swrast_dri.so\n";
}

/// Not to look for thread-local variables when they are first used. Where the driver's lie at the
/// start of a page, the leak check of GCC 12 expects a header before them that old C libraries had,
/// takes the address sanitizer's own for it, and dies. Such memory is searched all the same, as the
/// dynamic linker's.
extern "C" [[gnu::visibility("default")]] const char* __asan_default_options() {
    return "intercept_tls_get_addr=0";
}

/// Leaves drivers loaded when the last display is closed. They have two tables in static pointers
/// (the processor's caches, memory for code), which would count as lost without the library, and no
/// suppression would match: what is not loaded has no name.
extern "C" [[gnu::visibility("default")]] int dlclose(void* library) {
    static const auto next = reinterpret_cast<int (*)(void*)>(dlsym(RTLD_NEXT, "dlclose"));
    const link_map* map = nullptr;
    const bool is_known = dlinfo(library, RTLD_DI_LINKMAP, &map) == 0;
    return is_known && std::string_view(map->l_name).ends_with("_dri.so") ? 0 : next(library);
}
