# Installs the built library into a scratch prefix, then configures, builds
# and runs a small host project against it with find_package(MuxCore) or
# find_package(MuxCoreQt6), whichever the build installs.
file(REMOVE_RECURSE ${WORK_DIR})
set(prefix ${WORK_DIR}/prefix)

function(run_step)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE out)
    if(NOT rc EQUAL 0)
        message(FATAL_ERROR "Step failed (${rc}): ${ARGN}\n${out}")
    endif()
endfunction()

run_step(${CMAKE_COMMAND} --install ${MUXCORE_BUILD_DIR} --prefix ${prefix})
foreach(expected include/${MUXCORE_FILE_NAME}/muxcore_export.h include/${MUXCORE_FILE_NAME}/core/core.h)
    if(NOT EXISTS ${prefix}/${expected})
        message(FATAL_ERROR "Install lacks ${expected}")
    endif()
endforeach()
file(GLOB_RECURSE pcfiles ${prefix}/*/${MUXCORE_FILE_NAME}.pc)
if(NOT pcfiles)
    message(FATAL_ERROR "Install lacks the pkg-config file")
endif()

run_step(${CMAKE_COMMAND} -S ${CONSUMER_SOURCE_DIR} -B ${WORK_DIR}/build
         -DCMAKE_PREFIX_PATH=${prefix} -DMUXCORE_PACKAGE_NAME=${MUXCORE_PACKAGE_NAME})
run_step(${CMAKE_COMMAND} --build ${WORK_DIR}/build)
run_step(${WORK_DIR}/build/consumer)
message(STATUS "Host built and ran against the installed package")
