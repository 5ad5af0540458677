# One switch for the whole tree, so the library, the host and every test binary
# agree on the sanitizer runtime they were built with.
if(DIAGCORE_SANITIZE)
  string(REPLACE ";" "," _diagcore_san "${DIAGCORE_SANITIZE}")
  add_compile_options(-fsanitize=${_diagcore_san} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${_diagcore_san})
endif()

option(DIAGCORE_COVERAGE "Instrument for gcov line coverage" OFF)
if(DIAGCORE_COVERAGE)
  add_compile_options(--coverage -O0)
  add_link_options(--coverage)
endif()
