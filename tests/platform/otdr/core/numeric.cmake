waveform_test(otdr_core_numeric_test
    SOURCES
        crc32_test.cpp
        decimation_test.cpp
        eventdetection_test.cpp
        fibreend_test.cpp
        linefit_test.cpp
        loss_test.cpp
        noise_test.cpp
        prefixsums_test.cpp
        pulseshape_test.cpp
        pyramid_test.cpp
        reflectance_test.cpp
        returnloss_test.cpp
        snapshot_test.cpp
        trace_test.cpp
        ${PROJECT_SOURCE_DIR}/tests/support/tracebuilder.cpp
    DEPENDS otdr_core)
