# What every target of the project is compiled with, and where programs land.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)

# Programs find each other beside the running one: the command, the window, the stand-ins.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)

# The source files of one folder are compiled together: what they share is read and compiled once. So names in their unnamed
# namespaces are unique in a folder. Off where each file is looked at alone, as editors and clang-tidy do.
option(TARVIK_UNITY "Compile the source files of a folder together" ON)

# A quicker linker, where there is one: every test program is linked again after each change of the core.
find_program(TARVIK_MOLD mold)
if(TARVIK_MOLD AND NOT APPLE)
    add_link_options(-fuse-ld=mold)
endif()

find_program(TARVIK_CCACHE ccache)
if(TARVIK_CCACHE)
    # It takes a precompiled header for what it was made of, as the compiler does.
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env CCACHE_SLOPPINESS=pch_defines,time_macros ${TARVIK_CCACHE})
endif()

# Whose files are compiled. Files of another system than this one are only listed, for a check with a compiler that makes
# programs for it.
if(APPLE)
    set(thisSystem macOS)
    # Homebrew keeps these apart from the system's own.
    foreach(formula icu4c libarchive openssl@3)
        execute_process(COMMAND brew --prefix ${formula} OUTPUT_VARIABLE prefix OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
        list(APPEND CMAKE_PREFIX_PATH ${prefix})
    endforeach()
else()
    set(thisSystem Linux)
endif()
set(TARVIK_SYSTEM ${thisSystem} CACHE STRING "The system whose files are compiled: macOS or Linux")
if(TARVIK_SYSTEM STREQUAL macOS)
    enable_language(OBJCXX)
    set(CMAKE_OBJCXX_STANDARD 20)
endif()

set(TARVIK_SANITIZERS "" CACHE STRING "Sanitizers to build with, as in -fsanitize=")
if(TARVIK_SANITIZERS)
    add_compile_options(-fsanitize=${TARVIK_SANITIZERS} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${TARVIK_SANITIZERS})
    if(TARVIK_SANITIZERS MATCHES thread AND CMAKE_CXX_COMPILER_ID STREQUAL GNU)
        add_compile_options(-Wno-tsan)  # Of fences in Qt's headers.
    endif()
endif()

find_package(PkgConfig REQUIRED)
find_package(Threads REQUIRED)
find_package(fmt REQUIRED)

# Warnings for the project's own code; the presets make errors of them. A record named field by field may leave fields at
# their defaults.
add_library(tarvik-settings INTERFACE)
target_compile_options(tarvik-settings INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wold-style-cast
                                                 -Woverloaded-virtual -Wno-missing-field-initializers)
if(CMAKE_CXX_COMPILER_ID MATCHES Clang)
    # Without a time in it, the same precompiled header is the same to ccache.
    target_compile_options(tarvik-settings INTERFACE "SHELL:-Xclang -fno-pch-timestamp")
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
    # By which ccache sees that a precompiled header was used.
    target_compile_options(tarvik-settings INTERFACE -fpch-preprocess)
    # GCC 12 sees overlaps in the standard library's own string code that cannot be.
    target_compile_options(tarvik-settings INTERFACE -Wno-restrict)
    if(TARVIK_UNITY)
        # Warns of every coroutine outside of the file that is compiled: in a batch, that is every source file.
        target_compile_options(tarvik-settings INTERFACE -Wno-subobject-linkage)
    endif()
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

# Compiles a target as all of the project's are: with its warnings, and the files of each folder together.
function(tarvik_settings target)
    target_link_libraries(${target} PRIVATE tarvik-settings)
    set_target_properties(${target} PROPERTIES UNITY_BUILD ${TARVIK_UNITY} UNITY_BUILD_MODE GROUP)
    set(largestGroup 10)
    get_target_property(sources ${target} SOURCES)
    list(FILTER sources INCLUDE REGEX "\\.cpp$")
    list(SORT sources)
    foreach(source ${sources})
        cmake_path(IS_PREFIX CMAKE_CURRENT_SOURCE_DIR ${source} isOurs)
        if(NOT isOurs)
            continue()
        endif()
        cmake_path(GET source PARENT_PATH folder)
        cmake_path(RELATIVE_PATH folder BASE_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR} OUTPUT_VARIABLE name)
        string(MAKE_C_IDENTIFIER "${name}" name)
        # Of each folder: what is in a folder below comes between its files.
        if(NOT DEFINED count_${name})
            set(count_${name} 0)
        endif()
        math(EXPR number "${count_${name}} / ${largestGroup}")
        math(EXPR count_${name} "${count_${name}} + 1")
        set_source_files_properties(${source} PROPERTIES UNITY_GROUP "${name}${number}")
    endforeach()
endfunction()

# A program with the sources of the current folder.
function(tarvik_program name)
    cmake_parse_arguments(PARSE_ARGV 1 argument "" "" "LIBRARIES")
    tarvik_sources(sources ${CMAKE_CURRENT_SOURCE_DIR})
    add_executable(${name} ${sources})
    target_link_libraries(${name} PRIVATE ${argument_LIBRARIES})
    tarvik_settings(${name})
endfunction()

# The day of the newest version, from the list of changes: 2026-11-22.
set_property(DIRECTORY ${PROJECT_SOURCE_DIR} APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/CHANGELOG.md)
file(STRINGS ${PROJECT_SOURCE_DIR}/CHANGELOG.md releases REGEX "^## ")
list(GET releases 0 newest)
if(NOT newest MATCHES "^## ${PROJECT_VERSION} \\(([0-9-]+)\\)$")
    message(FATAL_ERROR "The newest version in CHANGELOG.md is not ${PROJECT_VERSION}: ${newest}")
endif()
set(TARVIK_DATE ${CMAKE_MATCH_1})
