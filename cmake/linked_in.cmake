# Highway, Pugl and the library of C++ as parts of the plugin, for a bundle that needs none of them.
enable_language(C)
set(OpenGL_GL_PREFERENCE LEGACY) # the one libGL.so.1 that every desktop has
file(GLOB highway_sources ${BRINDLE_LINKED_IN}/highway/hwy/*.cc)
list(FILTER highway_sources EXCLUDE REGEX "_test\\.cc$|nanobenchmark")
add_library(linked_hwy STATIC ${highway_sources})
target_include_directories(linked_hwy SYSTEM PUBLIC ${BRINDLE_LINKED_IN}/highway)
add_library(linked_pugl STATIC ${BRINDLE_LINKED_IN}/pugl/pugl/pugl_x11.c)
target_include_directories(linked_pugl SYSTEM PUBLIC ${BRINDLE_LINKED_IN}/pugl)
foreach(name HWY PUGL)
    string(TOLOWER linked_${name} linked)
    add_library(PkgConfig::${name} INTERFACE IMPORTED)
    target_link_libraries(PkgConfig::${name} INTERFACE ${linked})
endforeach()
# What nobody calls of them is left out: it would need a newer C library.
target_link_options(brindle_options INTERFACE -static-libstdc++ -static-libgcc -Wl,--as-needed
                                              -Wl,--gc-sections)
