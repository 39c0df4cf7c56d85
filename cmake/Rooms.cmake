# marlowen_room(NAME [LINK target...] [PCH header...])
#
# One static library a room: every .cpp and .h below src/NAME. Headers are included by room
# ("relief/relief.h"); a room that is not in LINK compiles but does not link.
function(marlowen_room name)
    cmake_parse_arguments(ROOM "" "" "LINK;PCH" ${ARGN})
    file(GLOB_RECURSE sources CONFIGURE_DEPENDS
         ${CMAKE_CURRENT_SOURCE_DIR}/${name}/*.cpp ${CMAKE_CURRENT_SOURCE_DIR}/${name}/*.h)
    file(GLOB_RECURSE resources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${name}/*.qrc)
    list(FILTER sources EXCLUDE REGEX "/main\\.cpp$")
    add_library(marlowen_${name} STATIC ${sources} ${resources})
    set_target_properties(marlowen_${name} PROPERTIES AUTOMOC ON AUTORCC ON LINKER_LANGUAGE CXX)
    target_include_directories(marlowen_${name} PUBLIC ${CMAKE_SOURCE_DIR}/src)
    target_link_libraries(marlowen_${name} PUBLIC ${ROOM_LINK})
    if(ROOM_PCH)
        target_precompile_headers(marlowen_${name} PRIVATE ${ROOM_PCH})
    endif()
endfunction()

# marlowen_tests(ROOM [LINK target...])
#
# Every tests/ROOM/tst_*.cpp is one Qt Test program and one ctest entry. Its home and settings
# lie in the build tree, never in the developer's own. DISPLAY marks tests that need one; the others
# are built by the target headless_tests.
function(marlowen_tests room)
    cmake_parse_arguments(T "DISPLAY" "" "LINK" ${ARGN})
    file(GLOB files CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${room}/tst_*.cpp)
    foreach(file ${files})
        get_filename_component(name ${file} NAME_WE)
        add_executable(${name} ${file})
        set_target_properties(${name} PROPERTIES AUTOMOC ON)
        target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/tests)
        target_compile_definitions(${name} PRIVATE
            MARLOWEN_SOURCE_DIR="${CMAKE_SOURCE_DIR}" MARLOWEN_BIN_DIR="${CMAKE_BINARY_DIR}/bin")
        target_link_libraries(${name} PRIVATE ${T_LINK} Qt6::Test)
        add_test(NAME ${room}.${name} COMMAND ${name})
        set(home ${CMAKE_BINARY_DIR}/testhome/${name})
        file(MAKE_DIRECTORY ${home})
        set(environment "HOME=${home};XDG_CONFIG_HOME=${home}/.config;XDG_RUNTIME_DIR=${home}")
        list(APPEND environment "LC_ALL=C.UTF-8")
        if(T_DISPLAY)
            list(APPEND environment "QT_QPA_PLATFORM=xcb")
            set_tests_properties(${room}.${name} PROPERTIES LABELS display RUN_SERIAL ON)
        else()
            add_dependencies(headless_tests ${name})
            list(APPEND environment "QT_QPA_PLATFORM=offscreen")
        endif()
        set_tests_properties(${room}.${name} PROPERTIES ENVIRONMENT "${environment}" TIMEOUT 300)
    endforeach()
endfunction()

# marlowen_bench(ROOM LINK target...): one program bench_ROOM of every bench/ROOM/*.cpp; the target
# benchmarks builds them all.
function(marlowen_bench room)
    cmake_parse_arguments(B "" "" "LINK" ${ARGN})
    file(GLOB files CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${room}/*.cpp)
    if(NOT files)
        return()
    endif()
    add_executable(bench_${room} ${files})
    target_include_directories(bench_${room} PRIVATE ${CMAKE_SOURCE_DIR}/bench)
    target_link_libraries(bench_${room} PRIVATE ${B_LINK} benchmark::benchmark_main)
    add_dependencies(benchmarks bench_${room})
endfunction()
