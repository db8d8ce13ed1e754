# Compares what the library exports with the list of names; both differences are shown.
execute_process(COMMAND ${NM} -D --defined-only ${LIBRARY} OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL " [B-Zb-z] [^\n]+" lines "${symbols}")  # A: the name of the symbols' version
set(exported "")
foreach(line IN LISTS lines)
  string(REGEX REPLACE "^ . ([^@]+).*$" "\\1" name "${line}")
  list(APPEND exported "${name}")
endforeach()
file(STRINGS ${LIST} wanted REGEX "^[A-Za-z]")

set(missing ${wanted})
list(REMOVE_ITEM missing ${exported})
set(surplus ${exported})
list(REMOVE_ITEM surplus ${wanted})
list(LENGTH wanted count)
if(missing OR surplus)
  message(FATAL_ERROR "not exported: ${missing}\nexported besides: ${surplus}")
endif()
message(STATUS "${count} exports, exactly those of the list")
