# A room is a folder with one library: public headers in include/<room>/, sources beside them.
# DEPENDS lists the rooms it may see, and nothing else puts a room's headers on the include path:
# an arrow that is not stated here does not compile.
#
#   kv_room(KvRx DIR rx DEPENDS KvOsBase LIBS ICU::uc PRIVATE_LIBS pugixml::pugixml)
#
function(kv_room target)
    cmake_parse_arguments(ROOM "STATIC;NO_PCH" "" "SOURCES;DEPENDS;LIBS;PRIVATE_LIBS" ${ARGN})
    if(NOT ROOM_SOURCES)
        file(GLOB ROOM_SOURCES CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
    endif()
    if(NOT ROOM_SOURCES)
        message(STATUS "${target}: no sources yet")
        add_library(${target} INTERFACE)
        target_include_directories(${target} INTERFACE ${CMAKE_CURRENT_SOURCE_DIR}/include)
        target_link_libraries(${target} INTERFACE ${ROOM_DEPENDS} ${ROOM_LIBS})
        return()
    endif()
    if(ROOM_STATIC)
        add_library(${target} STATIC ${ROOM_SOURCES})
    else()
        add_library(${target} SHARED ${ROOM_SOURCES})
    endif()
    target_include_directories(${target}
        PUBLIC ${CMAKE_CURRENT_SOURCE_DIR}/include
        PRIVATE ${CMAKE_CURRENT_SOURCE_DIR})
    target_link_libraries(${target} PUBLIC ${ROOM_DEPENDS} ${ROOM_LIBS}
        PRIVATE kv_options ${ROOM_PRIVATE_LIBS})
    if(NOT ROOM_NO_PCH)
        target_precompile_headers(${target} PRIVATE ${CMAKE_SOURCE_DIR}/cmake/pch.h)
    endif()
endfunction()

# One test program of a room: tests/<folder>/*_test.cpp, linking that room only.
function(kv_room_tests name)
    cmake_parse_arguments(T "" "TIMEOUT;SHARDS" "DEPENDS;LIBS;SOURCES" ${ARGN})
    if(NOT T_SOURCES)
        file(GLOB T_SOURCES CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
    endif()
    if(NOT T_SOURCES)
        message(STATUS "${name}: no tests yet")
        return()
    endif()
    if(NOT T_TIMEOUT)
        set(T_TIMEOUT 170)
    endif()
    if(NOT T_SHARDS)
        set(T_SHARDS 1)
    endif()
    add_executable(${name} ${T_SOURCES})
    target_link_libraries(${name} PRIVATE kv_options kv_test_support ${T_DEPENDS} ${T_LIBS})
    target_compile_definitions(${name} PRIVATE KV_TEST_DATA="${CMAKE_SOURCE_DIR}/tests/data"
        KV_BUILD_DIR="${CMAKE_BINARY_DIR}")
    # The shared header is compiled as library code; a program that reuses it must be compiled so too.
    target_compile_options(${name} PRIVATE -fPIC)
    target_precompile_headers(${name} REUSE_FROM kv_test_support)
    math(EXPR last "${T_SHARDS} - 1")
    foreach(shard RANGE ${last})
        set(test ${name})
        if(T_SHARDS GREATER 1)
            set(test ${name}.${shard})
        endif()
        add_test(NAME ${test} COMMAND ${name} --gtest_brief=1)
        set_tests_properties(${test} PROPERTIES TIMEOUT ${T_TIMEOUT} ENVIRONMENT
            "GTEST_TOTAL_SHARDS=${T_SHARDS};GTEST_SHARD_INDEX=${shard}")
    endforeach()
endfunction()
