# The build types of the program:
#   Release  optimised, no assertions; what the scripts build and the package holds
#   Dev      quick to build, assertions on
#   Asan     Dev under the address and undefined-behaviour sanitizers
if(NOT CMAKE_BUILD_TYPE)
    set(CMAKE_BUILD_TYPE Release CACHE STRING "Release, Dev or Asan" FORCE)
endif()
set_property(CACHE CMAKE_BUILD_TYPE PROPERTY STRINGS Release Dev Asan)

set(sanitizers "-fsanitize=address,undefined")
set(CMAKE_CXX_FLAGS_RELEASE "-O2 -ftree-vectorize -DNDEBUG")
set(CMAKE_CXX_FLAGS_DEV "-O1 -g1 -DQT_FORCE_ASSERTS")
set(CMAKE_CXX_FLAGS_ASAN
    "${CMAKE_CXX_FLAGS_DEV} ${sanitizers} -fno-sanitize-recover=undefined -fno-omit-frame-pointer")
set(CMAKE_EXE_LINKER_FLAGS_ASAN ${sanitizers})

# What every target of the tree is compiled with.
set(MARLOWEN_COMPILE_OPTIONS
    -Wall -Wextra -Wshadow -Wconversion -Werror -fno-math-errno -fno-trapping-math)

if(MARLOWEN_FUZZ)
    # Another compiler has other warnings; those of the ordinary build are the ones that count.
    list(APPEND MARLOWEN_COMPILE_OPTIONS
         -w -fsanitize=fuzzer-no-link,address,undefined -fno-omit-frame-pointer
         -fno-sanitize-recover=undefined)
    add_link_options(-fsanitize=address,undefined)
endif()

# Tests and benchmarks, and everything in a Dev or Asan build, link with mold when it is there.
find_program(MOLD mold)
add_library(marlowen_quick_link INTERFACE)
if(MOLD)
    target_link_options(marlowen_quick_link INTERFACE -fuse-ld=mold)
    add_link_options($<$<CONFIG:Dev,Asan>:-fuse-ld=mold>)
endif()
