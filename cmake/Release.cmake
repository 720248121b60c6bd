# The release: the version (the project's, one number for everything) and the
# names Windows shows; the version resource, icon and application manifest of
# both executables; and the packages of `make dist`, an MSI made with wixl and
# a zip, in NX_DIST_DIR.
set(NX_PRODUCT_NAME "Narrix Menu")
set(NX_PUBLISHER "Velkor")
set(NX_COPYRIGHT_YEAR 2026)
set(NX_DESCRIPTION "Builds and edits the menus of the Narrix screen reader")
# The folder under Program Files that the MSI installs into.
set(NX_INSTALL_FOLDER "${NX_PRODUCT_NAME}")
set(NX_MANIFEST_NAME "Velkor.NarrixMenu")
# The same in every version of the MSI, so that a new one replaces the old.
set(NX_UPGRADE_CODE "21BFF636-4381-499C-A9AD-EB7E59C8F697")
set(NX_VERSION4 "${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}.${PROJECT_VERSION_PATCH}.0")
set(NX_DIST_DIR ${CMAKE_BINARY_DIR}/dist CACHE PATH "Where make dist puts the MSI and the zip")

target_compile_definitions(nxmenu PRIVATE NX_VERSION="${PROJECT_VERSION}")

if(NOT WIN32)
  return()
endif()

configure_file(${CMAKE_SOURCE_DIR}/resources/version.h.in ${NX_GEN_DIR}/nx_version.h @ONLY)
configure_file(${CMAKE_SOURCE_DIR}/resources/narrixmenu.manifest.in ${NX_GEN_DIR}/narrixmenu.manifest @ONLY)
set_source_files_properties(resources/version.rc PROPERTIES
  OBJECT_DEPENDS "${NX_GEN_DIR}/nx_version.h;${NX_GEN_DIR}/narrixmenu.manifest;${CMAKE_SOURCE_DIR}/resources/narrixmenu.ico")
# One script for both: nxmenu's is compiled with NX_CLI (no icon, its own description).
target_sources(narrixmenu PRIVATE resources/version.rc)
target_sources(nxmenu PRIVATE resources/version.rc)
target_compile_definitions(nxmenu PRIVATE NX_CLI)
if(MSVC)
  # The manifest is the resource script's; the linker would add a second one.
  target_link_options(narrixmenu PRIVATE /MANIFEST:NO)
  target_link_options(nxmenu PRIVATE /MANIFEST:NO)
endif()

find_program(NX_WIXL wixl)
# Debian's Python, which has Debian's python3-markdown whatever else is first on PATH.
find_program(NX_PYTHON3 python3 PATHS /usr/bin NO_DEFAULT_PATH)
find_program(NX_PYTHON3 python3)
find_program(NX_ZIP zip)
if(NOT NX_WIXL OR NOT NX_PYTHON3 OR NOT NX_ZIP)
  message(STATUS "wixl, python3 or zip missing: no dist target")
  return()
endif()

set(NX_README_HTML ${CMAKE_BINARY_DIR}/package/README.html)
add_custom_command(
  OUTPUT ${NX_README_HTML}
  COMMAND ${NX_PYTHON3} ${CMAKE_SOURCE_DIR}/packaging/readme_html.py ${CMAKE_SOURCE_DIR}/README.md ${NX_README_HTML}
          ${PROJECT_VERSION}
  DEPENDS ${CMAKE_SOURCE_DIR}/README.md ${CMAKE_SOURCE_DIR}/packaging/readme_html.py
  COMMENT "Writing README.html")

# nx_msi(FILE VERSION): the MSI of this build's programs, as version VERSION.
# wixl takes the files by paths relative to the folder it runs in.
configure_file(${CMAKE_SOURCE_DIR}/resources/narrixmenu.ico ${CMAKE_BINARY_DIR}/package/narrixmenu.ico COPYONLY)
function(nx_msi file version)
  get_filename_component(dir ${file} DIRECTORY)
  string(UUID product_code NAMESPACE ${NX_UPGRADE_CODE} NAME "${version}" TYPE SHA1 UPPER)
  file(RELATIVE_PATH bin ${CMAKE_BINARY_DIR} ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
  add_custom_command(
    OUTPUT ${file}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${dir}
    COMMAND ${NX_WIXL} -a x64 -o ${file} -D Version=${version} -D ProductCode=${product_code}
            -D UpgradeCode=${NX_UPGRADE_CODE} -D "ProductName=${NX_PRODUCT_NAME}" -D "InstallFolder=${NX_INSTALL_FOLDER}"
            -D "Publisher=${NX_PUBLISHER}" -D "Description=${NX_DESCRIPTION}" -D BinDir=${bin}
            -D Readme=package/README.html -D Icon=package/narrixmenu.ico ${CMAKE_SOURCE_DIR}/packaging/narrixmenu.wxs
    WORKING_DIRECTORY ${CMAKE_BINARY_DIR}
    DEPENDS narrixmenu nxmenu ${NX_README_HTML} ${CMAKE_SOURCE_DIR}/packaging/narrixmenu.wxs
            ${CMAKE_BINARY_DIR}/package/narrixmenu.ico
    COMMENT "Building ${file}"
    VERBATIM)
endfunction()

set(NX_DIST_NAME narrixmenu-${PROJECT_VERSION}-x64)
set(NX_DIST_MSI ${NX_DIST_DIR}/${NX_DIST_NAME}.msi)
nx_msi(${NX_DIST_MSI} ${PROJECT_VERSION})
# The zip: one folder named like it, for unpacking anywhere without
# administrator rights.
set(NX_ZIP_STAGE ${CMAKE_BINARY_DIR}/package/${NX_DIST_NAME})
add_custom_command(
  OUTPUT ${NX_DIST_DIR}/${NX_DIST_NAME}.zip
  COMMAND ${CMAKE_COMMAND} -E rm -rf ${NX_ZIP_STAGE} ${NX_DIST_DIR}/${NX_DIST_NAME}.zip
  COMMAND ${CMAKE_COMMAND} -E make_directory ${NX_ZIP_STAGE}
  COMMAND ${CMAKE_COMMAND} -E copy $<TARGET_FILE:narrixmenu> $<TARGET_FILE:nxmenu> ${NX_README_HTML} ${NX_ZIP_STAGE}
  COMMAND ${NX_ZIP} -q -X -r ${NX_DIST_DIR}/${NX_DIST_NAME}.zip ${NX_DIST_NAME}
  WORKING_DIRECTORY ${CMAKE_BINARY_DIR}/package
  DEPENDS narrixmenu nxmenu ${NX_README_HTML}
  COMMENT "Building ${NX_DIST_DIR}/${NX_DIST_NAME}.zip"
  VERBATIM)
# The tests install the MSI, so a build with tests makes the packages too,
# and a second MSI of the same programs as the next version, which the
# release test installs over the first.
if(NX_BUILD_TESTS)
  set(nx_dist_all ALL)
  math(EXPR nx_next_patch "${PROJECT_VERSION_PATCH} + 1")
  set(NX_UPGRADE_VERSION "${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}.${nx_next_patch}")
  set(NX_UPGRADE_MSI ${CMAKE_BINARY_DIR}/release-test/narrixmenu-${NX_UPGRADE_VERSION}-x64.msi)
  nx_msi(${NX_UPGRADE_MSI} ${NX_UPGRADE_VERSION})
endif()
add_custom_target(dist ${nx_dist_all} DEPENDS ${NX_DIST_MSI} ${NX_DIST_DIR}/${NX_DIST_NAME}.zip ${NX_UPGRADE_MSI})
