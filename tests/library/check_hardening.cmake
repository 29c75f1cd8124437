# Looks into the built library for what makes an attacker's work harder.
# Variables: LIBRARY, BUILD_TYPE, READELF (ELF) or OBJDUMP (DLL).

set(broken "")

function(expect listing pattern promise)
    if(NOT "${${listing}}" MATCHES "${pattern}")
        set(broken ${broken} "${promise}" PARENT_SCOPE)
    endif()
endfunction()

function(expect_not listing pattern promise)
    if("${${listing}}" MATCHES "${pattern}")
        set(broken ${broken} "${promise}" PARENT_SCOPE)
    endif()
endfunction()

function(run output)
    execute_process(COMMAND ${ARGN} OUTPUT_VARIABLE listing COMMAND_ERROR_IS_FATAL ANY)
    string(REPLACE ";" "," listing "${listing}")
    set(${output} "${listing}" PARENT_SCOPE)
endfunction()

if(OBJDUMP)
    run(headers ${OBJDUMP} -p ${LIBRARY})
    expect(headers "DYNAMIC_BASE" "the DLL may be loaded anywhere")
    expect(headers "NX_COMPAT" "data is not executable")
    expect(headers "HIGH_ENTROPY_VA" "all of the address space is used")
else()
    run(segments ${READELF} --wide --segments ${LIBRARY})
    expect(segments "GNU_RELRO" "relocated data becomes read-only")
    expect(segments "GNU_STACK[^\n]* RW " "the stack is not executable")
    expect_not(segments "LOAD[^\n]* RWE " "no memory is writable and executable")

    run(dynamic ${READELF} --wide --dynamic ${LIBRARY})
    expect(dynamic "BIND_NOW|FLAGS_1[^\n]*NOW" "everything is bound at load")
    expect_not(dynamic "TEXTREL" "code is not relocated")
    expect_not(dynamic "RPATH|RUNPATH" "no folder is searched for libraries")
    expect(dynamic "SONAME[^\n]*libvexakit\\.so\\.1" "the library says its name and version")

    run(symbols ${READELF} --wide --dyn-syms ${LIBRARY})
    expect(symbols "__stack_chk_fail" "overrun stacks are found")
    if(BUILD_TYPE MATCHES "Rel")
        expect(symbols "_chk@" "sources are fortified")
    endif()
    # What is undefined comes from the C and C++ libraries.
    string(REGEX MATCHALL "UND [^\n]+" undefined "${symbols}")
    list(FILTER undefined EXCLUDE REGEX
        "^UND *$|@(GLIBC|GLIBCXX|CXXABI|GCC)_|_ITM_|__gmon_start__|__gcov|__cxa_finalize")
    if(undefined)
        list(APPEND broken "no symbol comes from elsewhere: ${undefined}")
    endif()
endif()

list(LENGTH broken count)
if(count GREATER 0)
    list(JOIN broken "\n  " broken)
    message(FATAL_ERROR "broken promises:\n  ${broken}")
endif()
