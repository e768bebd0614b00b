# SPDX-License-Identifier: GPL-3.0-or-later
# Locales for tests that must not depend on which ones a machine has: built from Debian's sources into a folder of the
# build, which tests/support/ForeignLocale.h names to the C library.
set(ORV_TEST_LOCALES de_DE.UTF-8 de_DE.ISO-8859-1)
find_program(LOCALEDEF localedef REQUIRED)

add_custom_target(test_locales)
foreach(locale ${ORV_TEST_LOCALES})
  string(REGEX REPLACE "\\..*" "" source ${locale})
  string(REGEX REPLACE ".*\\." "" charmap ${locale})
  set(folder ${CMAKE_BINARY_DIR}/locales/${locale})
  # Warnings about the sources themselves give the status 1; a locale that is not there afterwards is what counts.
  add_custom_command(OUTPUT ${folder}/LC_NUMERIC
    COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_BINARY_DIR}/locales
    COMMAND ${LOCALEDEF} --no-archive -i ${source} -f ${charmap} ${folder} || test -f ${folder}/LC_NUMERIC
    COMMENT "Building the locale ${locale}" VERBATIM)
  add_custom_target(test_locale_${locale} DEPENDS ${folder}/LC_NUMERIC)
  add_dependencies(test_locales test_locale_${locale})
endforeach()
