find_package(Qt5 5.15 REQUIRED COMPONENTS Test)

waveform_bench(touch_bench
    SOURCES
        benchtrace.cpp benchtrace.h
        touch_bench.cpp
        touchedplot.cpp touchedplot.h
        ${PROJECT_SOURCE_DIR}/tests/plot/finger.cpp
        ${PROJECT_SOURCE_DIR}/tests/support/allocatedbytes.cpp
    DEPENDS events twomarkers plot Qt5::Test)
