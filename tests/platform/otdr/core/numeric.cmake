waveform_test(otdr_core_numeric_test
    SOURCES
        crc32_test.cpp
        darkness_test.cpp
        decibels_test.cpp
        decimation_test.cpp
        detectedspan_test.cpp
        detectionfigures_test.cpp
        detectionlinks.cpp
        echoes_test.cpp
        eventdetection_test.cpp
        eventdetectionends_test.cpp
        eventdetectionlight_test.cpp
        eventfit_test.cpp
        eventscan_test.cpp
        eventsearch_test.cpp
        eventsearchclose_test.cpp
        eventsites_test.cpp
        eventsitesbends_test.cpp
        eventsitesfit_test.cpp
        eventsitesslopes_test.cpp
        eventsitesswings_test.cpp
        eventsitestails_test.cpp
        fibrebehind_test.cpp
        fibreend_test.cpp
        fibreextent_test.cpp
        fibretrace_test.cpp
        heldtop_test.cpp
        launchtail_test.cpp
        lightbehind_test.cpp
        lightfalls_test.cpp
        linefit_test.cpp
        loss_test.cpp
        lossintail_test.cpp
        noise_test.cpp
        noisefloor_test.cpp
        overload_test.cpp
        peakgroup_test.cpp
        peakheights_test.cpp
        prefixsums_test.cpp
        pulseshape_test.cpp
        pyramid_test.cpp
        reflectance_test.cpp
        reflectionfeet_test.cpp
        returnloss_test.cpp
        risinglight_test.cpp
        scatter_test.cpp
        shortfibre_test.cpp
        snapshot_test.cpp
        splitter_test.cpp
        storedthresholds_test.cpp
        straying_test.cpp
        tailfit_test.cpp
        timeconstant_test.cpp
        trace_test.cpp
        windowsums_test.cpp
        ${PROJECT_SOURCE_DIR}/tests/support/tracebuilder.cpp
    DEPENDS otdr_core)

# Writes tests/data/detection/figures.txt anew, where what the detection tells is meant to change:
# cmake --build build --target make_detection_figures
#     && build/bin/make_detection_figures tests/data/detection/figures.txt
waveform_program(make_detection_figures
    SOURCES makedetectionfigures.cpp detectionlinks.cpp ${PROJECT_SOURCE_DIR}/tests/support/tracebuilder.cpp
    DEPENDS otdr_core)
set_target_properties(make_detection_figures PROPERTIES EXCLUDE_FROM_ALL ON)
