# marlowen_room(NAME [LINK target...] [PCH header...])
#
# One static library a room: every .cpp and .h below src/NAME. Headers are included by room
# ("relief/grid/relief.h"). Each room has an include folder that holds nothing but a link to the room:
# headers of rooms that are not in LINK are not found.
function(marlowen_room name)
    cmake_parse_arguments(ROOM "" "" "LINK;PCH" ${ARGN})
    set(folder ${CMAKE_CURRENT_SOURCE_DIR}/${name})
    file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${folder}/*.cpp ${folder}/*.h)
    file(GLOB_RECURSE resources CONFIGURE_DEPENDS ${folder}/*.qrc)
    list(FILTER sources EXCLUDE REGEX "/main\\.cpp$")
    set(include ${CMAKE_BINARY_DIR}/include/${name})
    file(MAKE_DIRECTORY ${include})
    file(CREATE_LINK ${folder} ${include}/${name} SYMBOLIC)
    add_library(marlowen_${name} STATIC ${sources} ${resources})
    set_target_properties(marlowen_${name} PROPERTIES AUTOMOC ON AUTORCC ON LINKER_LANGUAGE CXX)
    target_include_directories(marlowen_${name} PUBLIC ${include})
    target_compile_options(marlowen_${name} PRIVATE ${MARLOWEN_COMPILE_OPTIONS})
    target_link_libraries(marlowen_${name} PUBLIC ${ROOM_LINK})
    if(ROOM_PCH)
        target_precompile_headers(marlowen_${name} PRIVATE ${ROOM_PCH})
    endif()
endfunction()

# marlowen_program(NAME ROOM): the program whose main function is src/ROOM/main.cpp.
function(marlowen_program name room)
    add_executable(${name} ${room}/main.cpp)
    target_compile_options(${name} PRIVATE ${MARLOWEN_COMPILE_OPTIONS})
    target_link_libraries(${name} PRIVATE marlowen_${room})
    install(TARGETS ${name} RUNTIME)
endfunction()

# marlowen_tests(ROOM LINK target... [DISPLAY test...])
#
# Every tests/ROOM/tst_*.cpp is one Qt Test program and one ctest entry, with a home folder of its
# own (tests/testhome.cpp). Those named under DISPLAY draw with OpenGL or need a window manager: they
# carry the label "display" and each runs on a virtual display of its own. The others run on Qt's
# offscreen platform.
function(marlowen_tests room)
    cmake_parse_arguments(T "" "" "LINK;DISPLAY" ${ARGN})
    file(GLOB files CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${room}/tst_*.cpp)
    foreach(file ${files})
        get_filename_component(name ${file} NAME_WE)
        add_executable(${name} ${file})
        set_target_properties(${name} PROPERTIES AUTOMOC ON)
        target_compile_options(${name} PRIVATE ${MARLOWEN_COMPILE_OPTIONS})
        target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/tests)
        target_link_libraries(${name} PRIVATE
            ${T_LINK} marlowen_test marlowen_testhome marlowen_quick_link)
        set(environment "LC_ALL=C.UTF-8" "QT_QPA_PLATFORM=offscreen"
            "LSAN_OPTIONS=suppressions=${CMAKE_CURRENT_SOURCE_DIR}/lsan.supp:print_suppressions=0")
        if(name IN_LIST T_DISPLAY)
            add_test(NAME ${room}.${name}
                     COMMAND ${CMAKE_SOURCE_DIR}/scripts/own-display $<TARGET_FILE:${name}>)
            # They take longest: ctest begins with them.
            set_tests_properties(${room}.${name} PROPERTIES LABELS display COST 20)
        else()
            add_test(NAME ${room}.${name} COMMAND ${name})
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
    target_compile_options(bench_${room} PRIVATE ${MARLOWEN_COMPILE_OPTIONS})
    target_include_directories(bench_${room} PRIVATE ${CMAKE_SOURCE_DIR}/bench)
    target_link_libraries(bench_${room} PRIVATE
        ${B_LINK} benchmark::benchmark_main marlowen_quick_link)
    add_dependencies(benchmarks bench_${room})
endfunction()
