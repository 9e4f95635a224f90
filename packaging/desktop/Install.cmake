# Where everything goes on a freedesktop system: programs and Resources stay neighbours, as in the build
# tree, in a folder of their own; bin/ gets links. Both programs find Resources from where they really are.
include(GNUInstallDirs)
set(id org.tessaray.Tessaray)
set(home lib/tessaray)
set(here ${CMAKE_CURRENT_SOURCE_DIR})

foreach(program IN ITEMS tessaray tessaray-cli)
  if(TARGET ${program})
    install(TARGETS ${program} RUNTIME DESTINATION ${home}/bin)
    file(RELATIVE_PATH target /${CMAKE_INSTALL_BINDIR} /${home}/bin/${program})
    install(CODE "
      set(folder \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_BINDIR}\")
      file(MAKE_DIRECTORY \"\${folder}\")
      file(CREATE_LINK ${target} \"\${folder}/${program}\" SYMBOLIC)")
    install(FILES ${here}/man/${program}.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
  endif()
endforeach()
install(CODE "
  set(SOURCE \"${resources}\")
  set(TARGET \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${home}/Resources\")
  include(\"${here}/tools/InstallResources.cmake\")")

install(FILES ${here}/completions/tessaray-cli.bash
  DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME tessaray-cli)
set(zsh_functions site-functions)
if(EXISTS /etc/debian_version)
  set(zsh_functions vendor-completions) # where Debian's zsh looks for those of packages
endif()
install(FILES ${here}/completions/_tessaray-cli DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/${zsh_functions})
install(FILES ${here}/completions/tessaray-cli.fish DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
install(FILES ${PROJECT_SOURCE_DIR}/LICENSE DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/tessaray RENAME copyright)

install(FILES systemd/tessaray-watch@.service DESTINATION lib/systemd/user)
install(FILES launchd/org.tessaray.watch.plist DESTINATION ${CMAKE_INSTALL_DATADIR}/tessaray/launchd)

if(TARGET tessaray)
  string(TIMESTAMP TESSARAY_RELEASE_DATE "%Y-%m-%d" UTC)
  configure_file(desktop/${id}.metainfo.xml.in ${id}.metainfo.xml @ONLY)
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${id}.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
  install(FILES desktop/${id}.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
  set(icons ${CMAKE_INSTALL_DATADIR}/icons/hicolor)
  install(FILES icons/tessaray.svg DESTINATION ${icons}/scalable/apps RENAME ${id}.svg)
  foreach(size IN ITEMS 16 24 32 48 64 128 256 512)
    install(FILES icons/tessaray-${size}.png DESTINATION ${icons}/${size}x${size}/apps RENAME ${id}.png)
  endforeach()
endif()
