# What a program says of itself: the information dictionary of platform::Bundle.

set(ZARVO_MAKE_INFORMATION_LIST "${CMAKE_CURRENT_LIST_DIR}/make_information_list"
    CACHE INTERNAL "Turns a property list into C++")

# zarvo_information_list(program Info.plist)
#
# Compiles a property list file (XML or binary, a dictionary at its top) into the program, which
# then needs neither the file nor a parser when it runs. Keys that the libraries read:
# CFBundleIdentifier, CFBundleName, CFBundleVersion, ZVVersion, ZVChannel. A change of the file
# makes the program anew; a file that is no such list fails the build with a message that names it.
# The path is relative to the current source folder. Needs python3 when building.
#
# zarvo_information_list(program FROM_BUNDLE_FOLDER)
#
# The program reads its list when it runs, from the bundle folder that it lives in:
# Program.app/Contents/Info.plist for Program.app/Contents/<folder>/program. Links Zarvo::Desktop.
#
# A program has one of the two, once.
function(zarvo_information_list program list)
  get_target_property(has_list ${program} ZARVO_INFORMATION_LIST)
  if(has_list)
    message(FATAL_ERROR "zarvo_information_list: ${program} has a list already")
  endif()
  set_target_properties(${program} PROPERTIES ZARVO_INFORMATION_LIST "${list}")

  set(source "${CMAKE_CURRENT_BINARY_DIR}/${program}_InformationList.cpp")
  find_package(Python3 QUIET REQUIRED COMPONENTS Interpreter)
  set(make "${Python3_EXECUTABLE}" "${ZARVO_MAKE_INFORMATION_LIST}")
  if(list STREQUAL "FROM_BUNDLE_FOLDER")
    add_custom_command(OUTPUT "${source}"
      COMMAND ${make} --from-bundle-folder "${source}"
      DEPENDS "${ZARVO_MAKE_INFORMATION_LIST}" VERBATIM)
    target_link_libraries(${program} PRIVATE Zarvo::Desktop)
  else()
    cmake_path(ABSOLUTE_PATH list BASE_DIRECTORY "${CMAKE_CURRENT_SOURCE_DIR}")
    add_custom_command(OUTPUT "${source}"
      COMMAND ${make} "${list}" "${source}"
      DEPENDS "${ZARVO_MAKE_INFORMATION_LIST}" "${list}" VERBATIM)
    target_link_libraries(${program} PRIVATE Zarvo::Platform)
  endif()
  target_sources(${program} PRIVATE "${source}")
endfunction()
