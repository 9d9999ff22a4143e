# Qt's headers, compiled once for every library of that kind: that takes as long as a dozen sources.
file(WRITE "${PROJECT_BINARY_DIR}/empty.cpp" "")
function(oblino_precompiled target)
  add_library(${target} STATIC "${PROJECT_BINARY_DIR}/empty.cpp")
  set_target_properties(${target} PROPERTIES AUTOMOC OFF AUTOUIC OFF AUTORCC OFF)
  target_link_libraries(${target} PRIVATE oblino_flags ${ARGN})
  list(TRANSFORM ARGN REPLACE "Qt6::(.*)" "<Qt\\1>" OUTPUT_VARIABLE headers)
  target_precompile_headers(${target} PRIVATE ${headers})
endfunction()

# oblino_room(<room> [WINDOWS] SOURCES ... [PUBLIC ...] [PRIVATE ...] [WIDGETS])
#
# Makes the library of one room, oblino_<room>, or with WINDOWS its second library, oblino_<room>_windows.
# A room's headers are reached as <room/header.h> through a folder that holds nothing but that room, so a
# file can include only the rooms that its library links: PUBLIC those that its headers need, PRIVATE those that
# only its sources do. WIDGETS says that a library without the word windows in its name has widgets too.
function(oblino_room room)
  cmake_parse_arguments(ARG "WINDOWS;WIDGETS" "" "SOURCES;PUBLIC;PRIVATE" ${ARGN})
  set(target oblino_${room})
  set(headers oblino_core_headers)
  if(ARG_WINDOWS)
    set(target oblino_${room}_windows)
  endif()
  if(ARG_WINDOWS OR ARG_WIDGETS)
    set(headers oblino_widget_headers)
  endif()
  set(include_root "${PROJECT_BINARY_DIR}/include/${room}")
  file(MAKE_DIRECTORY "${include_root}")
  file(CREATE_LINK "${PROJECT_SOURCE_DIR}/src/${room}" "${include_root}/${room}" SYMBOLIC)

  add_library(${target} STATIC ${ARG_SOURCES})
  target_include_directories(${target} PUBLIC "${include_root}")
  target_link_libraries(${target} PUBLIC oblino_flags ${ARG_PUBLIC} PRIVATE ${ARG_PRIVATE})
  target_precompile_headers(${target} REUSE_FROM ${headers})
endfunction()
