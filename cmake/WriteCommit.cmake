# SPDX-License-Identifier: GPL-3.0-or-later
# cmake -DSOURCE=... -DFILE=... -P WriteCommit.cmake: writes the commit of the sources, as results tell it, into FILE,
# which is touched only when it changes. What ORV_COMMIT says, else what git knows (a "+" tells of changes), else, in
# sources taken out of git as an archive, what the archive says.
set(commit "$ENV{ORV_COMMIT}")
if(commit STREQUAL "" AND EXISTS ${SOURCE}/.git)
  execute_process(COMMAND git -C ${SOURCE} describe --always --abbrev=40 --match=none/such --dirty=+
    OUTPUT_VARIABLE commit OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
elseif(commit STREQUAL "")
  file(READ ${SOURCE}/cmake/archived-commit commit)
  string(STRIP "${commit}" commit)
endif()
if(NOT commit MATCHES "^[0-9a-f]+[+]?$")
  set(commit "")
endif()
file(CONFIGURE OUTPUT ${FILE} CONTENT "${commit}\n" @ONLY)
