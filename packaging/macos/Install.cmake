# Tessaray.app: programs in Contents/MacOS, Resources beside that folder, as in the build tree.
set(contents Tessaray.app/Contents)
foreach(program IN ITEMS tessaray tessaray-cli)
  if(TARGET ${program})
    install(TARGETS ${program} RUNTIME DESTINATION ${contents}/MacOS)
  endif()
endforeach()
install(CODE "
  set(SOURCE \"${resources}\")
  set(TARGET \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${contents}/Resources\")
  include(\"${CMAKE_CURRENT_SOURCE_DIR}/tools/InstallResources.cmake\")")

configure_file(macos/Info.plist.in Info.plist @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/Info.plist DESTINATION ${contents})
set(icon ${CMAKE_CURRENT_BINARY_DIR}/Tessaray.icns)
add_custom_command(OUTPUT ${icon}
  COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/macos/make-icns.sh ${CMAKE_CURRENT_SOURCE_DIR}/icons ${icon}
  DEPENDS macos/make-icns.sh icons/tessaray-512.png
  VERBATIM)
add_custom_target(tessaray_icns ALL DEPENDS ${icon})
install(FILES launchd/org.tessaray.watch.plist DESTINATION ${contents}/Resources/launchd)
install(FILES ${icon} DESTINATION ${contents}/Resources)
