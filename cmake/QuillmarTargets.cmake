# One folder, one library: its sources are found, its dependencies are named.
include_guard()
# Everything is found where the system has it; the one module of the program's own is opened by its path.
set(CMAKE_SKIP_RPATH ON)
find_package(PkgConfig REQUIRED)
find_package(Threads REQUIRED)
find_package(fmt REQUIRED)
find_package(nlohmann_json REQUIRED)
# Keeps a pkg-config module's include path "system", so that its headers may warn.
function(quillmar_pkg name)
    pkg_check_modules(${name} REQUIRED IMPORTED_TARGET ${ARGN})
    # Only "-pthread", with which the shared precompiled header would not be accepted.
    set_property(TARGET PkgConfig::${name} PROPERTY INTERFACE_COMPILE_OPTIONS "")
endfunction()
quillmar_pkg(GLIB glib-2.0)

add_library(quillmar_options INTERFACE)
target_compile_options(quillmar_options INTERFACE
    -Wall -Wextra -Wshadow -Wconversion -Werror -Wnon-virtual-dtor -Woverloaded-virtual
    -Wno-missing-field-initializers -fno-strict-aliasing "SHELL:-Xclang -fno-pch-timestamp")
target_link_options(quillmar_options INTERFACE -fuse-ld=lld -Wl,--gc-sections -Wl,--as-needed)
target_compile_options(quillmar_options INTERFACE -ffunction-sections -fdata-sections)
target_include_directories(quillmar_options INTERFACE ${CMAKE_SOURCE_DIR}/src)
if(QUILLMAR_SANITIZE)
    target_compile_options(quillmar_options INTERFACE
        -fsanitize=${QUILLMAR_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(quillmar_options INTERFACE -fsanitize=${QUILLMAR_SANITIZE})
else()
    # Nobody links a program, whatever the libraries' own flags say. The sanitizers are found through its symbols.
    set(executable $<STREQUAL:$<TARGET_PROPERTY:TYPE>,EXECUTABLE>)
    target_link_options(quillmar_options INTERFACE
        $<${executable}:-Wl,--version-script=${CMAKE_SOURCE_DIR}/cmake/exports.map>)
endif()

add_library(quillmar_pch STATIC ${CMAKE_SOURCE_DIR}/cmake/pch.cpp)
target_link_libraries(quillmar_pch PUBLIC quillmar_options)
target_precompile_headers(quillmar_pch PRIVATE ${CMAKE_SOURCE_DIR}/cmake/pch.h)

# quillmar_library(name folder [deps...]): a static library from every .cpp of `folder` (not of its subfolders).
function(quillmar_library name folder)
    file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/${folder}/*.cpp)
    file(GLOB headers CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/${folder}/*.h)
    if(NOT sources)
        add_library(${name} INTERFACE)
        target_link_libraries(${name} INTERFACE quillmar_options ${ARGN})
        return()
    endif()
    add_library(${name} STATIC ${sources} ${headers})
    target_link_libraries(${name} PUBLIC quillmar_options ${ARGN})
    target_precompile_headers(${name} REUSE_FROM quillmar_pch)
endfunction()

# To optimise the tests, which run for moments, took a fifth of a build's time.
set(QUILLMAR_TEST_OPTIONS -O0)

# quillmar_test_program(name folder [deps...]): a test program from every .cpp of tests/<folder>; not run by itself.
function(quillmar_test_program name folder)
    file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tests/${folder}/*.cpp)
    if(NOT sources)
        message(FATAL_ERROR "There is no test in tests/${folder}.")
    endif()
    add_executable(${name} ${sources})
    target_link_libraries(${name} PRIVATE quillmar_testing ${ARGN})
    # As the precompiled header is built: an executable's own -fPIE would not match it.
    set_target_properties(${name} PROPERTIES POSITION_INDEPENDENT_CODE OFF)
    target_compile_options(${name} PRIVATE -fPIC ${QUILLMAR_TEST_OPTIONS})
    target_precompile_headers(${name} REUSE_FROM quillmar_test_pch)
endfunction()

# quillmar_test(folder [deps...]): the test program of tests/<folder>, run as one test.
function(quillmar_test folder)
    string(REPLACE / _ name ${folder})
    quillmar_test_program(${name}_tests ${folder} ${ARGN})
    add_test(NAME ${name} COMMAND ${name}_tests --gtest_brief=1)
    set_tests_properties(${name} PROPERTIES TIMEOUT 170)
endfunction()
