# Compares what the built library exports with the list of exported names, one a line, sorted.
# Variables: LIBRARY, NAMES, CLASSES (members of the exported classes, whose names differ between the
# systems), NM (ELF) or OBJDUMP (DLL).

if(OBJDUMP)
    execute_process(COMMAND ${OBJDUMP} -p ${LIBRARY}
        OUTPUT_VARIABLE listing COMMAND_ERROR_IS_FATAL ANY)
    string(REGEX REPLACE ".*Ordinal/Name Pointer\\] Table" "" listing "${listing}")
    string(REGEX REPLACE "\n\n.*" "" listing "${listing}")
    string(REGEX MATCHALL "\\[ *[0-9]+\\] [^\n]+" exported "${listing}")
    list(TRANSFORM exported REPLACE "^\\[ *[0-9]+\\] " "")
    # The compiler exports the type information of the C++ library's exceptions along.
    list(FILTER exported EXCLUDE REGEX "^_ZTISt")
else()
    execute_process(COMMAND ${NM} --dynamic --defined-only --format=posix ${LIBRARY}
        OUTPUT_VARIABLE listing COMMAND_ERROR_IS_FATAL ANY)
    string(REGEX MATCHALL "[^\n]+" exported "${listing}")
    # The version's own name stands among the symbols as an absolute one.
    list(FILTER exported EXCLUDE REGEX " A ")
    list(TRANSFORM exported REPLACE "[ @].*" "")
endif()

file(STRINGS ${NAMES} expected)
file(STRINGS ${CLASSES} members)
list(APPEND expected ${members})
set(missing ${expected})
list(REMOVE_ITEM missing ${exported})
set(surplus ${exported})
list(REMOVE_ITEM surplus ${expected})

list(LENGTH exported count)
message(STATUS "${count} names are exported")
if(count EQUAL 0 OR missing OR surplus)
    message(FATAL_ERROR "not exported: ${missing}; exported though not on the list: ${surplus}")
endif()
