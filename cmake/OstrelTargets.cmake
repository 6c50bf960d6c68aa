# What every target of ours shares, as one interface target, and the two functions that make a module.
include(CheckCXXCompilerFlag)

add_library(OstrelBuild INTERFACE)
target_include_directories(OstrelBuild INTERFACE ${PROJECT_SOURCE_DIR}/Sources)
target_compile_options(OstrelBuild INTERFACE
    -Wall -Wextra -Werror -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion -Wnon-virtual-dtor
    -Woverloaded-virtual -Wimplicit-fallthrough -fvisibility=hidden -fno-math-errno)
# GCC 12 finds overflows in its own library once -O3 has inlined it.
target_compile_options(OstrelBuild INTERFACE
    $<$<AND:$<CXX_COMPILER_ID:GNU>,$<CONFIG:Release>>:-Wno-restrict;-Wno-stringop-overflow>)
if(OSTREL_SANITIZE)
    target_compile_options(OstrelBuild INTERFACE -fsanitize=address,undefined -fno-sanitize-recover=all
        -fno-omit-frame-pointer)
    target_link_options(OstrelBuild INTERFACE -fsanitize=address,undefined)
endif()
if(OSTREL_FUZZERS)
    target_compile_options(OstrelBuild INTERFACE -fsanitize=fuzzer-no-link,address,undefined
        -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(OstrelBuild INTERFACE -fsanitize=address,undefined)
endif()

# A static library of one module. Includes read "Module/File.h"; a module may use only what it links.
function(ostrel_module name)
    add_library(${name} STATIC ${ARGN})
    target_link_libraries(${name} PUBLIC OstrelBuild)
    target_precompile_headers(${name} PRIVATE <algorithm> <functional> <memory> <optional> <string> <string_view>
        <unordered_map> <vector>)
endfunction()

# One test program of one area: ostrel_test(NAME sources... [QT | WIDGETS] [LIBRARIES libs...]). With QT an application
# object lives while the tests run, for fonts, windows and event loops; with WIDGETS it is one for Qt Widgets.
function(ostrel_test name)
    cmake_parse_arguments(ARG "QT;WIDGETS" "" "LIBRARIES" ${ARGN})
    add_executable(${name} ${ARG_UNPARSED_ARGUMENTS})
    if(ARG_QT)
        target_sources(${name} PRIVATE ${PROJECT_SOURCE_DIR}/Tests/Support/QtTestMain.cpp)
        target_link_libraries(${name} PRIVATE Qt6::Gui)
    endif()
    if(ARG_WIDGETS)
        target_sources(${name} PRIVATE ${PROJECT_SOURCE_DIR}/Tests/Support/WidgetsTestMain.cpp)
        target_link_libraries(${name} PRIVATE Qt6::Widgets Qt6::Test)
    endif()
    target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/Tests)
    target_link_libraries(${name} PRIVATE ${ARG_LIBRARIES} OstrelTestSupport GTest::gmock_main)
    target_precompile_headers(${name} REUSE_FROM OstrelTestSupport)
    # One test a program: starting a sanitized program for every case takes longer than the cases.
    add_test(NAME ${name} COMMAND ${name})
    set_tests_properties(${name} PROPERTIES TIMEOUT 600
        ENVIRONMENT "QT_QPA_PLATFORM=offscreen;OSTREL_BUILD=${CMAKE_BINARY_DIR};OSTREL_SOURCE=${PROJECT_SOURCE_DIR}")
endfunction()
