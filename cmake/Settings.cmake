# What every target of the project is compiled with, and where programs land.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)

# Programs find each other beside the running one: the command, the window, the stand-ins.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)

find_program(TARVIK_CCACHE ccache)
if(TARVIK_CCACHE)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${TARVIK_CCACHE})
endif()

if(APPLE)
    set(TARVIK_SYSTEM macOS)
    enable_language(OBJCXX)
    set(CMAKE_OBJCXX_STANDARD 20)
    # Homebrew keeps its ICU apart from the system's.
    execute_process(COMMAND brew --prefix icu4c OUTPUT_VARIABLE icuPrefix OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
    list(APPEND CMAKE_PREFIX_PATH ${icuPrefix})
else()
    set(TARVIK_SYSTEM Linux)
endif()

set(TARVIK_SANITIZERS "" CACHE STRING "Sanitizers to build with, as in -fsanitize=")
if(TARVIK_SANITIZERS)
    add_compile_options(-fsanitize=${TARVIK_SANITIZERS} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${TARVIK_SANITIZERS})
endif()

find_package(PkgConfig REQUIRED)
find_package(Threads REQUIRED)
find_package(fmt REQUIRED)

# Warnings for the project's own code; the presets make errors of them. A record named field by field may leave fields at
# their defaults.
add_library(tarvik-settings INTERFACE)
target_compile_options(tarvik-settings INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wold-style-cast
                                                 -Woverloaded-virtual -Wno-missing-field-initializers)
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
    # GCC 12 sees overlaps in the standard library's own string code that cannot be.
    target_compile_options(tarvik-settings INTERFACE -Wno-restrict)
endif()
target_compile_definitions(tarvik-settings INTERFACE TARVIK_VERSION="${PROJECT_VERSION}")

# Gives, in `result`, every source file of `folder`, without the ones of other systems.
function(tarvik_sources result folder)
    file(GLOB_RECURSE found CONFIGURE_DEPENDS ${folder}/*.cpp ${folder}/*.mm)
    foreach(system macOS Linux)
        if(NOT system STREQUAL TARVIK_SYSTEM)
            list(FILTER found EXCLUDE REGEX "/${system}/")
        endif()
    endforeach()
    set(${result} ${found} PARENT_SCOPE)
endfunction()

# A program with the sources of the current folder.
function(tarvik_program name)
    cmake_parse_arguments(PARSE_ARGV 1 argument "" "" "LIBRARIES")
    tarvik_sources(sources ${CMAKE_CURRENT_SOURCE_DIR})
    add_executable(${name} ${sources})
    target_link_libraries(${name} PRIVATE tarvik-settings ${argument_LIBRARIES})
endfunction()
