# Libraries that are used but not ours; what each is for stands in the README.
find_package(PkgConfig REQUIRED)
pkg_check_modules(LV2 REQUIRED IMPORTED_TARGET lv2)
if(BRINDLE_LINKED_IN)
    include(cmake/linked_in.cmake)
else()
    pkg_check_modules(HWY REQUIRED IMPORTED_TARGET libhwy)
endif()
# ARM processors run NEON: the vectors of SVE have no size when compiling and can be no members.
target_compile_definitions(PkgConfig::HWY INTERFACE
                           HWY_DISABLED_TARGETS=\(HWY_SVE|HWY_SVE2|HWY_SVE_256|HWY_SVE2_128\))

if(BRINDLE_EDITOR)
    find_package(OpenGL REQUIRED COMPONENTS OpenGL)
    if(NOT BRINDLE_LINKED_IN)
        pkg_check_modules(PUGL REQUIRED IMPORTED_TARGET pugl-0)
    endif()
    pkg_check_modules(X11 REQUIRED IMPORTED_TARGET x11)
    # Where Debian, Fedora and Arch have it, in this order. Version 2 is under the SIL Open Font
    # License, version 1 under the GPL with an exception for documents. Later releases of Debian have
    # version 2 in the folder of version 1.
    find_file(
        BRINDLE_FONT LiberationSans-Regular.ttf
        PATHS /usr/share/fonts
        PATH_SUFFIXES truetype/liberation2 truetype/liberation liberation-sans-fonts liberation-sans
                      liberation
        DOC "LiberationSans-Regular.ttf, from which the letters are drawn"
        NO_CMAKE_FIND_ROOT_PATH REQUIRED)
    if(NOT BRINDLE_GENERATORS)
        pkg_check_modules(FREETYPE REQUIRED IMPORTED_TARGET freetype2)
    endif()
endif()

if(BRINDLE_PROGRAM)
    find_package(CLI11 REQUIRED)
    find_package(nlohmann_json REQUIRED)
    find_package(OpenGL REQUIRED COMPONENTS OpenGL)
    pkg_check_modules(X11 REQUIRED IMPORTED_TARGET x11)
    pkg_check_modules(LILV REQUIRED IMPORTED_TARGET lilv-0)
    pkg_check_modules(SNDFILE REQUIRED IMPORTED_TARGET sndfile)
    pkg_check_modules(RTAUDIO REQUIRED IMPORTED_TARGET rtaudio)
    pkg_check_modules(CAIRO REQUIRED IMPORTED_TARGET cairo)
    pkg_check_modules(FONTCONFIG REQUIRED IMPORTED_TARGET fontconfig)
    pkg_check_modules(CMINPACK REQUIRED IMPORTED_TARGET cminpack)
endif()

if(BUILD_TESTING)
    find_package(GTest REQUIRED)
    find_package(benchmark REQUIRED)
    find_package(OpenGL REQUIRED COMPONENTS EGL)
    include(GoogleTest)
    pkg_check_modules(XTST REQUIRED IMPORTED_TARGET xtst)
    pkg_check_modules(XFIXES REQUIRED IMPORTED_TARGET xfixes)
    find_program(BRINDLE_CLANGXX NAMES clang++ clang++-14 REQUIRED)
endif()
