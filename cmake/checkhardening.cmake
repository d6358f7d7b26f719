# Checks that every program and library below a directory was linked with all that cmake/hardening.cmake asks for:
# cmake -D ROOT=<directory> -P checkhardening.cmake
# Fails with one line for each guard that is missing. Wants readelf (binutils).
cmake_minimum_required(VERSION 3.25)

find_program(READELF readelf REQUIRED)
file(GLOB_RECURSE files ${ROOT}/*)
set(binaries 0)
set(objections 0)

function(objection file what)
    message(NOTICE "${file}: ${what}")
    math(EXPR objections "${objections} + 1")
    set(objections ${objections} PARENT_SCOPE)
endfunction()

foreach(file IN LISTS files)
    file(READ ${file} magic LIMIT 4 HEX)
    if(NOT magic STREQUAL "7f454c46" OR IS_SYMLINK ${file})
        continue()
    endif()
    math(EXPR binaries "${binaries} + 1")
    execute_process(COMMAND ${READELF} --wide --file-header --program-headers --dynamic --dyn-syms ${file}
                    OUTPUT_VARIABLE said COMMAND_ERROR_IS_FATAL ANY)
    # A program that is not loaded anywhere is of the type EXEC. A library is always DYN, and has no interpreter.
    if(said MATCHES "Type: +EXEC" OR said MATCHES "INTERP" AND NOT said MATCHES "Flags:[^\n]* PIE")
        objection(${file} "loaded at one address only (no PIE)")
    endif()
    if(NOT said MATCHES "GNU_RELRO")
        objection(${file} "addresses of functions can be written (no RELRO)")
    elseif(NOT said MATCHES "BIND_NOW|Flags:[^\n]* NOW")
        objection(${file} "addresses of functions are settled late (no BIND_NOW)")
    endif()
    if(NOT said MATCHES "GNU_STACK[^\n]*RW " OR said MATCHES "GNU_STACK[^\n]*RWE")
        objection(${file} "the stack can be executed")
    endif()
    if(NOT said MATCHES "__stack_chk_fail")
        objection(${file} "no function watches its stack")
    endif()
endforeach()

if(binaries EQUAL 0)
    message(FATAL_ERROR "No program or library below ${ROOT}.")
elseif(objections)
    message(FATAL_ERROR "${objections} guards are missing in ${binaries} programs and libraries (cmake/hardening.cmake).")
endif()
message(STATUS "${binaries} programs and libraries have their guards.")
