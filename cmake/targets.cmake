# How this project's targets are compiled: one place for warnings, rounding rules and instruments.

add_library(brindle_options INTERFACE)
target_include_directories(brindle_options INTERFACE ${PROJECT_SOURCE_DIR})
target_compile_options(
    brindle_options
    INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow $<$<BOOL:${BRINDLE_WERROR}>:-Werror>
              # The engine's output is defined to the bit: a product and a sum round separately.
              -ffp-contract=off)

if(BRINDLE_SANITIZE) # With sanitizers, g++ 12 takes parts of its own <regex> for uninitialised.
    target_compile_options(brindle_options INTERFACE -fsanitize=${BRINDLE_SANITIZE}
                                                     -fno-sanitize-recover=all -fno-omit-frame-pointer
                                                     -Wno-maybe-uninitialized)
    target_link_options(brindle_options INTERFACE -fsanitize=${BRINDLE_SANITIZE})
endif()
if(BRINDLE_COVERAGE)
    target_compile_options(brindle_options INTERFACE --coverage)
    target_link_options(brindle_options INTERFACE --coverage)
endif()

# A program that the build runs. BRINDLE_GENERATORS names a folder with ready ones, which a build for
# another processor takes from one for the machine at hand (generators/ of its build folder).
function(brindle_generator target)
    if(BRINDLE_GENERATORS)
        add_executable(${target} IMPORTED)
        set_target_properties(${target} PROPERTIES IMPORTED_LOCATION ${BRINDLE_GENERATORS}/${target})
        return()
    endif()
    cmake_parse_arguments(arg "" "" "SOURCES;LIBS" ${ARGN})
    add_executable(${target} ${arg_SOURCES})
    target_link_libraries(${target} PRIVATE brindle_options)
    target_link_libraries(${target} PRIVATE ${arg_LIBS})
    set_target_properties(${target} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/generators)
endfunction()

# One static library per folder; the plugin, tests and benchmarks are linked from them.
function(brindle_library target)
    add_library(${target} STATIC ${ARGN})
    target_include_directories(${target} PUBLIC ${PROJECT_SOURCE_DIR})
    target_link_libraries(${target} PRIVATE brindle_options)
endfunction()

# What the sanitizers have to know of the GL driver, for a program that draws.
function(brindle_sanitizer_settings target)
    if(BRINDLE_SANITIZE)
        target_sources(${target} PRIVATE ${PROJECT_SOURCE_DIR}/tests/support/sanitizer_settings.cpp)
    endif()
endfunction()

# A GoogleTest program. Those of one kind share a precompiled header, which programs with other
# compile options could not read.
function(brindle_test_program target)
    cmake_parse_arguments(arg "" "" "SOURCES;LIBS" ${ARGN})
    add_executable(${target} ${arg_SOURCES})
    target_link_libraries(${target} PRIVATE brindle_options ${arg_LIBS} GTest::gmock GTest::gtest_main)
    target_compile_options(${target} PRIVATE -pthread) # as the header
    target_precompile_headers(${target} REUSE_FROM brindle_test_headers)
    brindle_sanitizer_settings(${target})
endfunction()

# Each of its tests is known to ctest by name.
function(brindle_test target)
    brindle_test_program(${target} ${ARGN})
    gtest_discover_tests(${target} PROPERTIES TIMEOUT 300)
endfunction()

# A GoogleTest program that needs a display: one ctest entry with an X server of its own.
function(brindle_display_test target)
    brindle_test_program(${target} ${ARGN})
    add_test(NAME ${target} COMMAND ${PROJECT_SOURCE_DIR}/tests/support/with_display
                                    $<TARGET_FILE:${target}>)
    set_tests_properties(${target} PROPERTIES TIMEOUT 600)
endfunction()

# A libFuzzer program, built by clang from sources alone whatever compiler builds the rest, with a
# short run of fixed length as its test. Longer runs: call the program by hand.
function(brindle_fuzzer target)
    cmake_parse_arguments(arg "" "RUNS" "SOURCES;FLAGS" ${ARGN})
    set(program ${CMAKE_CURRENT_BINARY_DIR}/${target})
    set(instruments -fsanitize=fuzzer,address,undefined -fno-sanitize-recover=all)
    set(objects)
    foreach(source ${arg_SOURCES})
        string(REPLACE "/" "_" object ${source})
        set(object ${program}.dir/${object}.o)
        add_custom_command(
            OUTPUT ${object}
            COMMAND ${CMAKE_CXX_COMPILER_LAUNCHER} ${BRINDLE_CLANGXX} -std=c++20 -g -O1
                    -ffp-contract=off ${instruments} -I ${PROJECT_SOURCE_DIR} -MMD -MF ${object}.d -c
                    ${PROJECT_SOURCE_DIR}/${source} -o ${object}
            DEPENDS ${PROJECT_SOURCE_DIR}/${source}
            DEPFILE ${object}.d
            VERBATIM)
        list(APPEND objects ${object})
    endforeach()
    file(MAKE_DIRECTORY ${program}.dir)
    add_custom_command(
        OUTPUT ${program}
        COMMAND ${BRINDLE_CLANGXX} ${instruments} ${objects} ${arg_FLAGS} -o ${program}
        DEPENDS ${objects}
        VERBATIM)
    add_custom_target(${target}_program ALL DEPENDS ${program})
    add_test(NAME ${target} COMMAND ${program} -runs=${arg_RUNS} -seed=1 -verbosity=0)
endfunction()
