# The trace headers that product code includes are made by tools/tracegen from the catalogues.
add_library(trace_headers INTERFACE)
