waveform_bench(twomarkers_bench SOURCES twomarkers_bench.cpp benchtrace.cpp benchtrace.h DEPENDS twomarkers)
