# How everything in the project is compiled: an interface library that each target links privately.

add_library(vexakit_settings INTERFACE)

target_compile_options(vexakit_settings INTERFACE
    # Formulas give the same bits on every target and at every vector width.
    -ffp-contract=off
    -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wcast-qual -Wundef
    -Wdouble-promotion -Wformat=2 -Wno-format-nonliteral -Wmissing-declarations
    $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor -Woverloaded-virtual -Wold-style-cast -Wextra-semi>
    $<$<CXX_COMPILER_ID:GNU>:-Wlogical-op -Wduplicated-cond -Wduplicated-branches>
    # Every field that a braced list leaves out has a default.
    $<$<COMPILE_LANGUAGE:CXX>:-Wno-missing-field-initializers>)

# What makes an attacker's work harder, as Debian builds its packages. Sources can be fortified where
# they are optimised; a sanitizer has checks of its own.
target_compile_options(vexakit_settings INTERFACE -fstack-protector-strong)
target_link_options(vexakit_settings INTERFACE -fstack-protector-strong)
if(NOT VEXAKIT_SANITIZE AND NOT WIN32)
    target_compile_options(vexakit_settings INTERFACE
        $<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-U_FORTIFY_SOURCE$<SEMICOLON>-D_FORTIFY_SOURCE=2>)
endif()

if(VEXAKIT_WERROR)
    target_compile_options(vexakit_settings INTERFACE -Werror)
endif()

if(VEXAKIT_SANITIZE)
    target_compile_options(vexakit_settings INTERFACE
        -fsanitize=${VEXAKIT_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    target_link_options(vexakit_settings INTERFACE -fsanitize=${VEXAKIT_SANITIZE})
endif()

if(WIN32)
    target_compile_definitions(vexakit_settings INTERFACE
        UNICODE _UNICODE WIN32_LEAN_AND_MEAN NOMINMAX)
    # The compiler takes the stack for aligned to 32 bytes where it is to 16: moves of whole vectors must
    # not rely on it.
    target_compile_options(vexakit_settings INTERFACE -Wa,-muse-unaligned-vector-move)
    # The DLL and the programs need nothing that a Windows system lacks.
    target_link_options(vexakit_settings INTERFACE -static)
endif()
