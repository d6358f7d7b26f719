waveform_bench(detection_bench SOURCES detection_bench.cpp DEPENDS otdr_core)

# What the detection finds, beside what instruments have stored in their files.
waveform_program(detection_compare SOURCES detection_compare.cpp DEPENDS otdr_core)
set_target_properties(detection_compare PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bench)

# What it finds of events that are drawn into real traces.
waveform_program(detection_drawn SOURCES detection_drawn.cpp DEPENDS otdr_core)
set_target_properties(detection_drawn PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bench)

# Whether it tells the same of traces that were changed a little.
waveform_program(detection_changed SOURCES detection_changed.cpp DEPENDS otdr_core)
set_target_properties(detection_changed PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bench)

# Simulated links whose truth is known, and what counts as found of it.
waveform_library(detection_links
    SOURCES
        accuracyfigures.cpp
        accuracylinks.cpp
        instrument.cpp
        knownlink.cpp
        knownsections.cpp
        matching.cpp
        oddlinks.cpp
        oddnetworks.cpp
        oddparts.cpp
    DEPENDS otdr_core gather)

# What it finds on them, with the instrument that the acquisition simulates.
waveform_program(detection_accuracy SOURCES detection_accuracy.cpp DEPENDS detection_links)
set_target_properties(detection_accuracy PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bench)

# What it finds on other fibres and with other instruments.
waveform_program(detection_fibres SOURCES detection_fibres.cpp DEPENDS detection_links)
set_target_properties(detection_fibres PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bench)
