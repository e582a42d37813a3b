# Makes the help file: the manual's chapters and the pictures that they show, as a binary resource, and
# behind it the SHA-256 of all that, by which the viewer knows a damaged file.
#
#   cmake -DRCC=... -DMANUAL=docs/manual -DOUT=sandrel.hlp -P MakeHelpFile.cmake
file(GLOB chapters ${MANUAL}/[0-9]*.md)
set(entries "")
set(pictures "")
foreach(chapter ${chapters})
  get_filename_component(name ${chapter} NAME)
  string(APPEND entries "    <file alias=\"manual/${name}\">${chapter}</file>\n")
  file(READ ${chapter} text)
  string(REGEX MATCHALL "\\(\\.\\./pictures/[^) ]+" found "${text}")
  list(APPEND pictures ${found})
endforeach()
list(REMOVE_DUPLICATES pictures)
foreach(picture ${pictures})
  string(REPLACE "(../" "" name ${picture})
  get_filename_component(path ${MANUAL}/../${name} ABSOLUTE)
  if(NOT EXISTS ${path})
    message(WARNING "The manual shows ${name}, which isn't there.")
    continue()
  endif()
  string(APPEND entries "    <file alias=\"${name}\">${path}</file>\n")
endforeach()

file(WRITE ${OUT}.qrc "<RCC>\n  <qresource prefix=\"/\">\n${entries}  </qresource>\n</RCC>\n")
# Version 1 keeps no times, so that the same manual makes the same file.
execute_process(COMMAND ${RCC} --binary --format-version 1 --output ${OUT} ${OUT}.qrc
  COMMAND_ERROR_IS_FATAL ANY)
file(SHA256 ${OUT} hash)
file(APPEND ${OUT} ${hash})
