# oblino_room(<room> [WINDOWS] SOURCES ... LINK ... [PCH ... | PCH_OF <target>])
#
# Makes the library of one room, oblino_<room>, or with WINDOWS its second library, oblino_<room>_windows.
# A room's headers are reached as <room/header.h> through a folder that holds nothing but that room, so a
# file can include only the rooms that its library links. PCH names the headers that are compiled once for the
# library; PCH_OF takes those of another, which it shares its Qt modules with, since compiling them takes as long
# as a dozen sources.
function(oblino_room room)
  cmake_parse_arguments(ARG "WINDOWS" "PCH_OF" "SOURCES;LINK;PCH" ${ARGN})
  set(target oblino_${room})
  if(ARG_WINDOWS)
    set(target oblino_${room}_windows)
  endif()
  set(include_root "${PROJECT_BINARY_DIR}/include/${room}")
  file(MAKE_DIRECTORY "${include_root}")
  file(CREATE_LINK "${PROJECT_SOURCE_DIR}/src/${room}" "${include_root}/${room}" SYMBOLIC)

  add_library(${target} STATIC ${ARG_SOURCES})
  target_include_directories(${target} PUBLIC "${include_root}")
  target_link_libraries(${target} PUBLIC oblino_flags ${ARG_LINK})
  if(ARG_PCH)
    target_precompile_headers(${target} PRIVATE ${ARG_PCH})
  elseif(ARG_PCH_OF)
    target_precompile_headers(${target} REUSE_FROM ${ARG_PCH_OF})
  endif()
endfunction()
