# Content the programs read at run time, laid out under ${PROJECT_BINARY_DIR}/content exactly as it
# is installed under share/kx/content, so that Paths::contentRoot() finds it in a build tree.

# kx_strings: the string tables of Types/Resources/strings, copied to content/strings whenever one
# of them changes.
file(GLOB_RECURSE KX_STRING_TABLES CONFIGURE_DEPENDS
  RELATIVE ${PROJECT_SOURCE_DIR}/Types/Resources/strings
  ${PROJECT_SOURCE_DIR}/Types/Resources/strings/*.xml)
set(KX_STRING_TABLE_OUTPUTS "")
foreach(table IN LISTS KX_STRING_TABLES)
  set(source ${PROJECT_SOURCE_DIR}/Types/Resources/strings/${table})
  set(output ${PROJECT_BINARY_DIR}/content/strings/${table})
  add_custom_command(OUTPUT ${output}
    COMMAND ${CMAKE_COMMAND} -E copy_if_different ${source} ${output}
    DEPENDS ${source}
    COMMENT "String table ${table}"
    VERBATIM)
  list(APPEND KX_STRING_TABLE_OUTPUTS ${output})
endforeach()
add_custom_target(kx_strings ALL DEPENDS ${KX_STRING_TABLE_OUTPUTS})
