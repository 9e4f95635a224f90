# What every target of ours is compiled with: warnings, Qt strictness, sanitizers.
add_library(tessaray_compile INTERFACE)
target_compile_options(tessaray_compile INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-qual -Wold-style-cast)
target_compile_definitions(tessaray_compile INTERFACE
  QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_URL_CAST_FROM_STRING QT_NO_CAST_FROM_BYTEARRAY
  QT_NO_KEYWORDS QT_NO_CONTEXTLESS_CONNECT QT_STRICT_ITERATORS)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  target_compile_options(tessaray_compile INTERFACE -fpch-preprocess) # or ccache knows no precompiled header
endif()
if(TESSARAY_WARNINGS_AS_ERRORS)
  target_compile_options(tessaray_compile INTERFACE -Werror)
endif()
if(TESSARAY_SANITIZE)
  target_compile_options(tessaray_compile INTERFACE
    -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(tessaray_compile INTERFACE -fsanitize=address,undefined)
endif()

# A library without an archive, which would be one more step between a change and its test: a program that links it,
# directly or through others, links its objects.
function(tessaray_library target)
  add_library(${target} OBJECT ${ARGN})
  target_sources(${target} INTERFACE
    $<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,EXECUTABLE>:$<TARGET_OBJECTS:${target}>>)
endfunction()

# Four fifths of a compile is reading headers of Qt: they are read once, for all targets with the same defines.
function(tessaray_share_headers target owner)
  target_precompile_headers(${target} REUSE_FROM ${owner})
endfunction()

# tessaray_in_batches(TARGET SIZE): several sources to one compile. A change compiles its batch again, so batches are
# small.
function(tessaray_in_batches target size)
  set_target_properties(${target} PROPERTIES UNITY_BUILD ${TESSARAY_BATCHES} UNITY_BUILD_BATCH_SIZE ${size})
endfunction()
