# Flags of our own code: tessera_build_flags for everything we compile, tessera_library_flags for the kernels.
include(CheckCXXCompilerFlag)
include(CheckLinkerFlag)

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 99)
set(CMAKE_C_STANDARD_REQUIRED ON)
set(CMAKE_C_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
    set(CMAKE_BUILD_TYPE Release CACHE STRING "Debug or Release" FORCE)
endif()

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
    foreach(language C CXX)
        if(NOT CMAKE_${language}_COMPILER_LAUNCHER)
            set(CMAKE_${language}_COMPILER_LAUNCHER "${CCACHE_PROGRAM}")
        endif()
    endforeach()
endif()

add_library(tessera_build_flags INTERFACE)
target_compile_options(tessera_build_flags INTERFACE
    -Wall -Wextra -Wshadow -Wconversion
    # A fused multiply-add rounds once where two operations round twice: results would differ between machines.
    -ffp-contract=off
    -ffunction-sections -fdata-sections)
target_link_options(tessera_build_flags INTERFACE LINKER:--gc-sections,--as-needed)
if(NOT TESSERA_SANITIZE)
    target_link_options(tessera_build_flags INTERFACE LINKER:--no-undefined)
endif()
if(TESSERA_WERROR)
    target_compile_options(tessera_build_flags INTERFACE -Werror)
endif()
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^arm" AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # Its notes on calling conventions concern objects of compilers before version 7.
    target_compile_options(tessera_build_flags INTERFACE "$<$<COMPILE_LANGUAGE:CXX>:-Wno-psabi>")
endif()
if(TESSERA_SANITIZE)
    target_compile_options(tessera_build_flags INTERFACE
        "-fsanitize=${TESSERA_SANITIZE}" -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(tessera_build_flags INTERFACE "-fsanitize=${TESSERA_SANITIZE}")
endif()

# At -O2 the vectoriser takes only loops that need no check at run time; the kernels want more.
add_library(tessera_library_flags INTERFACE)
if(CMAKE_BUILD_TYPE STREQUAL "Release")
    foreach(flag -ftree-vectorize -fvect-cost-model=dynamic)
        string(MAKE_C_IDENTIFIER "TESSERA_HAS${flag}" known)
        check_cxx_compiler_flag("-Werror ${flag}" ${known})
        if(${known})
            target_compile_options(tessera_library_flags INTERFACE ${flag})
        endif()
    endforeach()
endif()

# Calls within the library need no detour through a table that a host could alter; only the logger is the host's to
# replace.
set(replaceable "${PROJECT_SOURCE_DIR}/cmake/replaceable.list")
set(directCalls "LINKER:-Bsymbolic-functions,--dynamic-list=${replaceable}")
check_linker_flag(CXX "${directCalls}" TESSERA_HAS_DIRECT_CALLS)
if(TESSERA_HAS_DIRECT_CALLS)
    target_link_options(tessera_library_flags INTERFACE "${directCalls}")
endif()
