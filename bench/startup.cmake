# From the start to the first painted window, and the memory with four traces: build/bench/startup
add_library(paint_teller MODULE paintteller.cpp paintteller.h)
target_link_libraries(paint_teller PRIVATE Qt5::Widgets waveform_options)
target_precompile_headers(paint_teller REUSE_FROM pch_widgets)
set_target_properties(paint_teller PROPERTIES
    AUTOMOC ON
    PREFIX ""
    LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bench/plugins/generic)

waveform_program(emptywindow SOURCES emptywindow.cpp DEPENDS Qt5::Widgets Qwt::Qwt)
waveform_program(startup
    SOURCES benchtrace.cpp benchtrace.h startup.cpp windowrun.cpp windowrun.h
    DEPENDS otdr Qt5::Core)
set_target_properties(emptywindow startup PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bench)
target_compile_definitions(startup PRIVATE
    WAVEFORM_BIN="${CMAKE_BINARY_DIR}/bin"
    WAVEFORM_TELLER_DIR="${CMAKE_BINARY_DIR}/bench/plugins")
# The child programs too: where they are missing, the window opens with a dialog that says so.
add_dependencies(startup emptywindow paint_teller waveform waveform_plugin wfgather wfevfind otdrreport)
add_test(NAME bench.startup COMMAND startup --rounds 2)
set_tests_properties(bench.startup PROPERTIES TIMEOUT 120 RESOURCE_LOCK acquisition_directory)
