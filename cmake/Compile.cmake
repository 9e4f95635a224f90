# What every target of ours is compiled with: warnings, Qt strictness, sanitizers.
add_library(tessaray_compile INTERFACE)
target_compile_options(tessaray_compile INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-qual -Wold-style-cast)
target_compile_definitions(tessaray_compile INTERFACE
  QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_URL_CAST_FROM_STRING QT_NO_CAST_FROM_BYTEARRAY
  QT_NO_KEYWORDS QT_NO_CONTEXTLESS_CONNECT QT_STRICT_ITERATORS)
if(TESSARAY_WARNINGS_AS_ERRORS)
  target_compile_options(tessaray_compile INTERFACE -Werror)
endif()
if(TESSARAY_SANITIZE)
  target_compile_options(tessaray_compile INTERFACE
    -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(tessaray_compile INTERFACE -fsanitize=address,undefined)
endif()
