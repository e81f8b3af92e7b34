# Takes CPack's own calls of ldconfig out of the finished packages: the trigger does their work.
set(content ${CPACK_TEMPORARY_DIRECTORY}/content)
foreach(package IN LISTS CPACK_PACKAGE_FILES)
  file(REMOVE_RECURSE ${content})
  execute_process(COMMAND dpkg-deb --raw-extract ${package} ${content} COMMAND_ERROR_IS_FATAL ANY)
  if(EXISTS ${content}/DEBIAN/postinst)
    file(REMOVE ${content}/DEBIAN/postinst ${content}/DEBIAN/postrm)
    execute_process(COMMAND dpkg-deb --root-owner-group --build ${content} ${package}
      OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
  endif()
endforeach()
file(REMOVE_RECURSE ${content})
