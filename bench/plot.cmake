waveform_bench(plot_bench SOURCES plot_bench.cpp benchtrace.cpp benchtrace.h DEPENDS plot)
