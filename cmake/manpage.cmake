# Writes the manual page of a program from what the program says of itself:
# cmake -D PROGRAM=<executable> -D OUT=<page> -D OTHERS=<names of the other programs> -P manpage.cmake
# Its --help is the one text to keep: usage, a line that says what it is, paragraphs (an indented line stands as it is),
# options, arguments.
cmake_minimum_required(VERSION 3.25)

get_filename_component(name ${PROGRAM} NAME)
get_filename_component(folder ${PROGRAM} DIRECTORY)

function(ask option result)
    execute_process(COMMAND ./${name} ${option} WORKING_DIRECTORY ${folder}
                    OUTPUT_VARIABLE said RESULT_VARIABLE code)
    if(code OR said STREQUAL "")
        message(FATAL_ERROR "${name} ${option} says nothing to make a manual page of (${code}).")
    endif()
    set(${result} "${said}" PARENT_SCOPE)
endfunction()

set(ENV{ASAN_OPTIONS} detect_leaks=0) # of an instrumented build only the text is wanted
ask(--help help)
ask(--version version)
string(STRIP "${version}" version)

# Text as roff wants it, brackets and semicolons kept from CMake, for which they make lists.
string(REPLACE "\\" "\\e" help "${help}")
string(REPLACE "-" "\\-" help "${help}")
string(REPLACE "[" "\\(lB" help "${help}")
string(REPLACE "]" "\\(rB" help "${help}")
string(REPLACE ";" "@semicolon@" help "${help}")
string(REGEX REPLACE "\n([.'])" "\n\\\\&\\1" help "${help}")
string(REPLACE "\n" ";" lines "${help}")

# One look at each line: `part` is where we are, `verbatim` whether roff has been told to leave lines alone.
set(part usage)
set(verbatim FALSE)
set(entryOpen FALSE)
set(page "")
foreach(line IN LISTS lines)
    if(line MATCHES "^Usage: [^ ]*${name}(.*)")
        string(APPEND page ".SH SYNOPSIS\n.B ${name}\n${CMAKE_MATCH_1}\n")
        string(REPLACE "\n " "\n" page "${page}")
        set(part brief)
    elseif(part STREQUAL "brief")
        # The title is what stands before a colon or the full stop, without a capital unless it is an abbreviation.
        string(REGEX REPLACE "(:.*|\\.)$" "" title "${line}")
        if(title MATCHES "^[A-Z][a-z ]")
            string(SUBSTRING "${title}" 0 1 first)
            string(SUBSTRING "${title}" 1 -1 rest)
            string(TOLOWER ${first} first)
            set(title "${first}${rest}")
        endif()
        string(APPEND page ".SH DESCRIPTION\n${line}\n")
        set(part description)
    elseif(line MATCHES "^(Options|Arguments):$")
        string(TOUPPER "${CMAKE_MATCH_1}" heading)
        string(APPEND page ".SH ${heading}\n")
        set(part entries)
    elseif(part STREQUAL "entries")
        if(line MATCHES "^  ([^ ].*[^ ]|[^ ])   *([^ ].*)$")
            string(APPEND page ".TP\n.B ${CMAKE_MATCH_1}\n${CMAKE_MATCH_2}\n")
        elseif(line MATCHES "^   +([^ ].*)$")
            string(APPEND page "${CMAKE_MATCH_1}\n")
        elseif(line MATCHES "^  ([^ ].*)$") # too long for its column: the text follows
            string(APPEND page ".TP\n.B ${CMAKE_MATCH_1}\n")
        endif()
    else() # the description
        if(verbatim AND NOT line MATCHES "^ ")
            string(APPEND page ".fi\n")
            set(verbatim FALSE)
        endif()
        if(line STREQUAL "")
            string(APPEND page ".PP\n")
        elseif(line MATCHES "^Exit code: (.*)")
            string(APPEND page ".SH EXIT STATUS\n${CMAKE_MATCH_1}\n")
        elseif(line MATCHES "^ " AND NOT verbatim)
            string(APPEND page ".nf\n${line}\n")
            set(verbatim TRUE)
        elseif(line MATCHES "^[A-Za-z_]+: " AND NOT page MATCHES "\n\\.PP\n$") # a word explained
            string(APPEND page ".br\n${line}\n")
        else()
            string(APPEND page "${line}\n")
        endif()
    endif()
endforeach()
if(NOT title OR NOT page MATCHES "\n\\.SH OPTIONS\n\\.TP\n")
    message(FATAL_ERROR "The help of ${name} is not of the form that a manual page is made of.")
endif()

string(REGEX REPLACE "(\\.PP\n)+(\\.SH|$)" "\\2" page "${page}")
string(REPLACE "@semicolon@" ";" page "${page}")
string(REPLACE "@semicolon@" ";" title "${title}")
string(TOUPPER ${name} upper)
list(REMOVE_ITEM OTHERS ${name})
list(SORT OTHERS)
list(TRANSFORM OTHERS REPLACE "(.+)" ".BR \\1 (1)")
list(JOIN OTHERS " ,\n" also)
file(WRITE ${OUT} ".TH ${upper} 1 \"\" \"${version}\" \"Waveform\"\n.SH NAME\n${name} \\- ${title}\n"
                  "${page}.SH SEE ALSO\n${also}\n")
