waveform_bench(numeric_bench
    SOURCES
        numeric_bench.cpp
        ${PROJECT_SOURCE_DIR}/tests/support/tracebuilder.cpp
    DEPENDS otdr_core)
# The yardsticks are to show what memory gives, not what -O2 leaves unvectorised.
set_source_files_properties(numeric_bench.cpp PROPERTIES COMPILE_OPTIONS "$<$<NOT:$<CONFIG:Debug>>:-O3>")
