waveform_bench(sor_bench SOURCES sor_bench.cpp DEPENDS otdr_core)
