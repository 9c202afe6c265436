# Runs each fuzz target for FUZZ_SECONDS on a working copy of its seed corpus
# (or, when FUZZ_RUNS is set, for that many inputs from a fixed seed and a fixed
# Qt hash seed, so that a run does not depend on the machine's speed: the
# continuous-integration form)
# (the committed corpus is never written to) and fails if any target finds a
# crash, a leak, a time-out or sanitizer report. Crash inputs are left in
# <build>/artifacts/<target>/; copy them to fuzz/regressions/<target>/ once fixed.
set(seconds $ENV{FUZZ_SECONDS})
if(NOT seconds)
    set(seconds ${FUZZ_DEFAULT_SECONDS})
endif()
set(limit -max_total_time=${seconds})
set(length "${seconds} s")
if(DEFINED ENV{FUZZ_RUNS})
    set(limit -runs=$ENV{FUZZ_RUNS} -seed=1)
    set(length "$ENV{FUZZ_RUNS} inputs")
endif()
string(REPLACE "," ";" targets "${FUZZ_TARGETS}")

set(failed)
foreach(target ${targets})
    set(work ${FUZZ_BIN_DIR}/work/${target})
    set(artifacts ${FUZZ_BIN_DIR}/artifacts/${target})
    file(REMOVE_RECURSE ${work})
    file(MAKE_DIRECTORY ${work} ${artifacts})
    file(GLOB seeds ${FUZZ_SOURCE_DIR}/corpus/${target}/*)
    file(GLOB regressions ${FUZZ_SOURCE_DIR}/regressions/${target}/*)
    if(seeds OR regressions)
        file(COPY ${seeds} ${regressions} DESTINATION ${work})
    endif()

    message(STATUS "${target}: ${length}")
    execute_process(
        COMMAND ${CMAKE_COMMAND} -E env
            "LSAN_OPTIONS=suppressions=${FUZZ_SOURCE_DIR}/lsan.supp:print_suppressions=0"
            QT_HASH_SEED=0
            ${FUZZ_BIN_DIR}/${target}
            ${limit} -timeout=10 -rss_limit_mb=2048 -max_len=8192
            -print_final_stats=1 -artifact_prefix=${artifacts}/ ${work}
        RESULT_VARIABLE result
        OUTPUT_VARIABLE output
        ERROR_VARIABLE output)
    string(REGEX MATCHALL "(stat::number_of_executed_units|stat::new_units_added):[^\n]*" stats "${output}")
    string(REPLACE ";" ", " stats "${stats}")
    if(NOT result EQUAL 0)
        message("${output}")
        message(WARNING "${target} failed (${result}); inputs in ${artifacts}")
        list(APPEND failed ${target})
    else()
        message(STATUS "${target}: clean; ${stats}")
    endif()
endforeach()

if(failed)
    message(FATAL_ERROR "Fuzz targets with findings: ${failed}")
endif()
