waveform_bench(detection_bench SOURCES detection_bench.cpp DEPENDS otdr_core)

# What the detection finds, beside what instruments have stored in their files.
waveform_program(detection_compare SOURCES detection_compare.cpp DEPENDS otdr_core)
set_target_properties(detection_compare PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bench)

# What it finds of events that are drawn into real traces.
waveform_program(detection_drawn SOURCES detection_drawn.cpp DEPENDS otdr_core)
set_target_properties(detection_drawn PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bench)

# What it finds on simulated links whose truth is known.
waveform_program(detection_accuracy
    SOURCES accuracyfigures.cpp accuracyfigures.h accuracylinks.cpp accuracylinks.h detection_accuracy.cpp
    DEPENDS otdr_core gather)
set_target_properties(detection_accuracy PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bench)
