# Compresses manual pages and changelogs that wait to be packed, as Debian's policy asks.
file(GLOB_RECURSE documents
  ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/*/usr/share/man/*.[1-9]
  ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/*/usr/share/doc/changelog*)
foreach(document IN LISTS documents)
  execute_process(COMMAND gzip --best --no-name ${document} COMMAND_ERROR_IS_FATAL ANY)
endforeach()
