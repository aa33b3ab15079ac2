# SPDX-License-Identifier: Apache-2.0
# Run by cpack before it packs the files below CPACK_TEMPORARY_DIRECTORY: adds the files that a Debian
# package must have and `cmake --install` does not install.
function(compress source target)
  get_filename_component(folder ${target} DIRECTORY)
  file(MAKE_DIRECTORY ${folder})
  execute_process(COMMAND gzip -9nc ${source} OUTPUT_FILE ${target} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

foreach(component LIBRARY DEVEL TOOL STORE)
  if(NOT DEFINED CPACK_DEBIAN_${component}_PACKAGE_NAME)
    continue()
  endif()
  set(package ${CPACK_DEBIAN_${component}_PACKAGE_NAME})
  string(TOLOWER ${component} folder)
  set(share ${CPACK_TEMPORARY_DIRECTORY}/${folder}/usr/share)
  file(COPY ${CPACK_QDX_PACKAGING_DIR}/copyright DESTINATION ${share}/doc/${package})
  compress(${CPACK_QDX_PACKAGING_DIR}/changelog ${share}/doc/${package}/changelog.gz)
  file(GLOB pages ${share}/man/man*/*.[1-9])
  foreach(page ${pages})
    compress(${page} ${page}.gz)
    file(REMOVE ${page})
  endforeach()
  # CPack strips executables, shared libraries and modules, but not static libraries.
  file(GLOB_RECURSE archives ${CPACK_TEMPORARY_DIRECTORY}/${folder}/usr/lib/*.a)
  foreach(archive ${archives})
    execute_process(COMMAND strip --strip-debug --enable-deterministic-archives ${archive}
      COMMAND_ERROR_IS_FATAL ANY)
  endforeach()
  if(EXISTS ${CPACK_QDX_PACKAGING_DIR}/lintian/${package})
    file(COPY ${CPACK_QDX_PACKAGING_DIR}/lintian/${package} DESTINATION ${share}/lintian/overrides)
  endif()
endforeach()
