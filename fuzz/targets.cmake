# The fuzz targets: name, then the library folder they exercise. Shared by
# the libFuzzer build (fuzz/CMakeLists.txt) and the replay tests of the main
# build (tests/CMakeLists.txt).
set(MUXCORE_FUZZ_TARGETS
    fuzz_convert
    fuzz_frontpanel
    fuzz_savesettings
    fuzz_memorymap
    fuzz_filesystemcheck
    fuzz_snmpvariables)

# The SNMP component's target, when the component is built; the libraries a
# target needs beyond the core come in MUXCORE_FUZZ_LIBRARIES_<target>.
if(TARGET MuxCore::Snmp)
    list(APPEND MUXCORE_FUZZ_TARGETS fuzz_snmpvarbind)
    set(MUXCORE_FUZZ_LIBRARIES_fuzz_snmpvarbind MuxCore::Snmp PkgConfig::NETSNMP)
endif()

set(MUXCORE_FUZZ_DIR ${CMAKE_CURRENT_LIST_DIR})

# Builds a target's entry point with a plain driver and registers a test
# that replays its seed corpus and its saved crash inputs.
function(muxcore_add_fuzz_replay name)
    set(test ${name}_replay)
    add_executable(${test} ${MUXCORE_FUZZ_DIR}/${name}.cpp ${MUXCORE_FUZZ_DIR}/replay.cpp)
    target_link_libraries(${test} PRIVATE MuxCore::MuxCore ${MUXCORE_FUZZ_LIBRARIES_${name}})
    muxcore_set_warnings(${test})
    set(inputs ${MUXCORE_FUZZ_DIR}/corpus/${name})
    if(EXISTS ${MUXCORE_FUZZ_DIR}/regressions/${name})
        list(APPEND inputs ${MUXCORE_FUZZ_DIR}/regressions/${name})
    endif()
    add_test(NAME ${test} COMMAND ${test} ${inputs})
    set_tests_properties(${test} PROPERTIES TIMEOUT 300)
    muxcore_test_environment(${test})
endfunction()
