# Checks every #include of the tree against the layers: cmake -D ROOT=<source directory> -P checklayers.cmake
# Fails with one line for each include that a layer must not have.

cmake_minimum_required(VERSION 3.25)

# The layers, lowest first: a folder, then what its files may include beside their own folder; a folder stands for the
# files directly in it, a file for itself alone. What a line names must stand above it, so that no circle can be written.
set(face "platform/otdr platform/launcher platform/sysinfo platform/otdrconfig") # the platform as the application sees it
set(layers
    "platform/otdr/core"
    "platform/otdr              platform/otdr/core"
    "platform/launcher"
    "platform/sysinfo"
    "platform/otdrconfig        platform/otdr platform/launcher"
    "acquisition                ${face}"
    "plot                       platform/otdr platform/launcher/palettefactory.h"
    "events                     plot ${face}"
    "twomarkers                 plot ${face}"
    "refls                      plot ${face}"
    "storage                    acquisition refls ${face}"
    "window                     acquisition plot events twomarkers refls ${face}"
    "plugin                     acquisition plot events twomarkers refls storage window ${face}"
    "app                        ${face}"
    "programs/wfgather          platform/otdr platform/otdr/core"
    "programs/wfevfind          platform/otdr platform/otdr/core"
    # The report's picture is drawn with the plot, so that report and screen look the same.
    "programs/otdrreport        platform/otdr platform/otdr/core plot"
    "programs/otdrinfo          platform/otdr platform/otdr/core"
    "tests/support              platform/otdr platform/otdr/core"
    # The program is used from outside; of its parts only the reader is known, for what it has saved.
    "tests/endtoend             platform/otdr tests/support"
    # Reads sources and translations as files; it knows no code of theirs.
    "tests/translations         tests/support"
    # The host with its plugin, seen from the desk of a user.
    "tests/soak                 app ${face} tests/support"
    "bench                      platform/otdr platform/otdr/core platform/launcher programs/wfgather plot events twomarkers app tests/support"
    "fuzz                       platform/otdr platform/otdr/core programs/wfgather acquisition tests/support")
# The tests of a folder include what the folder may, the folder, other tests, and the core to compare with.

# These know the standard library only.
set(withoutQt platform/otdr/core)

foreach(layer IN LISTS layers)
    string(REGEX MATCHALL "[^ ]+" words "${layer}")
    list(POP_FRONT words folder)
    foreach(word IN LISTS words)
        string(REGEX REPLACE "/[^/]*\\.h$" "" wordFolder ${word})
        if(NOT wordFolder IN_LIST folders)
            message(FATAL_ERROR "${folder} names ${word}, which is no layer below it.")
        endif()
    endforeach()
    list(APPEND folders ${folder})
    set(below_${folder} ${words})
endforeach()

# Why `file` must not include `name` (paths relative to ROOT; `system` where in angle brackets); empty if it may.
function(objection file name system result)
    get_filename_component(folder ${file} DIRECTORY)
    get_filename_component(target ${name} DIRECTORY)
    set(layer ${folder})
    set(allowed ${folder})
    set(anyTest FALSE)
    if(NOT folder IN_LIST folders AND folder MATCHES "^tests/(.+)")
        set(layer ${CMAKE_MATCH_1})
        list(APPEND allowed ${layer} platform/otdr/core)
        string(REGEX MATCH "^tests/" anyTest ${name})
    elseif(folder MATCHES "^(bench|tests/soak)$")
        string(REGEX MATCH "^tests/" anyTest ${name}) # the fingers that drive widgets there drive them here
    endif()
    list(APPEND allowed ${below_${layer}})

    set(why "")
    if(system)
        if(folder IN_LIST withoutQt AND name MATCHES "^[Qq]")
            set(why "${folder} knows no Qt")
        endif()
    elseif(name MATCHES "^[^/]+\\.moc$")
        # Made from the file itself.
    elseif(NOT name MATCHES "/" OR name MATCHES "(^|/)\\.\\.?/")
        set(why "an include names the folder, from the root")
    elseif(NOT layer IN_LIST folders)
        set(why "${layer} is no layer")
    elseif(NOT target IN_LIST allowed AND NOT name IN_LIST allowed AND NOT anyTest)
        set(why "not below ${layer}")
    endif()
    set(${result} "${why}" PARENT_SCOPE)
endfunction()

file(GLOB tops RELATIVE ${ROOT} ${ROOT}/*)
list(FILTER tops EXCLUDE REGEX "^build")
list(TRANSFORM tops PREPEND ${ROOT}/)
foreach(top IN LISTS tops)
    file(GLOB_RECURSE found RELATIVE ${ROOT} ${top}/*.h ${top}/*.cpp)
    list(APPEND files ${found})
endforeach()

set(objections 0)
set(includes 0)
foreach(file IN LISTS files)
    file(STRINGS ${ROOT}/${file} lines REGEX "^[ \t]*#[ \t]*include[ \t]*[<\"]")
    foreach(line IN LISTS lines)
        if(NOT line MATCHES "([<\"])([^>\"]+)[>\"]")
            continue()
        endif()
        set(name ${CMAKE_MATCH_2})
        string(COMPARE EQUAL "${CMAKE_MATCH_1}" "<" system)
        math(EXPR includes "${includes} + 1")
        objection(${file} ${name} ${system} why)
        if(why)
            message(NOTICE "${file} includes ${name}: ${why}")
            math(EXPR objections "${objections} + 1")
        endif()
    endforeach()
endforeach()

list(LENGTH files count)
if(count EQUAL 0)
    message(FATAL_ERROR "No sources below ${ROOT}.")
elseif(objections)
    message(FATAL_ERROR "${objections} of ${includes} includes break the layers (cmake/checklayers.cmake).")
endif()
message(STATUS "${includes} includes in ${count} files keep the layers.")
