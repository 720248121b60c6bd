# Lays out the demo installation: a copy of demo/ in which every menu kept as
# JSON (Command.json) becomes the menu file Command.mnu beside it, with its
# braille-button codes in "Focus 40.ini" of the same folder. Each such
# profile starts as a copy of the general one, so it names the buttons too.
# Usage: cmake -DNXMENU=path -DSRC=demo -DDEST=dir -P BuildDemo.cmake
cmake_minimum_required(VERSION 3.20)
file(REMOVE_RECURSE "${DEST}")
file(COPY "${SRC}/" DESTINATION "${DEST}" PATTERN "Command.json" EXCLUDE)
file(GLOB_RECURSE menus "${SRC}/*Command.json")
foreach(json IN LISTS menus)
  file(RELATIVE_PATH relative "${SRC}" "${json}")
  get_filename_component(folder "${DEST}/${relative}" DIRECTORY)
  if(NOT EXISTS "${folder}/Focus 40.ini")
    file(COPY_FILE "${SRC}/Set/Focus 40.ini" "${folder}/Focus 40.ini")
  endif()
  execute_process(COMMAND "${NXMENU}" from-json "${json}" "${folder}/Command.mnu"
                          --braille "${folder}/Focus 40.ini" --codepage 1252
                  RESULT_VARIABLE result)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "nxmenu could not turn ${json} into a menu")
  endif()
endforeach()
