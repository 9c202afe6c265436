# Installs the built library into a scratch prefix, then builds and runs a
# small host against it twice, with find_package(MuxCore) and with plain
# pkg-config, and compiles every installed header alone under strict flags.
file(REMOVE_RECURSE ${WORK_DIR})
set(prefix ${WORK_DIR}/prefix)

function(run_step)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE out)
    if(NOT rc EQUAL 0)
        message(FATAL_ERROR "Step failed (${rc}): ${ARGN}\n${out}")
    endif()
endfunction()

run_step(${CMAKE_COMMAND} --install ${MUXCORE_BUILD_DIR} --prefix ${prefix})
foreach(expected include/muxcore/muxcore_export.h include/muxcore/core/core.h
                 share/muxcore/translations/muxcore_de.qm)
    if(NOT EXISTS ${prefix}/${expected})
        message(FATAL_ERROR "Install lacks ${expected}")
    endif()
endforeach()
file(GLOB_RECURSE pcfiles ${prefix}/*/muxcore.pc)
if(NOT pcfiles)
    message(FATAL_ERROR "Install lacks the pkg-config file")
endif()

run_step(${CMAKE_COMMAND} -S ${CONSUMER_SOURCE_DIR} -B ${WORK_DIR}/build
         -DCMAKE_PREFIX_PATH=${prefix} -DWITH_SNMP=${WITH_SNMP})
run_step(${CMAKE_COMMAND} --build ${WORK_DIR}/build)
run_step(${WORK_DIR}/build/consumer)

# A host that knows only pkg-config gets everything from the .pc file.
find_program(PKG_CONFIG pkg-config REQUIRED)
get_filename_component(pcdir ${pcfiles} DIRECTORY)
execute_process(COMMAND ${CMAKE_COMMAND} -E env PKG_CONFIG_PATH=${pcdir}
        ${PKG_CONFIG} --cflags --libs muxcore
    RESULT_VARIABLE rc OUTPUT_VARIABLE flags ERROR_VARIABLE flags OUTPUT_STRIP_TRAILING_WHITESPACE)
if(NOT rc EQUAL 0)
    message(FATAL_ERROR "pkg-config does not know muxcore:\n${flags}")
endif()
separate_arguments(flags UNIX_COMMAND "${flags}")
get_filename_component(libdir ${pcdir} DIRECTORY)
run_step(${CXX} ${CONSUMER_SOURCE_DIR}/main.cpp ${flags} -Wl,-rpath,${libdir}
         -o ${WORK_DIR}/consumer-pkgconfig)
run_step(${WORK_DIR}/consumer-pkgconfig)

if(WITH_SNMP)
    run_step(${WORK_DIR}/build/snmpconsumer)
endif()

# Hosts build with stricter warnings than ours: no public header may add one.
file(GLOB_RECURSE headers ${prefix}/include/muxcore/*.h)
# The SNMP component's headers also see Qt Network, as its CMake target does.
execute_process(COMMAND ${PKG_CONFIG} --cflags Qt5Network
    OUTPUT_VARIABLE network_flags OUTPUT_STRIP_TRAILING_WHITESPACE)
separate_arguments(network_flags UNIX_COMMAND "${network_flags}")
foreach(header ${headers})
    run_step(${CXX} -std=c++17 -fsyntax-only -x c++ -Wall -Wextra -Wpedantic -Wshadow -Werror
             ${flags} ${network_flags} ${header})
endforeach()
message(STATUS "Hosts built and ran against the installed package")
