# Warnings are errors everywhere in the project's own code.
function(diagcore_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Werror)
endfunction()
