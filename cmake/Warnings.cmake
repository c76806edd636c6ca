# Warnings for the project's own targets; third-party headers come in as system headers.
function(belva_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor
    -Wold-style-cast -Woverloaded-virtual -Wimplicit-fallthrough
    # Designated initialisers of option records leave the rest at their defaults on purpose.
    -Wno-missing-field-initializers)
endfunction()

# A layer library: sources under src/, public headers under include/.
function(belva_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;PUBLIC;PRIVATE" ${ARGN})
  add_library(${name} STATIC ${ARG_SOURCES})
  target_include_directories(${name} PUBLIC ${CMAKE_CURRENT_SOURCE_DIR}/include)
  target_link_libraries(${name} PUBLIC ${ARG_PUBLIC} PRIVATE ${ARG_PRIVATE})
  belva_warnings(${name})
endfunction()
