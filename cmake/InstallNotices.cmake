# Part of an installation, with `components`, `dependency_prefix`, `product` and `product_version` set: the licences of
# what the package redistributes, and its bill of materials (CycloneDX). One that is missing ends the installation.
set(entries "")
foreach(component ${components})
  file(READ ${dependency_prefix}/share/sbom/${component}.json entry)
  string(STRIP "${entry}" entry)
  list(APPEND entries "    ${entry}")
  file(INSTALL ${dependency_prefix}/share/licenses/${component} DESTINATION ${CMAKE_INSTALL_PREFIX}/licenses)
endforeach()
list(JOIN entries ",\n" entries)
set(FOLDER $ENV{DESTDIR}${CMAKE_INSTALL_PREFIX})
file(WRITE ${FOLDER}/sbom.cdx.json
     "{
  \"bomFormat\": \"CycloneDX\",
  \"specVersion\": \"1.5\",
  \"version\": 1,
  \"metadata\": {\"component\": {\"type\": \"library\", \"name\": \"${product}\", \"version\": \"${product_version}\"}},
  \"components\": [
${entries}
  ]
}
")
include(${CMAKE_CURRENT_LIST_DIR}/CheckNotices.cmake)
