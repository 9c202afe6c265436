muxcore_add_test(tst_trapvisual SOURCES tst_trapvisual.cpp)
muxcore_add_test(tst_printing SOURCES tst_printing.cpp)
