# Compares the dynamic symbols a shared library defines with what its public
# headers declare. Fails naming each stray symbol and each public name that is
# not exported.
#
#   cmake -DLIBRARY=libx.so -DNAMESPACE=ns -DEXPORT_MACRO=X_EXPORT
#         -DHEADERS=dir[;dir] [-DTEST_SEAMS=header;...] -P CheckExports.cmake
#
# Public headers declare at column 0 of namespace NAMESPACE (or of a namespace
# nested in it): classes and structs, free functions and extern variables,
# each marked EXPORT_MACRO, and C entry points marked CMPI_EXTERN_C. A TEST_SEAM
# header contributes only what it marks EXPORT_MACRO, and is not required to
# mark everything.

cmake_minimum_required(VERSION 3.25)

foreach(var LIBRARY NAMESPACE EXPORT_MACRO HEADERS)
  if(NOT DEFINED ${var})
    message(FATAL_ERROR "CheckExports.cmake needs -D${var}=...")
  endif()
endforeach()

set(problems "")
set(declared "")      # names (qualified below NAMESPACE) that may be exported
set(must_export "")   # functions, variables and C entry points that must be

# Reads one header's namespace-scope declarations into `declared` and
# `must_export`; with `all_public`, an unmarked declaration is a problem.
function(read_header header all_public)
  file(STRINGS "${header}" lines)
  set(scope "")
  foreach(line IN LISTS lines)
    if(line MATCHES "^namespace ([A-Za-z_0-9]+) {")
      if(NOT CMAKE_MATCH_1 STREQUAL NAMESPACE)
        set(scope "${CMAKE_MATCH_1}::")
      endif()
      continue()
    elseif(line MATCHES "^}  // namespace ([A-Za-z_0-9]+)")
      set(scope "")
      continue()
    endif()
    set(name "")
    set(kind "")
    set(marked FALSE)
    if(line MATCHES "^(class|struct) [A-Za-z_0-9]+;")
      continue()  # a forward declaration; the class is declared where defined
    elseif(line MATCHES "^(class|struct) (${EXPORT_MACRO} )?([A-Za-z_0-9]+)[^;]*$")
      set(kind "${CMAKE_MATCH_1}")
      set(name "${CMAKE_MATCH_3}")
      if(CMAKE_MATCH_2)
        set(marked TRUE)
      endif()
    elseif(line MATCHES "^CMPI_EXTERN_C [^(]* \\*?([A-Za-z_0-9]+)\\(")
      set(kind "C entry point")
      set(name "${CMAKE_MATCH_1}")
      set(marked TRUE)
      set(scope "")
    elseif(line MATCHES "^(extern )?(${EXPORT_MACRO} )?[A-Za-z_][^(=;/#]* [*&]?([A-Za-z_0-9]+)(\\(|;)")
      set(kind "function")
      if(CMAKE_MATCH_1)
        set(kind "variable")
      endif()
      set(name "${CMAKE_MATCH_3}")
      if(CMAKE_MATCH_2)
        set(marked TRUE)
      endif()
    endif()
    if(name STREQUAL "" OR name STREQUAL NAMESPACE)
      continue()
    endif()
    if(NOT marked)
      if(all_public)
        list(APPEND problems "${header}: ${kind} ${scope}${name} is public but not marked ${EXPORT_MACRO}")
      endif()
      continue()
    endif()
    list(APPEND declared "${scope}${name}")
    if(NOT kind MATCHES "class|struct")
      list(APPEND must_export "${scope}${name}")
    endif()
  endforeach()
  set(problems "${problems}" PARENT_SCOPE)
  set(declared "${declared}" PARENT_SCOPE)
  set(must_export "${must_export}" PARENT_SCOPE)
endfunction()

foreach(dir IN LISTS HEADERS)
  file(GLOB public_headers "${dir}/*.h")
  foreach(header IN LISTS public_headers)
    read_header("${header}" TRUE)
  endforeach()
endforeach()
foreach(header IN LISTS TEST_SEAMS)
  read_header("${header}" FALSE)
endforeach()

# The library's own symbols: C names, and C++ names (functions, variables,
# vtables, typeinfo) under NAMESPACE. Template code of the standard library
# instantiated for the project's types is the standard library's.
execute_process(COMMAND nm -D --defined-only "${LIBRARY}"
  OUTPUT_VARIABLE nm_out RESULT_VARIABLE nm_rc)
if(NOT nm_rc EQUAL 0)
  message(FATAL_ERROR "nm -D failed on ${LIBRARY}")
endif()
string(LENGTH "${NAMESPACE}" ns_length)
set(ns_mangled "${ns_length}${NAMESPACE}")
string(REPLACE "\n" ";" nm_lines "${nm_out}")
set(own_symbols "")
foreach(line IN LISTS nm_lines)
  if(line MATCHES " [A-Za-z] ([^ ]+)$")
    set(symbol "${CMAKE_MATCH_1}")
    if(symbol MATCHES "^_Z(T[VIS])?N?${ns_mangled}" OR NOT symbol MATCHES "^_")
      list(APPEND own_symbols "${symbol}")
    endif()
  endif()
endforeach()

set(exported_names "")
foreach(symbol IN LISTS own_symbols)
  execute_process(COMMAND c++filt "${symbol}" OUTPUT_VARIABLE readable
    OUTPUT_STRIP_TRAILING_WHITESPACE)
  if(NOT symbol MATCHES "^_Z")
    set(candidates "${symbol}")
  else()
    # NAMESPACE::a::b::c(...) may belong to a, a::b or a::b::c.
    string(REGEX MATCH "${NAMESPACE}::[A-Za-z_0-9:~]*" qualified "${readable}")
    string(REPLACE "${NAMESPACE}::" "" qualified "${qualified}")
    string(REPLACE "::" ";" parts "${qualified}")
    set(candidates "")
    set(prefix "")
    foreach(part IN LISTS parts)
      set(prefix "${prefix}${part}")
      list(APPEND candidates "${prefix}")
      set(prefix "${prefix}::")
    endforeach()
  endif()
  set(owner "")
  foreach(candidate IN LISTS candidates)
    if(candidate IN_LIST declared)
      set(owner "${candidate}")
      break()
    endif()
  endforeach()
  if(owner STREQUAL "")
    list(APPEND problems "${LIBRARY} exports ${readable}, which no public header declares")
  else()
    list(APPEND exported_names "${owner}")
  endif()
endforeach()

foreach(name IN LISTS must_export)
  if(NOT name IN_LIST exported_names)
    list(APPEND problems "${name} is declared public but ${LIBRARY} does not export it")
  endif()
endforeach()

list(LENGTH own_symbols count)
list(REMOVE_DUPLICATES problems)
if(problems)
  list(JOIN problems "\n  " text)
  message(FATAL_ERROR "Exports do not match the public headers:\n  ${text}")
endif()
message(STATUS "${count} exported symbols, each declared in a public header")
