# One dialect and one set of warnings for the whole house.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_FLAGS_RELWITHDEBINFO "-O2 -g1")
set(CMAKE_CXX_FLAGS_DEBUG "-O1 -g")

# Single-precision comparisons decide results: no contraction behind our back.
add_compile_options(-Wall -Wextra -Wpedantic -Wconversion -ffp-contract=off -fno-plt)
add_compile_definitions(_FILE_OFFSET_BITS=64)

option(QUAVERLY_WERROR "Treat warnings as errors" OFF)
if(QUAVERLY_WERROR)
  add_compile_options(-Werror)
endif()

set(QUAVERLY_SANITIZE "" CACHE STRING "Sanitizers, separated by commas")
if(QUAVERLY_SANITIZE)
  add_compile_options(-fsanitize=${QUAVERLY_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
  add_link_options(-fsanitize=${QUAVERLY_SANITIZE})
endif()

find_program(CCACHE ccache)
if(CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE})
endif()

# quaverly_room(NAME SOURCES ... USES ... PRIVATELY ...)
# A folder of the house as a target of its own. USES are the rooms and libraries that its headers need,
# PRIVATELY those that only its sources need; scripts/check-layers holds every include against both.
# Objects, not an archive: the hooks that run when a class is loaded must reach the program although nobody
# calls them by name.
function(quaverly_room name)
  cmake_parse_arguments(ROOM "" "" "SOURCES;USES;PRIVATELY" ${ARGN})
  add_library(${name} OBJECT ${ROOM_SOURCES})
  target_include_directories(${name} PUBLIC ${CMAKE_SOURCE_DIR}/src)
  target_link_libraries(${name} PUBLIC ${ROOM_USES} PRIVATE ${ROOM_PRIVATELY})
  target_sources(quaverly_house INTERFACE $<TARGET_OBJECTS:${name}>)
  target_link_libraries(quaverly_house INTERFACE ${ROOM_USES} ${ROOM_PRIVATELY})
endfunction()
