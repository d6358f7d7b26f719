waveform_test(otdr_core_sor_test
    SOURCES
        atomicfile_test.cpp
        bytes_test.cpp
        crc16_test.cpp
        soraxis_test.cpp
        sorchecksum_test.cpp
        sordamage_test.cpp
        sorfile_test.cpp
        sormap_test.cpp
        sormemory_test.cpp
        sormuseum_test.cpp
        sorreader_test.cpp
        sortraces_test.cpp
        sorvalues_test.cpp
        sorvendors_test.cpp
        sorwriter_test.cpp
        ${PROJECT_SOURCE_DIR}/tests/support/sorsketch.cpp
    DEPENDS otdr_core)

# Writes tests/data/bad anew; its README says how.
waveform_program(make_bad_traces
    SOURCES makebadtraces.cpp ${PROJECT_SOURCE_DIR}/tests/support/sorsketch.cpp
    DEPENDS Microsoft.GSL::GSL)
set_target_properties(make_bad_traces PROPERTIES EXCLUDE_FROM_ALL ON)
