# Pictures of every state of the window: cmake --build build --target screens
if(TARGET test_deskuser)
    waveform_program(screenshots
        SOURCES fewcolours.cpp fewcolours.h screenshots.cpp screenstates.cpp screenstates.h
        DEPENDS test_deskuser Qt5::Widgets)
    set_target_properties(screenshots PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bench)
    target_compile_definitions(screenshots PRIVATE
        WAVEFORM_BIN="${CMAKE_BINARY_DIR}/bin"
        WAVEFORM_FIBRES="${PROJECT_SOURCE_DIR}/data/fibres")
    add_dependencies(screenshots waveform waveform_plugin wfgather wfevfind otdrreport)
    add_custom_target(screens
        COMMAND screenshots ${PROJECT_SOURCE_DIR}/docs/screens
        COMMENT "Taking pictures of the window" VERBATIM USES_TERMINAL)
endif()
