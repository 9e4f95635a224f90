# Packs launchers of the installed tools: RESOURCES/ffmpeg.zip and its kin, and single tools beside
# them. Run at build time with RESOURCES and STAGE (a folder of our own to make the launchers in).
# A tool that is not installed is left out; nothing is rewritten that would come out the same.
# TOOL_FOLDERS (optional) names the folders to take the tools from, instead of the PATH.
cmake_minimum_required(VERSION 3.25)
cmake_policy(SET CMP0009 NEW)

# The path of the first program that is installed under one of the names, or nothing.
function(find_tool result)
  unset(path)
  if(TOOL_FOLDERS)
    find_program(path NAMES ${ARGN} NO_CACHE NO_DEFAULT_PATH PATHS ${TOOL_FOLDERS})
  else()
    find_program(path NAMES ${ARGN} NO_CACHE
      PATHS /usr/bin /usr/local/bin /opt/homebrew/bin /opt/local/bin)
  endif()
  if(NOT path)
    set(path "")
  endif()
  set(${result} "${path}" PARENT_SCOPE)
endfunction()

# exec keeps the process id of the launcher, so that stopping it stops the tool.
function(write_launcher file program)
  string(REGEX REPLACE "([\\\\\"$`])" "\\\\\\1" quoted "${program}")
  set(content "#!/bin/sh\nexec \"${quoted}\" \"$@\"\n")
  set(old "")
  if(EXISTS "${file}")
    file(READ "${file}" old)
  endif()
  if(NOT old STREQUAL content)
    file(WRITE "${file}" "${content}")
  endif()
  file(CHMOD "${file}" PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
endfunction()

# A launcher where the tool is installed, none where it isn't.
function(stage_tool file)
  find_tool(program ${ARGN})
  if(program)
    write_launcher("${file}" "${program}")
  else()
    file(REMOVE "${file}")
  endif()
endfunction()

# RESOURCES/<folder>.zip from STAGE/<folder>; the digest of what went in lies beside the stage.
function(pack folder)
  set(archive "${RESOURCES}/${folder}.zip")
  set(digest_file "${STAGE}/${folder}.digest")
  file(GLOB members RELATIVE "${STAGE}" "${STAGE}/${folder}/*")
  if(NOT members)
    file(REMOVE "${archive}" "${digest_file}")
    return()
  endif()
  set(digest "")
  foreach(member IN LISTS members)
    file(SHA256 "${STAGE}/${member}" one)
    string(APPEND digest "${one} ${member}\n")
  endforeach()
  set(old "")
  if(EXISTS "${digest_file}" AND EXISTS "${archive}")
    file(READ "${digest_file}" old)
  endif()
  if(old STREQUAL digest)
    return()
  endif()
  # Under another name first: a program that starts meanwhile must not read half an archive.
  execute_process(
    COMMAND "${CMAKE_COMMAND}" -E tar cf "${archive}.new" --format=zip ${members}
    WORKING_DIRECTORY "${STAGE}"
    COMMAND_ERROR_IS_FATAL ANY)
  file(RENAME "${archive}.new" "${archive}")
  file(WRITE "${digest_file}" "${digest}")
endfunction()

file(MAKE_DIRECTORY "${RESOURCES}" "${STAGE}")
foreach(tool IN ITEMS ffmpeg ffprobe)
  stage_tool("${STAGE}/ffmpeg/${tool}" ${tool})
endforeach()
foreach(tool IN ITEMS mkvmerge mkvextract mkvinfo)
  stage_tool("${STAGE}/mkvtoolnix/${tool}" ${tool})
endforeach()
stage_tool("${STAGE}/mp4box/mp4box" MP4Box mp4box)
stage_tool("${STAGE}/mplayer/mplayer" mplayer)
foreach(folder IN ITEMS ffmpeg mkvtoolnix mp4box mplayer)
  pack(${folder})
endforeach()
stage_tool("${RESOURCES}/atomicparsley" AtomicParsley atomicparsley)
stage_tool("${RESOURCES}/mediainfo" mediainfo)
stage_tool("${RESOURCES}/tesseract/tesseract" tesseract)
