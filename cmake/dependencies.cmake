# Libraries that are used but not ours; what each is for stands in the README.
find_package(PkgConfig REQUIRED)
find_package(GTest REQUIRED)
find_package(benchmark REQUIRED)
include(GoogleTest)
pkg_check_modules(LV2 REQUIRED IMPORTED_TARGET lv2)
pkg_check_modules(HWY REQUIRED IMPORTED_TARGET libhwy)
pkg_check_modules(LILV REQUIRED IMPORTED_TARGET lilv-0)
find_program(BRINDLE_CLANGXX NAMES clang++ clang++-14 REQUIRED)
