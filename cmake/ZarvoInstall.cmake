# What gets installed: headers, libraries, CMake package, pkg-config file, the tool and its manual.
include(CMakePackageConfigHelpers)

get_property(libraries GLOBAL PROPERTY ZARVO_LIBRARIES)
set(package_folder "${CMAKE_INSTALL_LIBDIR}/cmake/Zarvo")
set(header_folder "${CMAKE_INSTALL_INCLUDEDIR}/zarvo")

# The pkg-config module of each outside library that the libraries link.
set(module_ICU::i18n icu-i18n)
set(module_ICU::uc icu-uc)
set(module_OpenSSL::Crypto libcrypto)
set(module_ZLIB::ZLIB zlib)
set(module_SQLite::SQLite3 sqlite3)
set(module_PNG::PNG libpng)
set(module_PkgConfig::LIBPLIST ${ZARVO_MODULE_LIBPLIST})
set(module_PkgConfig::LIBICNS ${ZARVO_MODULE_LIBICNS})

set(components "")
set(requirements "")
set(modules "")
set(archives "")
foreach(library IN LISTS libraries)
  get_target_property(type ${library} TYPE)
  get_target_property(component ${library} EXPORT_NAME)
  get_target_property(links ${library} INTERFACE_LINK_LIBRARIES)
  get_target_property(private_links ${library} LINK_LIBRARIES)
  list(APPEND components ${component})

  if(NOT type STREQUAL INTERFACE_LIBRARY)
    list(PREPEND archives "-l${library}")
    set_target_properties(${library} PROPERTIES INSTALL_RPATH "$ORIGIN")
  endif()
  install(TARGETS ${library} EXPORT Zarvo
    FILE_SET HEADERS DESTINATION "${header_folder}"
    FILE_SET generated DESTINATION "${header_folder}")

  # A static library hands on its private links, inside $<LINK_ONLY:...>; a shared one keeps them.
  set(needed_components "")
  set(needed_packages "")
  set(needed_modules "")
  foreach(link IN LISTS links)
    string(REGEX REPLACE "^\\$<LINK_ONLY:(.+)>$" "\\1" link "${link}")
    if(link MATCHES "^Zarvo::(.+)$")
      list(APPEND needed_components ${CMAKE_MATCH_1})
    elseif(link MATCHES "^PkgConfig::(.+)$")
      list(APPEND needed_packages PkgConfig)
      list(APPEND needed_modules "${CMAKE_MATCH_1}=${ZARVO_MODULE_${CMAKE_MATCH_1}}")
    elseif(link MATCHES "^(.+)::")
      list(APPEND needed_packages ${CMAKE_MATCH_1})
    endif()
  endforeach()
  list(REMOVE_DUPLICATES needed_packages)
  string(APPEND requirements
    "set(Zarvo_${component}_components ${needed_components})\n"
    "set(Zarvo_${component}_packages ${needed_packages})\n"
    "set(Zarvo_${component}_modules ${needed_modules})\n")
  list(APPEND outside_packages ${needed_packages})

  foreach(link IN LISTS private_links)
    if(DEFINED module_${link})
      list(APPEND modules ${module_${link}})
    endif()
  endforeach()
endforeach()

list(REMOVE_DUPLICATES outside_packages)
foreach(package IN LISTS outside_packages)
  string(APPEND requirements "set(Zarvo_find_${package} ${ZARVO_FIND_${package}})\n")
endforeach()
list(REMOVE_DUPLICATES modules)
list(JOIN modules " " modules)
list(JOIN archives " " archives)
list(JOIN components " " components)
file(RELATIVE_PATH to_prefix "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
string(REGEX REPLACE "/$" "" to_prefix "${to_prefix}")

install(EXPORT Zarvo FILE ZarvoTargets.cmake NAMESPACE Zarvo:: DESTINATION "${package_folder}")
configure_package_config_file(cmake/ZarvoConfig.cmake.in ZarvoConfig.cmake
  INSTALL_DESTINATION "${package_folder}")
write_basic_package_version_file(ZarvoConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES
  "${CMAKE_CURRENT_BINARY_DIR}/ZarvoConfig.cmake"
  "${CMAKE_CURRENT_BINARY_DIR}/ZarvoConfigVersion.cmake"
  cmake/ZarvoInformationList.cmake
  DESTINATION "${package_folder}")
install(PROGRAMS cmake/make_information_list DESTINATION "${package_folder}")
configure_file(cmake/zarvo.pc.in zarvo.pc @ONLY)
install(FILES "${CMAKE_CURRENT_BINARY_DIR}/zarvo.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")

file(RELATIVE_PATH to_libraries "/${CMAKE_INSTALL_SBINDIR}" "/${CMAKE_INSTALL_LIBDIR}")
if(BUILD_SHARED_LIBS)
  set_target_properties(remove_cert PROPERTIES INSTALL_RPATH "$ORIGIN/${to_libraries}")
endif()
install(TARGETS remove_cert DESTINATION "${CMAKE_INSTALL_SBINDIR}")
install(FILES remove_cert/remove_cert.8 DESTINATION "${CMAKE_INSTALL_MANDIR}/man8")
