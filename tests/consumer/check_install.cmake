# Installs the built library into a scratch prefix, then builds and runs a
# small host against it twice, with find_package(MuxCore) and with plain
# pkg-config, and compiles every installed header alone under strict flags.
# A Qt 6 build installs MuxCoreQt6 and muxcore-qt6 instead, and the host
# switches to them by its find_package line alone.
file(REMOVE_RECURSE ${WORK_DIR})
set(prefix ${WORK_DIR}/prefix)

function(run_step)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE out)
    if(NOT rc EQUAL 0)
        message(FATAL_ERROR "Step failed (${rc}): ${ARGN}\n${out}")
    endif()
endfunction()

run_step(${CMAKE_COMMAND} --install ${MUXCORE_BUILD_DIR} --prefix ${prefix})
foreach(expected include/${MUXCORE_FILE_NAME}/muxcore_export.h include/${MUXCORE_FILE_NAME}/core/core.h
                 share/${MUXCORE_FILE_NAME}/translations/muxcore_de.qm)
    if(NOT EXISTS ${prefix}/${expected})
        message(FATAL_ERROR "Install lacks ${expected}")
    endif()
endforeach()
file(GLOB_RECURSE pcfiles ${prefix}/*/${MUXCORE_FILE_NAME}.pc)
if(NOT pcfiles)
    message(FATAL_ERROR "Install lacks the pkg-config file")
endif()

set(consumer_dir ${CONSUMER_SOURCE_DIR})
if(NOT MUXCORE_PACKAGE_NAME STREQUAL "MuxCore")
    set(consumer_dir ${WORK_DIR}/consumer)
    file(READ ${CONSUMER_SOURCE_DIR}/CMakeLists.txt consumer_project)
    string(REPLACE "find_package(MuxCore " "find_package(${MUXCORE_PACKAGE_NAME} " consumer_project "${consumer_project}")
    string(REPLACE "\${MuxCore_DIR}" "\${${MUXCORE_PACKAGE_NAME}_DIR}" consumer_project "${consumer_project}")
    file(COPY ${CONSUMER_SOURCE_DIR}/ DESTINATION ${consumer_dir} PATTERN CMakeLists.txt EXCLUDE)
    file(WRITE ${consumer_dir}/CMakeLists.txt "${consumer_project}")
endif()
run_step(${CMAKE_COMMAND} -S ${consumer_dir} -B ${WORK_DIR}/build
         -DCMAKE_PREFIX_PATH=${prefix} -DWITH_SNMP=${WITH_SNMP})
run_step(${CMAKE_COMMAND} --build ${WORK_DIR}/build)
run_step(${WORK_DIR}/build/consumer)

# A host that knows only pkg-config gets everything from the .pc file.
find_program(PKG_CONFIG pkg-config REQUIRED)
get_filename_component(pcdir ${pcfiles} DIRECTORY)
execute_process(COMMAND ${CMAKE_COMMAND} -E env PKG_CONFIG_PATH=${pcdir}
        ${PKG_CONFIG} --cflags --libs ${MUXCORE_FILE_NAME}
    RESULT_VARIABLE rc OUTPUT_VARIABLE flags ERROR_VARIABLE flags OUTPUT_STRIP_TRAILING_WHITESPACE)
if(NOT rc EQUAL 0)
    message(FATAL_ERROR "pkg-config does not know ${MUXCORE_FILE_NAME}:\n${flags}")
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
file(GLOB_RECURSE headers ${prefix}/include/${MUXCORE_FILE_NAME}/*.h)
# The SNMP component's headers also see Qt Network, as its CMake target does.
execute_process(COMMAND ${PKG_CONFIG} --cflags ${MUXCORE_QT}Network
    OUTPUT_VARIABLE network_flags OUTPUT_STRIP_TRAILING_WHITESPACE)
separate_arguments(network_flags UNIX_COMMAND "${network_flags}")
foreach(header ${headers})
    run_step(${CXX} -std=c++17 -fsyntax-only -x c++ -Wall -Wextra -Wpedantic -Wshadow -Werror
             ${flags} ${network_flags} ${header})
endforeach()
message(STATUS "Hosts built and ran against the installed package")
