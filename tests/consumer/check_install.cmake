# Installs the built library into a scratch prefix, then configures, builds
# and runs a small host project against it with find_package(MuxCore).
file(REMOVE_RECURSE ${WORK_DIR})
set(prefix ${WORK_DIR}/prefix)

function(run_step)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE out)
    if(NOT rc EQUAL 0)
        message(FATAL_ERROR "Step failed (${rc}): ${ARGN}\n${out}")
    endif()
endfunction()

run_step(${CMAKE_COMMAND} --install ${MUXCORE_BUILD_DIR} --prefix ${prefix})
foreach(expected include/muxcore/muxcore_export.h include/muxcore/core/core.h)
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
if(WITH_SNMP)
    run_step(${WORK_DIR}/build/snmpconsumer)
endif()
message(STATUS "Host built and ran against the installed package")
