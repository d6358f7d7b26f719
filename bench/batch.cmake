# The programs over very many files: build/bench/batch. Without Qt, so that what is seen of a program's memory is its
# own (a process begins with what its parent had).
waveform_program(batch
    SOURCES batch.cpp childrun.cpp ${PROJECT_SOURCE_DIR}/tests/support/tracebuilder.cpp
    DEPENDS otdr_core)
target_compile_definitions(batch PRIVATE
    WAVEFORM_TRACES="${PROJECT_SOURCE_DIR}/../shared/data/traces"
    WAVEFORM_BIN="${CMAKE_BINARY_DIR}/bin")
set_target_properties(batch PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bench)
add_test(NAME bench.batch COMMAND batch --files 10)
add_dependencies(batch otdrinfo wfevfind)
