waveform_bench(plot_bench SOURCES plot_bench.cpp DEPENDS plot)
