# Writes one file at a time with one include and asks cmake/checklayers.cmake what it thinks of it:
# cmake -D SCRIPT=<checklayers.cmake> -D DIR=<scratch directory> -P checklayers_test.cmake
cmake_minimum_required(VERSION 3.25)

function(check file include verdict)
    file(REMOVE_RECURSE ${DIR})
    file(WRITE ${DIR}/${file} "#pragma once\n\n  #  include ${include} // why\n")
    execute_process(COMMAND ${CMAKE_COMMAND} -D ROOT=${DIR} -P ${SCRIPT}
                    RESULT_VARIABLE result OUTPUT_VARIABLE said ERROR_VARIABLE said)
    set(complained FALSE)
    if(result AND said MATCHES "includes [^\n]*: (not below|an include names|.* is no layer|.* knows no Qt)")
        set(complained TRUE)
    endif()
    if(verdict STREQUAL "good" AND result OR verdict STREQUAL "bad" AND NOT complained)
        message(SEND_ERROR "${file} with ${include} should be ${verdict}, but:\n${said}")
    endif()
endfunction()

# Upwards, and sideways between folders that do not know each other
check(platform/launcher/a.cpp "\"plot/plot.h\"" bad)
check(platform/otdr/a.h "\"platform/launcher/palettefactory.h\"" bad)
check(platform/otdr/core/a.h "\"platform/otdr/otdr.h\"" bad)
check(programs/wfgather/a.cpp "\"acquisition/model.h\"" bad)
check(programs/wfevfind/a.cpp "\"plot/plot.h\"" bad)
check(plot/a.cpp "\"events/eventmarkersview.h\"" bad)
check(plot/a.cpp "\"platform/launcher/zuconfig.h\"" bad)
check(events/a.cpp "\"refls/reflstablemodel.h\"" bad)
check(refls/a.cpp "\"acquisition/model.h\"" bad)
check(acquisition/a.cpp "\"plot/plot.h\"" bad)
check(storage/a.cpp "\"window/window.h\"" bad)
check(window/a.cpp "\"storage/keeper.h\"" bad)
check(window/a.cpp "\"plugin/plugin.h\"" bad)
check(app/a.cpp "\"window/window.h\"" bad)
check(window/a.cpp "\"platform/otdr/core/trace.h\"" bad)
check(tests/plot/a_test.cpp "\"window/window.h\"" bad)
check(tests/endtoend/a_test.cpp "\"window/window.h\"" bad)

# Downwards
check(platform/otdr/a.cpp "\"platform/otdr/core/trace.h\"" good)
check(plot/a.cpp "\"platform/launcher/palettefactory.h\"" good)
check(events/a.h "\"plot/plot.h\"" good)
check(storage/a.cpp "\"refls/reflstablemodel.h\"" good)
check(window/a.cpp "\"twomarkers/model.h\"" good)
check(plugin/a.cpp "\"storage/keeper.h\"" good)
check(programs/otdrreport/a.cpp "\"plot/plot.h\"" good)
check(tests/plot/a_test.cpp "\"plot/plot.h\"" good)
check(tests/plot/a_test.cpp "\"tests/support/warnings.h\"" good)
check(tests/plot/a_test.cpp "\"a_test.moc\"" good)
check(tests/endtoend/a_test.cpp "\"platform/otdr/reflectogram.h\"" good)
check(tests/endtoend/a_test.cpp "\"tests/support/tracefiles.h\"" good)

# Paths that do not start at the root, folders that nobody has placed
check(plot/a.cpp "\"../events/eventmarkersview.h\"" bad)
check(plot/a.cpp "\"./plot.h\"" bad)
check(plot/a.cpp "\"plot.h\"" bad)
check(newfolder/a.cpp "\"plot/plot.h\"" bad)

# The numeric library does without Qt, and only that
check(platform/otdr/core/a.h "<QString>" bad)
check(platform/otdr/core/a.h "<qwt_plot.h>" bad)
check(platform/otdr/core/a.h "<vector>" good)
check(platform/otdr/a.h "<QString>" good)
