# What every target is compiled with. Warnings are errors, in every preset and for both compilers.
find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
    # No absolute path of the checkout in the hash: two build folders share what is the same.
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env CCACHE_BASEDIR=${CMAKE_SOURCE_DIR}
        CCACHE_NOHASHDIR=1 CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime
        ${CCACHE_PROGRAM})
endif()

find_program(MOLD_PROGRAM mold)
if(MOLD_PROGRAM)
    add_link_options(-fuse-ld=mold)
endif()

add_library(kv_options INTERFACE)
target_compile_options(kv_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-qual
    -Wimplicit-fallthrough -Wformat=2 -Werror=format-security -Werror)
# A library's calls to itself are its own: the compiler may inline them, the linker binds them directly.
target_compile_options(kv_options INTERFACE -fno-semantic-interposition -fvisibility-inlines-hidden)
target_link_options(kv_options INTERFACE -Wl,-Bsymbolic-functions)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # std::regex and std::variant of this compiler's library warn by mistake under optimisation.
    target_compile_options(kv_options INTERFACE -Wno-maybe-uninitialized)
    # So do moved strings of its library, at -O2.
    target_compile_options(kv_options INTERFACE $<$<CONFIG:RelWithDebInfo>:-Wno-array-bounds>
        $<$<CONFIG:RelWithDebInfo>:-Wno-stringop-overflow>)
endif()

option(KV_HARDEN "Hardening flags of a release build" OFF)
if(KV_HARDEN)
    target_compile_options(kv_options INTERFACE -fstack-protector-strong -D_FORTIFY_SOURCE=3
        -fcf-protection -D_GLIBCXX_ASSERTIONS)
    target_link_options(kv_options INTERFACE -Wl,-z,relro,-z,now -Wl,-z,noexecstack)
endif()

set(KV_SANITIZE "" CACHE STRING "Sanitizers, as -fsanitize takes them")
if(KV_SANITIZE)
    add_compile_options(-fsanitize=${KV_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    add_link_options(-fsanitize=${KV_SANITIZE})
    add_compile_definitions(KV_SANITIZED=1)
    if(NOT KV_FUZZ)
        set(program $<STREQUAL:$<TARGET_PROPERTY:TYPE>,EXECUTABLE>)
        target_sources(kv_options INTERFACE $<${program}:${CMAKE_SOURCE_DIR}/cmake/end_after_threads.cpp>)
    endif()
endif()

option(KV_COVERAGE "Count executed lines" OFF)
if(KV_COVERAGE)
    add_compile_options(--coverage -fprofile-abs-path)
    add_link_options(--coverage)
endif()
