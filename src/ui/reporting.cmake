muxcore_add_sources(
    HEADERS trapvisual.h printing.h
    SOURCES trapvisual.cpp printing.cpp)
